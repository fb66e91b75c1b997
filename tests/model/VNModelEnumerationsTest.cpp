#include "vn/model/VNModelEnumerations.h"

#include <gtest/gtest.h>

#include <string>

namespace vn {
namespace {

TEST(VNModelEnumerations, SpecialDomainsMapBothWaysByExactName) {
    for (int raw = 0; raw <= 6; ++raw) {
        const auto type = static_cast<VNSpecialDomainType>(raw);
        const std::optional<std::string_view> name = VNSpecialDomainNameFromDomainType(type);
        ASSERT_TRUE(name.has_value()) << raw;
        EXPECT_EQ(VNSpecialDomainTypeFromDomainName(*name), type);
    }
    EXPECT_EQ(VNSpecialDomainNameFromDomainType(VNSpecialDomainTypeGeolocation),
              "Vornic.Geolocation");
    EXPECT_EQ(VNSpecialDomainTypeFromDomainName("Vornic.Url"), VNSpecialDomainTypeUrl);
    for (const char* unmatched : {"vornic.email", "Vornic.Email ", "", "Email"}) {
        EXPECT_EQ(VNSpecialDomainTypeFromDomainName(unmatched), VNSpecialDomainTypeNone)
            << unmatched;
    }
    EXPECT_EQ(VNSpecialDomainTypeFromDomainName(std::nullopt), VNSpecialDomainTypeNone);
    EXPECT_EQ(VNSpecialDomainNameFromDomainType(static_cast<VNSpecialDomainType>(7)), std::nullopt);
    EXPECT_EQ(VNSpecialDomainNameFromDomainType(VNSpecialDomainTypeNone), std::nullopt);
}

TEST(VNModelEnumerations, ParameterKindsIgnoreCaseAndDefaultToIn) {
    struct Case {
        std::optional<std::string_view> text;
        VNParameterKind expected;
    };
    const Case cases[] = {
        {"OUT", VNParameterKindOut}, {"out", VNParameterKindOut}, {"InOut", VNParameterKindInOut},
        {"in", VNParameterKindIn},   {"", VNParameterKindIn},     {std::nullopt, VNParameterKindIn},
        {"outx", VNParameterKindIn}, {" out", VNParameterKindIn}, {"in out", VNParameterKindIn},
    };
    for (const Case& c : cases)
        EXPECT_EQ(VNParameterKindFromString(c.text), c.expected) << c.text.value_or("nil");
    EXPECT_EQ(NSStringFromVNParameterKind(VNParameterKindIn), "in");
    EXPECT_EQ(NSStringFromVNParameterKind(VNParameterKindOut), "out");
    EXPECT_EQ(NSStringFromVNParameterKind(VNParameterKindInOut), "inout");
    EXPECT_EQ(NSStringFromVNParameterKind(static_cast<VNParameterKind>(3)), "unknown");
}

TEST(VNModelEnumerations, ModeNameIsTheLowestSetModeBit) {
    const std::pair<int, std::string_view> cases[] = {
        {0, "DSP"},  {1, "DSP"},  {2, "INS"},  {4, "UPD"},  {8, "DLT"},   {6, "INS"},
        {12, "UPD"}, {15, "DSP"}, {16, "DSP"}, {24, "DLT"}, {255, "DSP"}, {10, "INS"},
    };
    for (const auto& [modes, name] : cases) {
        EXPECT_EQ(VNStringFromModeType(static_cast<VNModeType>(modes)), name) << modes;
    }
    EXPECT_EQ(VNStringFromModeType(VNModeTypeUpdate | VNModeTypeDelete), "UPD");
}

TEST(VNModelEnumerations, AlignmentNamesAreCaseSensitive) {
    EXPECT_EQ(VNVerticalAlignFromValue("Top"), VNVerticalAlignTop);
    EXPECT_EQ(VNVerticalAlignFromValue("Center"), VNVerticalAlignMiddle);
    EXPECT_EQ(VNVerticalAlignFromValue("Middle"), VNVerticalAlignMiddle);
    EXPECT_EQ(VNVerticalAlignFromValue("Bottom"), VNVerticalAlignBottom);
    EXPECT_EQ(VNHorizontalAlignFromValue("Left"), VNHorizontalAlignLeft);
    EXPECT_EQ(VNHorizontalAlignFromValue("Center"), VNHorizontalAlignCenter);
    EXPECT_EQ(VNHorizontalAlignFromValue("Right"), VNHorizontalAlignRight);
    EXPECT_EQ(VNHorizontalAlignFromValue("Justify"), VNHorizontalAlignJustify);
    for (const Value& other : {Value("center"), Value("Default"), Value("Middle "), Value(""),
                               Value(), Value::null(), Value(2), Value(Value::Array{"Top"})}) {
        EXPECT_EQ(VNVerticalAlignFromValue(other), VNVerticalAlignDefault) << other.description();
        EXPECT_EQ(VNHorizontalAlignFromValue(other), VNHorizontalAlignDefault)
            << other.description();
    }
    EXPECT_EQ(VNHorizontalAlignFromValue("Middle"), VNHorizontalAlignDefault);
    EXPECT_EQ(VNVerticalAlignFromValue("Left"), VNVerticalAlignDefault);
}

}  // namespace
}  // namespace vn
