// The kinds of model object and the kinds of object a data item is based on, both identified
// in the model by fixed object-type identifiers (lower-case GUIDs of 36 characters), and the
// parsing of qualified object references ("<object-type identifier>-<object name>").
//
// The model fixes only the numbers and identifiers, so the known kinds are named by number.
// Identifiers compare case-insensitively (ASCII letters); nothing else about them is forgiven
// (no trimming). Every function is a pure lookup, safe from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/Value.h"

namespace vn {

// 0 is unknown; 1 to 15 are the known kinds, each with its identifier.
enum VNObjectType : std::uint8_t {
    VNObjectTypeUnknown = 0,
    VNObjectTypeKind1 = 1,    // 9fb193d9-64a4-4d30-b129-ff7c76830f7e
    VNObjectTypeKind2 = 2,    // 9bdcc055-174e-4af6-96cb-a2ceef6c5f09
    VNObjectTypeKind3 = 3,    // d82625fd-5892-40b0-99c9-5c8559c197fc
    VNObjectTypeKind4 = 4,    // 15cf49b5-fc38-4899-91b5-395d02d79889
    VNObjectTypeKind5 = 5,    // 1db606f2-af09-4cf9-a3b5-b481519d28f6
    VNObjectTypeKind6 = 6,    // adbb33c9-0906-4971-833c-998de27e0676
    VNObjectTypeKind7 = 7,    // 00972a17-9975-449e-aab1-d26165d51393
    VNObjectTypeKind8 = 8,    // 84a12160-f59b-4ad7-a683-ea4481ac23e9
    VNObjectTypeKind9 = 9,    // c163e562-42c6-4158-ad83-5b21a14cf30e
    VNObjectTypeKind10 = 10,  // c804fdbd-7c0b-440d-8527-4316c92649a6
    VNObjectTypeKind11 = 11,  // 447527b5-9210-4523-898b-5dccb17be60a
    VNObjectTypeKind12 = 12,  // c9584656-94b6-4ccd-890f-332d11fc2c25
    VNObjectTypeKind13 = 13,  // 2a9e9aba-d2de-4801-ae7f-5e3819222daf
    VNObjectTypeKind14 = 14,  // 926a06b9-3417-4ab4-9f8c-09c2f626bb1c
    VNObjectTypeKind15 = 15,  // 78b3fa0e-174c-4b2b-8716-718167a428b5
};
inline constexpr std::uint8_t kVNObjectTypeLastKnown = 15;

// The identifier of a known kind; absent for VNObjectTypeUnknown. A value above 15 is a
// programming fault that stops the process (vn::fatalError).
[[nodiscard]] std::optional<std::string_view> knownObjectIdString(VNObjectType type);

// What a data item is based on: the same identifiers as the object kinds 6, 7, 11 and 5.
enum VNBasedOnType : std::uint8_t {
    VNBasedOnTypeNone = 0,
    VNBasedOnTypeKind1 = 1,  // object kind 6
    VNBasedOnTypeKind2 = 2,  // object kind 7
    VNBasedOnTypeKind3 = 3,  // object kind 11
    VNBasedOnTypeKind4 = 4,  // object kind 5
};

// The based-on type of an object identifier, compared exactly; absent or any other text gives
// VNBasedOnTypeNone.
[[nodiscard]] VNBasedOnType VNBasedOnTypeFromObjectId(std::optional<std::string_view> objectId);

// A qualified object reference split into its parts.
struct VNObjectReference {
    std::string type;  // the 36 characters of the object-type identifier, as written
    std::string name;  // everything after the "-" that follows the identifier (never empty)
    bool operator==(const VNObjectReference&) const = default;
};

struct VNObjectEnumReference {
    VNObjectType type;
    std::string name;
    bool operator==(const VNObjectEnumReference&) const = default;
};

class VNObjectHelper {
  public:
    VNObjectHelper() = delete;

    // The known kind of an identifier: lower-cased, it must equal one of the fifteen
    // identifiers. Absent for an absent text and for every other text (one with a trailing blank
    // included).
    static std::optional<VNObjectType> known(std::optional<std::string_view> objectId);
    // known(), with VNObjectTypeUnknown where it gives none.
    [[nodiscard]] static VNObjectType objectTypeEnumFromString(
        std::optional<std::string_view> objectId);
    // knownObjectIdString() (fatal above 15).
    [[nodiscard]] static std::optional<std::string_view> objectTypeStringFromEnum(
        VNObjectType type);

    // A qualified reference is a text of at least 38 characters whose 37th character is "-": the
    // type is the first 36 characters and the name is everything after the "-". A value that is
    // not a text or does not have this shape gives no result.
    [[nodiscard]] static std::optional<VNObjectReference> parseObjectTypeAndName(
        const Value& reference);
    // The type mapped through objectTypeEnumFromString(): a type not in the table gives
    // VNObjectTypeUnknown with the name.
    [[nodiscard]] static std::optional<VNObjectEnumReference> parseObjectTypeEnumAndName(
        const Value& reference);
    // As above, but a type not in the table gives no result.
    [[nodiscard]] static std::optional<VNObjectEnumReference> parseKnownObjectTypeEnumAndName(
        const Value& reference);
    // The name when the reference's type is the given identifier (compared case-insensitively);
    // no result for a reference of another type.
    [[nodiscard]] static std::optional<std::string> parseObjectName(std::string_view ofType,
                                                                    const Value& reference);
    // The name when the reference's type is the given known kind; no result for a reference of
    // another or unknown type, and none at all when asked for VNObjectTypeUnknown or a value
    // above 15.
    [[nodiscard]] static std::optional<std::string> parseObjectName(VNObjectType ofTypeEnum,
                                                                    const Value& reference);
};

}  // namespace vn
