#include "vn/values/JSON.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "testing/HostileValues.h"

namespace vn {
namespace {

using VNUtilities::jsonObject;

std::string nestedArrays(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

TEST(JSON, DecodesEveryKindWithExactNumbers) {
    ErrorPtr error = Error::make("stale", 1);
    const Value value = jsonObject(
        R"({"int": -42, "big": 9223372036854775808, "max": 18446744073709551615, "huge": 18446744073709551616,
            "real": 0.1, "exp": 1E2, "yes": true, "no": false, "none": null, "text": "\u00e9\ud83d\ude00\n",
            "list": [1, [2, {}]], "dup": 1, "dup": 2})",
        std::nullopt, &error);
    EXPECT_EQ(error, nullptr);
    ASSERT_TRUE(value.isDictionary());
    EXPECT_EQ(value["int"].number()->kind(), Number::Kind::signedInteger);
    EXPECT_EQ(value["int"].number()->integerValue(), -42);
    EXPECT_EQ(value["big"].number()->kind(), Number::Kind::unsignedInteger);
    EXPECT_EQ(value["big"].number()->unsignedIntegerValue(), 9223372036854775808u);
    EXPECT_EQ(value["max"].number()->unsignedIntegerValue(),
              std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(value["huge"].number()->kind(), Number::Kind::doublePrecision);
    EXPECT_EQ(value["huge"].number()->doubleValue(), 18446744073709551616.0);
    EXPECT_EQ(value["real"].number()->doubleValue(), 0.1);
    EXPECT_EQ(value["exp"].number()->kind(), Number::Kind::doublePrecision);
    EXPECT_TRUE(value["yes"].number()->isBoolean());
    EXPECT_TRUE(value["yes"].number()->boolValue());
    EXPECT_FALSE(value["no"].number()->boolValue());
    EXPECT_TRUE(value["none"].isNull());
    EXPECT_TRUE(value["missing"].isNil());
    EXPECT_EQ(*value["text"].string(), "\xC3\xA9\xF0\x9F\x98\x80\n");
    EXPECT_EQ(value["list"],
              Value(Value::Array{1, Value(Value::Array{2, Value(Value::Dictionary{})})}));
    EXPECT_EQ(value["dup"], Value(2));
}

TEST(JSON, AcceptsScalarsDataAndAByteOrderMark) {
    EXPECT_EQ(jsonObject("  12 "), Value(12));
    EXPECT_TRUE(jsonObject("null").isNull());
    EXPECT_EQ(jsonObject("\"x\""), Value("x"));
    EXPECT_EQ(jsonObject("\xEF\xBB\xBF[true]"), Value(Value::Array{true}));
    const std::string text = R"({"a":[1]})";
    EXPECT_EQ(jsonObject(Data(text.begin(), text.end())),
              Value(Value::Dictionary{{"a", Value(Value::Array{1})}}));
    EXPECT_EQ(jsonObject("1e400").number()->doubleValue(), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(jsonObject(nestedArrays(kJSONMaximumDepth)).isArray());
}

TEST(JSON, ReadsPairedSurrogateEscapesAndWellFormedUTF8) {
    EXPECT_EQ(*jsonObject(R"(["\ud83d\ude00", "\u00e9\u20ac"])").array(),
              (Value::Array{"\xF0\x9F\x98\x80", "\xC3\xA9\xE2\x82\xAC"}));
    EXPECT_EQ(*jsonObject("[\"\xF0\x9F\x98\x80 \\\\ud800\"]").array(),
              (Value::Array{"\xF0\x9F\x98\x80 \\ud800"}));  // an escaped backslash, no escape
}

TEST(JSON, RefusesTextThatIsNotOneJSONValue) {
    const std::string cases[] = {
        "",
        "   ",
        "{",
        "[1,]",
        "{\"a\" 1}",
        "[1] x",
        "[1][2]",
        "nul",
        "'a'",
        "{a:1}",
        "\"\xFF\"",
        "[\"\xC0\xAF\"]",      // overlong "/"
        "[\"\xED\xA0\x80\"]",  // an encoded surrogate
        "[\"a\xE2\x82\"]",     // a truncated sequence
        R"(["\ud800"])",       // a high surrogate alone
        R"(["a\ud800"])",
        R"(["\udc00"])",        // a low surrogate alone
        R"(["\ud800\u0041"])",  // a high surrogate before something else
        R"(["\ud800\ud800"])",
        R"(["\ud800\n"])",
        R"({"\udfff":1})",            // in a key
        R"(["\\", "\"", "\ude00"])",  // after escaped backslashes and quotes
        "[01]",
        "// comment\n1",
        "[NaN]",
        std::string("[1\0]", 4),
        nestedArrays(kJSONMaximumDepth + 1),
    };
    for (const std::string& text : cases) {
        ErrorPtr error;
        EXPECT_TRUE(jsonObject(text, std::nullopt, &error).isNil()) << text.substr(0, 20);
        ASSERT_NE(error, nullptr) << text.substr(0, 20);
        EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
        EXPECT_EQ(error->code(), kJSONReadCorruptErrorCode);
        EXPECT_TRUE(error->userInfoLocalizedDescription().has_value());
        const std::string* detail = error->userInfoValue(kJSONErrorDetailKey).string();
        ASSERT_NE(detail, nullptr);
        EXPECT_FALSE(detail->empty());
    }
    EXPECT_TRUE(jsonObject("{").isNil());  // no error slot is fine too
}

TEST(JSON, ChecksTheKindOfTheResult) {
    ErrorPtr error;
    EXPECT_TRUE(jsonObject("[1]", Value::Kind::dictionary, &error).isNil());
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), VNErrorDomain);
    EXPECT_EQ(error->code(), 0);
    EXPECT_EQ(error->userInfoValue(VNErrUserInfoKey), Value(VNErrCodeInvalidParameter));
    EXPECT_NE(error->userInfoValue(kJSONErrorDetailKey).string()->find("dictionary"),
              std::string::npos);

    EXPECT_EQ(jsonObject("[1]", Value::Kind::array, &error), Value(Value::Array{1}));
    EXPECT_EQ(error, nullptr);
    EXPECT_TRUE(jsonObject("true", Value::Kind::number).number()->isBoolean());
    EXPECT_TRUE(jsonObject("null", Value::Kind::null).isNull());
    EXPECT_TRUE(jsonObject("\"1\"", Value::Kind::number).isNil());
}

