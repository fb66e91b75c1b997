// VNConnectivitySupportType: whether a part of the application works online, offline or as its
// container does, and its reading from model values. Safe from any thread.
#pragma once

#include <cstdint>

#include "vn/platform/Value.h"

namespace vn {

enum VNConnectivitySupportType : std::uint8_t {
    VNConnectivitySupportTypeOnline = 0,
    VNConnectivitySupportTypeOffline = 1,
    VNConnectivitySupportTypeInherit = 2,
};

namespace VNUtilities {

// nil gives defaultValue. An integer number holding 0, 1 or 2 (a boxed
// VNConnectivitySupportType) is taken as it is. The texts "idOnline", "idOffline" and
// "idInherit" (exact, case-sensitive) give 0, 1 and 2. Every other text, number (booleans,
// floating values and integers outside 0...2 included) and kind of value gives defaultValue.
[[nodiscard]] VNConnectivitySupportType connectivitySupportFromValue(
    const Value& value, VNConnectivitySupportType defaultValue);
// The same with VNConnectivitySupportTypeOnline as default.
[[nodiscard]] inline VNConnectivitySupportType connectivitySupportFromValue(const Value& value) {
    return connectivitySupportFromValue(value, VNConnectivitySupportTypeOnline);
}

}  // namespace VNUtilities
}  // namespace vn
