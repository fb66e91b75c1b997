// Escaping, trimming, case, searching and splitting of UTF-8 texts.
#include "vn/formatting/StringUtilities.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(StringUtilities, XmlEscapingRoundTripsAndUnescapesTwiceEscapedText) {
    EXPECT_EQ(xmlSimpleEscapeString("a<b & \"c\""), "a&lt;b &amp; &quot;c&quot;");
    EXPECT_EQ(xmlSimpleEscape("it's > 1"), "it&#x27;s &gt; 1");
    EXPECT_EQ(xmlSimpleUnescapeString("a&lt;b &amp; &quot;c&quot;"), "a<b & \"c\"");
    EXPECT_EQ(xmlSimpleUnescape("&amp;lt;"), "<");  // escaped twice
    for (const char* apostrophe : {"&#x27;s", "&#x39;s", "&#x92;s", "&#x96;s"}) {
        EXPECT_EQ(xmlSimpleUnescape(apostrophe), "'s") << apostrophe;
    }
    const std::string text = "<tag a='1'>Tom & \"Jerry\" \xC3\xA9</tag>";
    EXPECT_EQ(xmlSimpleUnescape(xmlSimpleEscape(text)), text);
    EXPECT_EQ(xmlSimpleEscape(""), "");
}

TEST(StringUtilities, UrlEscapingKeepsOnlyUnreservedCharacters) {
    EXPECT_EQ(urlSimpleEscape("a b&c=d/e?f~g_h.i-j"), "a%20b%26c%3Dd%2Fe%3Ff~g_h.i-j");
    EXPECT_EQ(urlSimpleEscape("\xC3\xA9"), "%C3%A9");
    EXPECT_EQ(urlSimpleUnescape("a%20b%26c%3dd"), "a b&c=d");
    EXPECT_EQ(urlSimpleUnescape("%C3%A9+100%"), "\xC3\xA9+100%");
    EXPECT_EQ(urlSimpleUnescape("%zz%4"), "%zz%4");
    EXPECT_EQ(urlSimpleUnescape("%FF"), std::nullopt);  // not UTF-8
    const std::string text = "key=va lue&ñ/?#";
    EXPECT_EQ(urlSimpleUnescape(urlSimpleEscape(text)), text);
}

TEST(StringUtilities, TrimsWhiteSpaceOfEveryKind) {
    EXPECT_EQ(ltrim(" \t\n\u00A0x y \n"), "x y \n");
    EXPECT_EQ(rtrim(" \t x y\u3000\r\n"), " \t x y");
    EXPECT_EQ(ltrim("   "), "");
    EXPECT_EQ(rtrim(""), "");
}

TEST(StringUtilities, CaseOperationsUseFullUnicodeMappings) {
    EXPECT_EQ(vnStringWithOnlyFirstLetterCapitalized("hELLO wORLD"), "Hello world");
    EXPECT_EQ(vnOnlyFirstLetterCapitalized("\xC3\xA9"
                                           "COLE"),
              "\xC3\x89"
              "cole");  // école
    EXPECT_EQ(vnOnlyFirstLetterCapitalized("\xC3\x9F"
                                           "x"),
              "SSx");
    EXPECT_EQ(vnOnlyFirstLetterCapitalized(""), "");
    EXPECT_TRUE(
        vnCaseInsensitiveEquals("Stra\xC3\x9F"
                                "e",
                                "STRASSE"));
    EXPECT_TRUE(vnCaseInsensitiveEquals("\xC3\x89T\xC3\x89", "\xC3\xA9t\xC3\xA9"));
    EXPECT_FALSE(vnCaseInsensitiveEquals("abc", "abd"));
}