TEST(JSON, WritesCompactAndTabIndentedText) {
    const Value value(Value::Dictionary{{"b", "x\"y/\x01"},
                                        {"a", Value(Value::Array{1, 2.5, true, Value::null()})},
                                        {"e", Value(Value::Dictionary{})}});
    EXPECT_EQ(jsonString(value), R"({"a":[1,2.5,true,null],"b":"x\"y/\u0001","e":{}})");
    EXPECT_EQ(
        jsonString(value, JSONWritingStyle::pretty),
        "{\n\t\"a\": [\n\t\t1,\n\t\t2.5,\n\t\ttrue,\n\t\tnull\n\t],\n\t\"b\": \"x\\\"y/\\u0001\",\n"
        "\t\"e\": {\n\n\t}\n}\n");
}

TEST(JSON, WritesNumbersWithTheirShortestExactDigits) {
    struct Case {
        Value value;
        std::string expected;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Case cases[] = {
        {Value(0.1), "0.1"},
        {Value(1.0 / 3), "0.3333333333333333"},
        {Value(1e20), "1e+20"},
        {Value(-0.0), "-0"},
        {Value(5e-324), "5e-324"},
        {Value(0.1f), "0.1"},
        {Value(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808"},
        {Value(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615"},
        {Value(Decimal::parse("12.50").value()), "12.5"},
        {Value(Decimal::parse("-1e-5").value()), "-0.00001"},
        {Value(false), "false"},
        {Value(nan), "null"},
        {Value(std::numeric_limits<double>::infinity()), "null"},
        {Value(Decimal::notANumber()), "null"},
        {Value(), "null"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(jsonString(Value(Value::Array{c.value})), "[" + c.expected + "]") << c.expected;
    }
}

TEST(JSON, WritesWhatJSONCannotHoldAsText) {
    EXPECT_EQ(jsonString(Value(Data{0xAB})), R"("{length = 1, bytes = 0xab}")");
    EXPECT_EQ(jsonString(Value(Date{0})), R"("2001-01-01 00:00:00 +0000")");
    EXPECT_EQ(jsonString(Value(Date{std::nan("")})), R"("")");  // not representable
    EXPECT_EQ(jsonString(Value(Date{-std::numeric_limits<double>::infinity()})), R"("")");
    EXPECT_EQ(jsonString(Value(Date{2e14})), R"("")");
    EXPECT_EQ(jsonString(Value(Value::Dictionary{{"\xFF", "a\xC3"}})),
              "{\"\xEF\xBF\xBD\":\"a\xEF\xBF\xBD\"}");
    const std::string deep = jsonString(testing::nested(Value(1), 200, false));
    const Value reread = jsonObject(deep);
    ASSERT_TRUE(reread.isArray());
    // Containers beyond the generator's 127 levels are carried as their own JSON text.
    Value innermost = reread;
    int levels = 0;
    while (innermost.isArray()) {
        innermost = innermost.array()->front();
        ++levels;
    }
    EXPECT_EQ(levels, 127);
    ASSERT_TRUE(innermost.isString());
    EXPECT_EQ(jsonObject(*innermost.string()), testing::nested(Value(1), 200 - 127, false));
}

Value randomJSONValue(std::mt19937_64& random, int depth) {
    const auto pick = [&](std::uint64_t n) { return random() % n; };
    switch (depth > 3 ? pick(6) : pick(8)) {
        case 0:
            return Value::null();
        case 1:
            return Value(pick(2) == 0);
        case 2:
            return Value(static_cast<std::int64_t>(random()));
        case 3:
            return Value(static_cast<std::uint64_t>(random()) | (1ULL << 63));
        case 4: {
            double number = 0;
            do {
                const std::uint64_t bits = random();
                std::memcpy(&number, &bits, sizeof number);
            } while (!std::isfinite(number));
            return Value(number);
        }
        case 5: {
            std::string text;
            static const std::string kPieces[] = {
                "a", "\"", "\\", "\n", "\t", "\x01", "\xC3\xA9", "/", std::string(1, '\0')};
            for (std::uint64_t i = pick(12); i > 0; --i) text += kPieces[pick(std::size(kPieces))];
            return Value(text);
        }
        case 6: {
            Value::Array elements;
            for (std::uint64_t i = pick(5); i > 0; --i)
                elements.push_back(randomJSONValue(random, depth + 1));
            return Value(std::move(elements));
        }
        default: {
            Value::Dictionary members;
            for (std::uint64_t i = pick(5); i > 0; --i) {
                members["k" + std::to_string(pick(100))] = randomJSONValue(random, depth + 1);
            }
            return Value(std::move(members));
        }
    }
}

// The JSON text a container beyond the generator's depth is carried as: exactly what the
// generator writes for it on its own, and complete however deep it goes, so that deep values
// are written in time and space proportional to their size (each text escaped at most twice).
TEST(JSON, ContainersBeyondTheDepthLimitAreCarriedAsTheirCompleteJSON) {
    std::mt19937_64 random(11);
    const Value extras = Value::Array{Value(Data{0xAB}),
                                      Value(Date{0}),
                                      Value(1.5f),
                                      Value(std::numeric_limits<double>::infinity()),
                                      Value(Decimal::notANumber()),
                                      Value(Decimal::parse("-1e-5").value()),
                                      Value(),
                                      Value(std::string("\x7F\x1F\b\f\r\xFF", 6))};
    for (int round = 0; round < 300; ++round) {
        const Value inner =
            round == 0 ? extras : Value(Value::Array{randomJSONValue(random, 0), extras});
        const Value reread = jsonObject(jsonString(testing::nested(inner, 127, false)));
        const Value* carried = &reread;
        for (int level = 0; level < 127 && carried->isArray(); ++level)
            carried = &carried->array()->front();
        ASSERT_TRUE(carried->isString()) << round;
        EXPECT_EQ(*carried->string(), jsonString(inner)) << round;
    }

    const int depth = 20000;
    const std::string written = jsonString(testing::nested(Value("x"), depth, false));
    EXPECT_EQ(written, std::string(127, '[') + "\"" + std::string(depth - 127, '[') + "\\\"x\\\"" +
                           std::string(depth - 127, ']') + "\"" + std::string(127, ']'));
}

TEST(JSON, WrittenTextDecodesToAnEqualValue) {
    std::mt19937_64 random(42);
    for (int i = 0; i < 2000; ++i) {
        const Value value = randomJSONValue(random, 0);
        for (const JSONWritingStyle style : {JSONWritingStyle::compact, JSONWritingStyle::pretty}) {
            const std::string text = jsonString(value, style);
            ASSERT_EQ(jsonObject(text), value) << text;
        }
    }
}

TEST(JSON, EveryHostileValueWritesTextThatDecodes) {
    for (const Value& value : testing::hostileValues()) {
        for (const JSONWritingStyle style : {JSONWritingStyle::compact, JSONWritingStyle::pretty}) {
            ErrorPtr error;
            EXPECT_FALSE(jsonObject(jsonString(value, style), std::nullopt, &error).isNil())
                << testing::describeBriefly(value) << ": " << (error ? error->description() : "");
        }
    }
}

}  // namespace
}  // namespace vn
