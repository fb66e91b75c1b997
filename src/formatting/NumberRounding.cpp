#include "vn/formatting/NumberRounding.h"

#include <algorithm>
#include <limits>
#include <string>

#include "vn/platform/FatalError.h"

namespace vn {
namespace {

constexpr std::int64_t kScaleLimit = 1000;

int scaleFor(std::int64_t decimals) {
    return static_cast<int>(std::clamp(decimals, -kScaleLimit, kScaleLimit));
}

std::int64_t decimalsFrom(const std::optional<Number>& decimals) {
    return decimals ? decimals->integerValue() : 0;
}

Decimal truncated(const Decimal& value, std::int64_t decimals) {
    return value.rounded(scaleFor(decimals),
                         value.isNegative() ? RoundingMode::up : RoundingMode::down);
}

}  // namespace

Decimal vnRoundedToDecimals(const Decimal& value, std::int64_t decimals) {
    return value.rounded(scaleFor(decimals), RoundingMode::plain);
}

Decimal vnRoundedToEvenDecimals(const Decimal& value, std::int64_t decimals) {
    return value.rounded(scaleFor(decimals), RoundingMode::bankers);
}

Number vnNumberRoundedToDecimalsInt(const Number& number, std::int64_t decimals) {
    return Number(vnRoundedToDecimals(number.decimalValue(), decimals));
}

Number vnNumberRoundedToDecimals(const Number& number, const std::optional<Number>& decimals) {
    return vnNumberRoundedToDecimalsInt(number, decimalsFrom(decimals));
}

Number vnNumberRoundedToEvenDecimalsInt(const Number& number, std::int64_t decimals) {
    return Number(vnRoundedToEvenDecimals(number.decimalValue(), decimals));
}

Number vnNumberRoundedToEvenDecimals(const Number& number, const std::optional<Number>& decimals) {
    return vnNumberRoundedToEvenDecimalsInt(number, decimalsFrom(decimals));
}

Number vnNumberTruncatedToDecimalsInt(const Number& number, std::int64_t decimals) {
    return Number(truncated(number.decimalValue(), decimals));
}

Number vnNumberTruncatedToDecimals(const Number& number, const std::optional<Number>& decimals) {
    return vnNumberTruncatedToDecimalsInt(number, decimalsFrom(decimals));
}

bool vnIsInteger(const Number& number) {
    const std::int64_t integer = number.integerValue();
    if (integer < std::numeric_limits<std::int32_t>::min() ||
        integer > std::numeric_limits<std::int32_t>::max()) {
        fatalError("vnIsInteger: " + number.description() + " does not fit a 32-bit integer");
    }
    return number == Number(static_cast<std::int32_t>(integer));
}

}  // namespace vn
