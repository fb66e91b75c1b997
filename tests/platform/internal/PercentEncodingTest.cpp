#include "platform/internal/PercentEncoding.h"

#include <gtest/gtest.h>

#include <string>

namespace vn::platform_internal {
namespace {

std::string encoded(std::string_view text, int rounds = 1) {
    std::string out = "prefix:";
    appendPercentEncoded(out, text, rounds);
    return out.substr(7);
}

TEST(PercentEncoding, EncodesEveryByteButTheUnreservedOnesInUpperCaseHex) {
    EXPECT_EQ(encoded(""), "");
    EXPECT_EQ(encoded("AZaz09-._~"), "AZaz09-._~");
    EXPECT_EQ(encoded("a b&c=d/e?f+g%h"), "a%20b%26c%3Dd%2Fe%3Ff%2Bg%25h");
    EXPECT_EQ(encoded("caf\xC3\xA9"), "caf%C3%A9");
    EXPECT_EQ(encoded(std::string_view("\0\xFF", 2)), "%00%FF");
}

TEST(PercentEncoding, EachExtraRoundEncodesTheEscapesOnceMore) {
    std::string everyByte;
    for (int c = 0; c < 256; ++c) everyByte += static_cast<char>(c);
    EXPECT_EQ(encoded(everyByte, 2), encoded(encoded(everyByte)));
    EXPECT_EQ(encoded(everyByte, 3), encoded(encoded(encoded(everyByte))));
    std::string appended = "kept";
    appendPercentEncoded(appended, "a b");
    EXPECT_EQ(appended, "kepta%20b");
}

}  // namespace
}  // namespace vn::platform_internal
