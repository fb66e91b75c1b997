// URLs: which texts are URI references, and the components read from them.
#include "vn/platform/URL.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(URL, AcceptsAbsoluteURIsAndRelativeReferences) {
    const char* const valid[] = {
        "https://example.com",
        "HTTP://EXAMPLE.COM:8080/a/b?c=d&e=%2F#frag",
        "mailto:someone@example.com",
        "urn:isbn:0451450523",
        "file:///tmp/vnlog.log",
        "svn+ssh://user:pw@host.example/repo",
        "http://[::1]:8080/",
        "http://[2001:db8::7]/c=GB?objectClass?one",
        "http://[v7.fe80::1-a]/",
        "http://127.0.0.1:/",
        "../relative/path",
        "./1a:b",
        "//host.example/path",
        "?query=only",
        "#fragment",
        "/~user/it's(here)*+,;=!$&",
        "a:",
    };
    for (const char* text : valid) {
        const auto url = URL::URLWithString(text);
        ASSERT_TRUE(url.has_value()) << text;
        EXPECT_EQ(url->absoluteString(), text);
    }
}

TEST(URL, RejectsTextThatIsNotAURIReference) {
    const char* const invalid[] = {
        "",
        "http://example.com/a b",
        "http://example.com/\t",
        "http://example.com/\x7f",
        "http://example.com/caf\xc3\xa9",
        "http://example.com/\"quoted\"",
        "http://example.com/<tag>",
        "http://example.com/a{b}",
        "http://example.com/a|b",
        "http://example.com/a\\b",
        "http://example.com/^",
        "http://example.com/%",
        "http://example.com/%4",
        "http://example.com/%4G",
        "http://example.com/%zz/x",
        ":no-scheme",
        "1http://example.com",
        "ht_tp://example.com",
        "http://example.com/#a#b",
        "http://example.com/[x]",
        "http://example.com/?a[]=1",
        "http://[::1/",
        "http://[not-an-address]/",
        "http://[::1]x/",
        "http://host:80a/",
        "http://a@b@host/",
        "http://us[er@host/",
        "http://ho]st/",
    };
    for (const char* text : invalid) {
        EXPECT_FALSE(URL::URLWithString(text).has_value()) << '"' << text << '"';
    }
    std::string withNul = "http://example.com/a";
    withNul.push_back('\0');
    EXPECT_FALSE(URL::URLWithString(withNul).has_value());
}

struct Components {
    const char* text;
    std::optional<std::string> scheme;
    std::optional<std::string> host;
    std::optional<std::string> port;
    std::string path;
    std::optional<std::string> query;
    std::optional<std::string> fragment;
};

TEST(URL, SplitsItsTextIntoComponentsAsWritten) {
    using std::nullopt;
    const Components cases[] = {
        {"https://Example.com/a/b%20c?x=1&y#top", "https", "Example.com", nullopt, "/a/b%20c",
         "x=1&y", "top"},
        {"http://user:pw@h.example:8080", "http", "h.example", "8080", "", nullopt, nullopt},
        {"http://[::1]:631/printers", "http", "::1", "631", "/printers", nullopt, nullopt},
        {"http://h:/", "http", "h", nullopt, "/", nullopt, nullopt},
        {"http://h/?", "http", "h", nullopt, "/", "", nullopt},
        {"file:///tmp/vnlog.log", "file", nullopt, nullopt, "/tmp/vnlog.log", nullopt, nullopt},
        {"mailto:someone@example.com", "mailto", nullopt, nullopt, "someone@example.com", nullopt,
         nullopt},
        {"//cdn.example/lib.js", nullopt, "cdn.example", nullopt, "/lib.js", nullopt, nullopt},
        {"../up?q=a/b?c#f?g/h", nullopt, nullopt, nullopt, "../up", "q=a/b?c", "f?g/h"},
    };
    for (const Components& expected : cases) {
        SCOPED_TRACE(expected.text);
        const auto url = URL::URLWithString(expected.text);
        ASSERT_TRUE(url.has_value());
        EXPECT_EQ(url->scheme(), expected.scheme);
        EXPECT_EQ(url->host(), expected.host);
        EXPECT_EQ(url->port(), expected.port);
        EXPECT_EQ(url->path(), expected.path);
        EXPECT_EQ(url->query(), expected.query);
        EXPECT_EQ(url->fragment(), expected.fragment);
    }
}

TEST(URL, EqualityComparesTheTextsExactly) {
    const auto a = URL::URLWithString("https://example.com/a");
    EXPECT_EQ(a, URL::URLWithString("https://example.com/a"));
    EXPECT_NE(a, URL::URLWithString("HTTPS://example.com/a"));
    EXPECT_NE(a, URL::URLWithString("https://example.com/a/"));
    EXPECT_NE(a, URL::URLWithString("https://example.com/%61"));
}

}  // namespace
}  // namespace vn
