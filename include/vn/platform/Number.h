// vn::Number: a boxed scalar that remembers how it was made (boolean, signed or unsigned
// integer, float, double or decimal), like the numbers of decoded JSON and of the model.
//
// Conversions between kinds follow the platform: any non-zero value is true, floating values
// truncate toward zero when read as integers (saturating at the type's limits; NaN gives 0),
// and description() is the platform's textual form ("12", "1.5", a boolean as "1" or "0").
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

#include "vn/platform/Decimal.h"

namespace vn {

class Number {
  public:
    enum class Kind : std::uint8_t {
        boolean,
        signedInteger,
        unsignedInteger,
        floatingPoint,
        doublePrecision,
        decimal
    };

    constexpr Number() : value_(std::int64_t{0}) {}
    [[nodiscard]] static Number fromBool(bool value) { return Number(Storage(value)); }
    [[nodiscard]] static Number fromInteger(std::int64_t value) { return Number(Storage(value)); }
    [[nodiscard]] static Number fromUnsigned(std::uint64_t value) { return Number(Storage(value)); }
    [[nodiscard]] static Number fromFloat(float value) { return Number(Storage(value)); }
    [[nodiscard]] static Number fromDouble(double value) { return Number(Storage(value)); }
    [[nodiscard]] static Number fromDecimal(const Decimal& value) { return Number(Storage(value)); }

    // Implicit boxing of C++ scalars keeps their kind; bool is a boolean, never an integer.
    template <std::integral T>
    Number(T value) : value_(box(value)) {}          // NOLINT(google-explicit-constructor)
    Number(float value) : value_(value) {}           // NOLINT(google-explicit-constructor)
    Number(double value) : value_(value) {}          // NOLINT(google-explicit-constructor)
    Number(const Decimal& value) : value_(value) {}  // NOLINT(google-explicit-constructor)

    Kind kind() const { return static_cast<Kind>(value_.index()); }
    bool isBoolean() const { return kind() == Kind::boolean; }
    bool isInteger() const {
        return kind() == Kind::signedInteger || kind() == Kind::unsignedInteger;
    }
    bool isFloatingPoint() const {
        return kind() == Kind::floatingPoint || kind() == Kind::doublePrecision;
    }
    bool isDecimal() const { return kind() == Kind::decimal; }

    bool boolValue() const;
    std::int64_t integerValue() const;
    std::uint64_t unsignedIntegerValue() const;
    float floatValue() const;
    double doubleValue() const;
    Decimal decimalValue() const;
    std::string description() const;
    std::string stringValue() const { return description(); }

    // Numeric order across kinds: integers exactly, decimals as decimals, the rest as doubles.
    std::partial_ordering compare(const Number& other) const;
    bool operator==(const Number& other) const {
        return compare(other) == std::partial_ordering::equivalent;
    }
    std::size_t hash() const;

  private:
    using Storage = std::variant<bool, std::int64_t, std::uint64_t, float, double, Decimal>;
    explicit Number(Storage value) : value_(std::move(value)) {}

    template <std::integral T>
    static Storage box(T value) {
        if constexpr (std::same_as<T, bool>) {
            return Storage(value);
        } else if constexpr (std::is_signed_v<T>) {
            return Storage(static_cast<std::int64_t>(value));
        } else {
            return Storage(static_cast<std::uint64_t>(value));
        }
    }

    Storage value_;
};

// Shortest text that reads back as the same double ("0.1", "12", "1e+20", "nan", "inf").
[[nodiscard]] std::string shortestDoubleText(double value);

}  // namespace vn
