// Coercion of loosely typed values: decoded JSON, model metadata and server answers hold a
// boolean, number or text where a typed value is wanted, and may hold a null marker or nothing
// at all. These functions are the one place that turns such a vn::Value into a typed value.
//
// Every function accepts any Value (nil, the null marker, numbers of every kind including NaN
// and infinities, any text including invalid UTF-8, data, dates, collections, objects), never
// fails and answers the documented fallback. Number results are std::optional<vn::Number>:
// absent where the platform answers nil, otherwise a number of the stated kind. The functions
// keep no state and are safe from any thread; only the locale-aware number forms read the
// current locale's decimal separator (vn::Locale::currentDecimalSeparator()).
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/Number.h"
#include "vn/platform/Value.h"

namespace vn::VNUtilities {

// ---- Booleans

// In this order: nil gives defaultValue; a number gives its boolean value (non-zero is true,
// booleans as they are); the empty text gives defaultValue; another text follows the platform's
// text rule (leading white space, an optional sign and leading zeros are skipped, then true
// when the next character is Y, y, T, t or a digit 1-9: "true", "Yes", "1" and "007" are true,
// "false", "no", "0", "abc" and " " are false); an object gives its boolValue() when it has
// one. Everything else (the null marker, data, dates, collections, objects without a boolean
// value) gives defaultValue.
[[nodiscard]] bool boolFromValue(const Value& value, bool defaultValue);
[[nodiscard]] inline bool boolFromValue(const Value& value) {
    return boolFromValue(value, false);
}

// A boolean number holding true when boolFromValue(value) is true; absent otherwise (false is
// never answered as a number).
[[nodiscard]] std::optional<Number> numberWithBoolIfTrueFromValue(const Value& value);
[[nodiscard]] inline std::optional<Number> numberWithBoolIfTrue(const Value& value) {
    return numberWithBoolIfTrueFromValue(value);
}

// ---- Texts

// Absent for nil and the null marker; a text as it is; any other value as its standard
// textual description (the number 12 gives "12", true gives "1", an array its property-list
// form).
[[nodiscard]] std::optional<std::string> stringFromObject(const Value& value);
// stringFromObject(), but absent when that text is empty.
[[nodiscard]] std::optional<std::string> nonEmptyStringFromObject(const Value& value);
[[nodiscard]] inline std::optional<std::string> nonEmptyString(const Value& value) {
    return nonEmptyStringFromObject(value);
}

// True for an absent text and for the empty text; a text of blanks is not empty.
[[nodiscard]] inline bool isStringNullOrEmpty(std::optional<std::string_view> text) {
    return !text || text->empty();
}
// The Value form (chosen only for an actual vn::Value, so texts never convert to one): true for
// nil, the null marker and the empty text; false for any other text and for every value that is
// not a text at all.
template <std::same_as<Value> V>
[[nodiscard]] bool isStringNullOrEmpty(const V& value) {
    if (value.isNil() || value.isNull()) return true;
    const std::string* text = value.string();
    return text && text->empty();
}

// ---- Collections

// The present-value form: the value itself when it is an array, otherwise a new array holding
// just the value (the null marker too). nil, which no present value is, gives an empty array.
// The result is always an array.
[[nodiscard]] Value arrayFromObject(const Value& value);
// The optional-value form: nil for nil, otherwise arrayFromObject(value).
[[nodiscard]] Value array(const Value& value);

// nil for nil; for an array its last element (nil when it is empty); any other value unchanged.
[[nodiscard]] Value lastObjectIfArrayFromObject(const Value& value);
[[nodiscard]] inline Value lastObjectIfArray(const Value& value) {
    return lastObjectIfArrayFromObject(value);
}

// ---- Numbers
//
// Texts are read with vn::Scanner: leading white space is skipped, a leading number is read and
// whatever follows it is ignored; a text without a leading number gives no number. Values that
// are neither texts nor numbers give no number (integer forms included).

// An unsigned-integer number. A text is scanned as a signed integer (saturating at INT64_MAX);
// a negative result gives no number. A number whose integer value is negative gives no number,
// otherwise its unsigned integer value (booleans as 0 and 1, floating values truncated toward
// zero and saturated, NaN as 0).
[[nodiscard]] std::optional<Number> unsignedIntegerNumberFromValue(const Value& value);
// unsignedIntegerNumberFromValue()'s value, or defaultValue when it gives none.
[[nodiscard]] std::uint64_t unsignedIntegerFromValue(const Value& value,
                                                     std::uint64_t defaultValue);

// A signed-integer number. A text is scanned as an integer (saturating at INT64_MIN and
// INT64_MAX); a number gives its integer value (booleans as 0 and 1, floating values truncated
// toward zero and saturated, NaN as 0).
[[nodiscard]] std::optional<Number> integerNumberFromValue(const Value& value);
// integerNumberFromValue()'s value, or defaultValue when it gives none.
[[nodiscard]] std::int64_t integerFromValue(const Value& value, std::int64_t defaultValue);

// Floating forms. A text that contains "." is read with "." as decimal separator; any other
// text with the current locale's separator, so "1.5" is always one and a half while "1,5" is one
// and a half only where the comma is the decimal separator. The text is read as a float, a double
// or a decimal and answered as a number of that kind. A number is answered as it is (whatever
// its kind) by the float and double forms; the decimal form answers a decimal number as it is
// and converts any other number through its decimal value (NaN and infinities give the decimal
// NaN). The locale is consulted only when its separator could change the result (a text
// without "." in which something other than a blank, sign or exponent follows the integer
// digits), so reading a plain numeric text allocates nothing and looks up no locale.
[[nodiscard]] std::optional<Number> floatNumberFromValue(const Value& value);
[[nodiscard]] std::optional<Number> doubleNumberFromValue(const Value& value);
[[nodiscard]] std::optional<Number> decimalNumberFromValue(const Value& value);

}  // namespace vn::VNUtilities
