#include "vn/coding/KeyedArchiver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "testing/KeyedArchiveTesting.h"
#include "vn/coding/KeyedUnarchiver.h"

namespace vn {
namespace {

using testing::plistlibDump;
using testing::Shape;

Data archive(const Value& root) {
    ErrorPtr error;
    auto data = KeyedArchiver::archivedDataWithRootObject(root, &error);
    EXPECT_TRUE(data) << (error ? error->description() : "");
    return data.value_or(Data{});
}

Value roundTrip(const Value& root) {
    ErrorPtr error;
    auto value = KeyedUnarchiver::unarchivedValue(archive(root), &error);
    EXPECT_TRUE(value) << (error ? error->description() : "");
    return value.value_or(Value{});
}

Value::Dictionary dictionaryOf(std::initializer_list<std::pair<const std::string, Value>> entries) {
    return Value::Dictionary(entries);
}

TEST(KeyedArchiver, RoundTripsEveryValueKind) {
    const Value nested =
        Value::Array{Value::Array{}, Value::Array{1, Value::Array{"deep", Value::null()}},
                     dictionaryOf({{"inner", Value::Array{true, 2.5}}})};
    const std::vector<std::pair<std::string, Value>> cases = {
        {"nil root", Value{}},
        {"null marker", Value::null()},
        {"true", true},
        {"false", false},
        {"zero", 0},
        {"negative integer", -1},
        {"smallest integer", std::numeric_limits<std::int64_t>::min()},
        {"largest integer", std::numeric_limits<std::int64_t>::max()},
        {"unsigned above the signed range", std::numeric_limits<std::uint64_t>::max()},
        {"unsigned just above the signed range", std::uint64_t{1} << 63},
        {"double", 0.1},
        {"negative double", -1234.5678e-200},
        {"infinity", std::numeric_limits<double>::infinity()},
        {"float", 1.5f},
        {"decimal", Decimal::parse("12.345").value()},
        {"negative decimal", Decimal::parse("-0.0001").value()},
        {"38-digit decimal", Decimal::parse("12345678901234567890123456789012345678").value()},
        {"decimal with a large exponent", Decimal::parse("1e120").value()},
        {"decimal zero", Decimal{}},
        {"empty text", ""},
        {"non-ASCII text", "héllo wörld – ünïcødé ✓ 𝄞"},
        {"text that looks like the nil entry", "$null"},
        {"empty data", Data{}},
        {"data", Data{0x00, 0xFF, 0x10, 0x80}},
        {"reference date", Date{0}},
        {"date with fraction", Date{-123456789.25}},
        {"empty array", Value::Array{}},
        {"empty dictionary", Value::Dictionary{}},
        {"nested collections", nested},
        {"dictionary with every kind", dictionaryOf({{"text", "x"},
                                                     {"number", 7},
                                                     {"data", Data{1}},
                                                     {"date", Date{5}},
                                                     {"null", Value::null()},
                                                     {"array", nested},
                                                     {"ключ", "значение"},
                                                     {"$dollar", 1},
                                                     {"", "empty key"}})},
    };
    for (const auto& [name, value] : cases) {
        EXPECT_EQ(roundTrip(value), value) << name;
    }
}

TEST(KeyedArchiver, KeepsNumberKindsTheFormatCanExpress) {
    const Value decoded =
        roundTrip(Value::Array{true, -5, std::numeric_limits<std::uint64_t>::max(), 1.5f, 2.5,
                               Decimal::parse("1.5").value(), std::uint64_t{7}});
    const auto& numbers = *decoded.array();
    ASSERT_EQ(numbers.size(), 7u);
    EXPECT_EQ(numbers[0].number()->kind(), Number::Kind::boolean);
    EXPECT_EQ(numbers[1].number()->kind(), Number::Kind::signedInteger);
    EXPECT_EQ(numbers[2].number()->kind(), Number::Kind::unsignedInteger);
    EXPECT_EQ(numbers[2].number()->unsignedIntegerValue(),
              std::numeric_limits<std::uint64_t>::max());
    // The property list keeps no difference between float and double.
    EXPECT_EQ(numbers[3].number()->kind(), Number::Kind::doublePrecision);
    EXPECT_EQ(numbers[4].number()->kind(), Number::Kind::doublePrecision);
    EXPECT_EQ(numbers[5].number()->kind(), Number::Kind::decimal);
    // Small unsigned values are plain integers, which read back signed.
    EXPECT_EQ(numbers[6].number()->kind(), Number::Kind::signedInteger);
}

TEST(KeyedArchiver, RoundTripsNotANumberInBothNumberForms) {
    const Value decoded =
        roundTrip(Value::Array{std::numeric_limits<double>::quiet_NaN(), Decimal::notANumber()});
    const auto& numbers = *decoded.array();
    EXPECT_TRUE(std::isnan(numbers[0].number()->doubleValue()));
    ASSERT_TRUE(numbers[1].number()->isDecimal());
    EXPECT_TRUE(numbers[1].number()->decimalValue().isNaN());
}

TEST(KeyedArchiver, WritesThePlatformLayoutAsPlistlibReadsIt) {
    const Value root = dictionaryOf({{"list", Value::Array{42, 3.25, true, "text"}},
                                     {"when", Date{86400.5}},
                                     {"none", Value::null()},
                                     {"amount", Decimal::parse("-12.5").value()},
                                     {"bytes", Data{0xCA, 0xFE}},
                                     {"big", std::numeric_limits<std::uint64_t>::max()},
                                     {"negative", -3}});
    auto dump = plistlibDump(archive(root));
    ASSERT_FALSE(dump.empty()) << "plistlib could not read the archive";
    EXPECT_EQ(dump["$archiver"], "str:NSKeyedArchiver");
    EXPECT_EQ(dump["$version"], "int:100000");
    EXPECT_EQ(dump["$top"], "dict:1");
    EXPECT_EQ(dump["$objects/0"], "str:$null");

    auto uidTarget = [&](const std::string& path) {
        const std::string& reference = dump[path];
        EXPECT_EQ(reference.rfind("uid:", 0), 0u) << path << " is " << reference;
        return "$objects/" + reference.substr(4);
    };
    auto className = [&](const std::string& object) {
        return dump[uidTarget(object + "/$class") + "/$classname"];
    };
    auto classes = [&](const std::string& object) {
        const std::string description = uidTarget(object + "/$class");
        std::string chain;
        for (int i = 0; dump.count(description + "/$classes/" + std::to_string(i)); ++i) {
            chain += dump[description + "/$classes/" + std::to_string(i)] + " ";
        }
        return chain;
    };

    const std::string dictionary = uidTarget("$top/root");
    EXPECT_EQ(className(dictionary), "str:NSDictionary");
    EXPECT_EQ(classes(dictionary), "str:NSDictionary str:NSObject ");
    ASSERT_EQ(dump[dictionary + "/NS.keys"], "array:7");
    ASSERT_EQ(dump[dictionary + "/NS.objects"], "array:7");
    std::map<std::string, std::string> fields;  // key text -> path of the value entry
    for (int i = 0; i < 7; ++i) {
        const std::string key = dump[uidTarget(dictionary + "/NS.keys/" + std::to_string(i))];
        fields[key] = uidTarget(dictionary + "/NS.objects/" + std::to_string(i));
    }

    const std::string list = fields["str:list"];
    EXPECT_EQ(className(list), "str:NSArray");
    EXPECT_EQ(classes(list), "str:NSArray str:NSObject ");
    ASSERT_EQ(dump[list + "/NS.objects"], "array:4");
    EXPECT_EQ(dump[uidTarget(list + "/NS.objects/0")], "int:42");
    EXPECT_EQ(dump[uidTarget(list + "/NS.objects/1")], "real:3.25");
    EXPECT_EQ(dump[uidTarget(list + "/NS.objects/2")], "bool:True");
    EXPECT_EQ(dump[uidTarget(list + "/NS.objects/3")], "str:text");

    EXPECT_EQ(className(fields["str:when"]), "str:NSDate");
    EXPECT_EQ(dump[fields["str:when"] + "/NS.time"], "real:86400.5");
    EXPECT_EQ(className(fields["str:none"]), "str:NSNull");
    EXPECT_EQ(dump[fields["str:none"]], "dict:1");  // "$class" only
    EXPECT_EQ(dump[fields["str:bytes"]], "data:cafe");
    EXPECT_EQ(dump[fields["str:big"]], "int:18446744073709551615");
    EXPECT_EQ(dump[fields["str:negative"]], "int:-3");

    const std::string amount = fields["str:amount"];
    EXPECT_EQ(className(amount), "str:NSDecimalNumber");
    EXPECT_EQ(classes(amount), "str:NSDecimalNumber str:NSNumber str:NSValue str:NSObject ");
    EXPECT_EQ(dump[amount + "/NS.exponent"], "int:-1");
    EXPECT_EQ(dump[amount + "/NS.length"], "int:1");
    EXPECT_EQ(dump[amount + "/NS.negative"], "bool:True");
    EXPECT_EQ(dump[amount + "/NS.compact"], "bool:True");
    EXPECT_EQ(dump[amount + "/NS.mantissa.bo"], "int:1");
    EXPECT_EQ(dump[amount + "/NS.mantissa"], "data:7d000000000000000000000000000000");  // 125
}

TEST(KeyedArchiver, WritesArchivableClassesWithTheirNamesAndFields) {
    auto dump = plistlibDump(archive(std::make_shared<Shape>("square", 4)));
    const std::string object = "$objects/" + dump["$top/root"].substr(4);
    const std::string description = "$objects/" + dump[object + "/$class"].substr(4);
    EXPECT_EQ(dump[description + "/$classname"], "str:VNTestShape");
    EXPECT_EQ(dump[description + "/$classes/1"], "str:VNTestFigure");
    EXPECT_EQ(dump[description + "/$classes/2"], "str:NSObject");
    EXPECT_EQ(dump["$objects/" + dump[object + "/name"].substr(4)], "str:square");
    EXPECT_EQ(dump[object + "/sides"], "int:4");  // scalars are stored inline
}

TEST(KeyedArchiver, SharesEqualTextsNumbersNullsAndObjects) {
    auto shape = std::make_shared<Shape>("triangle", 3);
    const Value list =
        Value::Array{"a", "a", 1, 1, true, 1.0, Value::null(), Value::null(), shape, shape};
    auto dump = plistlibDump(archive(list));
    const std::string array = "$objects/" + dump["$top/root"].substr(4);
    auto reference = [&](int index) {
        return dump[array + "/NS.objects/" + std::to_string(index)];
    };
    EXPECT_EQ(reference(0), reference(1));
    EXPECT_EQ(reference(2), reference(3));
    EXPECT_NE(reference(2), reference(4)) << "1 and true are different entries";
    EXPECT_NE(reference(2), reference(5)) << "1 and 1.0 are different entries";
    EXPECT_EQ(reference(6), reference(7));
    EXPECT_EQ(reference(8), reference(9));

    const Value decoded = roundTrip(list);
    EXPECT_EQ((*decoded.array())[8].object(), (*decoded.array())[9].object())
        << "one archived object decodes to one object";
}

// An archivable node whose child can be set after construction, so it can contain itself.
class Link final : public Object, public Coding {
  public:
    void encodeWithCoder(Coder& coder) const override { coder.encodeValue(next, "next"); }
    std::string classNameForCoder() const override { return "VNTestLink"; }
    Value next;
};

TEST(KeyedArchiver, ReportsValuesThatCannotBeArchived) {
    auto cyclic = std::make_shared<Link>();
    cyclic->next = Value(Value::Array{Value(std::static_pointer_cast<Object>(cyclic))});
    Value deep = 1;
    for (int i = 0; i < KeyedArchiver::kMaxNestingDepth; ++i) deep = Value::Array{deep};

    const std::vector<std::tuple<std::string, Value, std::string>> cases = {
        {"plain object", Value(std::make_shared<Object>()), "does not support keyed coding"},
        {"plain object inside a dictionary",
         dictionaryOf({{"o", Value(std::make_shared<Object>())}}), "does not support keyed coding"},
        {"text with NUL", Value(std::string("a\0b", 3)), "NUL"},
        {"dictionary key with NUL", dictionaryOf({{std::string("k\0", 2), 1}}), "NUL"},
        {"text that is not UTF-8", Value("caf\xE9"), "not valid UTF-8"},
        {"UTF-8 encoded surrogate", Value("\xED\xA0\x80"), "not valid UTF-8"},
        {"object containing itself", Value(cyclic), "contains itself"},
        {"nesting too deep", deep, "nested more than"},
    };
    for (const auto& [name, value, reason] : cases) {
        ErrorPtr error;
        EXPECT_FALSE(KeyedArchiver::archivedDataWithRootObject(value, &error)) << name;
        ASSERT_TRUE(error) << name;
        EXPECT_EQ(error->domain(), NSCocoaErrorDomain) << name;
        EXPECT_EQ(error->code(), NSCoderInvalidValueError) << name;
        EXPECT_NE(error->userInfoValue(NSDebugDescriptionErrorKey).string()->find(reason),
                  std::string::npos)
            << name << ": " << error->description();
    }
    cyclic->next = Value{};  // break the reference cycle so the test does not leak
}

// More than 65,536 objects and an object table beyond 64 KiB need 4-byte references and
// offsets; texts of every UTF-8 length (astral ones as surrogate pairs in UTF-16) and counts
// beyond the marker's four bits need their long forms. Both readers must agree on all of it.
TEST(KeyedArchiver, LargeArchivesWithEveryTextFormReadBack) {
    Value::Array elements;
    for (int i = 0; i < 70000; ++i) {
        elements.emplace_back(i % 2 == 0
                                  ? "text " + std::to_string(i)
                                  : "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80 " + std::to_string(i));
    }
    elements.emplace_back(std::numeric_limits<std::uint64_t>::max());
    elements.emplace_back(std::int64_t{-70000});
    elements.emplace_back(Data(300, 0x5A));
    const Value root = dictionaryOf({{"elements", elements}, {"same", "text 0"}});
    const Data bytes = archive(root);
    EXPECT_EQ(roundTrip(root), root);

    auto dump = plistlibDump(bytes);
    ASSERT_FALSE(dump.empty()) << "plistlib could not read the archive";
    std::size_t texts = 0;
    bool astral = false;
    for (const auto& [path, entry] : dump) {
        texts += entry.rfind("str:text ", 0) == 0 ? 1 : 0;
        astral = astral || entry == "str:\\xe9\\u20ac\\U0001f600 1";
    }
    EXPECT_EQ(texts, 35000u);  // "text 0" is stored once, though referenced twice
    EXPECT_TRUE(astral);
}

TEST(KeyedArchiver, NestingJustWithinTheLimitRoundTrips) {
    Value deep = "bottom";
    for (int i = 1; i < KeyedArchiver::kMaxNestingDepth; ++i) deep = Value::Array{deep};
    EXPECT_EQ(roundTrip(deep), deep);
}

TEST(KeyedArchiver, InstanceEncodesSeveralTopLevelKeysAndInlineScalars) {
    KeyedArchiver archiver;
    archiver.encodeValue("first", "a");
    archiver.encodeBool(true, "flag");
    archiver.encodeInteger(-7, "count");
    archiver.encodeDouble(0.25, "ratio");
    archiver.encodeValue(2, "$weird");
    archiver.encodeValue("replaced", "a");
    const Data data = archiver.encodedData();
    ASSERT_EQ(archiver.error(), nullptr);

    auto dump = plistlibDump(data);
    EXPECT_EQ(dump["$top/flag"], "bool:True");
    EXPECT_EQ(dump["$top/count"], "int:-7");
    EXPECT_EQ(dump["$top/ratio"], "real:0.25");
    EXPECT_EQ(dump["$top/$$weird"].rfind("uid:", 0), 0u)
        << "a key beginning with $ gets one more $";
    EXPECT_EQ(dump["$objects/" + dump["$top/a"].substr(4)], "str:replaced");

    KeyedUnarchiver unarchiver(data);
    EXPECT_EQ(unarchiver.decodeValue("$weird"), Value(2));
    EXPECT_EQ(unarchiver.decodeValue("a"), Value("replaced"));
    EXPECT_TRUE(unarchiver.decodeBool("flag"));
    EXPECT_EQ(unarchiver.decodeInteger("count"), -7);
    EXPECT_EQ(unarchiver.decodeDouble("ratio"), 0.25);
}

TEST(KeyedArchiverDeathTest, DecodingOrEncodingAfterFinishingStopsTheProcess) {
    EXPECT_DEATH(
        {
            KeyedArchiver archiver;
            archiver.decodeValue("x");
        },
        "decodeValue called on an archiver");
    EXPECT_DEATH(
        {
            KeyedArchiver archiver;
            archiver.finishEncoding();
            archiver.encodeBool(true, "late");
        },
        "encoding after finishEncoding");
}

}  // namespace
}  // namespace vn
