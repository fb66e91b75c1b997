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

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace vn::platform_internal {

inline bool isAsciiDigit(char c) {
    return static_cast<unsigned char>(c - '0') < 10;
}

// The mantissas and powers of ten a floating type holds exactly. A number whose decimal
// mantissa and power of ten both fit is the correctly rounded result of one multiplication or
// division of the two, which is what strtod returns for its text (Clinger's fast path).
template <typename Floating>
struct ExactRange;
template <>
struct ExactRange<double> {
    static constexpr std::uint64_t maxMantissa = std::uint64_t{1} << 53;
    static constexpr int maxPowerOfTen = 22;
};
template <>
struct ExactRange<float> {
    static constexpr std::uint64_t maxMantissa = std::uint64_t{1} << 24;
    static constexpr int maxPowerOfTen = 10;
};

template <typename Floating>
constexpr std::array<Floating, ExactRange<Floating>::maxPowerOfTen + 1> exactPowersOfTen() {
    std::array<Floating, ExactRange<Floating>::maxPowerOfTen + 1> powers{};
    Floating power = 1;
    for (Floating& entry : powers) {
        entry = power;
        power *= 10;
    }
    return powers;
}

// A 64-bit mantissa takes any 19 decimal digits without overflowing.
inline constexpr std::size_t kMaxMantissaDigits = 19;

// The digits from `at` on appended to mantissa; at moves past them. Past kMaxMantissaDigits
// digits the result wraps around: the caller counts the digits and gives up on such texts.
// (Pointers and values rather than indexes and references: a store through a reference may
// alias the text, and the loop would reload it per digit.)
[[nodiscard]] inline std::uint64_t appendDigits(const char*& at, const char* end,
                                                std::uint64_t mantissa) {
    const char* p = at;
    for (; p < end; ++p) {
        const unsigned digit = static_cast<unsigned char>(*p) - unsigned{'0'};
        if (digit > 9) break;
        mantissa = mantissa * 10 + digit;
    }
    at = p;
    return mantissa;
}

// An exponent of a decimal text: its value and the offset just after it.
struct DecimalExponent {
    int value;        // clipped to ±10000, beyond any exact reading and any int overflow
    std::size_t end;  // 0 when no digits follow, so that there is no exponent
};

// The exponent whose sign or digits start at text[at] (just after "e" or "E"). Out of line:
// few numbers have one. (Returned by value: a reference into the caller's locals would keep
// them in memory on the common path too.)
[[nodiscard]] DecimalExponent readExponent(std::string_view text, std::size_t at);

// The exact reading of readExactDecimal below, inline for callers that read many numbers in a
// row (coordinates): [digits][.digits][(e|E)[sign]digits] at body when its digits fit a 64-bit
// mantissa that the type holds exactly and its power of ten is exact in the type; then the
// value is the correctly rounded result of one multiplication or division. (Results travel
// through out parameters: an optional returned from here costs a store-forwarding stall.)
template <typename Floating>
[[gnu::always_inline]] inline bool computeExactDecimal(std::string_view text, std::size_t body,
                                                       bool negative, Floating* result,
                                                       std::size_t& end) {
    using Range = ExactRange<Floating>;
    static constexpr auto kPowers = exactPowersOfTen<Floating>();
    const char* const textEnd = text.data() + text.size();
    const char* const digits = text.data() + body;
    const char* p = digits;
    std::uint64_t mantissa = appendDigits(p, textEnd, 0);
    auto digitCount = static_cast<std::size_t>(p - digits);
    int powerOfTen = 0;
    if (p < textEnd && *p == '.') {
        const char* const fraction = ++p;
        mantissa = appendDigits(p, textEnd, mantissa);
        powerOfTen = -static_cast<int>(p - fraction);
        digitCount += static_cast<std::size_t>(p - fraction);
    }
    if (digitCount == 0 || digitCount > kMaxMantissaDigits || mantissa > Range::maxMantissa)
        return false;
    auto numberEnd = static_cast<std::size_t>(p - text.data());
    const auto exactMantissa = static_cast<Floating>(mantissa);
    Floating exact = 0;
    if (p < textEnd && (*p == 'e' || *p == 'E')) [[unlikely]] {
        const DecimalExponent exponent = readExponent(text, numberEnd + 1);
        if (exponent.end != 0) {
            powerOfTen += exponent.value;
            numberEnd = exponent.end;
        }
        if (powerOfTen < -Range::maxPowerOfTen || powerOfTen > Range::maxPowerOfTen) return false;
        exact = powerOfTen < 0 ? exactMantissa / kPowers[static_cast<std::size_t>(-powerOfTen)]
                               : exactMantissa * kPowers[static_cast<std::size_t>(powerOfTen)];
    } else {
        // Without an exponent the power of ten is that of the fraction digits: 0 or negative.
        if (-powerOfTen > Range::maxPowerOfTen) return false;
        exact = exactMantissa / kPowers[static_cast<std::size_t>(-powerOfTen)];
    }
    if (result) *result = negative ? -exact : exact;
    end = numberEnd;
    return true;
}

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
// Always inline: a coercion reading one short text pays for little else, and a call per
// coordinate costs the WKT reader measurably. The exact reading itself is inlined with
// ExactReading::always and called out of line otherwise (smaller, and no slower, for a
// coercion).
template <ExactReading exactReading = ExactReading::forShortTexts, typename Floating>
[[gnu::always_inline]] inline std::size_t readDecimalWithPoint(std::string_view text,
                                                               std::size_t at, Floating* result) {
    const char* const start = text.data() + at;
    const char* const textEnd = text.data() + text.size();
    const char* const afterPlus = start < textEnd && *start == '+' ? start + 1 : start;
    const bool negative = afterPlus == start && start < textEnd && *start == '-';
    const char* const digits = negative ? start + 1 : afterPlus;
    if (digits >= textEnd || !(isAsciiDigit(*digits) || *digits == '.')) return at;
    const auto first = static_cast<std::size_t>(afterPlus - text.data());
    const auto body = static_cast<std::size_t>(digits - text.data());
    std::size_t end = at;
    if constexpr (exactReading == ExactReading::always) {
        if (computeExactDecimal(text, body, negative, result, end)) return end;
    } else {
        if (text.size() - body <= kShortNumberTextLength &&
            readExactDecimal(text, body, negative, result, end))
            return end;
    }
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
