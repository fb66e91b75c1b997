// vn datatype: the model's data type of a type name; and the tour's section on the model's
// enumerations.
#include <cstdio>
#include <string>

#include "../Registry.h"
#include "vn/model/VNConnectivitySupportType.h"
#include "vn/model/VNDataType.h"
#include "vn/model/VNModelEnumerations.h"
#include "vn/model/VNObjectType.h"
#include "vn/model/VNUIKitMappings.h"

namespace {

using namespace vn;

int runDataType(const tool::Arguments& arguments);

const tool::Command kDataType{"datatype", "datatype NAME [EXTENDED_NAME]",
                              "the model data type of a type name such as \"numeric(10,2)\"",
                              "vn datatype 'numeric(10,2)'", runDataType};

int runDataType(const tool::Arguments& arguments) {
    if (arguments.empty() || arguments.size() > 2) return tool::usageError(kDataType);
    std::optional<Number> length;
    std::optional<Number> decimals;
    const Value extended = arguments.size() == 2 ? Value(arguments[1]) : Value();
    const VNDataType type =
        VNDataTypeWithInfoFromString(Value(arguments[0]), extended, &length, &decimals);
    std::printf("type: %u %s\n", static_cast<unsigned>(type),
                std::string(NSStringFromVNDataType(type)).c_str());
    if (length) std::printf("length: %s\n", length->description().c_str());
    if (decimals) std::printf("decimals: %s\n", decimals->description().c_str());
    if (VNDataTypeIsMultimediaType(type)) std::printf("multimedia: yes\n");
    return tool::kSuccess;
}

void showModel() {
    for (const char* name : {"NUMERIC(10,2)", "Character(20)", "typ/baseimage", "GeoPoint",
                             "typ/HttpClient", "vn_sdt"}) {
        std::optional<Number> length;
        std::optional<Number> decimals;
        const VNDataType type = VNDataTypeWithInfoFromString(name, {}, &length, &decimals);
        std::printf("data type %-16s -> %3u %-12s length %s, decimals %s\n", name,
                    static_cast<unsigned>(type), std::string(NSStringFromVNDataType(type)).c_str(),
                    length ? length->description().c_str() : "nil",
                    decimals ? decimals->description().c_str() : "nil");
    }
    std::printf("data type vn_usrdeftyp + Properties -> %u\n",
                static_cast<unsigned>(VNDataTypeFromString("vn_usrdeftyp", "Properties")));

    const std::string reference = "1DB606F2-AF09-4CF9-A3B5-B481519D28F6-Customer";
    if (const auto parsed = VNObjectHelper::parseObjectTypeEnumAndName(reference)) {
        std::printf("object reference %s -> kind %u, name %s\n", reference.c_str(),
                    static_cast<unsigned>(parsed->type), parsed->name.c_str());
    }
    std::printf(
        "special domain Vornic.Geolocation -> %u; vornic.geolocation -> %u (names are exact)\n",
        static_cast<unsigned>(VNSpecialDomainTypeFromDomainName("Vornic.Geolocation")),
        static_cast<unsigned>(VNSpecialDomainTypeFromDomainName("vornic.geolocation")));
    std::printf("parameter kind OUT -> %s; mode insert+update -> %s\n",
                std::string(NSStringFromVNParameterKind(VNParameterKindFromString("OUT"))).c_str(),
                std::string(VNStringFromModeType(VNModeTypeInsert | VNModeTypeUpdate)).c_str());
    std::printf("vertical Middle -> %u, Center -> %u, center -> %u\n",
                static_cast<unsigned>(VNVerticalAlignFromValue("Middle")),
                static_cast<unsigned>(VNVerticalAlignFromValue("Center")),
                static_cast<unsigned>(VNVerticalAlignFromValue("center")));
    std::printf(
        "enter key Search -> return key %lld; dark input view -> keyboard appearance %lld\n",
        static_cast<long long>(UIReturnKeyTypeFromVNEnterTypeKeyType(VNEnterTypeKeyTypeSearch)),
        static_cast<long long>(
            UIKeyboardAppearanceFromVNInputViewAppearance(VNInputViewAppearanceDark)));
    std::printf(
        "font category caption 1 -> %s; weight 1 (ultra-light) -> %g\n",
        std::string(UIFontTextStyleFromVNFontCategory(VNFontCategoryCaption1).value_or("nil"))
            .c_str(),
        UIFontWeightFromVNFontTypeWeight(VNFontTypeWeightUltraLight));
    std::printf(
        "connectivity \"idOffline\" -> %u\n",
        static_cast<unsigned>(VNUtilities::connectivitySupportFromValue(Value("idOffline"))));
}

const tool::CommandRegistration kDataTypeRegistration{kDataType};
const tool::TourRegistration kModelTour{{15, "Model: enumerations and their texts", showModel}};

}  // namespace
