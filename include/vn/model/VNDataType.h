// VNDataType: the data types of the application model, read from the model's type names
// ("numeric(10,2)", "Character", "typ/httpclient", ...) and written back as canonical names.
// Every function is a pure lookup that never fails and is safe from any thread. Type names
// compare case-insensitively.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/Number.h"
#include "vn/platform/Value.h"

namespace vn {

enum VNDataType : std::uint8_t {
    VNDataTypeNumeric = 0,
    VNDataTypeCharacter = 1,
    VNDataTypeDate = 2,
    VNDataTypeDateTime = 3,
    VNDataTypeLongVarChar = 4,
    VNDataTypeVarChar = 5,
    VNDataTypeBoolean = 6,
    VNDataTypeGUID = 7,
    VNDataTypeBinary = 8,
    VNDataTypeBitmap = 9,
    VNDataTypeSDT = 10,  // structured and business-component types
    VNDataTypeExternalObject = 11,
    VNDataTypeAudio = 12,
    VNDataTypeVideo = 13,
    VNDataTypeGeography = 14,  // every geometry type
    VNDataTypeBinaryFile = 15,
    VNDataTypeHttpClient = 16,
    VNDataTypeFile = 17,
    VNDataTypeDirectory = 18,
    VNDataTypeProperty = 19,
    VNDataTypeProperties = 20,
    VNDataTypeUnknown = 255,  // no type
};

// The canonical name: "numeric", "character", "date", "datetime", "longvarchar", "varchar",
// "boolean", "guid", "binary", "bitmap", "vn_sdt", "vn_external_object", "audio", "video",
// "geography", "binaryfile", "httpclient", "file", "directory", "property", "properties";
// "unknown" for 255 and for every value outside the enumeration.
[[nodiscard]] std::string_view NSStringFromVNDataType(VNDataType type);

// True for the multimedia types: bitmap, audio, video and binaryfile.
bool VNDataTypeIsMultimediaType(VNDataType type);

// The name of a type that the model defines outside the built-in list: for a type name that
// begins with "typ/" (in any case) the rest of it, lower-cased ("typ/HttpClient" gives
// "httpclient"); for the user-defined type "vn_usrdeftyp" (in any case) the extended type name
// unchanged; otherwise, and for an absent type name, absent.
[[nodiscard]] std::optional<std::string> ExtendedDataTypeName(
    std::optional<std::string_view> typeName, std::optional<std::string_view> extendedTypeName);

// The data type of a type name, which may carry its size: "numeric(10,2)", "character(20)".
// - A type name that is not a text gives VNDataTypeUnknown and leaves the out-slots untouched.
//   Otherwise each given out-slot (length, decimals; either may be null) is first reset.
// - A name that ends with ")" and contains "(" is cut at its last "(". When an out-slot is given
//   and the text between the parentheses splits at "," into exactly two pieces, the pieces are
//   read by VNUtilities::unsignedIntegerNumberFromValue() into length and decimals (so
//   "numeric(10,2)" gives 10 and 2, while "character(20)" leaves both absent).
// - The name (case-insensitive) then gives: numeric 0, character 1, date 2, datetime 3,
//   varchar 5, boolean 6, longvarchar 4, guid 7, binary 8, bitmap and typ/baseimage 9,
//   vn_sdt, vn_buscomp and vn_buscomp_level 10, vn_external_object 11, audio 12, video 13,
//   binaryfile 15, geography, geopoint, geoline and geopolygon 14.
// - Otherwise ExtendedDataTypeName(name, extended type name, when it is a text) decides:
//   httpclient 16, file 17, directory 18, property 19, properties 20; anything else 255.
[[nodiscard]] VNDataType VNDataTypeWithInfoFromString(const Value& typeName,
                                                      const Value& extendedTypeName,
                                                      std::optional<Number>* length,
                                                      std::optional<Number>* decimals);
// The same without the length and decimals.
[[nodiscard]] VNDataType VNDataTypeFromString(const Value& typeName,
                                              const Value& extendedTypeName = {});

}  // namespace vn
