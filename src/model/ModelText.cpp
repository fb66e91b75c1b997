#include "model/ModelText.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>

#include "platform/internal/Utf8.h"

namespace vn::model_internal {
namespace {

bool isASCII(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

char asciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string asciiLowercased(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), asciiLower);
    return result;
}

// Whether the text could fold to a word of wordLength ASCII letters: case folding maps every
// code point to at least one, so a text of more code points cannot, and neither can malformed
// UTF-8 (it reads as U+FFFD). The walk stops after wordLength + 1 code points, which keeps a
// comparison with a long text as cheap as one with a short text.
bool mayFoldToWordOfLength(std::string_view text, std::size_t wordLength) {
    std::size_t codePoints = 0;
    for (std::size_t at = 0; at < text.size(); ++codePoints) {
        if (codePoints == wordLength) return false;
        const platform_internal::Utf8Step step = platform_internal::decodeUtf8(text, at);
        if (!step.wellFormed) return false;
        at += step.length;
    }
    return true;
}

}  // namespace

std::string lowercased(std::string_view text) {
    if (isASCII(text)) return asciiLowercased(text);
    std::string result;
    icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())))
        .toLower(icu::Locale::getRoot())
        .toUTF8String(result);
    return result;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowerCaseWord) {
    if (!mayFoldToWordOfLength(text, lowerCaseWord.size())) return false;
    if (isASCII(text)) {
        return text.size() == lowerCaseWord.size() &&
               std::equal(text.begin(), text.end(), lowerCaseWord.begin(),
                          [](char a, char b) { return asciiLower(a) == b; });
    }
    std::string folded;
    icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())))
        .foldCase(U_FOLD_CASE_DEFAULT)
        .toUTF8String(folded);
    return folded == lowerCaseWord;
}

}  // namespace vn::model_internal
