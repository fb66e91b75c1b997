#include "vn/properties/VNCodingKeysHelpers.h"

#include <limits>

#include "vn/services/VNFoundationServices.h"

namespace vn {

std::optional<std::int64_t> VNCodingValueType<std::int64_t>::from(const Value& value) {
    const Number* number = value.number();
    if (!number || number->isBoolean()) return std::nullopt;
    switch (number->kind()) {
        case Number::Kind::signedInteger:
            return number->integerValue();
        case Number::Kind::unsignedInteger:
            if (number->unsignedIntegerValue() >
                static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
                return std::nullopt;
            }
            return number->integerValue();
        case Number::Kind::decimal: {
            const Decimal decimal = number->decimalValue();
            if (decimal.isNaN() || decimal.rounded(0, RoundingMode::down) != decimal)
                return std::nullopt;
            if (decimal < Decimal::fromInteger(std::numeric_limits<std::int64_t>::min()) ||
                decimal > Decimal::fromInteger(std::numeric_limits<std::int64_t>::max())) {
                return std::nullopt;
            }
            return decimal.integerValue();
        }
        default: {
            // 2^63 is exactly representable as a double while INT64_MAX is not, so the upper
            // bound is exclusive.
            const double real = number->doubleValue();
            if (!std::isfinite(real) || std::trunc(real) != real || real < -0x1p63 ||
                real >= 0x1p63) {
                return std::nullopt;
            }
            return static_cast<std::int64_t>(real);
        }
    }
}

namespace properties_internal {

void logToLoggerService(const std::string& message) {
    if (const auto logger = VNFoundationServices::loggerService()) {
        logger->logMessage(message, VNLoggerType::general, VNLoggerLevel::warning, true);
    }
}

}  // namespace properties_internal

}  // namespace vn
