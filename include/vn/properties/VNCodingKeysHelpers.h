// VNCodingKeysHelpers: a typed lookup with diagnostics, used when decoding model data: fetch
// the value for a coding key through a lookup function, answer it when it has the requested
// type, and tell the host's logger service when it is missing or of another type.
//
// Requested types and the names the messages give them (VNCodingValueType<T>, which callers
// may specialise for their own types; the conversions are checks, never coercions):
//   std::string            "String"      a text
//   std::int64_t           "Int"         a number that is not a boolean and whose value is a
//                                        whole number within the signed 64-bit range
//   double                 "Double"      a number that is not a boolean (integers widen)
//   bool                   "Bool"        a boolean number
//   vn::Decimal            "Decimal"     a decimal number
//   vn::Data               "Data"        data
//   vn::Date               "Date"        a date
//   vn::Value::Array       "Array"       an array
//   vn::Value::Dictionary  "Dictionary"  a dictionary
//   vn::Value              "Any"         any present value (the null marker included)
//   std::shared_ptr<T>     T's unqualified class name (vn::unqualifiedTypeName), for T derived
//                          from vn::Object: an object of that class or a subclass
//
// Messages go to VNFoundationServices::loggerService() when one is registered, with
// VNLoggerType::general (raw 0), VNLoggerLevel::warning (raw 3) and logToConsole true; nothing
// goes to VNLog and nothing is written when no service is registered. The helpers keep no
// state and are safe from any thread the lookup and the logger service are safe on.
#pragma once

#include <cmath>
#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "vn/platform/Decimal.h"
#include "vn/platform/Object.h"
#include "vn/platform/Value.h"

namespace vn {

// A coding key: anything with a stringValue() that reads as a text.
template <typename Key>
concept VNCodingKey = requires(const Key& key) {
    { key.stringValue() } -> std::convertible_to<std::string>;
};

// A ready-made coding key holding its text.
struct VNStringCodingKey {
    std::string value;
    const std::string& stringValue() const { return value; }
};

// How a requested type is named in messages (name) and read from a Value (from: absent when
// the value is not of the type).
template <typename T>
struct VNCodingValueType;

template <>
struct VNCodingValueType<std::string> {
    static constexpr std::string_view name = "String";
    static std::optional<std::string> from(const Value& value) {
        if (const std::string* text = value.string()) return *text;
        return std::nullopt;
    }
};

template <>
struct VNCodingValueType<std::int64_t> {
    static constexpr std::string_view name = "Int";
    static std::optional<std::int64_t> from(const Value& value);
};

template <>
struct VNCodingValueType<double> {
    static constexpr std::string_view name = "Double";
    static std::optional<double> from(const Value& value) {
        const Number* number = value.number();
        if (!number || number->isBoolean()) return std::nullopt;
        return number->doubleValue();
    }
};

template <>
struct VNCodingValueType<bool> {
    static constexpr std::string_view name = "Bool";
    static std::optional<bool> from(const Value& value) {
        const Number* number = value.number();
        if (!number || !number->isBoolean()) return std::nullopt;
        return number->boolValue();
    }
};

template <>
struct VNCodingValueType<Decimal> {
    static constexpr std::string_view name = "Decimal";
    static std::optional<Decimal> from(const Value& value) {
        const Number* number = value.number();
        if (!number || !number->isDecimal()) return std::nullopt;
        return number->decimalValue();
    }
};

template <>
struct VNCodingValueType<Data> {
    static constexpr std::string_view name = "Data";
    static std::optional<Data> from(const Value& value) {
        if (const Data* data = value.data()) return *data;
        return std::nullopt;
    }
};

template <>
struct VNCodingValueType<Date> {
    static constexpr std::string_view name = "Date";
    static std::optional<Date> from(const Value& value) {
        if (const Date* date = value.date()) return *date;
        return std::nullopt;
    }
};

template <>
struct VNCodingValueType<Value::Array> {
    static constexpr std::string_view name = "Array";
    static std::optional<Value::Array> from(const Value& value) {
        if (const Value::Array* array = value.array()) return *array;
        return std::nullopt;
    }
};

template <>
struct VNCodingValueType<Value::Dictionary> {
    static constexpr std::string_view name = "Dictionary";
    static std::optional<Value::Dictionary> from(const Value& value) {
        if (const Value::Dictionary* dictionary = value.dictionary()) return *dictionary;
        return std::nullopt;
    }
};

template <>
struct VNCodingValueType<Value> {
    static constexpr std::string_view name = "Any";
    static std::optional<Value> from(const Value& value) {
        if (value.isNil()) return std::nullopt;
        return value;
    }
};

template <typename T>
requires std::derived_from<T, Object>
struct VNCodingValueType<std::shared_ptr<T>> {
    static std::string name() { return unqualifiedTypeName(typeid(T)); }
    static std::optional<std::shared_ptr<T>> from(const Value& value) {
        auto object = value.objectAs<T>();
        if (!object) return std::nullopt;
        return object;
    }
};

namespace properties_internal {

// Sends message to the registered logger service, if any.
void logToLoggerService(const std::string& message);

template <typename T>
std::string typeName() {
    return std::string(VNCodingValueType<T>::name);
}

template <typename T>
requires requires {
    VNCodingValueType<T>::name();
}
std::string typeName() {
    return VNCodingValueType<T>::name();
}

}  // namespace properties_internal

struct VNCodingKeysHelpers {
    VNCodingKeysHelpers() = delete;

    // value := lookup(key) (nil meaning absent). Answers the value when it is a T. Otherwise
    // answers absent, after sending a message when the matching switch is set:
    //   absent:         "Value for '<key>' field not present"                (logNotFoundError)
    //   of another type "Value for '<key>' key has invalid type. Required <type name> but
    //                   found: <value's standard textual form>"              (logTypeMissmatch)
    // where <key> is key.stringValue() and the textual form is Value::description().
    template <typename T, VNCodingKey Key, typename Lookup>
    requires std::is_invocable_r_v<Value, Lookup, const Key&>
    static std::optional<T> typedValue(const Key& key, Lookup&& lookup, bool logNotFoundError,
                                       bool logTypeMissmatch) {
        const Value value = std::forward<Lookup>(lookup)(key);
        if (auto typed = VNCodingValueType<T>::from(value)) return typed;
        const std::string keyText = key.stringValue();
        if (value.isNil()) {
            if (logNotFoundError)
                properties_internal::logToLoggerService("Value for '" + keyText +
                                                        "' field not present");
        } else if (logTypeMissmatch) {
            properties_internal::logToLoggerService(
                "Value for '" + keyText + "' key has invalid type. Required " +
                properties_internal::typeName<T>() + " but found: " + value.description());
        }
        return std::nullopt;
    }

    // typedValue with both switches set.
    template <typename T, VNCodingKey Key, typename Lookup>
    requires std::is_invocable_r_v<Value, Lookup, const Key&>
    static std::optional<T> typedValueLoggingError(const Key& key, Lookup&& lookup) {
        return typedValue<T>(key, std::forward<Lookup>(lookup), true, true);
    }
};

}  // namespace vn
