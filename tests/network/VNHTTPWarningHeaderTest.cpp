#include "vn/network/VNHTTPWarningHeader.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace vn {
namespace {

static_assert(!std::is_default_constructible_v<VNHTTPWarningHeader>,
              "a warning always has a code, an agent and a text");

TEST(VNHTTPWarningHeader, ClassifiesTextsByTheirPrefixes) {
    struct Case {
        std::string_view text;
        bool user;
        bool system;
        bool encoded;
        std::string_view message;
    };
    const std::vector<Case> cases = {
        {"User:Disk full", true, false, false, "Disk full"},
        {"System:Cache stale", false, true, false, "Cache stale"},
        {"Encoded:User:Disk%20full", true, false, true, "Disk full"},
        {"Encoded:System:a%2C%20b", false, true, true, "a, b"},
        {"Encoded:Plain%20text", false, false, true, "Plain text"},
        {"Encoded:User:caf%C3%A9+bar", true, false, true, "café+bar"},
        {"User:100%", true, false, false, "100%"},  // not encoded: never decoded
        {"User:a%20b", true, false, false, "a%20b"},
        {"Plain text", false, false, false, "Plain text"},
        {"user:lower case", false, false, false, "user:lower case"},  // case-sensitive
        {" User:leading blank", false, false, false, " User:leading blank"},
        {"User:Encoded:x%20y", true, false, false, "Encoded:x%20y"},  // "Encoded:" comes first
        {"Encoded:Encoded:User:x", false, false, true, "Encoded:User:x"},
        {"User:", true, false, false, ""},
        {"Encoded:", false, false, true, ""},
        {"", false, false, false, ""},
        // Undecodable messages come back undecoded, prefixes removed.
        {"Encoded:User:100%", true, false, true, "100%"},
        {"Encoded:System:%zz", false, true, true, "%zz"},
        {"Encoded:User:%C3", true, false, true, "%C3"},  // decodes to a broken UTF-8 sequence
    };
    for (const Case& c : cases) {
        const VNHTTPWarningHeader warning(199, "agent", std::string(c.text));
        EXPECT_EQ(warning.isUserWarning(), c.user) << c.text;
        EXPECT_EQ(warning.isSystemWarning(), c.system) << c.text;
        EXPECT_EQ(warning.isWarningEncoded(), c.encoded) << c.text;
        EXPECT_EQ(warning.warningText(), c.message) << c.text;
    }
}

TEST(VNHTTPWarningHeader, EqualsByCodeAgentAndText) {
    const VNHTTPWarningHeader warning(199, "a", "User:x");
    const auto same = VNHTTPWarningHeader::initWithCode(199, "a", "User:x");
    EXPECT_TRUE(warning.isEqual(*same));
    EXPECT_EQ(warning.hash(), same->hash());
    EXPECT_FALSE(warning.isEqual(VNHTTPWarningHeader(299, "a", "User:x")));
    EXPECT_FALSE(warning.isEqual(VNHTTPWarningHeader(199, "b", "User:x")));
    EXPECT_FALSE(warning.isEqual(VNHTTPWarningHeader(199, "a", "User:y")));
}

TEST(VNHTTPWarningHeader, DescribesItselfInHeaderFormWithEscapes) {
    EXPECT_EQ(VNHTTPWarningHeader(299, "h:80", "System:say \"hi\" \\ bye").description(),
              "299 h:80 \"System:say \\\"hi\\\" \\\\ bye\"");
}

}  // namespace
}  // namespace vn
