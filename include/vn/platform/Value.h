// vn::Value: one loosely typed value, as decoded JSON, model metadata and property bags carry.
//
// Kinds: nil (absent), the null marker (JSON null: present but empty), number, UTF-8 string,
// data, date, array, dictionary (string keys, ordered by key) and object (a shared vn::Object).
// nil and the null marker are different values, and the coercions treat them differently.
//
// Values are immutable and cheap to copy: strings, data and collections are shared, never
// copied. Build a collection as a Value::Array or Value::Dictionary, then wrap it.
// A Value may be read from several threads at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "vn/platform/Date.h"
#include "vn/platform/Decimal.h"
#include "vn/platform/Number.h"
#include "vn/platform/Object.h"

namespace vn {

using Data = std::vector<std::uint8_t>;

class Value {
  public:
    enum class Kind : std::uint8_t {
        nil,
        null,
        number,
        string,
        data,
        date,
        array,
        dictionary,
        object
    };

    using Array = std::vector<Value>;
    using Dictionary = std::map<std::string, Value, std::less<>>;

    Value() noexcept = default;
    Value(std::nullptr_t) noexcept {}  // NOLINT(google-explicit-constructor): nil
    [[nodiscard]] static Value null();

    Value(Number number) : storage_(number) {}  // NOLINT(google-explicit-constructor)
    template <typename T>
    requires std::is_arithmetic_v<T> Value(T scalar)
        : storage_(Number(scalar)) {}  // NOLINT(google-explicit-constructor)
    Value(const Decimal& decimal)
        : storage_(Number(decimal)) {}  // NOLINT(google-explicit-constructor)
    Value(std::string text);            // NOLINT(google-explicit-constructor)
    Value(std::string_view text)
        : Value(std::string(text)) {}                      // NOLINT(google-explicit-constructor)
    Value(const char* text) : Value(std::string(text)) {}  // NOLINT(google-explicit-constructor)
    Value(Data data);                                      // NOLINT(google-explicit-constructor)
    Value(Date date) : storage_(date) {}                   // NOLINT(google-explicit-constructor)
    Value(Array array);                                    // NOLINT(google-explicit-constructor)
    Value(Dictionary dictionary);                          // NOLINT(google-explicit-constructor)
    // An object; a null pointer gives nil. Const objects (errors) are accepted and stay
    // logically immutable: the library never mutates an object through a Value.
    template <typename T>
    requires std::is_base_of_v<Object, T> Value(
        std::shared_ptr<T> object)  // NOLINT(google-explicit-constructor)
        : storage_(objectStorage(std::shared_ptr<const Object>(std::move(object)))) {}

    Kind kind() const { return static_cast<Kind>(storage_.index()); }
    bool isNil() const { return kind() == Kind::nil; }
    bool isNull() const { return kind() == Kind::null; }
    bool isNumber() const { return kind() == Kind::number; }
    bool isString() const { return kind() == Kind::string; }
    bool isData() const { return kind() == Kind::data; }
    bool isDate() const { return kind() == Kind::date; }
    bool isArray() const { return kind() == Kind::array; }
    bool isDictionary() const { return kind() == Kind::dictionary; }
    bool isObject() const { return kind() == Kind::object; }

    // Typed access: null when the value is of another kind.
    const Number* number() const { return std::get_if<Number>(&storage_); }
    const std::string* string() const {
        const auto* held = std::get_if<std::shared_ptr<const std::string>>(&storage_);
        return held ? held->get() : nullptr;
    }
    const Data* data() const {
        const auto* held = std::get_if<std::shared_ptr<const Data>>(&storage_);
        return held ? held->get() : nullptr;
    }
    const Date* date() const { return std::get_if<Date>(&storage_); }
    const Array* array() const {
        const auto* held = std::get_if<std::shared_ptr<const Array>>(&storage_);
        return held ? held->get() : nullptr;
    }
    const Dictionary* dictionary() const {
        const auto* held = std::get_if<std::shared_ptr<const Dictionary>>(&storage_);
        return held ? held->get() : nullptr;
    }
    const ObjectPtr& object() const;
    template <typename T>
    std::shared_ptr<T> objectAs() const {
        return std::dynamic_pointer_cast<T>(object());
    }

    // The entry under key of a dictionary value; nil when absent or not a dictionary.
    const Value& operator[](std::string_view key) const;

    // The value's answer to the boolean-value message: numbers and texts answer (texts by the
    // platform's text-to-boolean rule), objects as they choose; everything else has none.
    std::optional<bool> boolValue() const;

    // The platform's standard textual form: a text as itself, a number by its description,
    // the null marker as "<null>", collections in the property-list style
    // ("(\n    1,\n    two\n)", "{\n    key = value;\n}"), nil as "nil".
    std::string description() const;

    // Value equality: numbers by numeric value across kinds, collections element-wise,
    // objects by isEqual().
    bool operator==(const Value& other) const;
    std::size_t hash() const;

  private:
    struct NullMarker {
        bool operator==(const NullMarker&) const = default;
    };
    using Storage =
        std::variant<std::monostate, NullMarker, Number, std::shared_ptr<const std::string>,
                     std::shared_ptr<const Data>, Date, std::shared_ptr<const Array>,
                     std::shared_ptr<const Dictionary>, ObjectPtr>;

    static Storage objectStorage(std::shared_ptr<const Object> object) {
        if (!object) return Storage();
        return Storage(std::const_pointer_cast<Object>(std::move(object)));
    }
    void describe(std::string& out, int indent) const;

    Storage storage_;
};

// The platform's text-to-boolean rule: skip leading white space, an optional sign and leading
// zeros; true when the next character is Y, y, T, t or a digit 1-9. The rest is ignored.
[[nodiscard]] bool textBoolValue(std::string_view text);

}  // namespace vn
