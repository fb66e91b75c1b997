// URL responses: what an HTTP response derives from its header fields, and the text encoding
// its charset names.
#include "vn/platform/URLResponse.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

URL url(const char* text) {
    return URL::URLWithString(text).value();
}

HTTPURLResponse httpResponse(HTTPURLResponse::HeaderFields fields) {
    return HTTPURLResponse(url("https://example.com/"), 200, std::move(fields));
}

TEST(URLResponse, KeepsWhatItWasMadeWith) {
    const auto response =
        std::make_shared<const URLResponse>(url("file:///tmp/a.txt"), "text/plain", 12, "utf-8");
    EXPECT_EQ(response->url(), url("file:///tmp/a.txt"));
    EXPECT_EQ(response->mimeType(), "text/plain");
    EXPECT_EQ(response->expectedContentLength(), 12);
    EXPECT_EQ(response->textEncodingName(), "utf-8");
}

TEST(URLResponse, StringEncodingIsTheOneItsCharsetNames) {
    const struct {
        std::optional<std::string> name;
        std::optional<StringEncoding> encoding;
    } cases[] = {
        {"iso-8859-1", NSISOLatin1StringEncoding},
        {"UTF-8", NSUTF8StringEncoding},
        {"Shift_JIS", NSShiftJISStringEncoding},
        {"no-such-charset", std::nullopt},
        {std::nullopt, std::nullopt},
    };
    for (const auto& c : cases) {
        const URLResponse response(std::nullopt, std::nullopt, -1, c.name);
        EXPECT_EQ(response.vnStringEncoding(), c.encoding) << c.name.value_or("(none)");
    }
}

TEST(HTTPURLResponse, TakesTypeCharsetAndLengthFromItsHeaderFields) {
    const HTTPURLResponse response(url("https://example.com/page"), 404,
                                   {{"content-type", "Text/HTML; Charset=\"ISO-8859-1\""},
                                    {"Content-Length", " 1234 "},
                                    {"X-Request-Id", "7"}});
    EXPECT_EQ(response.statusCode(), 404);
    EXPECT_EQ(response.url(), url("https://example.com/page"));
    EXPECT_EQ(response.mimeType(), "text/html");
    EXPECT_EQ(response.textEncodingName(), "ISO-8859-1");
    EXPECT_EQ(response.vnStringEncoding(), NSISOLatin1StringEncoding);
    EXPECT_EQ(response.expectedContentLength(), 1234);
    EXPECT_EQ(response.allHeaderFields().size(), 3u);
    EXPECT_EQ(response.valueForHTTPHeaderField("CONTENT-LENGTH"), " 1234 ");
    EXPECT_EQ(response.valueForHTTPHeaderField("x-request-id"), "7");
    EXPECT_EQ(response.valueForHTTPHeaderField("X-Missing"), std::nullopt);
}

TEST(HTTPURLResponse, MissingOrMalformedFieldsLeaveTheirValuesUnknown) {
    const auto bare = httpResponse({});
    EXPECT_EQ(bare.mimeType(), std::nullopt);
    EXPECT_EQ(bare.textEncodingName(), std::nullopt);
    EXPECT_EQ(bare.vnStringEncoding(), std::nullopt);
    EXPECT_EQ(bare.expectedContentLength(), -1);

    for (const char* length : {"", "-5", "12abc", "0x10", "99999999999999999999"}) {
        EXPECT_EQ(httpResponse({{"Content-Length", length}}).expectedContentLength(), -1) << length;
    }
    EXPECT_EQ(httpResponse({{"Content-Length", "0"}}).expectedContentLength(), 0);

    const auto noCharset = httpResponse({{"Content-Type", "application/json;v=2; charset="}});
    EXPECT_EQ(noCharset.mimeType(), "application/json");
    EXPECT_EQ(noCharset.textEncodingName(), std::nullopt);
    const auto onlyParameters = httpResponse({{"Content-Type", " ; charset=utf-8"}});
    EXPECT_EQ(onlyParameters.mimeType(), std::nullopt);
    EXPECT_EQ(onlyParameters.textEncodingName(), "utf-8");
}

}  // namespace
}  // namespace vn
