// VNMutableCodingPropertiesObject: a mutable properties bag that can be written to and
// rebuilt from a keyed archive. Same archive format and decoding rules as
// VNCodingPropertiesObject (see there), so either class decodes the other's archives
// (KeyedUnarchiver::setClass maps one archived class name to the other's decoder).
//
// Its archived class name is "VNMutableCodingPropertiesObject" (chain
// VNMutableCodingPropertiesObject, VNMutablePropertiesObject, VNPropertiesObject, NSObject);
// "VNFoundation.VNMutableCodingPropertiesObject" decodes as well.
//
// Every value it stores or hands out must be keyed-codable (vn::isKeyedCodable); storing or
// reading anything else stops the process (vn::fatalError). nil passes through (and removes,
// when stored). Not thread-safe: one thread at a time.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vn/coding/Coder.h"
#include "vn/coding/Coding.h"
#include "vn/properties/VNCodingPropertiesObject.h"
#include "vn/properties/VNMutablePropertiesObject.h"

namespace vn {

class VNMutableCodingPropertiesObject : public VNMutablePropertiesObject, public Coding {
  public:
    using VNMutablePropertiesObject::VNMutablePropertiesObject;

    // The bag the coder holds, or null when decoding fails (see VNCodingPropertiesObject).
    [[nodiscard]] static std::shared_ptr<VNMutableCodingPropertiesObject> initWithCoder(
        Coder& coder);

    // The plain lookup, checked to be keyed-codable (stops the process otherwise).
    Value getCodingPropertyValue(std::string_view name) const;
    // Returns getCodingPropertyValue(name).
    Value getPropertyValue(std::string_view name) const override;

    // Checks that value is keyed-codable (stops the process otherwise) and stores it; nil
    // removes the name. The typed setters come through here.
    void setPropertyValue(const Value& value, std::string_view name) override;
    // Stores a keyed-codable value (checked like setPropertyValue); nil removes the name.
    void setCodingPropertyValue(const Value& value, std::string_view name);

    void encodeWithCoder(Coder& coder) const override;
    std::string classNameForCoder() const override;
    std::vector<std::string> classHierarchyForCoder() const override;
};

}  // namespace vn
