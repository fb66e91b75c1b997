// vn::Decimal: a base-10 floating value of up to 38 significant digits, exponent -128...127,
// with the four rounding modes of the model's decimal arithmetic.
//
// Values are kept compact (no trailing zeros in the mantissa), so 1.50 and 1.5 are the same
// value and describe themselves as "1.5". NaN is a distinct value that compares equal only to
// itself and orders before every number.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vn {

// The platform's rounding modes, with their raw values.
enum class RoundingMode : std::uint8_t {
    plain = 0,    // half away from zero
    down = 1,     // toward negative infinity
    up = 2,       // toward positive infinity
    bankers = 3,  // half to even
};

class Decimal {
  public:
    static constexpr int kMaxDigits = 38;
    static constexpr int kMinExponent = -128;
    static constexpr int kMaxExponent = 127;
    // The scale that means "do not round".
    static constexpr int kNoScale = 32767;

    constexpr Decimal() = default;  // zero
    [[nodiscard]] static Decimal notANumber();
    [[nodiscard]] static Decimal fromInteger(std::int64_t value);
    [[nodiscard]] static Decimal fromUnsigned(std::uint64_t value);
    // The shortest decimal text that reads back as the same double; NaN and infinities give NaN.
    [[nodiscard]] static Decimal fromDouble(double value);
    // mantissa × 10^exponent; NaN when the result is beyond the exponent range.
    [[nodiscard]] static Decimal fromParts(bool negative, unsigned __int128 mantissa, int exponent);

    // Reads a leading number: optional blanks, optional sign, digits with an optional
    // fractional part introduced by decimalSeparator, an optional exponent ("e" or "E").
    // Digits beyond the 38th significant one are dropped. Absent when no digit was read.
    // When consumed is given it receives the number of bytes read.
    [[nodiscard]] static std::optional<Decimal> parse(std::string_view text,
                                                      std::string_view decimalSeparator = ".",
                                                      std::size_t* consumed = nullptr);

    bool isNaN() const { return nan_; }
    bool isZero() const { return !nan_ && mantissa_ == 0; }
    bool isNegative() const { return negative_; }
    unsigned __int128 mantissa() const { return mantissa_; }
    int exponent() const { return exponent_; }

    // Plain notation with "." as separator and no exponent: "1500", "-0.025", "NaN".
    std::string description() const;
    double doubleValue() const;
    // Truncates toward zero, saturating at the limits of the type; NaN gives 0.
    std::int64_t integerValue() const;

    // Rounds to `scale` digits after the decimal point (a negative scale rounds to tens,
    // hundreds, ...). kNoScale and NaN leave the value unchanged.
    Decimal rounded(int scale, RoundingMode mode) const;
    Decimal operator-() const;

    std::strong_ordering operator<=>(const Decimal& other) const;
    bool operator==(const Decimal& other) const { return (*this <=> other) == 0; }
    std::size_t hash() const;

  private:
    unsigned __int128 mantissa_ = 0;
    std::int16_t exponent_ = 0;
    bool negative_ = false;
    bool nan_ = false;
};

}  // namespace vn
