#include "vn/network/Base64.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vn {
namespace {

Data bytesOf(std::string_view text) {
    return Data(text.begin(), text.end());
}

Data randomBytes(std::size_t count, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_int_distribution<int> byte(0, 255);
    Data data(count);
    for (auto& value : data) value = static_cast<std::uint8_t>(byte(generator));
    return data;
}

TEST(Base64, EncodesAndDecodesTheRFC4648Vectors) {
    const std::vector<std::pair<std::string_view, std::string_view>> cases = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(base64EncodedString(bytesOf(bytes)), text) << bytes;
        EXPECT_EQ(dataWithBase64EncodedString(text), bytesOf(bytes)) << text;
    }
}

TEST(Base64, UsesPlusAndSlashForTheLastTwoDigits) {
    EXPECT_EQ(base64EncodedString(Data{0xFB, 0xFF}), "+/8=");
    EXPECT_EQ(dataWithBase64EncodedString("+/8="), (Data{0xFB, 0xFF}));
}

TEST(Base64, RoundTripsEveryByteValueAndEveryLengthModuloThree) {
    Data every(256);
    for (std::size_t i = 0; i < every.size(); ++i) every[i] = static_cast<std::uint8_t>(i);
    for (std::size_t length = 0; length <= every.size(); ++length) {
        const Data bytes(every.begin(), every.begin() + static_cast<std::ptrdiff_t>(length));
        const std::string text = base64EncodedString(bytes);
        EXPECT_EQ(text.size(), (length + 2) / 3 * 4);
        EXPECT_EQ(dataWithBase64EncodedString(text), bytes) << length;
    }
}

// Large inputs are coded in several pieces; the pieces must join seamlessly, which is the same
// as coding each group of three bytes on its own.
TEST(Base64, CodesDataLargerThanOnePieceAsItsGroupsOfThreeBytes) {
    const Data data = randomBytes(3 * 16384 * 2 + 7, 14);
    std::string expected;
    for (std::size_t offset = 0; offset < data.size(); offset += 3) {
        const std::size_t length = std::min<std::size_t>(3, data.size() - offset);
        expected += base64EncodedString(std::span(data).subspan(offset, length));
    }
    const std::string text = base64EncodedString(data);
    EXPECT_EQ(text, expected);
    EXPECT_EQ(dataWithBase64EncodedString(text), data);
}

TEST(Base64, RefusesTextsThatAreNotCanonicalBase64) {
    const std::vector<std::string_view> refused = {
        "Zg=",                         // length not a multiple of four
        "Zg",                          // padding missing
        "Zm9vYg",                      // padding missing after full groups
        "Zm9v\n",                      // line break
        " Zm9v",                       // leading blank
        "Zm9v YmFy",                   // blank inside
        "Zm=v",                        // padding inside a group
        "=Zm9",                        // padding first
        "Zm9vYg==Zm9v",                // padding before more groups
        "Z===",                        // three padding characters
        "====",                        // nothing but padding
        "Zh==",                        // unused bits set before two "="
        "Zm9=",                        // unused bits set before one "="
        "Zm9v-_==",                    // URL-safe alphabet
        std::string_view("Zm9\0", 4),  // NUL
        "Zm9v\xC3\xA9\xC3\xA9",        // non-ASCII
    };
    for (const std::string_view text : refused)
        EXPECT_EQ(dataWithBase64EncodedString(text), std::nullopt) << text;
}

TEST(Base64, RefusesALargeTextWhoseFaultIsInALaterPieceInsteadOfDecodingPart) {
    std::string text = base64EncodedString(randomBytes(3 * 16384 * 3, 5));
    text[text.size() - 2] = '*';
    EXPECT_EQ(dataWithBase64EncodedString(text), std::nullopt);
}

}  // namespace
}  // namespace vn
