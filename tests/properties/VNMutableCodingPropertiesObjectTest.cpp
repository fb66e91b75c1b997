#include "vn/properties/VNMutableCodingPropertiesObject.h"

#include <gtest/gtest.h>

#include "testing/KeyedArchiveTesting.h"
#include "vn/coding/KeyedArchiver.h"
#include "vn/coding/KeyedUnarchiver.h"

namespace vn {
namespace {

using testing::plistlibDump;
using testing::Shape;

TEST(VNMutableCodingPropertiesObject, ChangesSurviveAnArchiveRoundTrip) {
    auto bag = std::make_shared<VNMutableCodingPropertiesObject>(
        Value::Dictionary{{"remove me", 1}, {"keep", "x"}});
    bag->setBoolProperty(true, "flag");
    bag->setIntegerProperty(-9, "count");
    bag->setFloatProperty(0.5, "ratio");
    bag->setPropertyValue(Value::Array{Value(std::make_shared<Shape>("tri", 3))}, "shapes");
    bag->setCodingPropertyValue(Date{1}, "when");
    bag->setCodingPropertyValue(Value{}, "remove me");

    ErrorPtr error;
    const auto data = KeyedArchiver::archivedDataWithRootObject(bag, &error);
    ASSERT_TRUE(data) << (error ? error->description() : "");
    const auto decoded =
        KeyedUnarchiver::unarchivedObjectOfClass<VNMutableCodingPropertiesObject>(*data, &error);
    ASSERT_TRUE(decoded) << (error ? error->description() : "");
    EXPECT_EQ(Value(decoded->properties()), Value(bag->properties()));
    EXPECT_FALSE(decoded->properties().count("remove me"));
    EXPECT_TRUE(decoded->getPropertyValueBool("flag"));
    EXPECT_EQ(decoded->getPropertyValueInteger("count"), -9);
    EXPECT_EQ(decoded->getPropertyValueFloat("ratio"), 0.5);
}

TEST(VNMutableCodingPropertiesObject, ArchivesUnderItsOwnClassChain) {
    auto dump = plistlibDump(*KeyedArchiver::archivedDataWithRootObject(
        std::make_shared<VNMutableCodingPropertiesObject>()));
    const std::string description =
        "$objects/" + dump["$objects/" + dump["$top/root"].substr(4) + "/$class"].substr(4);
    EXPECT_EQ(dump[description + "/$classname"], "str:VNMutableCodingPropertiesObject");
    EXPECT_EQ(dump[description + "/$classes/1"], "str:VNMutablePropertiesObject");
    EXPECT_EQ(dump[description + "/$classes/2"], "str:VNPropertiesObject");
    EXPECT_EQ(dump[description + "/$classes/3"], "str:NSObject");
}

TEST(VNMutableCodingPropertiesObjectDeathTest, StoringOrReadingANonCodableValueStopsTheProcess) {
    EXPECT_DEATH(
        {
            VNMutableCodingPropertiesObject bag;
            bag.setPropertyValue(Value(std::make_shared<Object>()), "plain");
        },
        "VNMutableCodingPropertiesObject: the value of property 'plain' does not support keyed "
        "coding");
    EXPECT_DEATH(
        {
            VNMutableCodingPropertiesObject bag;
            bag.setCodingPropertyValue(
                Value::Dictionary{{"inner", Value(std::make_shared<Object>())}}, "nested");
        },
        "property 'nested' does not support keyed coding");
    EXPECT_DEATH(
        {
            VNMutableCodingPropertiesObject bag(
                Value::Dictionary{{"plain", Value(std::make_shared<Object>())}});
            bag.getPropertyValueInteger("plain");
        },
        "property 'plain' does not support keyed coding");
}

}  // namespace
}  // namespace vn
