// Version strings as numbers and their ordering.
#include "vn/formatting/VersionString.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

using VNUtilities::comparaVersionString;
using VNUtilities::numericRepresentationFromVersionString;

TEST(VersionString, PacksFourComponentsSixteenBitsEach) {
    EXPECT_EQ(numericRepresentationFromVersionString("1.2.3"), 0x0001000200030000u);
    EXPECT_EQ(numericRepresentationFromVersionString("1.2.3.4.5"), 0x0001000200030004u);
    EXPECT_EQ(numericRepresentationFromVersionString("2.1b4"), 0x0002000100000000u);
    EXPECT_EQ(numericRepresentationFromVersionString(" 10"), 0x000A000000000000u);
    EXPECT_EQ(numericRepresentationFromVersionString("1.70000"), 0x0001FFFF00000000u);
    EXPECT_EQ(numericRepresentationFromVersionString(""), 0u);
    EXPECT_EQ(numericRepresentationFromVersionString("x.y"), 0u);
    EXPECT_LT(numericRepresentationFromVersionString("1.9"),
              numericRepresentationFromVersionString("1.10"));
    EXPECT_LT(numericRepresentationFromVersionString("9.99.99"),
              numericRepresentationFromVersionString("10"));
}

TEST(VersionString, OrdersComponentByComponent) {
    struct Case {
        const char* left;
        const char* right;
        NSComparisonResult result;
    };
    const Case cases[] = {
        {"1.9", "1.10", NSOrderedAscending},
        {"1.2", "1.2.0", NSOrderedSame},
        {"1.2.0.0.1", "1.2", NSOrderedDescending},
        {"2.0", "10.0", NSOrderedAscending},
        {"1.02", "1.2", NSOrderedSame},
        {"1.99999999999999999999", "1.99999999999999999998", NSOrderedDescending},
        {"", "0", NSOrderedSame},
        {"3.1a", "3.1", NSOrderedSame},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(comparaVersionString(c.left, c.right), c.result) << c.left << " vs " << c.right;
        EXPECT_EQ(comparaVersionString(c.right, c.left),
                  static_cast<NSComparisonResult>(-c.result));
    }
}

}  // namespace
}  // namespace vn
