#include "vn/model/VNObjectType.h"

#include <gtest/gtest.h>

#include <string>

#include "testing/HostileValues.h"

namespace vn {
namespace {

const std::string kKind5 = "1db606f2-af09-4cf9-a3b5-b481519d28f6";
const std::string kKind6 = "adbb33c9-0906-4971-833c-998de27e0676";
const std::string kNotAKind = "00000000-0000-0000-0000-000000000000";

std::string upper(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

TEST(VNObjectType, EveryKnownKindHasAnIdentifierThatReadsBack) {
    EXPECT_EQ(knownObjectIdString(VNObjectTypeUnknown), std::nullopt);
    EXPECT_EQ(knownObjectIdString(VNObjectTypeKind1), "9fb193d9-64a4-4d30-b129-ff7c76830f7e");
    EXPECT_EQ(knownObjectIdString(VNObjectTypeKind15), "78b3fa0e-174c-4b2b-8716-718167a428b5");
    for (int raw = 1; raw <= 15; ++raw) {
        const auto type = static_cast<VNObjectType>(raw);
        const std::optional<std::string_view> identifier = knownObjectIdString(type);
        ASSERT_TRUE(identifier.has_value());
        EXPECT_EQ(identifier->size(), 36u);
        EXPECT_EQ(VNObjectHelper::known(*identifier), type);
        EXPECT_EQ(VNObjectHelper::known(upper(std::string(*identifier))), type);
        EXPECT_EQ(VNObjectHelper::objectTypeStringFromEnum(type), identifier);
    }
}

TEST(VNObjectTypeDeathTest, IdentifierOfAKindAbove15StopsTheProcess) {
    EXPECT_DEATH(static_cast<void>(knownObjectIdString(static_cast<VNObjectType>(16))),
                 "Fatal error: VNObjectType 16");
    EXPECT_DEATH(
        static_cast<void>(VNObjectHelper::objectTypeStringFromEnum(static_cast<VNObjectType>(255))),
        "VNObjectType 255");
}

TEST(VNObjectType, UnknownIdentifiersGiveNoKind) {
    EXPECT_EQ(VNObjectHelper::known(std::nullopt), std::nullopt);
    EXPECT_EQ(VNObjectHelper::known(kKind5 + " "), std::nullopt);
    EXPECT_EQ(VNObjectHelper::known(" " + kKind5), std::nullopt);
    EXPECT_EQ(VNObjectHelper::known(kKind5.substr(1)), std::nullopt);
    EXPECT_EQ(VNObjectHelper::known(kNotAKind), std::nullopt);
    EXPECT_EQ(VNObjectHelper::known(""), std::nullopt);
    EXPECT_EQ(VNObjectHelper::objectTypeEnumFromString(std::nullopt), VNObjectTypeUnknown);
    EXPECT_EQ(VNObjectHelper::objectTypeEnumFromString(kNotAKind), VNObjectTypeUnknown);
    EXPECT_EQ(VNObjectHelper::objectTypeEnumFromString(kKind5), VNObjectTypeKind5);
}

TEST(VNObjectType, BasedOnTypesMatchFourIdentifiersExactly) {
    EXPECT_EQ(VNBasedOnTypeFromObjectId(kKind6), VNBasedOnTypeKind1);
    EXPECT_EQ(VNBasedOnTypeFromObjectId(knownObjectIdString(VNObjectTypeKind7)),
              VNBasedOnTypeKind2);
    EXPECT_EQ(VNBasedOnTypeFromObjectId(knownObjectIdString(VNObjectTypeKind11)),
              VNBasedOnTypeKind3);
    EXPECT_EQ(VNBasedOnTypeFromObjectId(kKind5), VNBasedOnTypeKind4);
    EXPECT_EQ(VNBasedOnTypeFromObjectId(upper(kKind6)), VNBasedOnTypeNone);
    EXPECT_EQ(VNBasedOnTypeFromObjectId(knownObjectIdString(VNObjectTypeKind1)), VNBasedOnTypeNone);
    EXPECT_EQ(VNBasedOnTypeFromObjectId(std::nullopt), VNBasedOnTypeNone);
}

TEST(VNObjectType, ParsesQualifiedReferences) {
    using Reference = VNObjectReference;
    EXPECT_EQ(VNObjectHelper::parseObjectTypeAndName(kKind5 + "-Customer"),
              (Reference{kKind5, "Customer"}));
    EXPECT_EQ(VNObjectHelper::parseObjectTypeAndName(kKind5 + "-a-b"), (Reference{kKind5, "a-b"}));
    EXPECT_EQ(VNObjectHelper::parseObjectTypeAndName(kNotAKind + "-X"),
              (Reference{kNotAKind, "X"}));
    // The 36 characters are counted as characters, not bytes.
    const std::string accented = "\xC3\xA9" + std::string(35, 'x');
    EXPECT_EQ(VNObjectHelper::parseObjectTypeAndName(accented + "-N"), (Reference{accented, "N"}));
    const std::string astral = "\xF0\x9F\x98\x80" + std::string(34, 'x');  // two UTF-16 units
    EXPECT_EQ(VNObjectHelper::parseObjectTypeAndName(astral + "-N"), (Reference{astral, "N"}));
    // A byte that starts no well-formed sequence is one character; the bytes after it count.
    for (const std::string bad : {"\xE0", "\xC3", "\xF0", "\xFF", "\x80", "\xED\xA0"}) {
        const std::string type = bad + std::string(36 - bad.size(), 'x');
        EXPECT_EQ(VNObjectHelper::parseObjectTypeAndName(type + "-N"), (Reference{type, "N"}));
    }
    EXPECT_EQ(VNObjectHelper::parseObjectTypeAndName(std::string(35, 'x') + "\xE0-N"),
              (Reference{std::string(35, 'x') + "\xE0", "N"}));
    for (const Value& bad :
         {Value(kKind5 + "-"), Value(kKind5 + "xName"), Value(kKind5), Value("short-name"), Value(),
          Value(5), Value(Value::Array{kKind5 + "-A"})}) {
        EXPECT_EQ(VNObjectHelper::parseObjectTypeAndName(bad), std::nullopt) << bad.description();
        EXPECT_EQ(VNObjectHelper::parseObjectTypeEnumAndName(bad), std::nullopt);
        EXPECT_EQ(VNObjectHelper::parseObjectName(kKind5, bad), std::nullopt);
    }
    // Whatever the value, a result is the text itself split at its "-".
    for (const Value& value : testing::hostileValues()) {
        const auto reference = VNObjectHelper::parseObjectTypeAndName(value);
        if (!reference) continue;
        ASSERT_TRUE(value.string()) << "only texts are references";
        EXPECT_EQ(reference->type + "-" + reference->name, *value.string());
    }
}

TEST(VNObjectType, EnumerationFormsMapTheTypeThroughTheTable) {
    using Reference = VNObjectEnumReference;
    const std::string upperKind5 = upper(kKind5);
    EXPECT_EQ(VNObjectHelper::parseObjectTypeEnumAndName(upperKind5 + "-Customer"),
              (Reference{VNObjectTypeKind5, "Customer"}));
    EXPECT_EQ(VNObjectHelper::parseObjectTypeEnumAndName(kNotAKind + "-X"),
              (Reference{VNObjectTypeUnknown, "X"}));
    EXPECT_EQ(VNObjectHelper::parseKnownObjectTypeEnumAndName(kNotAKind + "-X"), std::nullopt);
    EXPECT_EQ(VNObjectHelper::parseKnownObjectTypeEnumAndName(kKind6 + "-Y"),
              (Reference{VNObjectTypeKind6, "Y"}));

    EXPECT_EQ(VNObjectHelper::parseObjectName(upperKind5, kKind5 + "-Customer"), "Customer");
    EXPECT_EQ(VNObjectHelper::parseObjectName(kKind6, kKind5 + "-Customer"), std::nullopt);
    EXPECT_EQ(VNObjectHelper::parseObjectName(VNObjectTypeKind5, upperKind5 + "-Customer"),
              "Customer");
    EXPECT_EQ(VNObjectHelper::parseObjectName(VNObjectTypeKind6, kKind5 + "-Customer"),
              std::nullopt);
    EXPECT_EQ(VNObjectHelper::parseObjectName(VNObjectTypeUnknown, kNotAKind + "-X"), std::nullopt);
    EXPECT_EQ(VNObjectHelper::parseObjectName(static_cast<VNObjectType>(200), kKind5 + "-X"),
              std::nullopt);
}

}  // namespace
}  // namespace vn
