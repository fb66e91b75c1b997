// URL requests: the default method, header fields by case-insensitive name, and the body.
#include "vn/platform/URLRequest.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

URL url(const char* text) {
    return URL::URLWithString(text).value();
}

using Fields = std::map<std::string, std::string>;

TEST(URLRequest, StartsAsAGetWithoutFieldsOrBody) {
    const URLRequest request(url("https://example.com/items"));
    EXPECT_EQ(request.url(), url("https://example.com/items"));
    EXPECT_EQ(request.httpMethod(), "GET");
    EXPECT_EQ(request.allHTTPHeaderFields(), std::nullopt);
    EXPECT_EQ(request.httpBody(), std::nullopt);
    EXPECT_EQ(URLRequest().url(), std::nullopt);
}

TEST(URLRequest, MethodAndBodyCanBeSetAndRemoved) {
    URLRequest request(url("https://example.com/items"));
    request.setHTTPMethod("POST");
    request.setHTTPBody(Data{'{', '}'});
    EXPECT_EQ(request.httpMethod(), "POST");
    EXPECT_EQ(request.httpBody(), (Data{'{', '}'}));
    request.setHTTPMethod(std::nullopt);
    request.setHTTPBody(std::nullopt);
    EXPECT_EQ(request.httpMethod(), std::nullopt);
    EXPECT_EQ(request.httpBody(), std::nullopt);
}

TEST(URLRequest, HeaderNamesCompareWithoutCaseAndALaterValueReplaces) {
    URLRequest request;
    request.setValue("text/plain", "Accept");
    request.setValue("abc", "X-Trace");
    request.setValue("application/json", "ACCEPT");
    EXPECT_EQ(request.valueForHTTPHeaderField("accept"), "application/json");
    EXPECT_EQ(request.valueForHTTPHeaderField("x-trace"), "abc");
    EXPECT_EQ(request.valueForHTTPHeaderField("X-Missing"), std::nullopt);
    EXPECT_EQ(request.allHTTPHeaderFields(),
              (Fields{{"ACCEPT", "application/json"}, {"X-Trace", "abc"}}));
}

TEST(URLRequest, AnAbsentValueRemovesAFieldButFieldsOnceSetStayPresent) {
    URLRequest request;
    request.setValue(std::nullopt, "Accept");
    EXPECT_EQ(request.allHTTPHeaderFields(), std::nullopt);  // removing nothing sets nothing

    request.setValue("1", "A");
    request.setValue("2", "B");
    request.setValue(std::nullopt, "a");
    EXPECT_EQ(request.valueForHTTPHeaderField("A"), std::nullopt);
    EXPECT_EQ(request.allHTTPHeaderFields(), (Fields{{"B", "2"}}));
    request.setValue(std::nullopt, "b");
    EXPECT_EQ(request.allHTTPHeaderFields(), Fields{});
}

TEST(URLRequest, AllFieldsCanBeReplacedAtOnce) {
    URLRequest request;
    request.setValue("old", "X-Old");
    request.setAllHTTPHeaderFields(Fields{{"Accept", "a"}, {"accept", "b"}, {"Host", "h"}});
    EXPECT_EQ(request.valueForHTTPHeaderField("X-Old"), std::nullopt);
    EXPECT_EQ(request.valueForHTTPHeaderField("ACCEPT"), "b");  // "accept" sorts after "Accept"
    EXPECT_EQ(request.allHTTPHeaderFields()->size(), 2u);
    request.setAllHTTPHeaderFields(std::nullopt);
    EXPECT_EQ(request.allHTTPHeaderFields(), std::nullopt);
}

}  // namespace
}  // namespace vn
