#include "vn/properties/VNMutableCodingPropertiesObject.h"

#include "properties/PropertiesCoding.h"

namespace vn {
namespace {

constexpr std::string_view kClassName = "VNMutableCodingPropertiesObject";

[[maybe_unused]] const bool kRegistered = properties_internal::registerPropertiesCodingClasses();

}  // namespace

std::shared_ptr<VNMutableCodingPropertiesObject> VNMutableCodingPropertiesObject::initWithCoder(
    Coder& coder) {
    auto properties = properties_internal::decodePropertiesDictionary(coder, kClassName);
    if (!properties) return nullptr;
    return std::make_shared<VNMutableCodingPropertiesObject>(std::move(*properties));
}

Value VNMutableCodingPropertiesObject::getCodingPropertyValue(std::string_view name) const {
    return properties_internal::requireKeyedCodable(VNPropertiesObject::getPropertyValue(name),
                                                    kClassName, name);
}

Value VNMutableCodingPropertiesObject::getPropertyValue(std::string_view name) const {
    return getCodingPropertyValue(name);
}

void VNMutableCodingPropertiesObject::setPropertyValue(const Value& value, std::string_view name) {
    setCodingPropertyValue(value, name);
}

void VNMutableCodingPropertiesObject::setCodingPropertyValue(const Value& value,
                                                             std::string_view name) {
    VNMutablePropertiesObject::setPropertyValue(
        properties_internal::requireKeyedCodable(value, kClassName, name), name);
}

void VNMutableCodingPropertiesObject::encodeWithCoder(Coder& coder) const {
    coder.encodeValue(Value(properties()), VNPropertiesObjectArchiveKey);
}

std::string VNMutableCodingPropertiesObject::classNameForCoder() const {
    return std::string(kClassName);
}

std::vector<std::string> VNMutableCodingPropertiesObject::classHierarchyForCoder() const {
    return {std::string(kClassName), "VNMutablePropertiesObject", "VNPropertiesObject", "NSObject"};
}

}  // namespace vn
