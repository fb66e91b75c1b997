#include "vn/geometry/VNNearlyEqual.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vn {
namespace {

template <typename T>
bool nearlyEqual(T a, T b) {
    if (a == b) return true;
    return std::max(a, b) * std::numeric_limits<T>::epsilon() > std::fabs(a - b);
}

}  // namespace

bool VNNearlyEqualFloats(float a, float b) {
    return nearlyEqual(a, b);
}

bool VNNearlyEqualDoubles(double a, double b) {
    return nearlyEqual(a, b);
}

bool VNNearlyEqualCGFloats(CGFloat a, CGFloat b) {
    return nearlyEqual(a, b);
}

bool VNNearlyEqualCGSizes(const CGSize& a, const CGSize& b) {
    return VNNearlyEqualCGFloats(a.width, b.width) && VNNearlyEqualCGFloats(a.height, b.height);
}

bool VNNearlyEqualCGPoints(const CGPoint& a, const CGPoint& b) {
    return VNNearlyEqualCGFloats(a.x, b.x) && VNNearlyEqualCGFloats(a.y, b.y);
}

bool VNNearlyEqualCGRects(const CGRect& a, const CGRect& b) {
    return VNNearlyEqualCGSizes(a.size, b.size) && VNNearlyEqualCGPoints(a.origin, b.origin);
}

bool VNNearlyEqualUIEdgeInsets(const UIEdgeInsets& a, const UIEdgeInsets& b) {
    return VNNearlyEqualCGFloats(a.top, b.top) && VNNearlyEqualCGFloats(a.left, b.left) &&
           VNNearlyEqualCGFloats(a.bottom, b.bottom) && VNNearlyEqualCGFloats(a.right, b.right);
}

}  // namespace vn
