// vn::Scanner: reads numbers, words and runs of characters from the front of a text, one
// after the other, skipping white space between them, as the platform's text scanner does.
//
// A scanner reads its text in place: it holds a view, so the text must outlive the scanner
// (temporaries of std::string are refused at compile time). Positions are byte offsets into the
// UTF-8 text. Every scan first skips the characters of charactersToBeSkipped() (white space and
// line ends by default); a scan that fails leaves the location where it was, skipped characters
// included. Numbers are read in the C locale with "." as decimal separator unless a separator is
// set (localizedScanner() takes the user's). Digits are the ASCII digits; "inf", "nan" and
// hexadecimal forms are not numbers here.
//
// With the default skip set and "." as separator, scanning numbers allocates nothing: a number
// of few digits and a small exponent is computed exactly in one pass, any other is read once
// through std::from_chars; other separators and values beyond the range of double take a slower
// path. A scanner is a small value for one thread; distinct scanners may run on any threads at
// once.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vn/platform/Decimal.h"
#include "vn/platform/Locale.h"

namespace vn {

class Scanner {
  public:
    // A set of Unicode code points, for skipping and for scanCharactersFromSet().
    class CharacterSet {
      public:
        CharacterSet() = default;  // the empty set
        // Every code point of the UTF-8 text; an invalid byte stands for U+FFFD.
        explicit CharacterSet(std::string_view members);

        // Space, tab and the Unicode space separators (U+00A0, U+1680, U+2000...U+200A, U+202F,
        // U+205F, U+3000).
        static const CharacterSet& whitespaces();
        // whitespaces() plus the line ends: U+000A...U+000D, U+0085, U+2028, U+2029.
        static const CharacterSet& whitespacesAndNewlines();

        bool contains(char32_t codePoint) const;
        bool isEmpty() const { return ascii_.none() && others_.empty(); }

      private:
        std::bitset<128> ascii_;
        std::vector<char32_t> others_;  // sorted, unique
    };

    explicit Scanner(std::string_view text) : text_(text) {}
    explicit Scanner(const char* text) : text_(text) {}
    Scanner(std::string&&) = delete;  // the scanner reads in place: the text must stay alive

    // A scanner whose decimal separator is the current locale's
    // (vn::Locale::currentDecimalSeparator()).
    static Scanner localizedScanner(std::string_view text);
    static Scanner localizedScanner(const char* text) {
        return localizedScanner(std::string_view(text));
    }
    static Scanner localizedScanner(std::string&&) = delete;

    std::string_view string() const { return text_; }

    // The byte offset of the next character to read. Setting an offset beyond the end throws
    // vn::Exception named NSRangeException.
    std::size_t scanLocation() const { return location_; }
    void setScanLocation(std::size_t location);

    // The characters passed over before each scan; white space and line ends by default. An
    // empty set makes every scan start exactly at scanLocation().
    const CharacterSet& charactersToBeSkipped() const {
        return skipped_ ? *skipped_ : CharacterSet::whitespacesAndNewlines();
    }
    void setCharactersToBeSkipped(CharacterSet characters);

    // Whether scanString() compares case-sensitively; false by default, and then ASCII letters
    // match either case (other characters must match exactly).
    bool caseSensitive() const { return caseSensitive_; }
    void setCaseSensitive(bool caseSensitive) { caseSensitive_ = caseSensitive; }

    // The text that separates a number's integer and fractional digits ("." unless set).
    const std::string& decimalSeparator() const { return decimalSeparator_; }
    void setDecimalSeparator(std::string separator) { decimalSeparator_ = std::move(separator); }
    // Takes the locale's decimal separator.
    void setLocale(const Locale& locale) { decimalSeparator_ = locale.decimalSeparator(); }

    // True when nothing but skipped characters remains.
    bool isAtEnd() const;

    // Integers: an optional "+" or "-" and at least one digit. All digits are consumed; a value
    // beyond the type's range saturates at its limit (INT64_MAX / INT64_MIN, UINT64_MAX). The
    // unsigned forms refuse a leading "-".
    bool scanLongLong(std::int64_t* result);
    std::optional<std::int64_t> scanInt64();
    bool scanUnsignedLongLong(std::uint64_t* result);
    std::optional<std::uint64_t> scanUInt64();

