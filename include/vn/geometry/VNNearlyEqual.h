// Near-equality of numbers and geometry records, for comparing layout results that went
// through floating-point arithmetic.
//
// Two numbers a and b are nearly equal when a == b, or when max(a, b) × ε > |a − b|, with ε
// the machine epsilon of the type (2^-23 for float, 2^-52 for double and CGFloat). The
// tolerance scales with max(a, b), not with the larger magnitude: two negative numbers are
// only nearly equal when they are exactly equal, and a comparison with zero needs exact
// equality. Layout code relies on this rule as it stands. NaN is never nearly equal.
//
// Pure functions: safe from any thread.
#pragma once

#include "vn/geometry/CGGeometry.h"

namespace vn {

bool VNNearlyEqualFloats(float a, float b);
bool VNNearlyEqualDoubles(double a, double b);
bool VNNearlyEqualCGFloats(CGFloat a, CGFloat b);

// Every component nearly equal by the CGFloat rule: sizes width then height; points x then
// y; rectangles width, height, x, y; insets all four.
bool VNNearlyEqualCGSizes(const CGSize& a, const CGSize& b);
bool VNNearlyEqualCGPoints(const CGPoint& a, const CGPoint& b);
bool VNNearlyEqualCGRects(const CGRect& a, const CGRect& b);
bool VNNearlyEqualUIEdgeInsets(const UIEdgeInsets& a, const UIEdgeInsets& b);

}  // namespace vn
