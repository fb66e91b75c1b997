// VNCodingPropertiesObject: a read-only properties bag that can be written to and rebuilt
// from a keyed archive (vn::KeyedArchiver / vn::KeyedUnarchiver).
//
// Archive format: the whole properties dictionary, as one dictionary object, under the key
// "PropertiesObjectDictionary.vn"; nothing else, no version. Decoding (initWithCoder):
//   nothing stored under the key (or nil)  -> an empty bag;
//   a dictionary                           -> that dictionary;
//   anything else                          -> decoding fails: no object, and the coder records
//                                             an NSCoderReadCorruptError saying why.
// The archived class name is "VNCodingPropertiesObject" (class chain VNCodingPropertiesObject,
// VNPropertiesObject, NSObject). Archives that name the class with its module,
// "VNFoundation.VNCodingPropertiesObject", decode as well.
//
// Keyed-codable values (vn::isKeyedCodable: every kind except objects that do not implement
// vn::Coding, and collections holding such) are the only ones this bag may hand out: reading a
// property that holds anything else is a programming error that stops the process
// (vn::fatalError), the counterpart of the platform's unconditional conversion failure.
// Because the typed getters read through getPropertyValue(), this holds for them too.
// Encoding a bag that holds such a value makes the archiver report NSCoderInvalidValueError.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vn/coding/Coder.h"
#include "vn/coding/Coding.h"
#include "vn/properties/VNPropertiesObject.h"

namespace vn {

// The archive key of both archivable properties classes.
inline constexpr std::string_view VNPropertiesObjectArchiveKey = "PropertiesObjectDictionary.vn";

class VNCodingPropertiesObject : public VNPropertiesObject, public Coding {
  public:
    using VNPropertiesObject::VNPropertiesObject;

    // The bag the coder holds, or null when decoding fails (see above).
    [[nodiscard]] static std::shared_ptr<VNCodingPropertiesObject> initWithCoder(Coder& coder);

    // The plain lookup (VNPropertiesObject::getPropertyValue); stops the process when the
    // stored value is not keyed-codable. nil passes through.
    Value getCodingPropertyValue(std::string_view name) const;
    // Returns getCodingPropertyValue(name).
    Value getPropertyValue(std::string_view name) const override;

    // Encodes the properties dictionary under VNPropertiesObjectArchiveKey.
    void encodeWithCoder(Coder& coder) const override;
    std::string classNameForCoder() const override;
    std::vector<std::string> classHierarchyForCoder() const override;
};

}  // namespace vn
