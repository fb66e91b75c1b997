#include "vn/platform/Number.h"

#include <charconv>
#include <cmath>
#include <functional>
#include <limits>

namespace vn {
namespace {

template <typename Integer>
Integer saturatingTruncation(double value) {
    if (std::isnan(value)) return 0;
    constexpr auto low = static_cast<double>(std::numeric_limits<Integer>::min());
    constexpr auto high = static_cast<double>(std::numeric_limits<Integer>::max());
    if (value <= low) return std::numeric_limits<Integer>::min();
    if (value >= high) return std::numeric_limits<Integer>::max();
    return static_cast<Integer>(value);
}

template <typename Float>
std::string shortestText(Float value) {
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

}  // namespace

std::string shortestDoubleText(double value) {
    return shortestText(value);
}

bool Number::boolValue() const {
    return std::visit(
        [](const auto& v) -> bool {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::same_as<T, Decimal>) {
                return !v.isZero();
            } else {
                return v != 0;
            }
        },
        value_);
}

std::int64_t Number::integerValue() const {
    return std::visit(
        [](const auto& v) -> std::int64_t {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::same_as<T, Decimal>) {
                return v.integerValue();
            } else if constexpr (std::floating_point<T>) {
                return saturatingTruncation<std::int64_t>(v);
            } else {
                return static_cast<std::int64_t>(v);
            }
        },
        value_);
}

std::uint64_t Number::unsignedIntegerValue() const {
    return std::visit(
        [](const auto& v) -> std::uint64_t {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::same_as<T, Decimal>) {
                return static_cast<std::uint64_t>(v.integerValue());
            } else if constexpr (std::floating_point<T>) {
                return v < 0 ? static_cast<std::uint64_t>(saturatingTruncation<std::int64_t>(v))
                             : saturatingTruncation<std::uint64_t>(v);
            } else {
                return static_cast<std::uint64_t>(v);
            }
        },
        value_);
}

float Number::floatValue() const {
    return static_cast<float>(doubleValue());
}

double Number::doubleValue() const {
    return std::visit(
        [](const auto& v) -> double {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::same_as<T, Decimal>) {
                return v.doubleValue();
            } else {
                return static_cast<double>(v);
            }
        },
        value_);
}

Decimal Number::decimalValue() const {
    return std::visit(
        [](const auto& v) -> Decimal {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::same_as<T, Decimal>) {
                return v;
            } else if constexpr (std::same_as<T, bool>) {
                return Decimal::fromInteger(v ? 1 : 0);
            } else if constexpr (std::same_as<T, std::int64_t>) {
                return Decimal::fromInteger(v);
            } else if constexpr (std::same_as<T, std::uint64_t>) {
                return Decimal::fromUnsigned(v);
            } else if constexpr (std::same_as<T, float>) {
                // A float's own shortest text, so 0.1f is 0.1 and not 0.100000001490116.
                return Decimal::parse(shortestText(v)).value_or(Decimal::notANumber());
            } else {
                return Decimal::fromDouble(v);
            }
        },
        value_);
}

std::string Number::description() const {
    return std::visit(
        [](const auto& v) -> std::string {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::same_as<T, Decimal>) {
                return v.description();
            } else if constexpr (std::same_as<T, bool>) {
                return v ? "1" : "0";
            } else if constexpr (std::floating_point<T>) {
                return shortestText(v);
            } else {
                return std::to_string(v);
            }
        },
        value_);
}

std::partial_ordering Number::compare(const Number& other) const {
    const auto integral = [](const Number& n) { return n.isInteger() || n.isBoolean(); };
    if (integral(*this) && integral(other)) {
        const bool negative = kind() == Kind::signedInteger && std::get<std::int64_t>(value_) < 0;
        const bool otherNegative =
            other.kind() == Kind::signedInteger && std::get<std::int64_t>(other.value_) < 0;
        if (negative != otherNegative)
            return negative ? std::partial_ordering::less : std::partial_ordering::greater;
        if (negative) return integerValue() <=> other.integerValue();
        return unsignedIntegerValue() <=> other.unsignedIntegerValue();
    }
    if (isDecimal() || other.isDecimal()) {
        const Decimal left = decimalValue();
        const Decimal right = other.decimalValue();
        if (left.isNaN() || right.isNaN()) return std::partial_ordering::unordered;
        return left <=> right;
    }
    return doubleValue() <=> other.doubleValue();
}

std::size_t Number::hash() const {
    // Equal numbers of different kinds must hash alike: integral values hash as integers.
    const double asDouble = doubleValue();
    if (std::isfinite(asDouble) && asDouble == std::trunc(asDouble) &&
        std::fabs(asDouble) < 9.2e18) {
        return std::hash<std::int64_t>{}(static_cast<std::int64_t>(asDouble));
    }
    return std::hash<double>{}(asDouble);
}

}  // namespace vn
