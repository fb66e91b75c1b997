#include "vn/model/VNModelEnumerations.h"

#include <array>

#include "model/ModelText.h"

namespace vn {
namespace {

constexpr std::array<std::string_view, 7> kSpecialDomainNames{
    "Vornic.Email",     "Vornic.Phone", "Vornic.Geolocation", "Vornic.Address",
    "Vornic.Component", "Vornic.Html",  "Vornic.Url",
};

}  // namespace

VNSpecialDomainType VNSpecialDomainTypeFromDomainName(std::optional<std::string_view> domainName) {
    if (!domainName) return VNSpecialDomainTypeNone;
    for (std::size_t i = 0; i < kSpecialDomainNames.size(); ++i) {
        if (*domainName == kSpecialDomainNames[i]) return static_cast<VNSpecialDomainType>(i);
    }
    return VNSpecialDomainTypeNone;
}

std::optional<std::string_view> VNSpecialDomainNameFromDomainType(VNSpecialDomainType domainType) {
    const auto index = static_cast<std::size_t>(domainType);
    if (index >= kSpecialDomainNames.size()) return std::nullopt;
    return kSpecialDomainNames[index];
}

VNParameterKind VNParameterKindFromString(std::optional<std::string_view> text) {
    if (!text) return VNParameterKindIn;
    if (model_internal::equalsIgnoringCase(*text, "inout")) return VNParameterKindInOut;
    if (model_internal::equalsIgnoringCase(*text, "out")) return VNParameterKindOut;
    return VNParameterKindIn;
}

std::string_view NSStringFromVNParameterKind(VNParameterKind kind) {
    switch (kind) {
        case VNParameterKindIn:
            return "in";
        case VNParameterKindOut:
            return "out";
        case VNParameterKindInOut:
            return "inout";
    }
    return "unknown";
}

std::string_view VNStringFromModeType(VNModeType modes) {
    if (modes & VNModeTypeDisplay) return "DSP";
    if (modes & VNModeTypeInsert) return "INS";
    if (modes & VNModeTypeUpdate) return "UPD";
    if (modes & VNModeTypeDelete) return "DLT";
    return "DSP";
}

VNVerticalAlign VNVerticalAlignFromValue(const Value& value) {
    const std::string* text = value.string();
    if (!text) return VNVerticalAlignDefault;
    if (*text == "Top") return VNVerticalAlignTop;
    if (*text == "Center" || *text == "Middle") return VNVerticalAlignMiddle;
    if (*text == "Bottom") return VNVerticalAlignBottom;
    return VNVerticalAlignDefault;
}

VNHorizontalAlign VNHorizontalAlignFromValue(const Value& value) {
    const std::string* text = value.string();
    if (!text) return VNHorizontalAlignDefault;
    if (*text == "Left") return VNHorizontalAlignLeft;
    if (*text == "Center") return VNHorizontalAlignCenter;
    if (*text == "Right") return VNHorizontalAlignRight;
    if (*text == "Justify") return VNHorizontalAlignJustify;
    return VNHorizontalAlignDefault;
}

}  // namespace vn
