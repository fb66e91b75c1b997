#include "vn/geometry/VNNearlyEqual.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vn {
namespace {

TEST(VNNearlyEqual, NumbersWithinOneStepOfTheirMaximum) {
    struct Case {
        double a;
        double b;
        bool expected;
    };
    const Case cases[] = {
        {1.0, 1.0000000000000002, true},
        {1.0, 1.0000000000000004, false},
        {-1.0, -1.0000000000000002, false},  // tolerance from max(a, b), which is negative
        {0.0, 1e-300, false},                // zero needs exact equality
        {0.0, -0.0, true},
        {std::nan(""), std::nan(""), false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(VNNearlyEqualDoubles(c.a, c.b), c.expected) << c.a << " " << c.b;
        EXPECT_EQ(VNNearlyEqualCGFloats(c.b, c.a), c.expected) << c.b << " " << c.a;
    }
    const float nextUp = std::nextafter(1.0f, 2.0f);
    EXPECT_TRUE(VNNearlyEqualFloats(1.0f, nextUp));
    EXPECT_FALSE(VNNearlyEqualFloats(1.0f, std::nextafter(nextUp, 2.0f)));
    EXPECT_FALSE(VNNearlyEqualDoubles(1.0f, nextUp));  // a float step is far beyond the double one
}

TEST(VNNearlyEqual, RecordsCompareEveryComponent) {
    EXPECT_TRUE(
        VNNearlyEqualCGRects(CGRectMake(1, 2, 3, 4), CGRectMake(1.0000000000000002, 2, 3, 4)));
    EXPECT_TRUE(
        VNNearlyEqualUIEdgeInsets(UIEdgeInsetsMake(1, 2, 3, 4), UIEdgeInsetsMake(1, 2, 3, 4)));
    for (int component = 0; component < 4; ++component) {
        double v[4] = {1, 2, 3, 4};
        v[component] += 0.5;
        EXPECT_FALSE(
            VNNearlyEqualCGRects(CGRectMake(1, 2, 3, 4), CGRectMake(v[0], v[1], v[2], v[3])))
            << component;
        EXPECT_FALSE(VNNearlyEqualUIEdgeInsets(UIEdgeInsetsMake(1, 2, 3, 4),
                                               UIEdgeInsetsMake(v[0], v[1], v[2], v[3])));
    }
    EXPECT_FALSE(VNNearlyEqualCGSizes({1, 2}, {1, 2.001}));
    EXPECT_FALSE(VNNearlyEqualCGPoints({1, 5}, {1.001, 5}));
}

}  // namespace
}  // namespace vn
