#include "vn/geometry/VNFrameLayout.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

const CGRect kContainer = CGRectMake(10, 20, 100, 50);

TEST(VNFrameLayout, AlignsByAlignmentOrByTheDefault) {
    struct Case {
        int alignment;
        CGFloat expectedX;
    };
    // Default, justify and unknown values resolve to center.
    const Case cases[] = {{1, 10}, {2, 40}, {3, 70}, {0, 40}, {4, 40}, {200, 40}};
    for (const Case& c : cases) {
        EXPECT_EQ(
            VNHorizontalAlignedFrame(static_cast<VNHorizontalAlign>(c.alignment), kContainer, 40),
            CGRectMake(c.expectedX, 20, 40, 50))
            << c.alignment;
    }
    EXPECT_EQ(VNHorizontalAlignedFrameWithDefaultResolver(VNHorizontalAlignJustify,
                                                          VNHorizontalAlignRight, kContainer, 40),
              CGRectMake(70, 20, 40, 50));
    // An unusable default keeps the origin.
    EXPECT_EQ(VNHorizontalAlignedFrameWithDefaultResolver(
                  VNHorizontalAlignDefault, static_cast<VNHorizontalAlign>(9), kContainer, 40),
              CGRectMake(10, 20, 40, 50));
    EXPECT_EQ(VNVerticalAlignedFrame(static_cast<VNVerticalAlign>(7), kContainer, 10),
              CGRectMake(10, 40, 100, 10));
    EXPECT_EQ(VNVerticalAlignedFrameWithDefaultResolver(VNVerticalAlignDefault, VNVerticalAlignTop,
                                                        kContainer, 10),
              CGRectMake(10, 20, 100, 10));
    EXPECT_EQ(VNAlignedFrame(VNHorizontalAlignRight, VNVerticalAlignBottom, kContainer, 40, 10),
              CGRectMake(70, 60, 40, 10));
    EXPECT_EQ(VNAlignedFrameWithDefaultResolver(VNHorizontalAlignJustify, VNVerticalAlignDefault,
                                                VNHorizontalAlignLeft, VNVerticalAlignBottom,
                                                kContainer, 40, 10),
              CGRectMake(10, 60, 40, 10));
}

TEST(VNFrameLayout, KeepsTheContainerWhenTheWantedLengthDoesNotFit) {
    EXPECT_EQ(VNHorizontalAlignedFrame(VNHorizontalAlignRight, kContainer, 100), kContainer);
    EXPECT_EQ(VNVerticalAlignedFrame(VNVerticalAlignBottom, kContainer, 80), kContainer);
}

TEST(VNFrameLayout, InsetsAndOutsetsNeverGiveNegativeSizes) {
    EXPECT_EQ(VNHorizontalFrameInset(kContainer, 150, 10),
              CGRectMake(110, 20, 0, 50));  // x moves by the width
    EXPECT_EQ(VNVerticalFrameInset(kContainer, 5, 10), CGRectMake(10, 25, 100, 35));
    EXPECT_EQ(VNFrameInsetEdgeInsets(kContainer, UIEdgeInsetsMake(3, 1, 4, 2)),
              CGRectMake(11, 23, 97, 43));
    EXPECT_EQ(VNFrameInsetMargin(kContainer, VNLayoutQuadDimensionMake(3, 2, 4, 1)),
              CGRectMake(11, 23, 97, 43));
    EXPECT_EQ(VNFrameOutsetEdgeInsets(kContainer, UIEdgeInsetsMake(3, 1, 4, 2)),
              CGRectMake(9, 17, 103, 57));
    EXPECT_EQ(VNFrameOutsetMargin(kContainer, VNLayoutQuadDimensionMake(3, 2, 4, 1)),
              CGRectMake(9, 17, 103, 57));
    EXPECT_EQ(VNFrameOutset(kContainer, -60, -60, -30, -30), CGRectMake(70, 50, 0, 0));
}

}  // namespace
}  // namespace vn
