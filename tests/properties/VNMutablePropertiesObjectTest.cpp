#include "vn/properties/VNMutablePropertiesObject.h"

#include <gtest/gtest.h>

#include <limits>

namespace vn {
namespace {

TEST(VNMutablePropertiesObject, SettersReplaceAndNilOrRemovalDeletes) {
    VNMutablePropertiesObject properties(Value::Dictionary{{"keep", 1}, {"gone", 2}});
    properties.setPropertyValue("new", "added");
    properties.setPropertyValue(3, "keep");
    properties.setPropertyValue(Value{}, "gone");
    EXPECT_EQ(Value(properties.properties()),
              Value(Value::Dictionary{{"keep", 3}, {"added", "new"}}));

    properties.removePropertyFoPropertyName("keep");
    properties.removePropertyFoPropertyName("never there");
    properties.setPropertyValue(Value{}, "never there either");
    EXPECT_EQ(Value(properties.properties()), Value(Value::Dictionary{{"added", "new"}}));

    properties.setPropertyValue(Value::null(), "null");
    EXPECT_TRUE(properties.getPropertyValue("null").isNull())
        << "the null marker is stored, not a removal";
}

TEST(VNMutablePropertiesObject, TypedSettersStoreNumbersTheTypedGettersReadBack) {
    VNMutablePropertiesObject properties;
    properties.setBoolProperty(true, "flag");
    properties.setIntegerProperty(std::numeric_limits<std::int64_t>::min(), "smallest");
    properties.setFloatProperty(-2.75, "ratio");

    EXPECT_TRUE(properties.getPropertyValueBool("flag"));
    EXPECT_EQ(properties.getPropertyValueInteger("smallest"),
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(properties.getPropertyValueFloat("ratio"), -2.75);
    EXPECT_EQ(properties.getPropertyValueInteger("ratio"), -2);

    EXPECT_EQ(properties.getPropertyValue("flag").number()->kind(), Number::Kind::boolean);
    EXPECT_EQ(properties.getPropertyValue("smallest").number()->kind(),
              Number::Kind::signedInteger);
    EXPECT_EQ(properties.getPropertyValue("ratio").number()->kind(), Number::Kind::doublePrecision);
    EXPECT_EQ(properties.getPropertyValueString("flag"), std::nullopt) << "numbers are not texts";
}

// Records every store, to show that the typed setters go through the overridable setter.
class RecordingProperties final : public VNMutablePropertiesObject {
  public:
    void setPropertyValue(const Value& value, std::string_view name) override {
        names.emplace_back(name);
        VNMutablePropertiesObject::setPropertyValue(value, name);
    }
    std::vector<std::string> names;
};

TEST(VNMutablePropertiesObject, TypedSettersStoreThroughTheOverridableSetter) {
    RecordingProperties properties;
    properties.setBoolProperty(false, "b");
    properties.setIntegerProperty(1, "i");
    properties.setFloatProperty(1.5, "f");
    EXPECT_EQ(properties.names, (std::vector<std::string>{"b", "i", "f"}));
    EXPECT_EQ(properties.properties().size(), 3u);
}

}  // namespace
}  // namespace vn
