#include "vn/geometry/VNLayoutDimension.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace vn {
namespace {

TEST(VNLayoutDimension, ReadsPercentagesPointsAndDefaultsFromText) {
    struct Case {
        std::string text;
        VNLayoutDimension expected;
    };
    const float third = 33.3f;
    const Case cases[] = {
        {"50%", {0, 50}},
        {" 50 %", {0, 50}},
        {"20dip", {1, 20}},
        {"12.5", {1, 12.5}},
        {"  -7.25pt", {1, -7.25}},
        {"1e2", {1, 100}},
        {"33.3", {1, third}},  // through single precision
        {"abc%", {0, 0}},      // "%" wins, with a lenient number
        {"5%dip", {0, 5}},     // "%" is looked for before "dip"
        {"x dip", {1, 0}},
        {"abc", {0, 100}},  // no number: the default
        {"", {0, 100}},
        {".", {0, 100}},
        {"1e40", {1, std::numeric_limits<float>::infinity()}},     // beyond float
        {"-1e400", {1, -std::numeric_limits<float>::infinity()}},  // beyond double
        {"1e-400", {1, 0}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(VNLayoutDimensionFromString(c.text), c.expected) << c.text;
    }
    EXPECT_EQ(VNLayoutDimensionFromStringWithDefault("abc", 1, 44), (VNLayoutDimension{1, 44}));
    EXPECT_EQ(VNLayoutDimensionFromStringWithDefault("", 1, 44), (VNLayoutDimension{1, 44}));
}

TEST(VNLayoutDimension, ReadsLooselyTypedValues) {
    EXPECT_EQ(VNLayoutDimensionFromValue(Value()), (VNLayoutDimension{0, 100}));
    EXPECT_EQ(VNLayoutDimensionFromValue(Value::null()), (VNLayoutDimension{0, 100}));
    EXPECT_EQ(VNLayoutDimensionFromValue("25%"), (VNLayoutDimension{0, 25}));
    EXPECT_EQ(VNLayoutDimensionFromValue(12), (VNLayoutDimension{1, 12}));
    EXPECT_EQ(VNLayoutDimensionFromValue(0.1), (VNLayoutDimension{1, 0.1f}));
    EXPECT_EQ(VNLayoutDimensionFromValueWithDefault(Value::Array{1}, 1, 8),
              (VNLayoutDimension{1, 8}));
    EXPECT_EQ(VNLayoutDimensionFromValueWithDefault("none", 1, 8), (VNLayoutDimension{1, 8}));
}

TEST(VNLayoutDimension, ResolvesAgainstABound) {
    struct Case {
        VNLayoutDimensionType type;
        double value;
        CGFloat bound;
        CGFloat expected;
    };
    const Case cases[] = {
        {0, 100, 320, 320}, {0, 50, 320, 160},  {1, 0, 320, 0},  {0, 0, 320, 0},
        {1, 40, 320, 40},   {1, 400, 320, 400}, {7, 40, 320, 0}, {0, 150, 10, 15},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(VNLayoutDimensionCalculateValueWithBound(c.type, c.value, c.bound), c.expected)
            << int(c.type) << " " << c.value;
    }
    // 100 percent is the bound itself, with no rounding through × 100 / 100.
    const CGFloat awkward = 0.7000000000000001;
    EXPECT_EQ(VNLayoutDimensionCalculateValueWithBound(0, 100, awkward), awkward);
    EXPECT_NE(100 * awkward / 100, awkward);
}

TEST(VNLayoutDimension, ConstrainedFormLimitsOnlyAbsoluteValues) {
    EXPECT_EQ(VNLayoutDimensionCalculateValueWithBoundConstranied(1, true, 400, 320), 320);
    EXPECT_EQ(VNLayoutDimensionCalculateValueWithBoundConstranied(1, false, 400, 320), 400);
    EXPECT_EQ(VNLayoutDimensionCalculateValueWithBoundConstranied(1, true, -5, 320), -5);
    EXPECT_EQ(VNLayoutDimensionCalculateValueWithBoundConstranied(0, true, 150, 10), 15);
    EXPECT_EQ(VNLayoutDimensionCalculateValueWithBoundConstranied(0, true, 50, 320), 160);
}

TEST(VNLayoutQuadDimension, ConvertsEdgeInsetsBySwappingSidesAndAddsInsets) {
    const UIEdgeInsets insets = UIEdgeInsetsMake(1, 2, 3, 4);  // top, left, bottom, right
    const VNLayoutQuadDimension quad = VNLayoutQuadDimensionMakeWithUIEdgeInsets(insets);
    EXPECT_EQ(quad, VNLayoutQuadDimensionMake(1, 4, 3, 2));  // top, right, bottom, left
    EXPECT_EQ(UIEdgeInsetsMakeWithVNLayoutQueadDimension(quad), insets);
    EXPECT_EQ(VNUIEdgeInsetsAdd(quad, VNLayoutQuadDimensionMake(10, 20, 30, 40)),
              VNLayoutQuadDimensionMake(11, 24, 33, 42));
    EXPECT_EQ(VNUIEdgeInsetsAddInset(insets, -1), UIEdgeInsetsMake(0, 1, 2, 3));
    // An inset of 0 returns the input as it is: a negative zero keeps its sign.
    EXPECT_TRUE(std::signbit(
        VNLayoutQuadDimensionAddInset(VNLayoutQuadDimensionMake(-0.0, 1, 1, 1), 0).top));
    EXPECT_TRUE(std::signbit(VNUIEdgeInsetsAddInset(UIEdgeInsetsMake(-0.0, 0, 0, 0), 0).top));
}

TEST(VNLayoutExpandDirection, RemapsEveryBitToTheSameSide) {
    struct Case {
        UIRectEdge edges;
        VNLayoutExpandDirection directions;
    };
    const Case cases[] = {
        {UIRectEdgeNone, VNLayoutExpandDirectionNone},
        {UIRectEdgeTop, VNLayoutExpandDirectionTop},
        {UIRectEdgeLeft, VNLayoutExpandDirectionLeft},
        {UIRectEdgeBottom, VNLayoutExpandDirectionBottom},
        {UIRectEdgeRight, VNLayoutExpandDirectionRight},
        {UIRectEdgeAll, VNLayoutExpandDirectionAll},
        {UIRectEdgeLeft | UIRectEdgeBottom,
         VNLayoutExpandDirectionLeft | VNLayoutExpandDirectionBottom},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(VNLayoutExpandDirectionMakeWithUIRectEdge(c.edges), c.directions) << c.edges;
        EXPECT_EQ(UIRectEdgeMakeWithVNLayoutExpandDirection(c.directions), c.edges) << c.directions;
    }
    EXPECT_EQ(VNLayoutExpandDirectionMakeWithUIRectEdge(UIRectEdgeTop | 64),
              VNLayoutExpandDirectionTop);
}

}  // namespace
}  // namespace vn
