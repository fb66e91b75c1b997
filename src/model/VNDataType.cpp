#include "vn/model/VNDataType.h"

#include <array>
#include <utility>

#include "model/ModelText.h"
#include "vn/values/ValueCoercion.h"

namespace vn {
namespace {

struct NamedType {
    std::string_view name;
    VNDataType type;
};

// Built-in type names in the order they are tried.
constexpr std::array kBuiltInNames{
    NamedType{"numeric", VNDataTypeNumeric},
    NamedType{"character", VNDataTypeCharacter},
    NamedType{"date", VNDataTypeDate},
    NamedType{"datetime", VNDataTypeDateTime},
    NamedType{"varchar", VNDataTypeVarChar},
    NamedType{"boolean", VNDataTypeBoolean},
    NamedType{"longvarchar", VNDataTypeLongVarChar},
    NamedType{"guid", VNDataTypeGUID},
    NamedType{"binary", VNDataTypeBinary},
    NamedType{"bitmap", VNDataTypeBitmap},
    NamedType{"typ/baseimage", VNDataTypeBitmap},
    NamedType{"vn_sdt", VNDataTypeSDT},
    NamedType{"vn_buscomp", VNDataTypeSDT},
    NamedType{"vn_buscomp_level", VNDataTypeSDT},
    NamedType{"vn_external_object", VNDataTypeExternalObject},
    NamedType{"audio", VNDataTypeAudio},
    NamedType{"video", VNDataTypeVideo},
    NamedType{"binaryfile", VNDataTypeBinaryFile},
    NamedType{"geography", VNDataTypeGeography},
    NamedType{"geopoint", VNDataTypeGeography},
    NamedType{"geoline", VNDataTypeGeography},
    NamedType{"geopolygon", VNDataTypeGeography},
};

constexpr std::array kExtendedNames{
    NamedType{"httpclient", VNDataTypeHttpClient}, NamedType{"file", VNDataTypeFile},
    NamedType{"directory", VNDataTypeDirectory},   NamedType{"property", VNDataTypeProperty},
    NamedType{"properties", VNDataTypeProperties},
};

constexpr std::array<std::string_view, 21> kCanonicalNames{
    "numeric",   "character", "date",       "datetime",   "longvarchar", "varchar",
    "boolean",   "guid",      "binary",     "bitmap",     "vn_sdt",      "vn_external_object",
    "audio",     "video",     "geography",  "binaryfile", "httpclient",  "file",
    "directory", "property",  "properties",
};

template <std::size_t N>
std::optional<VNDataType> lookUp(const std::array<NamedType, N>& table, std::string_view name) {
    for (const NamedType& entry : table) {
        if (model_internal::equalsIgnoringCase(name, entry.name)) return entry.type;
    }
    return std::nullopt;
}

// "numeric(10,2)" stores 10 and 2 into the given slots; any other number of pieces stores none.
void readSize(std::string_view size, std::optional<Number>* length,
              std::optional<Number>* decimals) {
    const std::size_t comma = size.find(',');
    if (comma == std::string_view::npos || size.find(',', comma + 1) != std::string_view::npos)
        return;
    if (length) *length = VNUtilities::unsignedIntegerNumberFromValue(Value(size.substr(0, comma)));
    if (decimals)
        *decimals = VNUtilities::unsignedIntegerNumberFromValue(Value(size.substr(comma + 1)));
}

}  // namespace

std::string_view NSStringFromVNDataType(VNDataType type) {
    const auto index = static_cast<std::size_t>(type);
    return index < kCanonicalNames.size() ? kCanonicalNames[index] : "unknown";
}

bool VNDataTypeIsMultimediaType(VNDataType type) {
    return type == VNDataTypeBitmap || type == VNDataTypeAudio || type == VNDataTypeVideo ||
           type == VNDataTypeBinaryFile;
}

std::optional<std::string> ExtendedDataTypeName(std::optional<std::string_view> typeName,
                                                std::optional<std::string_view> extendedTypeName) {
    if (!typeName) return std::nullopt;
    std::string lower = model_internal::lowercased(*typeName);
    if (lower.starts_with("typ/")) return lower.substr(4);
    if (lower == "vn_usrdeftyp" && extendedTypeName) return std::string(*extendedTypeName);
    return std::nullopt;
}

VNDataType VNDataTypeWithInfoFromString(const Value& typeName, const Value& extendedTypeName,
                                        std::optional<Number>* length,
                                        std::optional<Number>* decimals) {
    const std::string* text = typeName.string();
    if (!text) return VNDataTypeUnknown;
    if (length) length->reset();
    if (decimals) decimals->reset();

    std::string_view name = *text;
    if (name.ends_with(')')) {
        if (const std::size_t open = name.rfind('('); open != std::string_view::npos) {
            if (length || decimals)
                readSize(name.substr(open + 1, name.size() - open - 2), length, decimals);
            name = name.substr(0, open);
        }
    }
    if (const std::optional<VNDataType> builtIn = lookUp(kBuiltInNames, name)) return *builtIn;

    const std::string* extended = extendedTypeName.string();
    const std::optional<std::string> extendedName = ExtendedDataTypeName(
        name, extended ? std::optional<std::string_view>(*extended) : std::nullopt);
    if (!extendedName) return VNDataTypeUnknown;
    return lookUp(kExtendedNames, *extendedName).value_or(VNDataTypeUnknown);
}

VNDataType VNDataTypeFromString(const Value& typeName, const Value& extendedTypeName) {
    return VNDataTypeWithInfoFromString(typeName, extendedTypeName, nullptr, nullptr);
}

}  // namespace vn
