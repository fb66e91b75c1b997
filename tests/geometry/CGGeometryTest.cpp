#include "vn/geometry/CGGeometry.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(CGGeometry, DescribesRecordsInThePlatformsOrderWithShortestNumbers) {
    EXPECT_EQ(NSStringFromCGPoint({0.1, -2}), "{0.1, -2}");
    EXPECT_EQ(NSStringFromCGSize({1e21, 0.5}), "{1e+21, 0.5}");
    EXPECT_EQ(NSStringFromCGRect(CGRectMake(1, 2, 3, 4)), "{{1, 2}, {3, 4}}");
    EXPECT_EQ(NSStringFromUIEdgeInsets(UIEdgeInsetsMake(1, 2.5, 3, 4)), "{1, 2.5, 3, 4}");
}

}  // namespace
}  // namespace vn
