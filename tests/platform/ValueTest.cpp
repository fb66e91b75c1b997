#include "vn/platform/Value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>
#include <unordered_set>
#include <vector>

namespace vn {
namespace {

class Flag final : public Object {
  public:
    explicit Flag(std::optional<bool> answer) : answer_(answer) {}
    std::optional<bool> boolValue() const override { return answer_; }
    std::string description() const override { return "<Flag>"; }

  private:
    std::optional<bool> answer_;
};

TEST(Value, KeepsNilAndTheNullMarkerApart) {
    const Value nil;
    const Value null = Value::null();
    EXPECT_TRUE(nil.isNil());
    EXPECT_TRUE(null.isNull());
    EXPECT_NE(nil, null);
    EXPECT_TRUE(Value(nullptr).isNil());
    EXPECT_TRUE(Value(std::shared_ptr<Object>()).isNil());
    EXPECT_EQ(nil.description(), "nil");
    EXPECT_EQ(null.description(), "<null>");
}

TEST(Value, ChoosesTheKindFromTheCppType) {
    EXPECT_TRUE(Value("text").isString());
    EXPECT_TRUE(Value(std::string("text")).isString());
    EXPECT_TRUE(Value(std::string_view("text")).isString());
    EXPECT_EQ(Value(true).number()->kind(), Number::Kind::boolean);
    EXPECT_EQ(Value(3).number()->kind(), Number::Kind::signedInteger);
    EXPECT_EQ(Value(3.5).number()->kind(), Number::Kind::doublePrecision);
    EXPECT_TRUE(Value(Data{1, 2}).isData());
    EXPECT_TRUE(Value(Date{5}).isDate());
    EXPECT_TRUE(Value(Value::Array{}).isArray());
    EXPECT_TRUE(Value(Value::Dictionary{}).isDictionary());
    EXPECT_TRUE(Value(std::make_shared<Flag>(true)).isObject());
    EXPECT_EQ(Value("x").number(), nullptr);
    EXPECT_EQ(Value(1).string(), nullptr);
}

TEST(Value, AnswersTheBooleanValueMessageOnlyWhereThePlatformDoes) {
    EXPECT_EQ(Value(2).boolValue(), true);
    EXPECT_EQ(Value(0.0).boolValue(), false);
    EXPECT_EQ(Value("Yes").boolValue(), true);
    EXPECT_EQ(Value("  -007").boolValue(), true);
    EXPECT_EQ(Value("0").boolValue(), false);
    EXPECT_EQ(Value("").boolValue(), false);
    EXPECT_EQ(Value(std::make_shared<Flag>(true)).boolValue(), true);
    EXPECT_EQ(Value(std::make_shared<Flag>(std::nullopt)).boolValue(), std::nullopt);
    EXPECT_EQ(Value::null().boolValue(), std::nullopt);
    EXPECT_EQ(Value().boolValue(), std::nullopt);
    EXPECT_EQ(Value(Value::Array{1}).boolValue(), std::nullopt);
}

TEST(Value, TextToBooleanRuleReadsOnlyTheFirstSignificantCharacter) {
    struct Case {
        const char* text;
        bool expected;
    };
    const Case cases[] = {{"true", true},   {"Yes", true},  {"1", true},      {"007", true},
                          {" \t\ny", true}, {"+9x", true},  {"false", false}, {"no", false},
                          {"0", false},     {"abc", false}, {"", false},      {" ", false},
                          {"-0", false},    {"00", false},  {"--1", false},   {"\xff", false}};
    for (const Case& c : cases)
        EXPECT_EQ(textBoolValue(c.text), c.expected) << '"' << c.text << '"';
}

TEST(Value, DescribesCollectionsInPropertyListStyle) {
    const Value nested(Value::Dictionary{
        {"name", "Ana Lía"},
        {"count", 2},
        {"list", Value::Array{1, "two", Value::null(), Value::Array{}}},
        {"empty", ""},
    });
    EXPECT_EQ(nested.description(),
              "{\n"
              "    count = 2;\n"
              "    empty = \"\";\n"
              "    list = (\n"
              "        1,\n"
              "        two,\n"
              "        \"<null>\",\n"
              "        (\n"
              "        )\n"
              "    );\n"
              "    name = \"Ana L\\U00eda\";\n"
              "}");
    EXPECT_EQ(Value(Value::Array{}).description(), "(\n)");
    EXPECT_EQ(Value(Data{0xde, 0xad}).description(), "{length = 2, bytes = 0xdead}");
    EXPECT_EQ(Value(Date{0}).description(), "2001-01-01 00:00:00 +0000");
    EXPECT_EQ(Value(Date{std::nan("")}).description(), "");  // not representable
    EXPECT_EQ(Value(Date::fromTimeIntervalSince1970(-1e14)).description(),
              "-3166904-02-24 14:13:20 +0000");
    EXPECT_EQ(Value(Date::fromTimeIntervalSince1970(-1.01e14)).description(), "");
    EXPECT_EQ(Value("top level text is itself").description(), "top level text is itself");
}

TEST(Value, ComparesAndHashesByValue) {
    const Value a(Value::Dictionary{{"k", Value::Array{1, 2.0, "x"}}});
    const Value b(Value::Dictionary{{"k", Value::Array{1.0, 2, "x"}}});
    EXPECT_EQ(a, b);
    EXPECT_EQ(a.hash(), b.hash());
    EXPECT_NE(a, Value(Value::Dictionary{{"k", Value::Array{1, 2}}}));
    EXPECT_EQ(a["k"], Value(Value::Array{1, 2, "x"}));
    EXPECT_TRUE(a["missing"].isNil());
    EXPECT_TRUE(Value("not a dictionary")["k"].isNil());
    const auto flag = std::make_shared<Flag>(true);
    EXPECT_EQ(Value(flag), Value(flag));
    EXPECT_NE(Value(flag), Value(std::make_shared<Flag>(true)));
}

TEST(Value, CopiesShareTheirPayloadAcrossThreads) {
    const Value shared(Value::Array(1000, Value("payload")));
    std::vector<std::thread> readers;
    std::vector<std::size_t> sizes(4);
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        readers.emplace_back([&, i] {
            for (int round = 0; round < 1000; ++round) {
                const Value copy = shared;
                sizes[i] = copy.array()->size();
            }
        });
    }
    for (auto& reader : readers) reader.join();
    for (const std::size_t size : sizes) EXPECT_EQ(size, 1000u);
    const Value copy = shared;
    EXPECT_EQ(copy.array(), shared.array());
}

}  // namespace
}  // namespace vn
