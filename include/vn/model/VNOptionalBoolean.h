// VNOptionalBoolean: a boolean that may be unset, as the model stores it in one byte, and its
// conversion from and to std::optional<bool>. Safe from any thread.
#pragma once

#include <cstdint>
#include <optional>

namespace vn {

enum VNOptionalBoolean : std::uint8_t {
    VNOptionalBooleanNotSet = 0,
    VNOptionalBooleanTrue = 1,
    VNOptionalBooleanFalse = 2,
};

// nullopt gives NotSet, true True, false False.
[[nodiscard]] constexpr VNOptionalBoolean VNOptionalBooleanFromBool(std::optional<bool> value) {
    if (!value) return VNOptionalBooleanNotSet;
    return *value ? VNOptionalBooleanTrue : VNOptionalBooleanFalse;
}

// NotSet gives nullopt, True true, False false. A raw value above 2 is a programming fault that
// stops the process (vn::fatalError).
[[nodiscard]] std::optional<bool> asBool(VNOptionalBoolean value);

}  // namespace vn
