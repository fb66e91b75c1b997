#include "vn/model/VNConnectivitySupportType.h"

namespace vn::VNUtilities {

VNConnectivitySupportType connectivitySupportFromValue(const Value& value,
                                                       VNConnectivitySupportType defaultValue) {
    if (const Number* number = value.number()) {
        if (!number->isInteger()) return defaultValue;
        const bool inRange =
            number->kind() == Number::Kind::unsignedInteger
                ? number->unsignedIntegerValue() <= VNConnectivitySupportTypeInherit
                : number->integerValue() >= 0 &&
                      number->integerValue() <= VNConnectivitySupportTypeInherit;
        return inRange ? static_cast<VNConnectivitySupportType>(number->integerValue())
                       : defaultValue;
    }
    if (const std::string* text = value.string()) {
        if (*text == "idOnline") return VNConnectivitySupportTypeOnline;
        if (*text == "idOffline") return VNConnectivitySupportTypeOffline;
        if (*text == "idInherit") return VNConnectivitySupportTypeInherit;
    }
    return defaultValue;
}

}  // namespace vn::VNUtilities
