// libFuzzer target: every model name reader answers for any text, and a name it recognises
// maps back to a name that reads as the same thing.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "FuzzInput.h"
#include "vn/model/VNDataType.h"
#include "vn/model/VNModelEnumerations.h"
#include "vn/model/VNObjectType.h"

namespace {

void checkDataType(const std::string_view name, const std::string_view extended) {
    std::optional<vn::Number> length;
    std::optional<vn::Number> decimals;
    const vn::VNDataType type =
        vn::VNDataTypeWithInfoFromString(vn::Value(name), vn::Value(extended), &length, &decimals);
    (void)vn::NSStringFromVNDataType(type);
    (void)vn::VNDataTypeIsMultimediaType(type);
    (void)vn::ExtendedDataTypeName(name, extended);
}

void checkObjectReference(const std::string_view text) {
    const vn::Value reference(text);
    const auto parsed = vn::VNObjectHelper::parseObjectTypeAndName(reference);
    if (!parsed) return;
    vn_fuzz::check(!parsed->name.empty(), "an object reference with an empty name");
    if (vn::platform_internal::isValidUtf8(text)) {
        vn_fuzz::checkUtf8(parsed->name, "an object name cut inside a character");
        vn_fuzz::checkUtf8(parsed->type, "an object type cut inside a character");
    }
    const auto named = vn::VNObjectHelper::parseObjectName(parsed->type, reference);
    vn_fuzz::check(named && *named == parsed->name, "parseObjectName disagrees");
    (void)vn::VNObjectHelper::parseKnownObjectTypeEnumAndName(reference);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto [name, extended] = vn_fuzz::fields<2>(data, size);
    checkDataType(name, extended);

    const vn::VNSpecialDomainType domain = vn::VNSpecialDomainTypeFromDomainName(name);
    if (const auto domainName = vn::VNSpecialDomainNameFromDomainType(domain)) {
        vn_fuzz::check(vn::VNSpecialDomainTypeFromDomainName(*domainName) == domain,
                       "a domain name that does not read back");
    }
    const vn::VNParameterKind kind = vn::VNParameterKindFromString(name);
    vn_fuzz::check(vn::VNParameterKindFromString(vn::NSStringFromVNParameterKind(kind)) == kind,
                   "a parameter kind that does not read back");
    const vn::VNObjectType objectType = vn::VNObjectHelper::objectTypeEnumFromString(name);
    if (const auto objectId = vn::VNObjectHelper::objectTypeStringFromEnum(objectType)) {
        vn_fuzz::check(vn::VNObjectHelper::objectTypeEnumFromString(*objectId) == objectType,
                       "an object type that does not read back");
    }
    (void)vn::VNVerticalAlignFromValue(vn::Value(name));
    (void)vn::VNHorizontalAlignFromValue(vn::Value(name));
    checkObjectReference(name);
    return 0;
}
