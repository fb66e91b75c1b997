#include "vn/network/VNUtilitiesHTTP.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace vn {
namespace {

using Warning = std::tuple<std::int64_t, std::string, std::string>;

std::vector<Warning> fieldsOf(const VNUtilities::VNHTTPWarningHeaders& warnings) {
    std::vector<Warning> fields;
    for (const auto& warning : warnings)
        fields.emplace_back(warning->code(), warning->agent(), warning->text());
    return fields;
}

TEST(httpWarningsFromHeader, ReadsRFC7234Entries) {
    const std::vector<std::pair<std::string_view, std::vector<Warning>>> cases = {
        {R"(199 agent "User:Hello")", {{199, "agent", "User:Hello"}}},
        {R"(299 api.example.com:8080 "System:a, b, c")",
         {{299, "api.example.com:8080", "System:a, b, c"}}},  // commas inside the quotes
        {R"(199 a "x", 299 b "y")", {{199, "a", "x"}, {299, "b", "y"}}},
        {R"(199 a "x" "Sat, 25 Aug 2012 23:34:45 GMT", 299 b "y")",  // date ignored
         {{199, "a", "x"}, {299, "b", "y"}}},
        {R"(299 - "y" "Sat, 25 Aug 2012 23:34:45 GMT")", {{299, "-", "y"}}},
        {"  199   a   \"x\"  ", {{199, "a", "x"}}},
        {"\r\n\t199 a \"x\"\t,\n 299 b \"y\"\r\n", {{199, "a", "x"}, {299, "b", "y"}}},
        {R"(199 a "say \"hi\", \\ ok")", {{199, "a", "say \"hi\", \\ ok"}}},
        {R"(199 a "x",, ,299 b "y",)", {{199, "a", "x"}, {299, "b", "y"}}},  // empty entries
        {R"(199 a "")", {{199, "a", ""}}},
        {R"(199 a "Encoded:User:a%2C%20b")", {{199, "a", "Encoded:User:a%2C%20b"}}},
        {"199 münchen.example \"Grüße\"", {{199, "münchen.example", "Grüße"}}},
        {"214 a \"x\"", {{214, "a", "x"}}},
    };
    for (const auto& [value, expected] : cases) {
        const auto warnings = VNUtilities::httpWarningsFromHeader(value);
        ASSERT_TRUE(warnings) << value;
        EXPECT_EQ(fieldsOf(*warnings), expected) << value;
    }
}

TEST(httpWarningsFromHeader, IsAbsentForAMissingOrUnparsableValueNeverPartial) {
    EXPECT_FALSE(VNUtilities::httpWarningsFromHeader(std::nullopt));
    const std::vector<std::string_view> unparsable = {
        "",
        "   \r\n",
        ",",
        "199",
        "199 a",
        "199 a x",       // text not quoted
        R"(199 "x")",    // no agent
        R"(abc a "x")",  // code not a number
        R"(19x a "x")",  // code not wholly a number
        R"(1.5 a "x")",
        R"(199 a "x)",               // unterminated text
        R"(199 a "x\")",             // the closing quote is escaped
        R"(199 a "x" extra)",        // something else than a date
        R"(199 a "x" "date" more)",  // something after the date
        R"(199 a "x" "unterminated date)",
        R"(199 a"b "x")",       // quote inside the agent
        R"(199 a "x", bogus)",  // one bad entry spoils the list
        R"(199 a "x", 299 b "y" z, 199 c "w")",
    };
    for (const std::string_view value : unparsable)
        EXPECT_FALSE(VNUtilities::httpWarningsFromHeader(value)) << value;
}

TEST(httpWarningsFromHeader, ReadsBackAWarningsDescription) {
    const VNHTTPWarningHeader warning(299, "h:80", "Encoded:System:\"q\", \\ 100%25");
    const auto read =
        VNUtilities::httpWarningsFromHeader(warning.description() + ", " + warning.description());
    ASSERT_TRUE(read);
    ASSERT_EQ(read->size(), 2u);
    EXPECT_TRUE(read->front()->isEqual(warning));
    EXPECT_EQ(read->front()->warningText(), "\"q\", \\ 100%");
}

