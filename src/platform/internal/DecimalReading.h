// Reading decimal numbers written with "." whatever the process locale, correctly rounded
// exactly as strtod() reads them in the C locale: the scanner, the coercions and the WKT
// reader share it. Internal to the library: never installed.
//
// Syntax: an optional sign ("+" or "-", one), digits with an optional fraction after "." (at
// least one digit in all), and an optional exponent ("e" or "E", optional sign, digits) that
// is taken only when it has digits. No white space, no "inf" or "nan", no hexadecimal.
// Values beyond the type's range are ±infinity, below it ±0 or a subnormal.
//
// Short numbers (few significant digits, small power of ten) are computed exactly in one
// multiplication or division (Clinger's fast path); any other goes to std::from_chars, and
// what that finds out of range to strtod_l() in the C locale. Every function is safe from any
// thread.
#pragma once

#include <charconv>
#include <cstddef>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace vn::platform_internal {

// The exact reading: the number whose digits start at text[body] (after any sign), when its
// significant digits and power of ten are exact in the type; false when they are not, or
// when no digit starts there (`result` and `end` are then untouched). end is the offset just
// after the number.
[[nodiscard]] bool readExactDecimal(std::string_view text, std::size_t body, bool negative,
                                    double* result, std::size_t& end);
[[nodiscard]] bool readExactDecimal(std::string_view text, std::size_t body, bool negative,
                                    float* result, std::size_t& end);

// strtod_l() / strtof_l() of number in the C locale: the value of a number that
// std::from_chars found beyond the range (±infinity, ±0 or a subnormal).
[[nodiscard]] double strtodInCLocale(std::string_view number);
[[nodiscard]] float strtofInCLocale(std::string_view number);

// When readDecimalWithPoint tries the exact reading before std::from_chars.
enum class ExactReading {
    // Only when the text from the number on has at most kShortNumberTextLength characters:
    // for callers that read one number per text (coercions, scanners), where longer texts are
    // mostly long numbers that std::from_chars, reading eight digits at a time, wins on.
    forShortTexts,
    // Always: for numbers inside longer texts (coordinates), which are mostly short.
    always,
};
inline constexpr std::size_t kShortNumberTextLength = 12;

// Reads the number that starts at text[at]: the offset just after it, or at itself when no
// number starts there (`result` is then untouched). result may be null to only measure.
// Inline: a coercion reading one short text pays for little else.
template <typename Floating>
std::size_t readDecimalWithPoint(std::string_view text, std::size_t at, Floating* result,
                                 ExactReading exactReading = ExactReading::forShortTexts) {
    std::size_t first = at;
    if (first < text.size() && text[first] == '+') ++first;
    const bool negative = first == at && first < text.size() && text[first] == '-';
    const std::size_t body = negative ? first + 1 : first;
    if (body >= text.size() || !((text[body] >= '0' && text[body] <= '9') || text[body] == '.'))
        return at;
    std::size_t end = at;
    const bool tryExact =
        exactReading == ExactReading::always || text.size() - body <= kShortNumberTextLength;
    if (tryExact && readExactDecimal(text, body, negative, result, end)) return end;
    // std::from_chars reads the same syntax as strtod once the first character is known to
    // start a number (so "inf", "nan" and a second sign never reach it).
    Floating value = 0;
    const char* begin = text.data() + first;
    const auto [numberEnd, error] = std::from_chars(begin, text.data() + text.size(), value);
    if (error == std::errc::invalid_argument) return at;
    if (error == std::errc::result_out_of_range) {
        const std::string_view number(begin, static_cast<std::size_t>(numberEnd - begin));
        if constexpr (std::is_same_v<Floating, float>) {
            value = strtofInCLocale(number);
        } else {
            value = strtodInCLocale(number);
        }
    }
    if (result) *result = value;
    return static_cast<std::size_t>(numberEnd - text.data());
}

}  // namespace vn::platform_internal
