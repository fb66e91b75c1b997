// Translation of a model picture ("ZZZ,ZZ9.99", "(ZZ9.99)", "+ZZ9", "ZZ9DB", "999-9999") into
// a number pattern, affixes and a zero symbol, and the choice of the formatter that shows it.
// Private to the formatting area; NumberFormatter::numberFormatterForVNPicture caches the
// formatters built from it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vn/formatting/NumberFormatter.h"

namespace vn::formatting_internal {

// The characters that stand for themselves in a pattern only when quoted. The digit 9 is
// absent on purpose: in a picture it is always a digit position, never literal text.
inline constexpr std::string_view kPatternSpecialCharacters = "012345678@#E;%‰¤'*";

struct PictureTranslation {
    std::string pattern;          // digits, separators and the literals between digit positions
    std::string leadingLiteral;   // literal text before the first digit position
    std::string trailingLiteral;  // literal text after the last digit position
    // The affixes decided by the picture's ends and its literals; absent: not set.
    std::optional<std::string> positivePrefix;
    std::optional<std::string> positiveSuffix;
    std::optional<std::string> negativePrefix;
    std::optional<std::string> negativeSuffix;
    // "" for pictures made only of suppressed positions (zero shows as blank); else absent.
    std::optional<std::string> zeroSymbol;

    // Whether the pattern has literal text between digit positions, which only a mask can show.
    bool needsMask() const;
    // The mask for VNNumberWithPictureFormatter: leading literal + pattern + trailing literal.
    std::string mask() const { return leadingLiteral + pattern + trailingLiteral; }
};

PictureTranslation translateVNPicture(std::string_view picture, bool numberHasDecimals);

// A new (uncached) formatter for a translated picture: a VNNumberWithPictureFormatter when
// needsMask(), else a platform formatter in the given locale (the current one when absent).
NumberFormatterPtr makeFormatterForPicture(const PictureTranslation& translation,
                                           const std::optional<std::string>& localeId);

}  // namespace vn::formatting_internal
