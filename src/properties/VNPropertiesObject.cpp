#include "vn/properties/VNPropertiesObject.h"

#include "vn/values/ValueCoercion.h"

namespace vn {

Value VNPropertiesObject::getPropertyValue(std::string_view name) const {
    const auto found = properties_.find(name);
    return found == properties_.end() ? Value{} : found->second;
}

bool VNPropertiesObject::getPropertyValueBool(std::string_view name, bool defaultValue) const {
    return VNUtilities::boolFromValue(getPropertyValue(name), defaultValue);
}

std::int64_t VNPropertiesObject::getPropertyValueInteger(std::string_view name) const {
    return VNUtilities::integerFromValue(getPropertyValue(name), 0);
}

double VNPropertiesObject::getPropertyValueFloat(std::string_view name) const {
    const auto number = VNUtilities::doubleNumberFromValue(getPropertyValue(name));
    return number ? number->doubleValue() : 0.0;
}

std::optional<std::string> VNPropertiesObject::getPropertyValueString(std::string_view name) const {
    const Value value = getPropertyValue(name);
    if (const std::string* text = value.string()) return *text;
    return std::nullopt;
}

std::optional<Color> VNPropertiesObject::getPropertyValueColor(std::string_view name) const {
    return Color::colorFromValue(getPropertyValue(name));
}

std::string VNPropertiesObject::description() const {
    return Object::description() + "\nProperties:\n" + Value(properties_).description();
}

}  // namespace vn
