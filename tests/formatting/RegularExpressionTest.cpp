// Regular expressions over UTF-8 texts, with byte ranges and replacement templates.
#include "vn/formatting/RegularExpression.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace vn {
namespace {

TEST(RegularExpression, MatchesWithByteRangesAndGroups) {
    const auto expression = RegularExpression::regularExpressionWithPattern("(\\d+)-(x)?(\\d+)");
    ASSERT_NE(expression, nullptr);
    EXPECT_EQ(expression->numberOfCaptureGroups(), 3u);
    const std::string text = "\xC3\xA9t\xC3\xA9 12-34 and 5-x6";
    const auto matches = expression->matches(text);
    ASSERT_EQ(matches.size(), 2u);
    EXPECT_EQ(matches[0].range, (StringRange{6, 5}));  // after two 2-byte characters
    EXPECT_EQ(text.substr(matches[0].groups[1]->location, matches[0].groups[1]->length), "12");
    EXPECT_EQ(matches[0].groups[2], std::nullopt);
    EXPECT_EQ(text.substr(matches[1].groups[3]->location, matches[1].groups[3]->length), "6");
    EXPECT_EQ(expression->numberOfMatches(text), 2u);
    EXPECT_EQ(expression->firstMatch(text)->range, matches[0].range);
    EXPECT_EQ(expression->firstMatch("none"), std::nullopt);
    EXPECT_TRUE(expression->matchesEntirely("1-2"));
    EXPECT_FALSE(expression->matchesEntirely("1-2 "));
}

TEST(RegularExpression, ReplacesWithTemplatesAndOptions) {
    const auto percent = RegularExpression::regularExpressionWithPattern(
        "%([0-9]+)", RegularExpression::caseInsensitive);
    EXPECT_EQ(percent->stringByReplacingMatches("%1 of %12%", "#{$1}"), "#{1} of #{12}%");
    const auto word = RegularExpression::regularExpressionWithPattern(
        "caf\xC3\xA9", RegularExpression::caseInsensitive);
    EXPECT_EQ(word->stringByReplacingMatches("CAF\xC3\x89 & caf\xC3\xA9", "tea"), "tea & tea");
    const auto literal = RegularExpression::regularExpressionWithPattern(
        "a.c", RegularExpression::ignoreMetacharacters);
    EXPECT_EQ(literal->numberOfMatches("abc a.c"), 1u);
    const auto escaped = RegularExpression::regularExpressionWithPattern(
        RegularExpression::escapedPatternForString("(1+1)*$"));
    EXPECT_EQ(escaped->stringByReplacingMatches(
                  "x(1+1)*$y", RegularExpression::escapedTemplateForString("$1\\")),
              "x$1\\y");
    const auto lines =
        RegularExpression::regularExpressionWithPattern("^b", RegularExpression::anchorsMatchLines);
    EXPECT_EQ(lines->numberOfMatches("a\nb\nb"), 2u);
}

TEST(RegularExpression, InvalidPatternGivesAnError) {
    ErrorPtr error;
    EXPECT_EQ(RegularExpression::regularExpressionWithPattern("(unclosed", 0, &error), nullptr);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), 2048);
    EXPECT_EQ(error->userInfoValue("NSInvalidValue"), Value("(unclosed"));
    EXPECT_EQ(RegularExpression::regularExpressionWithPattern("[", 0, nullptr), nullptr);
}

TEST(RegularExpression, RunawayMatchingFailsAsNoMatch) {
    // ICU loops on this one; the other backtracks without end.
    for (const auto& [pattern, text] : {std::pair<std::string, std::string>{"^+?b", "ab"},
                                        {"(a|aa)+c", std::string(200, 'a') + "b"}}) {
        SCOPED_TRACE(pattern);
        const auto expression = RegularExpression::regularExpressionWithPattern(pattern);
        ASSERT_NE(expression, nullptr);
        EXPECT_EQ(expression->firstMatch(text), std::nullopt);
        EXPECT_TRUE(expression->matches(text).empty());
        EXPECT_EQ(expression->numberOfMatches(text), 0u);
        EXPECT_FALSE(expression->matchesEntirely(text));
        EXPECT_EQ(expression->stringByReplacingMatches(text, "x"), text);
    }
    // A search that is cut short gives nothing rather than the matches found before it.
    const auto laterRunaway = RegularExpression::regularExpressionWithPattern("ok|(a|aa)+c");
    const std::string okThenRunaway = "ok " + std::string(200, 'a') + "b";
    EXPECT_TRUE(laterRunaway->matches(okThenRunaway).empty());
    EXPECT_EQ(laterRunaway->numberOfMatches(okThenRunaway), 0u);
    EXPECT_EQ(laterRunaway->stringByReplacingMatches(okThenRunaway, "X"), okThenRunaway);

    // The limit grows with the text: a long scan with many matches completes.
    const std::string longText(4'000'000, 'a');
    const auto single = RegularExpression::regularExpressionWithPattern("a");
    EXPECT_EQ(single->numberOfMatches(longText), longText.size());
    EXPECT_EQ(single->stringByReplacingMatches(longText, "b"), std::string(longText.size(), 'b'));
}

TEST(RegularExpression, OneExpressionServesManyThreads) {
    const auto expression = RegularExpression::regularExpressionWithPattern("[a-z]+");
    std::vector<std::thread> threads;
    std::vector<std::size_t> counts(4);
    for (std::size_t t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 200; ++i) counts[t] += expression->numberOfMatches("ab 12 cd ef");
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(counts, std::vector<std::size_t>(4, 600));
}

}  // namespace
}  // namespace vn
