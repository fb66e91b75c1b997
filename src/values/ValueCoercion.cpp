#include "vn/values/ValueCoercion.h"

#include <cstring>

#include "platform/internal/DecimalReading.h"
#include "vn/platform/Locale.h"
#include "vn/platform/Scanner.h"

namespace vn::VNUtilities {
namespace {

bool scanScalar(Scanner& scanner, float* value) {
    return scanner.scanFloat(value);
}
bool scanScalar(Scanner& scanner, double* value) {
    return scanner.scanDouble(value);
}
bool scanScalar(Scanner& scanner, Decimal* value) {
    return scanner.scanDecimal(value);
}

// Whether the character at `at`, right after a number read with ".", can be the start of no
// locale's decimal separator (none is a blank, a sign, an exponent letter or a point).
bool noSeparatorCanStartAt(std::string_view text, std::size_t at) {
    if (at == text.size()) return true;
    const char c = text[at];
    return c == '.' || c == ' ' || (c >= '\t' && c <= '\r') || c == 'e' || c == 'E' || c == '+' ||
           c == '-';
}

// A text containing "." is read with "."; any other with the locale's separator. Both readings
// agree unless the locale's separator follows the integer digits, so the text is read with "."
// first and the locale is consulted only when a separator could follow: the common numeric text
// costs neither a search for "." nor a locale lookup. The number is made once, in place, at the
// end (copying it between calls costs more than reading it). Kept out of line so that the
// direct read below stays a small function.
template <typename Scalar>
[[gnu::noinline]] std::optional<Number> scannedTextNumber(std::string_view text) {
    Scalar value{};
    Scanner plain(text);
    bool scanned = scanScalar(plain, &value);
    const bool plainDecides = (scanned && noSeparatorCanStartAt(text, plain.scanLocation())) ||
                              std::memchr(text.data(), '.', text.size()) != nullptr;
    if (!plainDecides) {
        Scanner localized = Scanner::localizedScanner(text);
        scanned = scanScalar(localized, &value);
    }
    if (!scanned) return std::nullopt;
    return Number(value);
}

// Most numeric texts start with the number itself and end with it: those are read without
// setting up a scanner, which is most of the cost of so short a read.
template <typename Scalar>
std::optional<Number> floatingTextNumber(std::string_view text) {
    if constexpr (!std::is_same_v<Scalar, Decimal>) {
        Scalar value{};
        if (!text.empty() &&
            platform_internal::readDecimalWithPoint(text, 0, &value) == text.size())
            return Number(value);
    }
    return scannedTextNumber<Scalar>(text);
}

template <typename Scalar>
std::optional<Number> floatingNumberFromValue(const Value& value) {
    if (const Number* number = value.number()) {
        if constexpr (std::is_same_v<Scalar, Decimal>) {
            if (!number->isDecimal()) return Number::fromDecimal(number->decimalValue());
        }
        return *number;
    }
    if (const std::string* text = value.string()) return floatingTextNumber<Scalar>(*text);
    return std::nullopt;
}

std::optional<std::int64_t> scannedInteger(const std::string& text) {
    Scanner scanner(text);
    return scanner.scanInt64();
}

}  // namespace

bool boolFromValue(const Value& value, bool defaultValue) {
    switch (value.kind()) {
        case Value::Kind::number:
            return value.number()->boolValue();
        case Value::Kind::string:
            return value.string()->empty() ? defaultValue : textBoolValue(*value.string());
        case Value::Kind::object:
            return value.object()->boolValue().value_or(defaultValue);
        default:
            return defaultValue;
    }
}

std::optional<Number> numberWithBoolIfTrueFromValue(const Value& value) {
    if (boolFromValue(value)) return Number::fromBool(true);
    return std::nullopt;
}

std::optional<std::string> stringFromObject(const Value& value) {
    if (value.isNil() || value.isNull()) return std::nullopt;
    if (const std::string* text = value.string()) return *text;
    return value.description();
}

std::optional<std::string> nonEmptyStringFromObject(const Value& value) {
    std::optional<std::string> text = stringFromObject(value);
    if (text && text->empty()) return std::nullopt;
    return text;
}

Value arrayFromObject(const Value& value) {
    if (value.isArray()) return value;
    if (value.isNil()) return Value::Array{};
    return Value::Array{value};
}

Value array(const Value& value) {
    return value.isNil() ? Value() : arrayFromObject(value);
}

Value lastObjectIfArrayFromObject(const Value& value) {
    if (const Value::Array* elements = value.array())
        return elements->empty() ? Value() : elements->back();
    return value;
}

std::optional<Number> unsignedIntegerNumberFromValue(const Value& value) {
    if (const Number* number = value.number()) {
        if (number->kind() == Number::Kind::unsignedInteger)
            return Number::fromUnsigned(number->unsignedIntegerValue());
        if (number->integerValue() < 0) return std::nullopt;
        return Number::fromUnsigned(number->unsignedIntegerValue());
    }
    if (const std::string* text = value.string()) {
        const std::optional<std::int64_t> scanned = scannedInteger(*text);
        if (!scanned || *scanned < 0) return std::nullopt;
        return Number::fromUnsigned(static_cast<std::uint64_t>(*scanned));
    }
    return std::nullopt;
}

std::uint64_t unsignedIntegerFromValue(const Value& value, std::uint64_t defaultValue) {
    const std::optional<Number> number = unsignedIntegerNumberFromValue(value);
    return number ? number->unsignedIntegerValue() : defaultValue;
}

std::optional<Number> integerNumberFromValue(const Value& value) {
    if (const Number* number = value.number()) return Number::fromInteger(number->integerValue());
    if (const std::string* text = value.string()) {
        if (const std::optional<std::int64_t> scanned = scannedInteger(*text))
            return Number::fromInteger(*scanned);
    }
    return std::nullopt;
}

std::int64_t integerFromValue(const Value& value, std::int64_t defaultValue) {
    const std::optional<Number> number = integerNumberFromValue(value);
    return number ? number->integerValue() : defaultValue;
}

std::optional<Number> floatNumberFromValue(const Value& value) {
    return floatingNumberFromValue<float>(value);
}

std::optional<Number> doubleNumberFromValue(const Value& value) {
    return floatingNumberFromValue<double>(value);
}

std::optional<Number> decimalNumberFromValue(const Value& value) {
    return floatingNumberFromValue<Decimal>(value);
}

}  // namespace vn::VNUtilities
