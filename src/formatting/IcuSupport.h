// Conversions between the library's UTF-8 texts and ICU's types, shared by the formatting
// sources. Private: ICU types never appear in public headers.
#pragma once

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <string>
#include <string_view>

namespace vn::formatting_internal {

inline icu::UnicodeString toUnicode(std::string_view text) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

inline std::string toUtf8(const icu::UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

// The ICU locale for a platform identifier ("en_US", "es-UY", "en_US_POSIX"). Unknown
// identifiers give a locale whose data falls back to the root locale.
inline icu::Locale icuLocale(std::string_view identifier) {
    return icu::Locale::createCanonical(std::string(identifier).c_str());
}

}  // namespace vn::formatting_internal