    // Floating values: an optional sign, digits with an optional fractional part introduced by
    // the decimal separator (at least one digit in all), and an optional exponent ("e" or "E",
    // optional sign, digits) that is taken only when it has digits. The value is the correctly
    // rounded nearest, exactly as strtod() reads the same text in the C locale; beyond the range
    // it is ±infinity, below it ±0 or a subnormal.
    bool scanDouble(double* result) { return scanFloating(result); }
    std::optional<double> scanDouble();
    bool scanFloat(float* result) { return scanFloating(result); }
    std::optional<float> scanFloat();
    // The floating syntax above with "." as the separator, read exactly at `at` without
    // skipping and without a scanner: the offset just after the number, or `at` itself when no
    // number starts there (`result` is then untouched). For callers that read one number from
    // a text and cannot afford to set up a scanner.
    static std::size_t readDoubleWithPoint(std::string_view text, std::size_t at, double* result);
    static std::size_t readFloatWithPoint(std::string_view text, std::size_t at, float* result);

    // A decimal of up to 38 significant digits (later digits are dropped) in the same syntax;
    // an exponent beyond the decimal's range gives the decimal NaN.
    bool scanDecimal(Decimal* result);
    std::optional<Decimal> scanDecimal();

    // Texts. The pointer forms store the scanned text when `into` is not null.
    // At least one character of the set.
    bool scanCharactersFromSet(const CharacterSet& characters, std::string* into);
    std::optional<std::string> scanCharacters(const CharacterSet& characters);
    // Exactly the given text (by caseSensitive()); an empty text never matches.
    bool scanString(std::string_view string, std::string* into);
    std::optional<std::string> scanString(std::string_view string);
    // Everything up to (not including) the given text, or to the end when it does not occur;
    // fails when that would be no character at all.
    bool scanUpToString(std::string_view string, std::string* into);
    std::optional<std::string> scanUpToString(std::string_view string);
    // Everything up to the first character of the set, or to the end; fails on no character.
    bool scanUpToCharactersFromSet(const CharacterSet& characters, std::string* into);
    std::optional<std::string> scanUpToCharacters(const CharacterSet& characters);

  private:
    // The offset of the first character at or after `from` that is not skipped. Inline for the
    // default set on ASCII text, since every number a coercion reads starts here.
    std::size_t skippedFrom(std::size_t from) const {
        if (skipped_) return skippedFromAnySet(from);
        for (; from < text_.size(); ++from) {
            const auto byte = static_cast<unsigned char>(text_[from]);
            if (byte >= 0x80) return skippedFromAnySet(from);
            if (byte != ' ' && (byte < '\t' || byte > '\r')) break;
        }
        return from;
    }
    std::size_t skippedFromAnySet(std::size_t from) const;
    // The end of the floating-point syntax that starts at `start` (start itself when none).
    std::size_t floatingSyntaxEnd(std::size_t start) const;

    template <typename Floating>
    bool scanFloating(Floating* result) {
        const std::size_t start = skippedFrom(location_);
        if (decimalSeparator_.size() == 1 && decimalSeparator_[0] == '.')
            return scanFloatingWithPoint(start, result);
        return scanFloatingWithSeparator(start, result);
    }

    bool scanFloatingWithPoint(std::size_t start, double* result);
    bool scanFloatingWithPoint(std::size_t start, float* result);
    bool moveAfterNumber(std::size_t start, std::size_t end);
    bool scanFloatingWithSeparator(std::size_t start, double* result);
    bool scanFloatingWithSeparator(std::size_t start, float* result);
    // Whether `string` (not empty) occurs at `at`, compared by caseSensitive().
    bool matchesAt(std::size_t at, std::string_view string) const;

    std::string_view text_;
    std::size_t location_ = 0;
    std::shared_ptr<const CharacterSet> ownedSkipped_;  // only when the caller set a custom set
    const CharacterSet* skipped_ = nullptr;             // null: white space and line ends
    std::string decimalSeparator_ = ".";
    bool caseSensitive_ = false;
};

}  // namespace vn
