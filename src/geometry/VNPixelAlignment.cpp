#include "vn/geometry/VNPixelAlignment.h"

#include <cmath>

#include "vn/geometry/Screen.h"

namespace vn {
namespace {

bool isWhole(CGFloat value) {
    return std::floor(value) == value;
}

// One axis of VNPixelAlignedFrame: origin with its length.
void alignAxis(CGFloat& origin, CGFloat& length, CGFloat scale) {
    const bool inPixels = scale > 1;
    const CGFloat start = inPixels ? origin * scale : origin;
    const CGFloat extent = inPixels ? length * scale : length;
    // Single precision on purpose: the same frames must give the same pixels everywhere.
    const float alignedStart = std::floor(static_cast<float>(start));
    float alignedExtent = std::floor(static_cast<float>(extent));
    const CGFloat startFraction = start - alignedStart;
    if (startFraction > 0 && startFraction + (extent - alignedExtent) >= 1) alignedExtent += 1;
    origin = inPixels ? alignedStart / scale : alignedStart;
    length = inPixels ? alignedExtent / scale : alignedExtent;
}

bool alignedValuesEqual(CGFloat a, CGFloat b, CGFloat scale) {
    return VNPixelAlignedPointValue(a, scale) == VNPixelAlignedPointValue(b, scale);
}

}  // namespace

CGSize VNIntegerSize(const CGSize& size) {
    return {std::floor(size.width), std::floor(size.height)};
}

CGPoint VNIntegerPoint(const CGPoint& point) {
    return {std::round(point.x), std::round(point.y)};
}

CGRect VNPixelAlignedFrame(const CGRect& frame, CGFloat scale) {
    CGRect aligned = frame;
    alignAxis(aligned.origin.x, aligned.size.width, scale);
    alignAxis(aligned.origin.y, aligned.size.height, scale);
    return aligned;
}

CGRect VNIntegerFrame(const CGRect& frame) {
    return VNPixelAlignedFrame(frame, 1);
}

CGRect VNPixelAlignedFrameWithMainScreenScale(const CGRect& frame) {
    return VNPixelAlignedFrame(frame, VNMainScreenScale());
}

CGFloat VNPixelAlignedPointValue(CGFloat value, CGFloat scale) {
    if (isWhole(value)) return value;
    if (scale > 1) return std::round(value * scale) / scale;
    return std::round(value);
}

CGPoint VNPixelAlignedPoint(const CGPoint& point, CGFloat scale) {
    return {VNPixelAlignedPointValue(point.x, scale), VNPixelAlignedPointValue(point.y, scale)};
}

CGFloat VNPixelAlignedPointValueWithMainScreenScale(CGFloat value) {
    if (isWhole(value)) return value;
    return VNPixelAlignedPointValue(value, VNMainScreenScale());
}

CGPoint VNPixelAlignedPointWithMainScreenScale(const CGPoint& point) {
    return {VNPixelAlignedPointValueWithMainScreenScale(point.x),
            VNPixelAlignedPointValueWithMainScreenScale(point.y)};
}

bool VNPixelAlignedEquals(CGFloat a, CGFloat b, CGFloat scale) {
    if (a - b == 0) return true;
    if (std::fabs(a - b) * scale >= 1) return false;
    return alignedValuesEqual(a, b, scale);
}

bool VNPixelAlignedEqualsWithMainScreenScale(CGFloat a, CGFloat b) {
    if (a - b == 0) return true;
    if (std::fabs(a - b) >= 1) return false;
    return alignedValuesEqual(a, b, VNMainScreenScale());
}

}  // namespace vn
