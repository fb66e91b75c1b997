#include "vn/network/OAuthHelpers.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <mutex>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace vn {
namespace {

TEST(ab_RFC3986EncodedString, KeepsExactlyTheUnreservedBytesOfEveryByteValue) {
    // RFC 3986, section 2.3: unreserved = ALPHA / DIGIT / "-" / "." / "_" / "~".
    constexpr std::string_view unreserved =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        std::string expected(1, byte);
        if (unreserved.find(byte) == std::string_view::npos) {
            char escape[4];
            std::snprintf(escape, sizeof escape, "%%%02X", value);
            expected = escape;
        }
        EXPECT_EQ(ab_RFC3986EncodedString(std::string_view(&byte, 1)), expected) << value;
    }
}

TEST(ab_RFC3986EncodedString, EncodesTextsByteByByteFromUTF8) {
    const std::vector<std::pair<std::string_view, std::string_view>> cases = {
        {"", ""},
        {"a b/c~", "a%20b%2Fc~"},
        {"é", "%C3%A9"},
        {"€ 5", "%E2%82%AC%205"},
        {"😀", "%F0%9F%98%80"},
        {"100%", "100%25"},
        {"a+b=c&d", "a%2Bb%3Dc%26d"},
        {"!*'();:@$,?#[]", "%21%2A%27%28%29%3B%3A%40%24%2C%3F%23%5B%5D"},
        {std::string_view("a\0b", 3), "a%00b"},
        {"\xFF", "%FF"},  // not UTF-8, still encoded
    };
    for (const auto& [text, encoded] : cases) EXPECT_EQ(ab_RFC3986EncodedString(text), encoded);
}

TEST(ab_GUID, IsARandomUUIDInCanonicalUpperCaseForm) {
    const std::regex canonical(
        "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    for (int i = 0; i < 100; ++i) {
        const std::string guid = ab_GUID();
        EXPECT_TRUE(std::regex_match(guid, canonical)) << guid;
    }
}

TEST(ab_GUID, IsUniqueAcrossThreads) {
    constexpr int kThreads = 4;
    constexpr int kPerThread = 500;
    std::mutex mutex;
    std::set<std::string> seen;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&] {
            std::vector<std::string> mine;
            for (int i = 0; i < kPerThread; ++i) mine.push_back(ab_GUID());
            const std::lock_guard lock(mutex);
            seen.insert(mine.begin(), mine.end());
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(kThreads * kPerThread));
}

TEST(ab_parseURLQueryString, ReadsNamesAndValues) {
    const std::vector<std::pair<std::string_view, URLQueryDictionary>> cases = {
        {"", {}},
        {"a=1", {{"a", "1"}}},
        {"a=1&b=2", {{"a", "1"}, {"b", "2"}}},
        {"a=1&a=2", {{"a", "2"}}},  // the later duplicate wins
        {"flag", {{"flag", ""}}},   // no "=": empty value
        {"a=", {{"a", ""}}},
        {"=v&b=2", {{"b", "2"}}},           // empty name ignored
        {"&&a=1&", {{"a", "1"}}},           // empty pieces ignored
        {"k=a=b", {{"k", "a=b"}}},          // split at the first "="
        {"x%20y=z%26w", {{"x y", "z&w"}}},  // names and values decoded
        {"%41=%42", {{"A", "B"}}},
        {"p=a+b", {{"p", "a+b"}}},  // "+" is not a space
        {"n=%C3%BC", {{"n", "ü"}}},
        {"raw=Köln", {{"raw", "Köln"}}},
        {"v=%253D", {{"v", "%3D"}}},      // decoded once only
        {"bad=%zz&ok=1", {{"ok", "1"}}},  // malformed escape: piece ignored
        {"bad=%2&ok=1", {{"ok", "1"}}},   // truncated escape
        {"bad%=1&ok=1", {{"ok", "1"}}},   // malformed escape in the name
        {"bad=%C3&ok=1", {{"ok", "1"}}},  // decodes to bytes that are not UTF-8
        {"ok=1&bad=%FF", {{"ok", "1"}}},
    };
    for (const auto& [query, expected] : cases)
        EXPECT_EQ(ab_parseURLQueryString(query), expected) << query;
}

}  // namespace
}  // namespace vn
