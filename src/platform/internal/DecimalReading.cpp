#include "platform/internal/DecimalReading.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/internal/CLocale.h"

namespace vn::platform_internal {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// The mantissas and powers of ten a floating type holds exactly. A number whose decimal
// mantissa and power of ten both fit is the correctly rounded result of one multiplication or
// division of the two, which is what strtod returns for its text (Clinger's fast path).
// A mantissa of more significant digits than maxDigits is beyond maxMantissa.
template <typename Floating>
struct ExactRange;
template <>
struct ExactRange<double> {
    static constexpr std::uint64_t maxMantissa = std::uint64_t{1} << 53;
    static constexpr int maxDigits = 16;
    static constexpr int maxPowerOfTen = 22;
};
template <>
struct ExactRange<float> {
    static constexpr std::uint64_t maxMantissa = std::uint64_t{1} << 24;
    static constexpr int maxDigits = 8;
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

struct DecimalDigits {
    std::uint64_t mantissa = 0;
    int powerOfTen = 0;
    std::size_t end = 0;
};

// Reads digits at i into the mantissa; false as soon as the significant digits outnumber
// maxDigits. Leading zeros are not significant.
template <int maxDigits>
bool readDigits(std::string_view text, std::size_t& i, DecimalDigits& digits, int& significant,
                int powerStep) {
    for (; i < text.size() && isDigit(text[i]); ++i) {
        const auto digit = static_cast<std::uint64_t>(text[i] - '0');
        digits.powerOfTen += powerStep;
        if (digits.mantissa == 0 && digit == 0) continue;
        if (++significant > maxDigits) return false;
        digits.mantissa = digits.mantissa * 10 + digit;
    }
    return true;
}

// Reads [digits][.digits][(e|E)[sign]digits] at `at` when the mantissa has few enough digits
// to be exact; false otherwise, and for no digit at all. (Results travel through an out
// parameter: an optional returned from here costs a store-forwarding stall per call.)
template <typename Floating>
[[gnu::always_inline]] inline bool readSmallDecimal(std::string_view text, std::size_t at,
                                                    DecimalDigits& digits) {
    constexpr int kMaxDigits = ExactRange<Floating>::maxDigits;
    constexpr int kMaxExponentMagnitude = 9999;
    int significant = 0;
    std::size_t i = at;
    if (!readDigits<kMaxDigits>(text, i, digits, significant, 0)) return false;
    bool anyDigit = i > at;
    if (i < text.size() && text[i] == '.') {
        const std::size_t fraction = ++i;
        if (!readDigits<kMaxDigits>(text, i, digits, significant, -1)) return false;
        anyDigit = anyDigit || i > fraction;
    }
    if (!anyDigit) return false;
    digits.end = i;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        std::size_t j = i + 1;
        const bool negative = j < text.size() && text[j] == '-';
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) ++j;
        if (j < text.size() && isDigit(text[j])) {
            int exponent = 0;
            for (; j < text.size() && isDigit(text[j]); ++j) {
                exponent = exponent * 10 + (text[j] - '0');
                if (exponent > kMaxExponentMagnitude) return false;
            }
            digits.powerOfTen += negative ? -exponent : exponent;
            digits.end = j;
        }
    }
    return true;
}

template <typename Floating>
bool exactValue(const DecimalDigits& digits, Floating& value) {
    using Range = ExactRange<Floating>;
    static constexpr auto kPowers = exactPowersOfTen<Floating>();
    if (digits.mantissa > Range::maxMantissa) return false;
    if (digits.powerOfTen < -Range::maxPowerOfTen || digits.powerOfTen > Range::maxPowerOfTen)
        return false;
    const auto mantissa = static_cast<Floating>(digits.mantissa);
    value = digits.powerOfTen < 0 ? mantissa / kPowers[static_cast<std::size_t>(-digits.powerOfTen)]
                                  : mantissa * kPowers[static_cast<std::size_t>(digits.powerOfTen)];
    return true;
}

template <typename Floating>
bool computeExactly(std::string_view text, std::size_t body, bool negative, Floating* result,
                    std::size_t& end) {
    DecimalDigits digits;
    Floating exact = 0;
    if (!readSmallDecimal<Floating>(text, body, digits) || !exactValue(digits, exact)) return false;
    if (result) *result = negative ? -exact : exact;
    end = digits.end;
    return true;
}

}  // namespace

bool readExactDecimal(std::string_view text, std::size_t body, bool negative, double* result,
                      std::size_t& end) {
    return computeExactly(text, body, negative, result, end);
}

bool readExactDecimal(std::string_view text, std::size_t body, bool negative, float* result,
                      std::size_t& end) {
    return computeExactly(text, body, negative, result, end);
}

double strtodInCLocale(std::string_view number) {
    const std::string text(number);
    return strtod_l(text.c_str(), nullptr, cLocale());
}

float strtofInCLocale(std::string_view number) {
    const std::string text(number);
    return strtof_l(text.c_str(), nullptr, cLocale());
}

}  // namespace vn::platform_internal