TEST(StringUtilities, SearchesAndCountsOccurrences) {
    EXPECT_EQ(vnStringUpToFirstOccurrenceOfString("name.ext.bak", "."), "name");
    EXPECT_EQ(vnStringUpToFirstOccurrenceOfString("name", "."), "name");
    EXPECT_EQ(vnNumberOfOccurrencesOfString("a,b,,c", ","), 3u);
    EXPECT_EQ(vnNumberOfOccurrencesOfString("aaa", "aa"), 1u);
    EXPECT_EQ(vnNumberOfOccurrencesOfString("abc", ""), 0u);
    EXPECT_EQ(vnRangeOfString("x\xC3\xA9Y\xC3\xA9y", "\xC3\x89y", NSCaseInsensitiveSearch),
              (StringRange{1, 3}));
    EXPECT_EQ(vnRangeOfString("x\xC3\xA9Y\xC3\xA9y", "\xC3\x89y",
                              NSCaseInsensitiveSearch | NSBackwardsSearch),
              (StringRange{4, 3}));
    EXPECT_EQ(vnRangeOfString("abcabc", "abc", NSAnchoredSearch | NSBackwardsSearch),
              (StringRange{3, 3}));
    EXPECT_EQ(vnRangeOfString("xabc", "abc", NSAnchoredSearch), std::nullopt);
    EXPECT_EQ(vnRangeOfString("ab\xFF"
                              "c",
                              "c"),
              (StringRange{3, 1}));  // malformed bytes are tolerated
}

TEST(StringUtilities, SplitsAtTheSelectedOccurrence) {
    EXPECT_EQ(vnSplitStringByFirstOccurrenceOfString("a=b=c", "="), (StringSplit{"a", "b=c"}));
    EXPECT_EQ(vnSplitStringByLastOccurrenceOfString("a=b=c", "="), (StringSplit{"a=b", "c"}));
    EXPECT_EQ(vnSplit("Key AND value and more", "and", NSCaseInsensitiveSearch),
              (StringSplit{"Key ", " value and more"}));
    EXPECT_EQ(
        vnSplitString("Key AND value and more", "AND", NSCaseInsensitiveSearch | NSBackwardsSearch),
        (StringSplit{"Key AND value ", " more"}));
    EXPECT_EQ(vnSplit("=x", "="), (StringSplit{"", "x"}));
    EXPECT_EQ(vnSplit("abc", "="), std::nullopt);
    EXPECT_EQ(vnSplit("abc", ""), std::nullopt);

    std::string left = "untouched";
    std::string right = "untouched";
    EXPECT_FALSE(VNUtilities::splitString("abc", "=", &left, &right));
    EXPECT_EQ(left, "untouched");
    EXPECT_TRUE(VNUtilities::splitString("a=b=c", "=", &left, &right));
    EXPECT_EQ(left + "|" + right, "a|b=c");
    EXPECT_TRUE(VNUtilities::splitStringByLastOcurrenceOfString("a=b=c", "=", &left, nullptr));
    EXPECT_EQ(left, "a=b");
    EXPECT_TRUE(VNUtilities::splitString("aXbxc", "x", NSCaseInsensitiveSearch | NSBackwardsSearch,
                                         nullptr, &right));
    EXPECT_EQ(right, "c");
    EXPECT_TRUE(VNUtilities::splitStringByFirstOcurrenceOfString("k: v", ": ", &left, &right));
    EXPECT_EQ(left + "|" + right, "k|v");
}

TEST(StringUtilities, SeparatesExceptAtEscapedSeparators) {
    using Parts = std::vector<std::string>;
    EXPECT_EQ(vnSeparateStringWithSeparator("a,b\\,c,d", ",", "\\"), (Parts{"a", "b,c", "d"}));
    EXPECT_EQ(vnSeparateStringWithSeparator("a::b%%::c", "::", "%%"), (Parts{"a", "b::c"}));
    EXPECT_EQ(vnSeparateStringWithSeparator(",a,", ",", "\\"), (Parts{"", "a", ""}));
    EXPECT_EQ(vnSeparateStringWithSeparator("a\\b", ",", "\\"), (Parts{"a\\b"}));
    EXPECT_EQ(vnSeparateStringWithSeparator("a,b", ",", ""), (Parts{"a", "b"}));
    EXPECT_EQ(vnSeparateStringWithSeparator("a,b", "", "\\"), (Parts{"a,b"}));
    EXPECT_EQ(vnSeparateStringWithSeparator("", ",", "\\"), (Parts{""}));
}

}  // namespace
}  // namespace vn
