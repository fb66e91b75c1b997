// The positional message format.
#include "vn/formatting/MessageFormat.h"

#include <gtest/gtest.h>

#include <vector>

namespace vn {
namespace {

using VNUtilities::stringWithVNFormat;

TEST(MessageFormat, FillsNumberedPlaceholdersFromOne) {
    EXPECT_EQ(stringWithVNFormat("%1 of %2", {"page", 3}), "page of 3");
    EXPECT_EQ(stringWithVNFormat("%2, %1 and %2 again", {"a", "b"}), "b, a and b again");
    EXPECT_EQ(stringWithVNFormat("#{1} or %1", {"x"}), "x or x");
    EXPECT_EQ(stringWithVNFormat("100% sure, %1%", {"really"}), "100% sure, really%");
    EXPECT_EQ(stringWithVNFormat("%", {"x"}), "%");
    EXPECT_EQ(stringWithVNFormat("caf\xC3\xA9 %1", {"\xE2\x82\xAC"}), "caf\xC3\xA9 \xE2\x82\xAC");
}

TEST(MessageFormat, TwoDigitPlaceholdersAreOnePlaceholder) {
    std::vector<Value> values;
    for (int i = 1; i <= 12; ++i) values.emplace_back("v" + std::to_string(i));
    EXPECT_EQ(stringWithVNFormat("%12|%1|%10", values), "v12|v1|v10");
}

TEST(MessageFormat, MissingValuesLeaveVisiblePlaceholders) {
    EXPECT_EQ(stringWithVNFormat("%1 %3 %0", {"a"}), "a #{3} #{0}");
    EXPECT_EQ(stringWithVNFormat("%1"), "#{1}");
    EXPECT_EQ(stringWithVNFormat("%99999999999999999999999", {"a"}), "#{99999999999999999999999}");
}

TEST(MessageFormat, ValuesAreConvertedButNeverExpandedAgain) {
    EXPECT_EQ(stringWithVNFormat("[%1][%2][%3][%4]", {Value(), Value::null(), 2.5, true}),
              "[][][2.5][1]");
    EXPECT_EQ(stringWithVNFormat("%1 %2", {"#{2}", "b"}), "#{2} b");
    EXPECT_EQ(stringWithVNFormat("%1", {"%1"}), "%1");
}

}  // namespace
}  // namespace vn
