#include "vn/values/EnclosingQuotes.h"

#include <gtest/gtest.h>

#include <string>

namespace vn {
namespace {

TEST(EnclosingQuotes, RemovesOnePairAndReportsQuotesAndTranslatability) {
    struct Case {
        std::string text;
        std::string expected;
        bool hasQuotes;
        bool isTranslatable;
    };
    const Case cases[] = {
        {"\"Hello\"", "Hello", true, false},
        {"'Hello'", "Hello", true, false},
        {"!\"Hello\"", "Hello", true, true},
        {"!'Hola'", "Hola", true, true},
        {"\"\"", "", true, false},
        {"!\"\"", "", true, true},
        {"\"say \"\"hi\"\"\"", "say \"\"hi\"\"", true, false},  // inner quotes are kept
        {"\"it's\"", "it's", true, false},
        {"\"\"\"", "\"", true, false},
        {"Hello", "Hello", false, false},
        {"\"Hello'", "\"Hello'", false, false},
        {"\"", "\"", false, false},
        {"'", "'", false, false},
        {"!", "!", false, false},
        {"!Hello", "!Hello", false, false},
        {"!!\"x\"", "!!\"x\"", false, false},
        {" \"Hello\" ", " \"Hello\" ", false, false},
        {"", "", false, false},
        {"\"h\xC3\xA9\"", "h\xC3\xA9", true, false},
    };
    for (const Case& c : cases) {
        bool hasQuotes = !c.hasQuotes;
        bool isTranslatable = !c.isTranslatable;
        EXPECT_EQ(VNUtilities::stringByRemovingEnclosingQuotes(c.text, &hasQuotes, &isTranslatable),
                  c.expected)
            << c.text;
        EXPECT_EQ(hasQuotes, c.hasQuotes) << c.text;
        EXPECT_EQ(isTranslatable, c.isTranslatable) << c.text;
        EXPECT_EQ(VNUtilities::stringByRemovingEnclosingQuotes(c.text),
                  c.expected);  // flags are optional
    }
}

}  // namespace
}  // namespace vn
