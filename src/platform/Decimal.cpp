#include "vn/platform/Decimal.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>

#include "platform/internal/HashCombine.h"

namespace vn {
namespace {

using U128 = unsigned __int128;

constexpr std::array<U128, 39> makePowersOfTen() {
    std::array<U128, 39> powers{};
    powers[0] = 1;
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
    return powers;
}
constexpr auto kPowersOfTen = makePowersOfTen();
constexpr U128 kMaxMantissa = kPowersOfTen[38] - 1;

int digitCount(U128 value) {
    int count = 1;
    while (count < 39 && value >= kPowersOfTen[count]) ++count;
    return count;
}

std::string mantissaDigits(U128 value) {
    if (value == 0) return "0";
    std::string digits;
    while (value != 0) {
        digits.push_back(static_cast<char>('0' + static_cast<int>(value % 10)));
        value /= 10;
    }
    return {digits.rbegin(), digits.rend()};
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

Decimal Decimal::notANumber() {
    Decimal value;
    value.nan_ = true;
    return value;
}

Decimal Decimal::fromInteger(std::int64_t value) {
    const bool negative = value < 0;
    const auto magnitude =
        negative ? static_cast<U128>(-(value + 1)) + 1 : static_cast<U128>(value);
    return fromParts(negative, magnitude, 0);
}

Decimal Decimal::fromUnsigned(std::uint64_t value) {
    return fromParts(false, value, 0);
}

Decimal Decimal::fromDouble(double value) {
    if (!std::isfinite(value)) return notANumber();
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return parse(std::string_view(buffer, static_cast<std::size_t>(result.ptr - buffer)))
        .value_or(Decimal{});
}

Decimal Decimal::fromParts(bool negative, U128 mantissa, int exponent) {
    // Reduce to 38 digits (truncating), then drop trailing zeros so equal values look alike.
    while (mantissa > kMaxMantissa) {
        mantissa /= 10;
        ++exponent;
    }
    if (mantissa == 0) return Decimal{};
    while (mantissa % 10 == 0 && exponent < kMaxExponent) {
        mantissa /= 10;
        ++exponent;
    }
    while (exponent < kMinExponent && mantissa != 0) {
        mantissa /= 10;
        ++exponent;
    }
    if (mantissa == 0) return Decimal{};
    if (exponent > kMaxExponent) return notANumber();
    Decimal result;
    result.mantissa_ = mantissa;
    result.exponent_ = static_cast<std::int16_t>(exponent);
    result.negative_ = negative;
    return result;
}

std::optional<Decimal> Decimal::parse(std::string_view text, std::string_view decimalSeparator,
                                      std::size_t* consumed) {
    std::size_t i = 0;
    while (i < text.size() && isBlank(text[i])) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        negative = text[i] == '-';
        ++i;
    }
    U128 mantissa = 0;
    int significant = 0;
    long exponent = 0;
    bool anyDigit = false;
    const auto takeDigit = [&](char c, bool fractional) {
        anyDigit = true;
        if (significant < kMaxDigits) {
            if (mantissa != 0 || c != '0') {
                mantissa = mantissa * 10 + static_cast<unsigned>(c - '0');
                ++significant;
            }
            if (fractional) --exponent;
        } else if (!fractional) {
            ++exponent;
        }
    };
    for (; i < text.size() && isDigit(text[i]); ++i) takeDigit(text[i], false);
    if (!decimalSeparator.empty() && text.substr(i, decimalSeparator.size()) == decimalSeparator) {
        const std::size_t afterSeparator = i + decimalSeparator.size();
        if (anyDigit || (afterSeparator < text.size() && isDigit(text[afterSeparator]))) {
            i = afterSeparator;
            for (; i < text.size() && isDigit(text[i]); ++i) takeDigit(text[i], true);
        }
    }
    if (!anyDigit) return std::nullopt;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        std::size_t j = i + 1;
        bool exponentNegative = false;
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) {
            exponentNegative = text[j] == '-';
            ++j;
        }
        if (j < text.size() && isDigit(text[j])) {
            long written = 0;
            for (; j < text.size() && isDigit(text[j]); ++j) {
                if (written < 100000) written = written * 10 + (text[j] - '0');
            }
            exponent += exponentNegative ? -written : written;
            i = j;
        }
    }
    if (consumed) *consumed = i;
    if (mantissa == 0) return Decimal{};
    if (exponent > 100000) return notANumber();
    if (exponent < -100000) return Decimal{};
    return fromParts(negative, mantissa, static_cast<int>(exponent));
}

std::string Decimal::description() const {
    if (nan_) return "NaN";
    std::string digits = mantissaDigits(mantissa_);
    std::string text = negative_ ? "-" : "";
    if (exponent_ >= 0) {
        text += digits;
        if (mantissa_ != 0) text.append(static_cast<std::size_t>(exponent_), '0');
        return text;
    }
    const auto fractionDigits = static_cast<std::size_t>(-exponent_);
    if (digits.size() <= fractionDigits) {
        text += "0.";
        text.append(fractionDigits - digits.size(), '0');
        text += digits;
    } else {
        text += digits.substr(0, digits.size() - fractionDigits);
        text += '.';
        text += digits.substr(digits.size() - fractionDigits);
    }
    return text;
}

