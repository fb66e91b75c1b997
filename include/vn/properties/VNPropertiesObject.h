// VNPropertiesObject: a small, reusable bag of named values (decoded JSON, numbers, texts,
// colours, nested objects) with typed getters that coerce on read.
//
// The bag is a string-keyed dictionary; keys compare exactly (case-sensitive, no
// normalisation). Every typed getter reads through the virtual getPropertyValue(), so a
// subclass that overrides it governs them all. This class is read-only; see
// VNMutablePropertiesObject for setters and VNCodingPropertiesObject for keyed archiving.
//
// Not thread-safe for mutation (the mutable subclasses): confine an object to one thread at a
// time, or only read it after construction. Objects are shared by reference, never copied.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/Object.h"
#include "vn/platform/Value.h"
#include "vn/properties/Color.h"

namespace vn {

class VNPropertiesObject : public Object {
  public:
    // init: an empty bag.
    VNPropertiesObject() = default;
    // initWithProperties: / init(properties:): the given dictionary, or an empty one when
    // absent.
    explicit VNPropertiesObject(std::optional<Value::Dictionary> properties)
        : properties_(properties ? std::move(*properties) : Value::Dictionary{}) {}

    // The whole bag; never absent (an empty dictionary at least).
    const Value::Dictionary& properties() const { return properties_; }

    // The value stored under name; nil when the name is missing.
    virtual Value getPropertyValue(std::string_view name) const;

    // VNUtilities::boolFromValue of getPropertyValue(name): a missing name, the null marker and
    // values without a boolean meaning give defaultValue (false in the short form).
    bool getPropertyValueBool(std::string_view name, bool defaultValue) const;
    bool getPropertyValueBool(std::string_view name) const {
        return getPropertyValueBool(name, false);
    }
    // VNUtilities::integerFromValue(getPropertyValue(name), 0): numbers and numeric texts
    // convert, everything else gives 0.
    std::int64_t getPropertyValueInteger(std::string_view name) const;
    // The double value of VNUtilities::doubleNumberFromValue(getPropertyValue(name)), or 0.0 when
    // that gives no number.
    double getPropertyValueFloat(std::string_view name) const;
    // The value only when it is a text; any other value (a number included) gives absent,
    // without conversion.
    std::optional<std::string> getPropertyValueString(std::string_view name) const;
    // Color::colorFromValue of the value (see Color.h for the accepted notations).
    std::optional<Color> getPropertyValueColor(std::string_view name) const;

    // The object's default description, then "\nProperties:\n", then the dictionary's
    // standard textual form (Value::description()).
    std::string description() const override;

  protected:
    // The stored dictionary, for the mutable subclasses.
    Value::Dictionary& mutableProperties() { return properties_; }

  private:
    Value::Dictionary properties_;
};

}  // namespace vn
