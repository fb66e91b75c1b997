#include "vn/geometry/VNPixelAlignment.h"

#include <gtest/gtest.h>

#include "testing/ScopedProcessState.h"
#include "vn/geometry/Screen.h"

namespace vn {
namespace {

class VNPixelAlignment : public ::testing::Test {
  protected:
    testing::ScopedProcessState state;
};

TEST_F(VNPixelAlignment, AlignsFramesKeepingTheFarEdge) {
    struct Case {
        CGRect frame;
        CGFloat scale;
        CGRect expected;
    };
    const Case cases[] = {
        {CGRectMake(0.3, 0, 10.8, 5), 1, CGRectMake(0, 0, 11, 5)},    // 0.3 + 0.8 >= 1: one more
        {CGRectMake(0.3, 0, 10.5, 5), 1, CGRectMake(0, 0, 10, 5)},    // 0.3 + 0.5 < 1
        {CGRectMake(1, 2.5, 3, 4.5), 1, CGRectMake(1, 2, 3, 5)},      // y with height
        {CGRectMake(-0.3, 0, 2.4, 1), 1, CGRectMake(-1, 0, 3, 1)},    // -0.3 floors to -1, f = 0.7
        {CGRectMake(0.3, 0, 10.8, 5), 0.5, CGRectMake(0, 0, 11, 5)},  // no scaling up to 1
        {CGRectMake(10.3, 0, 10.3, 1), 2, CGRectMake(10, 0, 10.5, 1)},  // pixels: 20.6 and 20.6
        {CGRectMake(0.2, 0.25, 1.2, 1), 3, CGRectMake(0, 0, 4.0 / 3, 1)},
        // 16777217.5 has no float: it becomes 16777218, above the double's floor, so the
        // fraction is negative and the width is not widened.
        {CGRectMake(16777217.5, 0, 16777217.9, 1), 1, CGRectMake(16777218, 0, 16777218, 1)},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(VNPixelAlignedFrame(c.frame, c.scale), c.expected)
            << NSStringFromCGRect(c.frame) << " @" << c.scale << " gave "
            << NSStringFromCGRect(VNPixelAlignedFrame(c.frame, c.scale));
    }
    EXPECT_EQ(VNIntegerFrame(CGRectMake(0.3, 0, 10.8, 5)), CGRectMake(0, 0, 11, 5));
    EXPECT_EQ(VNIntegerSize({10.9, -0.5}), CGSizeMake(10, -1));
    EXPECT_EQ(VNIntegerPoint({2.5, -2.5}), CGPointMake(3, -3));  // halves away from zero
}

TEST_F(VNPixelAlignment, AlignsValuesToTheNearestPixel) {
    struct Case {
        CGFloat value;
        CGFloat scale;
        CGFloat expected;
    };
    const Case cases[] = {{10.3, 2, 10.5},   {10.2, 1, 10}, {10.25, 2, 10.5}, {-10.25, 2, -10.5},
                          {1.2, 3, 4.0 / 3}, {7, 3, 7},     {2.5, 0, 3}};
    for (const Case& c : cases) {
        EXPECT_EQ(VNPixelAlignedPointValue(c.value, c.scale), c.expected)
            << c.value << " @" << c.scale;
    }
    EXPECT_EQ(VNPixelAlignedPoint({10.3, 0.7}, 2), CGPointMake(10.5, 0.5));
    EXPECT_FALSE(
        VNPixelAlignedEquals(1.0, 1.2, 3));          // 0.6 pixel apart, but aligned 1 and 1.3333333
    EXPECT_TRUE(VNPixelAlignedEquals(1.0, 1.2, 1));  // both align to 1
    EXPECT_TRUE(VNPixelAlignedEquals(1.0, 1.1, 3));
    EXPECT_FALSE(VNPixelAlignedEquals(1.0, 1.4, 3));  // 1.2 pixels apart
}

TEST_F(VNPixelAlignment, MainScreenFormsUseTheHostsScale) {
    EXPECT_EQ(VNPixelAlignedPointValueWithMainScreenScale(10.3), 10);  // headless: scale 1
    EXPECT_TRUE(VNPixelAlignedEqualsWithMainScreenScale(1.0, 1.2));
    Screen::setMain(ScreenDescription{2, {390, 844}});
    EXPECT_EQ(VNPixelAlignedPointWithMainScreenScale({10.3, 4}), CGPointMake(10.5, 4));
    EXPECT_EQ(VNPixelAlignedFrameWithMainScreenScale(CGRectMake(10.3, 0, 10.3, 1)),
              CGRectMake(10, 0, 10.5, 1));
    Screen::setMain(ScreenDescription{3, {390, 844}});
    EXPECT_FALSE(VNPixelAlignedEqualsWithMainScreenScale(1.0, 1.2));
    EXPECT_TRUE(VNPixelAlignedEqualsWithMainScreenScale(1.3, 1.36));  // both on pixel 4
    EXPECT_FALSE(VNPixelAlignedEqualsWithMainScreenScale(1.0, 2.0));
}

}  // namespace
}  // namespace vn