double Decimal::doubleValue() const {
    if (nan_) return std::numeric_limits<double>::quiet_NaN();
    std::string text = negative_ ? "-" : "";
    text.append(mantissaDigits(mantissa_));
    text.push_back('e');
    text.append(std::to_string(exponent_));
    return std::strtod(text.c_str(), nullptr);
}

std::int64_t Decimal::integerValue() const {
    if (nan_ || mantissa_ == 0) return 0;
    U128 magnitude = mantissa_;
    if (exponent_ < 0) {
        magnitude =
            -exponent_ > 38 ? 0 : magnitude / kPowersOfTen[static_cast<std::size_t>(-exponent_)];
    } else {
        for (int e = 0; e < exponent_ && magnitude <= kMaxMantissa; ++e) magnitude *= 10;
    }
    constexpr auto kMax = static_cast<U128>(std::numeric_limits<std::int64_t>::max());
    if (negative_) {
        return magnitude > kMax + 1 ? std::numeric_limits<std::int64_t>::min()
                                    : static_cast<std::int64_t>(-static_cast<__int128>(magnitude));
    }
    return magnitude > kMax ? std::numeric_limits<std::int64_t>::max()
                            : static_cast<std::int64_t>(magnitude);
}

Decimal Decimal::rounded(int scale, RoundingMode mode) const {
    if (nan_ || scale == kNoScale || mantissa_ == 0 || exponent_ >= -scale) return *this;
    const int dropped = -scale - exponent_;
    U128 quotient = 0;
    U128 remainder = mantissa_;
    int remainderVersusHalf = -1;  // < 0 below half, 0 exactly half, > 0 above half
    if (dropped <= 38) {
        const U128 divisor = kPowersOfTen[static_cast<std::size_t>(dropped)];
        quotient = mantissa_ / divisor;
        remainder = mantissa_ % divisor;
        const U128 half = divisor / 2;
        remainderVersusHalf = remainder < half ? -1 : (remainder == half ? 0 : 1);
    }
    bool increment = false;
    switch (mode) {
        case RoundingMode::plain:
            increment = remainderVersusHalf >= 0;
            break;
        case RoundingMode::down:
            increment = negative_ && remainder != 0;
            break;
        case RoundingMode::up:
            increment = !negative_ && remainder != 0;
            break;
        case RoundingMode::bankers:
            increment = remainderVersusHalf > 0 || (remainderVersusHalf == 0 && quotient % 2 == 1);
            break;
    }
    if (increment) ++quotient;
    return fromParts(negative_, quotient, -scale);
}

Decimal Decimal::operator-() const {
    Decimal result = *this;
    if (!nan_ && mantissa_ != 0) result.negative_ = !negative_;
    return result;
}

std::strong_ordering Decimal::operator<=>(const Decimal& other) const {
    if (nan_ || other.nan_)
        return nan_ == other.nan_
                   ? std::strong_ordering::equal
                   : (nan_ ? std::strong_ordering::less : std::strong_ordering::greater);
    const bool zero = mantissa_ == 0;
    const bool otherZero = other.mantissa_ == 0;
    if (zero || otherZero) {
        if (zero && otherZero) return std::strong_ordering::equal;
        if (zero)
            return other.negative_ ? std::strong_ordering::greater : std::strong_ordering::less;
        return negative_ ? std::strong_ordering::less : std::strong_ordering::greater;
    }
    if (negative_ != other.negative_)
        return negative_ ? std::strong_ordering::less : std::strong_ordering::greater;
    // Same sign: compare magnitudes by order of magnitude, then by aligned mantissas.
    const int magnitude = digitCount(mantissa_) + exponent_;
    const int otherMagnitude = digitCount(other.mantissa_) + other.exponent_;
    std::strong_ordering byMagnitude = std::strong_ordering::equal;
    if (magnitude != otherMagnitude) {
        byMagnitude = magnitude <=> otherMagnitude;
    } else {
        U128 left = mantissa_;
        U128 right = other.mantissa_;
        const int leftDigits = digitCount(left);
        const int rightDigits = digitCount(right);
        if (leftDigits < rightDigits)
            left *= kPowersOfTen[static_cast<std::size_t>(rightDigits - leftDigits)];
        if (rightDigits < leftDigits)
            right *= kPowersOfTen[static_cast<std::size_t>(leftDigits - rightDigits)];
        byMagnitude = left <=> right;
    }
    if (!negative_) return byMagnitude;
    return 0 <=> byMagnitude;
}

std::size_t Decimal::hash() const {
    if (nan_) return 0x9e3779b9u;
    const auto low = static_cast<std::uint64_t>(mantissa_);
    const auto high = static_cast<std::uint64_t>(mantissa_ >> 64);
    std::size_t seed = std::hash<std::uint64_t>{}(low);
    seed = platform_internal::hashCombine(seed, std::hash<std::uint64_t>{}(high));
    seed = platform_internal::hashCombine(seed, std::hash<int>{}(exponent_));
    return negative_ ? ~seed : seed;
}

}  // namespace vn
