#include "vn/model/VNObjectType.h"

#include <algorithm>
#include <array>

#include "model/ModelText.h"
#include "platform/internal/Utf8.h"
#include "vn/platform/FatalError.h"

namespace vn {
namespace {

constexpr std::size_t kIdentifierLength = 36;

// The identifiers of the known kinds 1 to 15, in order.
constexpr std::array<std::string_view, kVNObjectTypeLastKnown> kIdentifiers{
    "9fb193d9-64a4-4d30-b129-ff7c76830f7e", "9bdcc055-174e-4af6-96cb-a2ceef6c5f09",
    "d82625fd-5892-40b0-99c9-5c8559c197fc", "15cf49b5-fc38-4899-91b5-395d02d79889",
    "1db606f2-af09-4cf9-a3b5-b481519d28f6", "adbb33c9-0906-4971-833c-998de27e0676",
    "00972a17-9975-449e-aab1-d26165d51393", "84a12160-f59b-4ad7-a683-ea4481ac23e9",
    "c163e562-42c6-4158-ad83-5b21a14cf30e", "c804fdbd-7c0b-440d-8527-4316c92649a6",
    "447527b5-9210-4523-898b-5dccb17be60a", "c9584656-94b6-4ccd-890f-332d11fc2c25",
    "2a9e9aba-d2de-4801-ae7f-5e3819222daf", "926a06b9-3417-4ab4-9f8c-09c2f626bb1c",
    "78b3fa0e-174c-4b2b-8716-718167a428b5",
};

std::string_view identifierOf(VNObjectType type) {
    return kIdentifiers[static_cast<std::size_t>(type) - 1];
}

// The byte offset at which the text's first `units` UTF-16 code units end (the platform counts
// characters so); absent when the text is shorter or a character straddles that position. A
// byte that starts no well-formed sequence counts as one character (U+FFFD), and the count
// resumes at the byte after it.
std::optional<std::size_t> offsetAfterUTF16Units(std::string_view text, std::size_t units) {
    std::size_t offset = 0;
    std::size_t counted = 0;
    while (counted < units) {
        if (offset >= text.size()) return std::nullopt;
        const platform_internal::Utf8Step step = platform_internal::decodeUtf8(text, offset);
        offset += step.length;
        counted += step.wellFormed && step.codePoint > 0xFFFF ? 2 : 1;
    }
    if (counted != units) return std::nullopt;
    return offset;
}

}  // namespace

std::optional<std::string_view> knownObjectIdString(VNObjectType type) {
    if (type > kVNObjectTypeLastKnown) {
        fatalError("VNObjectType " + std::to_string(static_cast<unsigned>(type)) +
                   " is not an object type");
    }
    if (type == VNObjectTypeUnknown) return std::nullopt;
    return identifierOf(type);
}

VNBasedOnType VNBasedOnTypeFromObjectId(std::optional<std::string_view> objectId) {
    if (!objectId) return VNBasedOnTypeNone;
    if (*objectId == identifierOf(VNObjectTypeKind6)) return VNBasedOnTypeKind1;
    if (*objectId == identifierOf(VNObjectTypeKind7)) return VNBasedOnTypeKind2;
    if (*objectId == identifierOf(VNObjectTypeKind11)) return VNBasedOnTypeKind3;
    if (*objectId == identifierOf(VNObjectTypeKind5)) return VNBasedOnTypeKind4;
    return VNBasedOnTypeNone;
}

std::optional<VNObjectType> VNObjectHelper::known(std::optional<std::string_view> objectId) {
    if (!objectId || objectId->size() != kIdentifierLength) return std::nullopt;
    for (std::size_t i = 0; i < kIdentifiers.size(); ++i) {
        if (model_internal::equalsIgnoringCase(*objectId, kIdentifiers[i]))
            return static_cast<VNObjectType>(i + 1);
    }
    return std::nullopt;
}

VNObjectType VNObjectHelper::objectTypeEnumFromString(std::optional<std::string_view> objectId) {
    return known(objectId).value_or(VNObjectTypeUnknown);
}

std::optional<std::string_view> VNObjectHelper::objectTypeStringFromEnum(VNObjectType type) {
    return knownObjectIdString(type);
}

std::optional<VNObjectReference> VNObjectHelper::parseObjectTypeAndName(const Value& reference) {
    const std::string* text = reference.string();
    if (!text) return std::nullopt;
    const std::optional<std::size_t> typeEnd = offsetAfterUTF16Units(*text, kIdentifierLength);
    if (!typeEnd || *typeEnd + 1 >= text->size() || (*text)[*typeEnd] != '-') return std::nullopt;
    return VNObjectReference{text->substr(0, *typeEnd), text->substr(*typeEnd + 1)};
}

std::optional<VNObjectEnumReference> VNObjectHelper::parseObjectTypeEnumAndName(
    const Value& reference) {
    std::optional<VNObjectReference> parsed = parseObjectTypeAndName(reference);
    if (!parsed) return std::nullopt;
    return VNObjectEnumReference{objectTypeEnumFromString(parsed->type), std::move(parsed->name)};
}

std::optional<VNObjectEnumReference> VNObjectHelper::parseKnownObjectTypeEnumAndName(
    const Value& reference) {
    std::optional<VNObjectEnumReference> parsed = parseObjectTypeEnumAndName(reference);
    if (!parsed || parsed->type == VNObjectTypeUnknown) return std::nullopt;
    return parsed;
}

std::optional<std::string> VNObjectHelper::parseObjectName(std::string_view ofType,
                                                           const Value& reference) {
    std::optional<VNObjectReference> parsed = parseObjectTypeAndName(reference);
    if (!parsed || model_internal::lowercased(parsed->type) != model_internal::lowercased(ofType))
        return std::nullopt;
    return std::move(parsed->name);
}

std::optional<std::string> VNObjectHelper::parseObjectName(VNObjectType ofTypeEnum,
                                                           const Value& reference) {
    if (ofTypeEnum == VNObjectTypeUnknown || ofTypeEnum > kVNObjectTypeLastKnown)
        return std::nullopt;
    std::optional<VNObjectEnumReference> parsed = parseKnownObjectTypeEnumAndName(reference);
    if (!parsed || parsed->type != ofTypeEnum) return std::nullopt;
    return std::move(parsed->name);
}

}  // namespace vn
