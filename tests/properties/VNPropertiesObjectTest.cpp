#include "vn/properties/VNPropertiesObject.h"

#include <gtest/gtest.h>

#include <limits>

namespace vn {
namespace {

VNPropertiesObject bag() {
    return VNPropertiesObject(Value::Dictionary{
        {"yes text", "YES"},
        {"no text", "no"},
        {"one", 1},
        {"zero", 0},
        {"true", true},
        {"pi", 3.14159},
        {"numeric text", "42"},
        {"decimal text", "2.5"},
        {"word", "hello"},
        {"empty text", ""},
        {"null", Value::null()},
        {"list", Value::Array{1}},
        {"red", "#FF0000"},
        {"green number", 0x00FF00},
        {"Case", "upper"},
    });
}

TEST(VNPropertiesObject, TypedGettersCoerceOnReadAndDefaultWhenMissing) {
    const VNPropertiesObject properties = bag();
    struct Case {
        std::string name;
        bool boolean;
        bool booleanDefaultTrue;
        std::int64_t integer;
        double real;
    };
    const std::vector<Case> cases = {
        {"yes text", true, true, 0, 0.0},
        {"no text", false, false, 0, 0.0},
        {"one", true, true, 1, 1.0},
        {"zero", false, false, 0, 0.0},
        {"true", true, true, 1, 1.0},
        {"pi", true, true, 3, 3.14159},
        {"numeric text", true, true, 42, 42.0},
        {"decimal text", true, true, 2, 2.5},
        {"word", false, false, 0, 0.0},
        {"empty text", false, true, 0, 0.0},
        {"null", false, true, 0, 0.0},
        {"list", false, true, 0, 0.0},
        {"missing", false, true, 0, 0.0},
        {"case", false, true, 0, 0.0},  // keys compare exactly: "Case" is another name
    };
    for (const Case& c : cases) {
        EXPECT_EQ(properties.getPropertyValueBool(c.name), c.boolean) << c.name;
        EXPECT_EQ(properties.getPropertyValueBool(c.name, true), c.booleanDefaultTrue) << c.name;
        EXPECT_EQ(properties.getPropertyValueInteger(c.name), c.integer) << c.name;
        EXPECT_DOUBLE_EQ(properties.getPropertyValueFloat(c.name), c.real) << c.name;
    }
}

TEST(VNPropertiesObject, StringAndPlainLookupsDoNotConvert) {
    const VNPropertiesObject properties = bag();
    EXPECT_EQ(properties.getPropertyValueString("word"), "hello");
    EXPECT_EQ(properties.getPropertyValueString("empty text"), "");
    EXPECT_EQ(properties.getPropertyValueString("one"), std::nullopt)
        << "a number is not converted";
    EXPECT_EQ(properties.getPropertyValueString("null"), std::nullopt);
    EXPECT_EQ(properties.getPropertyValueString("missing"), std::nullopt);
    EXPECT_EQ(properties.getPropertyValue("one"), Value(1));
    EXPECT_TRUE(properties.getPropertyValue("missing").isNil());
    EXPECT_TRUE(properties.getPropertyValue("null").isNull())
        << "the null marker is a present value";
    EXPECT_TRUE(VNPropertiesObject().properties().empty());
    EXPECT_TRUE(VNPropertiesObject(std::nullopt).properties().empty());
}

TEST(VNPropertiesObject, ColorGetterReadsTheModelsNotations) {
    const VNPropertiesObject properties = bag();
    EXPECT_EQ(properties.getPropertyValueColor("red"), (Color{1, 0, 0, 1}));
    EXPECT_EQ(properties.getPropertyValueColor("green number"), (Color{0, 1, 0, 1}));
    EXPECT_EQ(properties.getPropertyValueColor("word"), std::nullopt);
    EXPECT_EQ(properties.getPropertyValueColor("missing"), std::nullopt);
}

// A subclass that answers every name itself: the typed getters must all go through it.
class EverythingIsSeven final : public VNPropertiesObject {
  public:
    Value getPropertyValue(std::string_view) const override { return "7"; }
};

TEST(VNPropertiesObject, TypedGettersReadThroughTheOverridableLookup) {
    const EverythingIsSeven properties;
    EXPECT_TRUE(properties.getPropertyValueBool("anything"));
    EXPECT_EQ(properties.getPropertyValueInteger("anything"), 7);
    EXPECT_EQ(properties.getPropertyValueFloat("anything"), 7.0);
    EXPECT_EQ(properties.getPropertyValueString("anything"), "7");
    EXPECT_EQ(properties.getPropertyValueColor("anything"), std::nullopt);
}

TEST(VNPropertiesObject, DescriptionAppendsThePropertiesToTheObjectsDescription) {
    const VNPropertiesObject properties(Value::Dictionary{{"name", "two words"}, {"count", 2}});
    const std::string description = properties.description();
    const std::string objectPart = properties.Object::description();
    EXPECT_EQ(objectPart.rfind("<VNPropertiesObject: 0x", 0), 0u) << objectPart;
    EXPECT_EQ(description,
              objectPart + "\nProperties:\n{\n    count = 2;\n    name = \"two words\";\n}");

    const VNPropertiesObject empty;
    EXPECT_EQ(empty.description(), empty.Object::description() + "\nProperties:\n" +
                                       Value(Value::Dictionary{}).description());
}

}  // namespace
}  // namespace vn
