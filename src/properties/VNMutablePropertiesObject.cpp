#include "vn/properties/VNMutablePropertiesObject.h"

#include <string>

namespace vn {

void VNMutablePropertiesObject::setPropertyValue(const Value& value, std::string_view name) {
    if (value.isNil()) {
        removePropertyFoPropertyName(name);
        return;
    }
    mutableProperties().insert_or_assign(std::string(name), value);
}

void VNMutablePropertiesObject::removePropertyFoPropertyName(std::string_view name) {
    Value::Dictionary& properties = mutableProperties();
    if (const auto found = properties.find(name); found != properties.end())
        properties.erase(found);
}

void VNMutablePropertiesObject::setBoolProperty(bool value, std::string_view name) {
    setPropertyValue(Number::fromBool(value), name);
}

void VNMutablePropertiesObject::setIntegerProperty(std::int64_t value, std::string_view name) {
    setPropertyValue(Number::fromInteger(value), name);
}

void VNMutablePropertiesObject::setFloatProperty(double value, std::string_view name) {
    setPropertyValue(Number::fromDouble(value), name);
}

}  // namespace vn
