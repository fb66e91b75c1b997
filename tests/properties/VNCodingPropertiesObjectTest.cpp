#include "vn/properties/VNCodingPropertiesObject.h"

#include <gtest/gtest.h>

#include "testing/KeyedArchiveTesting.h"
#include "vn/coding/KeyedArchiver.h"
#include "vn/coding/KeyedUnarchiver.h"
#include "vn/properties/VNMutableCodingPropertiesObject.h"

namespace vn {
namespace {

using testing::plistlibArchive;
using testing::plistlibDump;
using testing::Shape;

Value::Dictionary sampleProperties() {
    return Value::Dictionary{
        {"title", "Überschrift"},
        {"count", 3},
        {"ratio", 0.75},
        {"visible", true},
        {"color", "#336699"},
        {"created", Date{700000000.5}},
        {"price", Decimal::parse("19.99").value()},
        {"blob", Data{0xDE, 0xAD}},
        {"none", Value::null()},
        {"nested",
         Value::Dictionary{{"list", Value::Array{1, "two", Value::Dictionary{{"deep", false}}}}}},
        {"shape", Value(std::make_shared<Shape>("square", 4))},
    };
}

Data archive(const Value& root) {
    ErrorPtr error;
    auto data = KeyedArchiver::archivedDataWithRootObject(root, &error);
    EXPECT_TRUE(data) << (error ? error->description() : "");
    return data.value_or(Data{});
}

std::string debugDescription(const ErrorPtr& error) {
    if (!error) return "(no error)";
    const std::string* text = error->userInfoValue(NSDebugDescriptionErrorKey).string();
    return text ? *text : error->description();
}

TEST(VNCodingPropertiesObject, RoundTripsEveryKindOfProperty) {
    const auto original = std::make_shared<VNCodingPropertiesObject>(sampleProperties());
    ErrorPtr error;
    const auto decoded = KeyedUnarchiver::unarchivedObjectOfClass<VNCodingPropertiesObject>(
        archive(original), &error);
    ASSERT_TRUE(decoded) << debugDescription(error);
    EXPECT_EQ(Value(decoded->properties()), Value(original->properties()));
    EXPECT_EQ(decoded->getPropertyValueString("title"), "Überschrift");
    EXPECT_EQ(decoded->getPropertyValueColor("color"), Color::fromBytes(0x33, 0x66, 0x99));
}

TEST(VNCodingPropertiesObject, DecodesAsTheMutableClassWithTheSameDictionary) {
    const auto original = std::make_shared<VNCodingPropertiesObject>(sampleProperties());
    KeyedUnarchiver unarchiver(archive(original));
    unarchiver.setClass("VNCodingPropertiesObject", [](Coder& coder) -> ObjectPtr {
        return VNMutableCodingPropertiesObject::initWithCoder(coder);
    });
    const auto decoded = unarchiver.decodeValue("root").objectAs<VNMutableCodingPropertiesObject>();
    ASSERT_TRUE(decoded) << debugDescription(unarchiver.error());
    EXPECT_EQ(Value(decoded->properties()), Value(original->properties()));

    decoded->setIntegerProperty(4, "count");
    EXPECT_EQ(decoded->getPropertyValueInteger("count"), 4);
    EXPECT_EQ(original->getPropertyValueInteger("count"), 3)
        << "the decoded bag is a separate object";
}

TEST(VNCodingPropertiesObject, WritesOnlyTheDictionaryUnderItsKey) {
    auto dump = plistlibDump(
        archive(std::make_shared<VNCodingPropertiesObject>(Value::Dictionary{{"a", 1}})));
    const std::string object = "$objects/" + dump["$top/root"].substr(4);
    const std::string description = "$objects/" + dump[object + "/$class"].substr(4);
    EXPECT_EQ(dump[description + "/$classname"], "str:VNCodingPropertiesObject");
    EXPECT_EQ(dump[description + "/$classes/1"], "str:VNPropertiesObject");
    EXPECT_EQ(dump[description + "/$classes/2"], "str:NSObject");
    EXPECT_EQ(dump[object], "dict:2") << "\"$class\" and the dictionary, nothing else";
    const std::string dictionary =
        "$objects/" + dump[object + "/PropertiesObjectDictionary.vn"].substr(4);
    EXPECT_EQ(dump["$objects/" + dump[dictionary + "/$class"].substr(4) + "/$classname"],
              "str:NSDictionary");
}

TEST(VNCodingPropertiesObject, DecodingFollowsWhatIsStoredUnderTheKey) {
    // Written by plistlib as the platform would: the module-qualified class name decodes too.
    const Data nothingStored = plistlibArchive(
        "top['root'] = add({'$class': cls('VNFoundation.VNCodingPropertiesObject')})");
    const Data nilStored = plistlibArchive(
        "top['root'] = add({'$class': cls('VNCodingPropertiesObject'), "
        "'PropertiesObjectDictionary.vn': UID(0)})");
    const Data dictionaryStored = plistlibArchive(R"(
dictionary = add({'$class': cls('NSMutableDictionary', 'NSDictionary'), 'NS.keys': [add('k')], 'NS.objects': [add(5)]})
top['root'] = add({'$class': cls('VNCodingPropertiesObject'), 'PropertiesObjectDictionary.vn': dictionary}))");
    const Data textStored = plistlibArchive(
        "top['root'] = add({'$class': cls('VNCodingPropertiesObject'), "
        "'PropertiesObjectDictionary.vn': add('oops')})");
    const Data arrayStored = plistlibArchive(R"(
top['root'] = add({'$class': cls('VNMutableCodingPropertiesObject'),
                   'PropertiesObjectDictionary.vn': add({'$class': cls('NSArray'), 'NS.objects': []})}))");

    ErrorPtr error;
    auto empty =
        KeyedUnarchiver::unarchivedObjectOfClass<VNCodingPropertiesObject>(nothingStored, &error);
    ASSERT_TRUE(empty) << debugDescription(error);
    EXPECT_TRUE(empty->properties().empty());
    empty = KeyedUnarchiver::unarchivedObjectOfClass<VNCodingPropertiesObject>(nilStored, &error);
    ASSERT_TRUE(empty) << debugDescription(error);
    EXPECT_TRUE(empty->properties().empty());
    const auto filled = KeyedUnarchiver::unarchivedObjectOfClass<VNCodingPropertiesObject>(
        dictionaryStored, &error);
    ASSERT_TRUE(filled) << debugDescription(error);
    EXPECT_EQ(filled->getPropertyValueInteger("k"), 5);

    EXPECT_FALSE(
        KeyedUnarchiver::unarchivedObjectOfClass<VNCodingPropertiesObject>(textStored, &error));
    EXPECT_NE(debugDescription(error).find(
                  "VNCodingPropertiesObject: the value under \"PropertiesObjectDictionary.vn\" is "
                  "not a dictionary"),
              std::string::npos)
        << debugDescription(error);
    EXPECT_FALSE(KeyedUnarchiver::unarchivedObjectOfClass<VNMutableCodingPropertiesObject>(
        arrayStored, &error));
    EXPECT_NE(debugDescription(error).find("not a dictionary"), std::string::npos);
}

// A coder-level check: initWithCoder answers no object for a text under the key.
class TextUnderKey final : public Object, public Coding {
  public:
    void encodeWithCoder(Coder& coder) const override {
        coder.encodeString("text", VNPropertiesObjectArchiveKey);
    }
    std::string classNameForCoder() const override { return "TextUnderKey"; }
};

TEST(VNCodingPropertiesObject, InitWithCoderAnswersNoObjectForAText) {
    KeyedUnarchiver unarchiver(archive(std::make_shared<TextUnderKey>()));
    std::shared_ptr<VNCodingPropertiesObject> made;
    unarchiver.setClass("TextUnderKey", [&made](Coder& coder) -> ObjectPtr {
        made = VNCodingPropertiesObject::initWithCoder(coder);
        return made;
    });
    EXPECT_TRUE(unarchiver.decodeValue("root").isNil());
    EXPECT_EQ(made, nullptr);
    ASSERT_TRUE(unarchiver.error());
    EXPECT_EQ(unarchiver.error()->code(), NSCoderReadCorruptError);
}

TEST(VNCodingPropertiesObject, BagsNestInsideBags) {
    auto inner = std::make_shared<VNCodingPropertiesObject>(Value::Dictionary{{"x", 1}});
    auto outer =
        std::make_shared<VNCodingPropertiesObject>(Value::Dictionary{{"inner", Value(inner)}});
    const auto decoded =
        KeyedUnarchiver::unarchivedObjectOfClass<VNCodingPropertiesObject>(archive(outer));
    ASSERT_TRUE(decoded);
    const auto decodedInner =
        decoded->getPropertyValue("inner").objectAs<VNCodingPropertiesObject>();
    ASSERT_TRUE(decodedInner);
    EXPECT_EQ(decodedInner->getPropertyValueInteger("x"), 1);
}

TEST(VNCodingPropertiesObject, ArchivingABagWithANonCodableValueReportsAnError) {
    const auto bag = std::make_shared<VNCodingPropertiesObject>(
        Value::Dictionary{{"fine", 1}, {"plain", Value(std::make_shared<Object>())}});
    ErrorPtr error;
    EXPECT_FALSE(KeyedArchiver::archivedDataWithRootObject(bag, &error));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), NSCoderInvalidValueError);
    EXPECT_EQ(bag->getPropertyValueInteger("fine"), 1) << "codable properties stay readable";
}

TEST(VNCodingPropertiesObjectDeathTest, ReadingANonCodableValueStopsTheProcess) {
    const VNCodingPropertiesObject bag(Value::Dictionary{
        {"plain", Value(std::make_shared<Object>())},
        {"hidden",
         Value::Array{1, Value::Dictionary{{"deep", Value(std::make_shared<Object>())}}}}});
    EXPECT_DEATH(bag.getPropertyValue("plain"),
                 "VNCodingPropertiesObject: the value of property 'plain' does not support keyed "
                 "coding \\(an object "
                 "of class Object\\)");
    EXPECT_DEATH(bag.getCodingPropertyValue("hidden"),
                 "property 'hidden' does not support keyed coding");
    EXPECT_DEATH(bag.getPropertyValueString("plain"), "does not support keyed coding");
    EXPECT_DEATH(bag.getPropertyValueBool("hidden"), "does not support keyed coding");
    EXPECT_TRUE(bag.getPropertyValue("missing").isNil()) << "absent passes through";
}

}  // namespace
}  // namespace vn
