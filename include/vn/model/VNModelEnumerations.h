// The model's smaller enumerations and their textual forms: special domains, parameter kinds,
// form modes and alignment. Every function is a pure lookup that never fails and is safe from
// any thread; text that matches nothing gives the enumeration's fallback. Domain and alignment
// names compare exactly; parameter kinds case-insensitively.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "vn/platform/Value.h"

namespace vn {

// ---- Special domains: semantic domains that the user interface treats specially.

enum VNSpecialDomainType : std::uint8_t {
    VNSpecialDomainTypeEmail = 0,        // "Vornic.Email"
    VNSpecialDomainTypePhone = 1,        // "Vornic.Phone"
    VNSpecialDomainTypeGeolocation = 2,  // "Vornic.Geolocation"
    VNSpecialDomainTypeAddress = 3,      // "Vornic.Address"
    VNSpecialDomainTypeComponent = 4,    // "Vornic.Component"
    VNSpecialDomainTypeHtml = 5,         // "Vornic.Html"
    VNSpecialDomainTypeUrl = 6,          // "Vornic.Url"
    VNSpecialDomainTypeNone = 255,
};

// The domain of a name compared exactly; an absent, empty or unmatched name gives
// VNSpecialDomainTypeNone.
[[nodiscard]] VNSpecialDomainType VNSpecialDomainTypeFromDomainName(
    std::optional<std::string_view> domainName);
// The name of a domain; absent for values above 6 (VNSpecialDomainTypeNone included).
[[nodiscard]] std::optional<std::string_view> VNSpecialDomainNameFromDomainType(
    VNSpecialDomainType domainType);

// ---- Parameter kinds

enum VNParameterKind : std::uint8_t {
    VNParameterKindIn = 0,
    VNParameterKindOut = 1,
    VNParameterKindInOut = 2,
};

// "inout" 2, "out" 1 (in any case); anything else, "in", the empty and the absent text, 0.
[[nodiscard]] VNParameterKind VNParameterKindFromString(std::optional<std::string_view> text);
// "in", "out", "inout"; "unknown" for other values.
[[nodiscard]] std::string_view NSStringFromVNParameterKind(VNParameterKind kind);

// ---- Form modes: a bit set.

enum VNModeType : std::uint8_t {
    VNModeTypeDisplay = 1,  // "DSP"
    VNModeTypeInsert = 2,   // "INS"
    VNModeTypeUpdate = 4,   // "UPD"
    VNModeTypeDelete = 8,   // "DLT"
};
constexpr VNModeType operator|(VNModeType a, VNModeType b) {
    return static_cast<VNModeType>(static_cast<std::uint8_t>(a) | static_cast<std::uint8_t>(b));
}

// The name of the lowest of the bits 1, 2, 4, 8 that is set ("INS" for insert and update);
// "DSP" when none of them is set.
[[nodiscard]] std::string_view VNStringFromModeType(VNModeType modes);

// ---- Alignment

enum VNVerticalAlign : std::uint8_t {
    VNVerticalAlignDefault = 0,
    VNVerticalAlignTop = 1,
    VNVerticalAlignMiddle = 2,
    VNVerticalAlignBottom = 3,
};

enum VNHorizontalAlign : std::uint8_t {
    VNHorizontalAlignDefault = 0,
    VNHorizontalAlignLeft = 1,
    VNHorizontalAlignCenter = 2,
    VNHorizontalAlignRight = 3,
    VNHorizontalAlignJustify = 4,
};

// "Default" 0, "Top" 1, "Center" and "Middle" 2, "Bottom" 3, compared exactly; a value that is
// not a text or matches nothing ("center" included) gives 0.
[[nodiscard]] VNVerticalAlign VNVerticalAlignFromValue(const Value& value);
// "Default" 0, "Left" 1, "Center" 2, "Right" 3, "Justify" 4, compared exactly; a value that is
// not a text or matches nothing gives 0.
[[nodiscard]] VNHorizontalAlign VNHorizontalAlignFromValue(const Value& value);

}  // namespace vn
