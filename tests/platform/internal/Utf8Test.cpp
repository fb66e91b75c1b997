#include "platform/internal/Utf8.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace vn::platform_internal {
namespace {

// The walk of decodeUtf8 through text: "U+XXXX" per well-formed sequence, "xHH" per byte
// taken alone.
std::vector<std::string> walk(std::string_view text) {
    std::vector<std::string> steps;
    for (std::size_t at = 0; at < text.size();) {
        const Utf8Step step = decodeUtf8(text, at);
        char buffer[16];
        std::snprintf(buffer, sizeof buffer, step.wellFormed ? "U+%04X" : "x%02X",
                      static_cast<unsigned>(step.codePoint));
        steps.emplace_back(buffer);
        if (!step.wellFormed) {
            EXPECT_EQ(step.length, 1u) << "a malformed byte is taken alone";
        }
        at += step.length;
    }
    return steps;
}

struct Utf8Case {
    std::string_view what;
    std::string_view text;
    std::vector<std::string> steps;
};

TEST(Utf8, DecodesWellFormedSequencesAndTakesEveryOtherByteAlone) {
    const std::vector<Utf8Case> cases = {
        {"empty", "", {}},
        {"ASCII", "a\x7F", {"U+0061", "U+007F"}},
        {"two bytes, lowest and highest", "\xC2\x80\xDF\xBF", {"U+0080", "U+07FF"}},
        {"three bytes, lowest", "\xE0\xA0\x80", {"U+0800"}},
        {"three bytes, euro sign", "\xE2\x82\xAC", {"U+20AC"}},
        {"last before the surrogates", "\xED\x9F\xBF", {"U+D7FF"}},
        {"first after the surrogates", "\xEE\x80\x80", {"U+E000"}},
        {"four bytes, lowest", "\xF0\x90\x80\x80", {"U+10000"}},
        {"highest code point", "\xF4\x8F\xBF\xBF", {"U+10FFFF"}},
        {"overlong NUL", "\xC0\x80", {"xC0", "x80"}},
        {"overlong two-byte form", "\xC1\xBF", {"xC1", "xBF"}},
        {"overlong three-byte form", "\xE0\x9F\xBF", {"xE0", "x9F", "xBF"}},
        {"overlong four-byte form", "\xF0\x8F\xBF\xBF", {"xF0", "x8F", "xBF", "xBF"}},
        {"high surrogate", "\xED\xA0\x80", {"xED", "xA0", "x80"}},
        {"low surrogate", "\xED\xBF\xBF", {"xED", "xBF", "xBF"}},
        {"above U+10FFFF", "\xF4\x90\x80\x80", {"xF4", "x90", "x80", "x80"}},
        {"lead beyond F4", "\xF5\x80\x80\x80", {"xF5", "x80", "x80", "x80"}},
        {"bytes never in UTF-8", "\xFE\xFF", {"xFE", "xFF"}},
        {"stray continuation",
         "\x80"
         "a",
         {"x80", "U+0061"}},
        {"lone lead at the end", "a\xC3", {"U+0061", "xC3"}},
        {"truncated three-byte sequence at the end", "\xE2\x82", {"xE2", "x82"}},
        {"truncated four-byte sequence at the end", "\xF0\x9F\x98", {"xF0", "x9F", "x98"}},
        {"truncated sequence before ASCII",
         "\xE2\x82"
         "A",
         {"xE2", "x82", "U+0041"}},
        {"lead followed by a lead", "\xC3\xC3\xA9", {"xC3", "U+00E9"}},
    };
    for (const Utf8Case& c : cases) {
        EXPECT_EQ(walk(c.text), c.steps) << c.what;
        bool wellFormed = true;
        for (const std::string& step : c.steps) wellFormed = wellFormed && step[0] == 'U';
        EXPECT_EQ(isValidUtf8(c.text), wellFormed) << c.what;
        // The checker skips ASCII eight bytes at a time: the verdict must not depend on
        // where the sequence falls relative to that stride.
        for (const std::string_view padding : {"1234567", "123456789abcdef", "12345678"}) {
            const std::string padded = std::string(padding) + std::string(c.text) + "tail";
            EXPECT_EQ(isValidUtf8(padded), wellFormed) << c.what << " after " << padding;
        }
    }
}

TEST(Utf8, ReplacesEachMalformedByteWithOneReplacementCharacter) {
    const struct {
        std::string_view text;
        std::string_view replaced;
    } cases[] = {
        {"", ""},
        {"caf\xC3\xA9", "caf\xC3\xA9"},
        {"a\xC0\x80z", "a\xEF\xBF\xBD\xEF\xBF\xBDz"},
        {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"ok\xE2\x82", "ok\xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (const auto& c : cases) {
        const std::string replaced = replacingInvalidUtf8(c.text);
        EXPECT_EQ(replaced, c.replaced) << c.text;
        EXPECT_TRUE(isValidUtf8(replaced));
    }
}

TEST(Utf8, EncodesEveryCodePointItDecodesAndReplacesTheOthers) {
    const struct {
        char32_t codePoint;
        std::string_view bytes;
    } cases[] = {
        {U'\0', std::string_view("\0", 1)},
        {0x7F, "\x7F"},
        {0x80, "\xC2\x80"},
        {0x7FF, "\xDF\xBF"},
        {0x800, "\xE0\xA0\x80"},
        {0xD7FF, "\xED\x9F\xBF"},
        {0xD800, "\xEF\xBF\xBD"},
        {0xDFFF, "\xEF\xBF\xBD"},
        {0xFFFF, "\xEF\xBF\xBF"},
        {0x10000, "\xF0\x90\x80\x80"},
        {0x10FFFF, "\xF4\x8F\xBF\xBF"},
        {0x110000, "\xEF\xBF\xBD"},
    };
    for (const auto& c : cases) {
        std::string out = "<";
        appendUtf8(out, c.codePoint);
        EXPECT_EQ(out, "<" + std::string(c.bytes))
            << std::hex << static_cast<unsigned>(c.codePoint);
        const Utf8Step back = decodeUtf8(c.bytes, 0);
        EXPECT_TRUE(back.wellFormed && back.length == c.bytes.size());
    }
}

}  // namespace
}  // namespace vn::platform_internal
