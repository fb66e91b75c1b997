#include "vn/properties/VNCodingPropertiesObject.h"

#include "properties/PropertiesCoding.h"

namespace vn {
namespace {

constexpr std::string_view kClassName = "VNCodingPropertiesObject";

[[maybe_unused]] const bool kRegistered = properties_internal::registerPropertiesCodingClasses();

}  // namespace

std::shared_ptr<VNCodingPropertiesObject> VNCodingPropertiesObject::initWithCoder(Coder& coder) {
    auto properties = properties_internal::decodePropertiesDictionary(coder, kClassName);
    if (!properties) return nullptr;
    return std::make_shared<VNCodingPropertiesObject>(std::move(*properties));
}

Value VNCodingPropertiesObject::getCodingPropertyValue(std::string_view name) const {
    return properties_internal::requireKeyedCodable(VNPropertiesObject::getPropertyValue(name),
                                                    kClassName, name);
}

Value VNCodingPropertiesObject::getPropertyValue(std::string_view name) const {
    return getCodingPropertyValue(name);
}

void VNCodingPropertiesObject::encodeWithCoder(Coder& coder) const {
    coder.encodeValue(Value(properties()), VNPropertiesObjectArchiveKey);
}

std::string VNCodingPropertiesObject::classNameForCoder() const {
    return std::string(kClassName);
}

std::vector<std::string> VNCodingPropertiesObject::classHierarchyForCoder() const {
    return {std::string(kClassName), "VNPropertiesObject", "NSObject"};
}

}  // namespace vn
