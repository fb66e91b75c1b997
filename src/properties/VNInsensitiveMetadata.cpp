#include "vn/properties/VNInsensitiveMetadata.h"

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <string>

namespace vn {
namespace {

std::string lowercased(std::string_view text) {
    icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    unicode.toLower(icu::Locale::getRoot());
    std::string result;
    unicode.toUTF8String(result);
    return result;
}

const Value* probe(const Value::Dictionary& metadata, std::string_view key) {
    const auto found = metadata.find(key);
    return found == metadata.end() ? nullptr : &found->second;
}

}  // namespace

Value VNInsensitiveMetadata::metadataObjectForKey(std::string_view key, const Value& metadata) {
    const Value::Dictionary* dictionary = metadata.dictionary();
    return dictionary ? metadataObjectForKey(key, *dictionary) : Value{};
}

Value VNInsensitiveMetadata::metadataObjectForKey(std::string_view key,
                                                  const Value::Dictionary& metadata) {
    const bool hasAt = !key.empty() && key.front() == '@';
    const std::string_view stripped = hasAt ? key.substr(1) : key;
    const std::string alternate = hasAt ? std::string(key) : "@" + std::string(stripped);
    // Lower-casing is left until an exact probe has missed: most keys are found as written.
    if (const Value* found = probe(metadata, stripped)) return *found;
    if (const Value* found = probe(metadata, lowercased(stripped))) return *found;
    if (const Value* found = probe(metadata, alternate)) return *found;
    if (const Value* found = probe(metadata, lowercased(alternate))) return *found;
    return {};
}

}  // namespace vn
