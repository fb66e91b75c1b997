#include "vn/coding/Coding.h"

#include <gtest/gtest.h>

#include <thread>

#include "testing/KeyedArchiveTesting.h"
#include "vn/coding/KeyedArchiver.h"
#include "vn/coding/KeyedUnarchiver.h"

namespace vn {
namespace {

using testing::Shape;

// An archivable class that keeps the default class chain.
class Plain final : public Object, public Coding {
  public:
    void encodeWithCoder(Coder&) const override {}
    std::string classNameForCoder() const override { return "VNTestPlain"; }
};

TEST(Coding, TheDefaultClassChainEndsWithTheRootClass) {
    EXPECT_EQ(Plain().classHierarchyForCoder(),
              (std::vector<std::string>{"VNTestPlain", "NSObject"}));
}

TEST(Coding, RegistryFindsReplacesAndMissesDecoders) {
    EXPECT_FALSE(Coding::decoderForClassName("VNTestNeverRegistered"));
    EXPECT_TRUE(Coding::decoderForClassName("VNTestShape"));

    const Data data = *KeyedArchiver::archivedDataWithRootObject(std::make_shared<Plain>());
    ErrorPtr error;
    EXPECT_FALSE(KeyedUnarchiver::unarchivedValue(data, &error)) << "no decoder registered yet";

    Coding::registerClass("VNTestPlain", [](Coder&) -> ObjectPtr { return nullptr; });
    Coding::registerClass("VNTestPlain",
                          [](Coder&) -> ObjectPtr { return std::make_shared<Plain>(); });
    const auto decoded = KeyedUnarchiver::unarchivedObjectOfClass<Plain>(data, &error);
    EXPECT_TRUE(decoded) << "the later registration replaced the earlier one";
}

TEST(Coding, RegistryIsSafeToUseFromSeveralThreads) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 200; ++i) {
                const std::string name =
                    "VNTestThreaded" + std::to_string(t) + "_" + std::to_string(i);
                Coding::registerClass(name, &Shape::initWithCoder);
                EXPECT_TRUE(Coding::decoderForClassName(name));
            }
        });
    }
    for (auto& thread : threads) thread.join();
}

TEST(Coding, ObjectsNestedInObjectsAndCollectionsRoundTrip) {
    auto leaf = std::make_shared<Shape>("leaf", 1,
                                        Value::Dictionary{{"notes", Value::Array{"a", Date{3}}}});
    auto middle = std::make_shared<Shape>("middle", 2, Value::Array{leaf, Value::null(), leaf});
    auto root = std::make_shared<Shape>("root", 3, Value(middle));

    ErrorPtr error;
    const auto decoded = KeyedUnarchiver::unarchivedObjectOfClass<Shape>(
        *KeyedArchiver::archivedDataWithRootObject(root), &error);
    ASSERT_TRUE(decoded) << (error ? error->description() : "");
    EXPECT_TRUE(decoded->isEqual(*root));
    const auto decodedMiddle = decoded->child().objectAs<Shape>();
    ASSERT_TRUE(decodedMiddle);
    const auto& list = *decodedMiddle->child().array();
    EXPECT_EQ(list[0].object(), list[2].object()) << "a shared object stays shared";
}

TEST(Coding, KeyedCodableValuesAreEveryKindButObjectsWithoutCoding) {
    const Value plainObject(std::make_shared<Object>());
    const Value shape(std::make_shared<Shape>("s", 1));
    const std::vector<std::pair<Value, bool>> cases = {
        {Value{}, true},
        {Value::null(), true},
        {42, true},
        {Decimal::parse("1.5").value(), true},
        {"text", true},
        {Data{1}, true},
        {Date{0}, true},
        {shape, true},
        {Value::Array{1, Value::Dictionary{{"k", shape}}}, true},
        {plainObject, false},
        {Value::Array{1, Value::Array{plainObject}}, false},
        {Value::Dictionary{{"a", 1}, {"b", Value::Dictionary{{"c", plainObject}}}}, false},
        {Value(Error::make("domain", 1)), false},
    };
    for (const auto& [value, codable] : cases)
        EXPECT_EQ(isKeyedCodable(value), codable) << value.description();

    Value deep = 1;
    for (int i = 0; i < KeyedArchiver::kMaxNestingDepth; ++i) deep = Value::Array{deep};
    EXPECT_FALSE(isKeyedCodable(deep)) << "deeper than an archive can hold";
}

}  // namespace
}  // namespace vn
