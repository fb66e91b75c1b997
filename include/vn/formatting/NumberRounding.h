// Decimal rounding of the model's numbers: round (half away from zero), round half to even
// and truncate (toward zero) to a number of decimals, on vn::Number (the result is a decimal
// number) and on vn::Decimal; and the test whether a number is a 32-bit integer.
//
// The number is rounded through its decimal value, so a double rounds by its shortest
// decimal text (2.675 rounds to 2.68, not to the 2.67 its binary expansion would give).
// A negative count of decimals rounds to tens, hundreds, ...; counts are clamped to
// ±1000, beyond which rounding no longer changes a value of the decimal range.
// NaN stays NaN. All functions are pure and safe from any thread.
#pragma once

#include <cstdint>
#include <optional>

#include "vn/platform/Decimal.h"
#include "vn/platform/Number.h"

namespace vn {

// Half away from zero (2.5 → 3, -2.5 → -3). The forms taking the count as a number use its
// integer value, and 0 when it is absent.
Number vnNumberRoundedToDecimals(const Number& number, const std::optional<Number>& decimals);
Number vnNumberRoundedToDecimalsInt(const Number& number, std::int64_t decimals);

// Half to even, the bankers' rounding (2.5 → 2, 3.5 → 4).
Number vnNumberRoundedToEvenDecimals(const Number& number, const std::optional<Number>& decimals);
Number vnNumberRoundedToEvenDecimalsInt(const Number& number, std::int64_t decimals);

// Toward zero (2.7 → 2, -2.7 → -2).
Number vnNumberTruncatedToDecimals(const Number& number, const std::optional<Number>& decimals);
Number vnNumberTruncatedToDecimalsInt(const Number& number, std::int64_t decimals);

// The same roundings on a decimal value.
Decimal vnRoundedToDecimals(const Decimal& value, std::int64_t decimals);
Decimal vnRoundedToEvenDecimals(const Decimal& value, std::int64_t decimals);

// Whether the number equals the 32-bit integer made of its own integer value (3.0 yes, 2.5
// and NaN no). An integer value outside the signed 32-bit range stops the process
// (fatalError): callers use this only for values that must fit, and a silent clamp would hide
// the fault.
bool vnIsInteger(const Number& number);

}  // namespace vn
