#include "vn/wkt/WKTString.h"

#include <gtest/gtest.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "WKTTesting.h"

namespace vn {
namespace {

using testing::expectRaises;
using Pieces = std::vector<std::string>;

// The splitting as the expressions define it, run through ICU: every match becomes
// "[SPLIT]", the result is split at "[SPLIT]", and the non-empty pieces are kept.
class ReferenceSplitter {
  public:
    explicit ReferenceSplitter(const char16_t* expression) {
        UErrorCode status = U_ZERO_ERROR;
        pattern_.reset(icu::RegexPattern::compile(icu::UnicodeString(expression), 0, status));
        EXPECT_FALSE(U_FAILURE(status)) << u_errorName(status);
    }

    Pieces split(const std::string& text) const {
        UErrorCode status = U_ZERO_ERROR;
        const icu::UnicodeString input = icu::UnicodeString::fromUTF8(text);
        std::unique_ptr<icu::RegexMatcher> matcher(pattern_->matcher(input, status));
        const icu::UnicodeString marked = matcher->replaceAll(u"[SPLIT]", status);
        EXPECT_FALSE(U_FAILURE(status));
        Pieces pieces;
        const icu::UnicodeString marker(u"[SPLIT]");
        int32_t start = 0;
        for (;;) {
            const int32_t found = marked.indexOf(marker, start);
            const int32_t end = found < 0 ? marked.length() : found;
            if (end > start) {
                std::string piece;
                marked.tempSubStringBetween(start, end).toUTF8String(piece);
                pieces.push_back(piece);
            }
            if (found < 0) return pieces;
            start = found + marker.length();
        }
    }

  private:
    std::unique_ptr<icu::RegexPattern> pattern_;
};

// Texts of WKT-like fragments: parentheses, commas, digits, ASCII and Unicode white space,
// other non-ASCII letters (one outside the basic plane), the marker itself and pieces of it.
std::string generatedText(std::mt19937& random) {
    static const std::vector<std::string> fragments = {
        // structure, numbers and ASCII white space
        "(", ")", "((", "))", ",", ", ", " ,", " ", "  ", "\t", "\n", "\r\n", "\v", "\f", "1", "23",
        "-4.5", "6e7", "x", "POINT", "Z", "EMPTY",
        // Unicode white space
        "\u00A0", "\u0085", "\u1680", "\u2000", "\u2003", "\u200A", "\u2028", "\u2029", "\u202F",
        "\u205F", "\u3000",
        // other non-ASCII characters, one outside the basic plane
        "\u200B", "\u180E", "\u00E9", "\u4E2D", "\U0001F600", "\u2030",
        // the marker and pieces of it
        "[SPLIT]", "[SPLIT", "SPLIT]", "[", "]"};
    std::uniform_int_distribution<std::size_t> length(0, 14);
    std::uniform_int_distribution<std::size_t> pick(0, fragments.size() - 1);
    std::string text;
    for (std::size_t n = length(random); n > 0; --n) text += fragments[pick(random)];
    return text;
}

TEST(WKTString, HandSplittersGiveExactlyWhatTheExpressionsGive) {
    struct Splitter {
        const char* name;
        Pieces (*split)(std::optional<std::string_view>);
        ReferenceSplitter reference;
    };
    const Splitter splitters[] = {
        {"spaces", WKTString::splitSpacesNSString, ReferenceSplitter(u"\\s+")},
        {"commas", WKTString::splitCommasNSString, ReferenceSplitter(u"\\s*,\\s*")},
        {"parentCommas", WKTString::splitParentCommasNSString,
         ReferenceSplitter(u"\\)(\\s*,\\s*)*\\(")},
        {"doubleParentCommas", WKTString::splitDoubleParentCommasNSString,
         ReferenceSplitter(u"\\)\\)(\\s*,\\s*)*\\(\\(")},
    };
    std::mt19937 random(20240611);
    for (int i = 0; i < 25000; ++i) {
        const std::string text = generatedText(random);
        for (const Splitter& splitter : splitters) {
            ASSERT_EQ(splitter.split(text), splitter.reference.split(text))
                << splitter.name << " of \"" << text << "\"";
        }
    }
}

TEST(WKTString, SplitsTheTextsOfAGeometry) {
    EXPECT_EQ(WKTString::splitSpacesNSString(" 1 \t2\u00A03[SPLIT]4"),
              (Pieces{"1", "2", "3", "4"}));
    EXPECT_EQ(WKTString::splitCommasNSString(" 1 2 ,3 4,, 5 6 "), (Pieces{" 1 2", "3 4", "5 6 "}));
    EXPECT_EQ(WKTString::splitParentCommasNSString("(1 2), (3 4)(5 6) , , (7 8) (9)"),
              (Pieces{"(1 2", "3 4", "5 6", "7 8) (9)"}));
    EXPECT_EQ(WKTString::splitDoubleParentCommasNSString("((0 0), (1 1)), ((2 2))"),
              (Pieces{"((0 0), (1 1", "2 2))"}));
}

TEST(WKTString, SplitStringTakesAnyExpression) {
    EXPECT_EQ(WKTString::splitString("a1b22c", "[0-9]+"), (Pieces{"a", "b", "c"}));
    EXPECT_EQ(WKTString::splitString("(1 2), (3 4)", WKTString::parentCommasExpression),
              (Pieces{"(1 2", "3 4)"}));
    EXPECT_EQ(WKTString::splitString("x\u00E9y\u00E9", "\u00E9"), (Pieces{"x", "y"}));
    expectRaises([] { WKTString::splitString("a", "(unclosed"); }, "WKTString [splitString]",
                 "Parameter regExp is invalid");
    // Matching that would not end (an ICU loop, a runaway backtrack) is refused the same way.
    expectRaises([] { WKTString::splitString("ab", "^+?b"); }, "WKTString [splitString]",
                 "Parameter regExp is invalid");
    expectRaises([] { WKTString::splitString(std::string(200, 'a') + "b", "(a|aa)+c"); },
                 "WKTString [splitString]", "Parameter regExp is invalid");
    expectRaises(  // reached after a first match: no partial split
        [] { WKTString::splitString("ok " + std::string(200, 'a') + "b", "ok|(a|aa)+c"); },
        "WKTString [splitString]", "Parameter regExp is invalid");
    const std::string longText(2'000'000, 'a');  // long texts get proportionally more time
    EXPECT_EQ(WKTString::splitString(longText + "," + longText, ",").size(), 2u);
}

TEST(WKTString, MissingInputRaisesByItsSplittersName) {
    const std::string reason = "Parameter input is nil";
    expectRaises([] { WKTString::splitSpacesNSString(std::nullopt); }, "WKTString [splitString]",
                 reason);
    expectRaises([] { WKTString::splitCommasNSString(std::nullopt); }, "WKTString [splitString]",
                 reason);
    expectRaises([] { WKTString::splitString(std::nullopt, "x"); }, "WKTString [splitString]",
                 reason);
    expectRaises([] { WKTString::splitParentCommasNSString(std::nullopt); },
                 "WKTString [splitParentCommasNSString]", reason);
    expectRaises([] { WKTString::splitDoubleParentCommasNSString(std::nullopt); },
                 "WKTString [splitDoubleParentCommasNSString]", reason);
}

}  // namespace
}  // namespace vn
