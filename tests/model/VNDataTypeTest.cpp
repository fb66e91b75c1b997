#include "vn/model/VNDataType.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "testing/HostileValues.h"

namespace vn {
namespace {

TEST(VNDataType, CanonicalNamesReadBackAsTheirType) {
    for (int raw = 0; raw <= 20; ++raw) {
        const auto type = static_cast<VNDataType>(raw);
        const std::string name(NSStringFromVNDataType(type));
        EXPECT_NE(name, "unknown") << raw;
        // The extended types are only reachable through "typ/".
        const std::string written = raw >= VNDataTypeHttpClient ? "typ/" + name : name;
        EXPECT_EQ(VNDataTypeFromString(Value(written)), type) << written;
    }
    EXPECT_EQ(NSStringFromVNDataType(VNDataTypeGeography), "geography");
    EXPECT_EQ(NSStringFromVNDataType(VNDataTypeUnknown), "unknown");
    EXPECT_EQ(NSStringFromVNDataType(static_cast<VNDataType>(21)), "unknown");
    EXPECT_EQ(NSStringFromVNDataType(static_cast<VNDataType>(200)), "unknown");
}

TEST(VNDataType, OnlyBitmapAudioVideoAndBinaryFileAreMultimedia) {
    for (int raw = 0; raw <= 255; ++raw) {
        const bool multimedia = raw == 9 || raw == 12 || raw == 13 || raw == 15;
        EXPECT_EQ(VNDataTypeIsMultimediaType(static_cast<VNDataType>(raw)), multimedia) << raw;
    }
}

TEST(VNDataType, ReadsTypeNamesWithSizes) {
    struct Case {
        Value name;
        Value extended;
        VNDataType expected;
        std::optional<std::uint64_t> length;
        std::optional<std::uint64_t> decimals;
    };
    const Case cases[] = {
        {"NUMERIC(10,2)", {}, VNDataTypeNumeric, 10, 2},
        {"Character(20)", {}, VNDataTypeCharacter, std::nullopt, std::nullopt},
        {"numeric( 8 , 3 )", {}, VNDataTypeNumeric, 8, 3},
        {"numeric(10,2,1)", {}, VNDataTypeNumeric, std::nullopt, std::nullopt},
        {"numeric(a,b)", {}, VNDataTypeNumeric, std::nullopt, std::nullopt},
        {"numeric(-1,2)", {}, VNDataTypeNumeric, std::nullopt, 2},
        {"numeric(,)", {}, VNDataTypeNumeric, std::nullopt, std::nullopt},
        {"varchar(1(2,3)", {}, VNDataTypeUnknown, 2, 3},  // cut at the last "("
        {"(10,2)", {}, VNDataTypeUnknown, 10, 2},
        {"numeric)", {}, VNDataTypeUnknown, std::nullopt, std::nullopt},
        {"DateTime", {}, VNDataTypeDateTime, std::nullopt, std::nullopt},
        {"LongVarChar", {}, VNDataTypeLongVarChar, std::nullopt, std::nullopt},
        {"typ/baseimage", {}, VNDataTypeBitmap, std::nullopt, std::nullopt},
        {"VN_BUSCOMP_LEVEL", {}, VNDataTypeSDT, std::nullopt, std::nullopt},
        {"vn_external_object", {}, VNDataTypeExternalObject, std::nullopt, std::nullopt},
        {"GeoPolygon", {}, VNDataTypeGeography, std::nullopt, std::nullopt},
        {"geoline", {}, VNDataTypeGeography, std::nullopt, std::nullopt},
        {"typ/httpclient", {}, VNDataTypeHttpClient, std::nullopt, std::nullopt},
        {"TYP/Directory", {}, VNDataTypeDirectory, std::nullopt, std::nullopt},
        {"vn_usrdeftyp", "Properties", VNDataTypeProperties, std::nullopt, std::nullopt},
        {"VN_UsrDefTyp", "file", VNDataTypeFile, std::nullopt, std::nullopt},
        {"vn_usrdeftyp", {}, VNDataTypeUnknown, std::nullopt, std::nullopt},
        {"vn_usrdeftyp", 19, VNDataTypeUnknown, std::nullopt, std::nullopt},
        {"vn_usrdeftyp", "nothing", VNDataTypeUnknown, std::nullopt, std::nullopt},
        {"httpclient", {}, VNDataTypeUnknown, std::nullopt, std::nullopt},
        {"typ/", {}, VNDataTypeUnknown, std::nullopt, std::nullopt},
        {"numeric ", {}, VNDataTypeUnknown, std::nullopt, std::nullopt},
        {"", {}, VNDataTypeUnknown, std::nullopt, std::nullopt},
    };
    for (const Case& c : cases) {
        std::optional<Number> length = Number(99);
        std::optional<Number> decimals = Number(99);
        EXPECT_EQ(VNDataTypeWithInfoFromString(c.name, c.extended, &length, &decimals), c.expected)
            << c.name.description();
        EXPECT_EQ(length.has_value(), c.length.has_value()) << c.name.description();
        EXPECT_EQ(decimals.has_value(), c.decimals.has_value()) << c.name.description();
        if (length && c.length) {
            EXPECT_EQ(length->unsignedIntegerValue(), *c.length) << c.name.description();
        }
        if (decimals && c.decimals) {
            EXPECT_EQ(decimals->unsignedIntegerValue(), *c.decimals) << c.name.description();
        }
        EXPECT_EQ(VNDataTypeFromString(c.name, c.extended), c.expected);
    }
}

TEST(VNDataType, GivesUnknownAndLeavesTheSlotsAloneForNonTexts) {
    for (const Value& value : testing::hostileValues()) {
        if (value.isString()) continue;
        std::optional<Number> length = Number(7);
        EXPECT_EQ(VNDataTypeWithInfoFromString(value, "x", &length, nullptr), VNDataTypeUnknown);
        EXPECT_EQ(length, Number(7));
    }
    std::optional<Number> length;
    EXPECT_EQ(VNDataTypeWithInfoFromString("numeric(10,2)", {}, &length, nullptr),
              VNDataTypeNumeric);
    EXPECT_EQ(length, Number(10));  // one slot is enough to read the size
    for (const Value& value : testing::hostileValues()) {
        const VNDataType type = VNDataTypeFromString(value, value);
        EXPECT_TRUE(type <= VNDataTypeProperties || type == VNDataTypeUnknown);
    }
}

// Names are compared by Unicode case folding, which may lengthen a character ("\uFB01" folds
// to "fi") or shorten one (the Kelvin sign to "k"); a long or malformed name matches nothing.
TEST(VNDataType, NamesCompareByCaseFoldingWhateverTheirLength) {
    EXPECT_EQ(VNDataTypeFromString(Value("NuMeRiC")), VNDataTypeNumeric);
    EXPECT_EQ(VNDataTypeFromString(Value("typ/\xEF\xAC\x81le")), VNDataTypeFile);
    EXPECT_EQ(VNDataTypeFromString(Value("typ/\xEF\xAC\x81LE")), VNDataTypeFile);
    EXPECT_EQ(VNDataTypeFromString(Value("typ/\xEF\xAC\x81lex")), VNDataTypeUnknown);
    EXPECT_EQ(VNDataTypeFromString(Value("numeric\xFF")), VNDataTypeUnknown);
    EXPECT_EQ(VNDataTypeFromString(Value("numeric" + std::string(1 << 20, 'x'))),
              VNDataTypeUnknown);
    std::string accented;
    for (int i = 0; i < (1 << 19); ++i) accented += "\xC3\xA9";
    std::optional<Number> length;
    std::optional<Number> decimals;
    EXPECT_EQ(VNDataTypeWithInfoFromString(Value(accented + "(10,2)"), Value(), &length, &decimals),
              VNDataTypeUnknown);
    EXPECT_EQ(length, Number::fromUnsigned(10));
    EXPECT_EQ(decimals, Number::fromUnsigned(2));
}

TEST(VNDataType, ExtendedDataTypeNameLowerCasesTypPrefixedNamesOnly) {
    EXPECT_EQ(ExtendedDataTypeName("typ/HttpClient", std::nullopt), "httpclient");
    EXPECT_EQ(ExtendedDataTypeName("TYP/\xC3\x84Rger", "x"),
              "\xC3\xA4rger");  // Unicode letters too
    EXPECT_EQ(ExtendedDataTypeName("typ/", "x"), "");
    EXPECT_EQ(ExtendedDataTypeName("vn_usrdeftyp", "MyType"), "MyType");  // unchanged
    EXPECT_EQ(ExtendedDataTypeName("VN_USRDEFTYP", std::nullopt), std::nullopt);
    EXPECT_EQ(ExtendedDataTypeName("numeric", "MyType"), std::nullopt);
    EXPECT_EQ(ExtendedDataTypeName(std::nullopt, "MyType"), std::nullopt);
}

}  // namespace
}  // namespace vn