TEST(urlParametersStringFrom, WritesEncodedPairsInGivenOrSortedOrder) {
    const std::vector<std::pair<std::string, std::string>> pairs = {
        {"z", "1"}, {"a b", "x/y"}, {"é", "ü"}, {"m", "2"}, {"m", "1"}, {"e", ""}};
    EXPECT_EQ(VNUtilities::urlParametersStringFrom(pairs, false),
              "z=1&a%20b=x%2Fy&%C3%A9=%C3%BC&m=2&m=1&e=");
    EXPECT_EQ(VNUtilities::urlParametersStringFrom(pairs, true),
              "a%20b=x%2Fy&e=&m=1&m=2&z=1&%C3%A9=%C3%BC");
    EXPECT_EQ(VNUtilities::urlParametersStringFrom(
                  std::vector<std::pair<std::string, std::string>>{}, true),
              "");
}

TEST(urlParametersStringFrom, WritesADictionarysValuesAsTexts) {
    const Value::Dictionary parameters = {{"text", Value("a&b")},
                                          {"count", Value(12)},
                                          {"on", Value(true)},
                                          {"none", Value::null()},
                                          {"nil", Value()}};
    const std::string expected = "count=12&nil=&none=&on=1&text=a%26b";
    EXPECT_EQ(VNUtilities::urlParametersStringFrom(parameters, true), expected);
    EXPECT_EQ(VNUtilities::urlParametersStringFrom(parameters, false), expected);
}

Data bytesOf(std::string_view text) {
    return Data(text.begin(), text.end());
}

TEST(errorFromResponseData, TakesTheMessageAndTheErrorCodeOfAJSONBody) {
    struct Case {
        std::string_view body;
        std::int64_t code;
        std::string_view description;
    };
    const std::vector<Case> cases = {
        {R"({"error": 401, "message": "Token expired"})", 401, "Token expired"},
        {R"({"error": "17", "message": "Text code"})", 17, "Text code"},
        {R"({"error": "invalid_token", "message": "Bad token"})", 0, "Bad token"},
        {R"({"message": "Only a message"})", 0, "Only a message"},
        {R"({"error": null, "message": "Null code", "extra": [1]})", 0, "Null code"},
    };
    for (const Case& c : cases) {
        const ErrorPtr error = VNUtilities::errorFromResponseData(bytesOf(c.body));
        ASSERT_TRUE(error) << c.body;
        EXPECT_EQ(error->domain(), VNErrorDomain) << c.body;
        EXPECT_EQ(error->code(), c.code) << c.body;
        EXPECT_EQ(error->userInfoLocalizedDescription(), std::string(c.description)) << c.body;
    }
}

TEST(errorFromResponseData, FallsBackToTheDefaultErrorWithoutAMessage) {
    const std::vector<std::optional<Data>> bodies = {
        std::nullopt,
        Data{},
        bytesOf("not json"),
        bytesOf("[1, 2]"),
        bytesOf(R"("message")"),
        bytesOf(R"({"error": 500})"),
        bytesOf(R"({"error": 500, "message": ""})"),
        bytesOf(R"({"message": 42})"),
        bytesOf(R"({"message": {"text": "nested"}})"),
        Data{'{', '"', 'm', 0xFF, '"', '}'},
    };
    for (const auto& body : bodies) {
        const ErrorPtr error = VNUtilities::errorFromResponseData(body);
        ASSERT_TRUE(error);
        EXPECT_EQ(error->domain(), VNErrorDomain);
        EXPECT_EQ(error->code(), 0);
        EXPECT_FALSE(error->hasUserInfo());
    }
}

}  // namespace
}  // namespace vn
