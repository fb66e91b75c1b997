// VNMutablePropertiesObject: a properties bag (VNPropertiesObject) that can be changed after
// construction. The typed setters store boxed numbers, so that the typed getters and keyed
// archiving read them back. Not thread-safe: one thread at a time.
#pragma once

#include <cstdint>
#include <string_view>

#include "vn/properties/VNPropertiesObject.h"

namespace vn {

class VNMutablePropertiesObject : public VNPropertiesObject {
  public:
    using VNPropertiesObject::VNPropertiesObject;

    // Stores value under name, replacing what was there; nil removes the name.
    virtual void setPropertyValue(const Value& value, std::string_view name);
    // Removes name; a missing name changes nothing. (The missing "r" of "For" is part of the
    // interface's name and kept on purpose.)
    void removePropertyFoPropertyName(std::string_view name);

    // Store a boolean, signed 64-bit integer or double number under name (through
    // setPropertyValue, so subclasses see them too).
    void setBoolProperty(bool value, std::string_view name);
    void setIntegerProperty(std::int64_t value, std::string_view name);
    void setFloatProperty(double value, std::string_view name);
};

}  // namespace vn
