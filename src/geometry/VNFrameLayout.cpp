#include "vn/geometry/VNFrameLayout.h"

#include <algorithm>

namespace vn {
namespace {

// Both axes share their values: 1 left or top, 2 center or middle, 3 right or bottom.
constexpr std::uint8_t kAlignStart = VNHorizontalAlignLeft;
constexpr std::uint8_t kAlignCenter = VNHorizontalAlignCenter;
constexpr std::uint8_t kAlignEnd = VNHorizontalAlignRight;
static_assert(kAlignStart == std::uint8_t{VNVerticalAlignTop} &&
              kAlignCenter == std::uint8_t{VNVerticalAlignMiddle} &&
              kAlignEnd == std::uint8_t{VNVerticalAlignBottom});

std::uint8_t resolved(std::uint8_t alignment, std::uint8_t defaultAlignment) {
    return alignment >= kAlignStart && alignment <= kAlignEnd ? alignment : defaultAlignment;
}

void alignAxis(CGFloat& origin, CGFloat& length, CGFloat wanted, std::uint8_t alignment) {
    const CGFloat extra = length - wanted;
    if (extra <= 0) return;
    length = wanted;
    if (alignment == kAlignCenter) {
        origin += extra / 2;
    } else if (alignment == kAlignEnd) {
        origin += extra;
    }
}

void insetAxis(CGFloat& origin, CGFloat& length, CGFloat leading, CGFloat trailing) {
    origin += std::min(leading, length);
    length = std::max(length - (leading + trailing), CGFloat{0});
}

void outsetAxis(CGFloat& origin, CGFloat& length, CGFloat leading, CGFloat trailing) {
    origin -= leading;
    length = std::max(length + leading + trailing, CGFloat{0});
}

}  // namespace

CGRect VNHorizontalAlignedFrameWithDefaultResolver(VNHorizontalAlign alignment,
                                                   VNHorizontalAlign defaultAlignment,
                                                   const CGRect& containerFrame, CGFloat width) {
    CGRect frame = containerFrame;
    alignAxis(frame.origin.x, frame.size.width, width, resolved(alignment, defaultAlignment));
    return frame;
}

CGRect VNHorizontalAlignedFrame(VNHorizontalAlign alignment, const CGRect& containerFrame,
                                CGFloat width) {
    return VNHorizontalAlignedFrameWithDefaultResolver(alignment, VNHorizontalAlignCenter,
                                                       containerFrame, width);
}

CGRect VNVerticalAlignedFrameWithDefaultResolver(VNVerticalAlign alignment,
                                                 VNVerticalAlign defaultAlignment,
                                                 const CGRect& containerFrame, CGFloat height) {
    CGRect frame = containerFrame;
    alignAxis(frame.origin.y, frame.size.height, height, resolved(alignment, defaultAlignment));
    return frame;
}

CGRect VNVerticalAlignedFrame(VNVerticalAlign alignment, const CGRect& containerFrame,
                              CGFloat height) {
    return VNVerticalAlignedFrameWithDefaultResolver(alignment, VNVerticalAlignMiddle,
                                                     containerFrame, height);
}

CGRect VNAlignedFrameWithDefaultResolver(VNHorizontalAlign horizontal, VNVerticalAlign vertical,
                                         VNHorizontalAlign defaultHorizontal,
                                         VNVerticalAlign defaultVertical,
                                         const CGRect& containerFrame, CGFloat width,
                                         CGFloat height) {
    const CGRect aligned = VNHorizontalAlignedFrameWithDefaultResolver(
        horizontal, defaultHorizontal, containerFrame, width);
    return VNVerticalAlignedFrameWithDefaultResolver(vertical, defaultVertical, aligned, height);
}

CGRect VNAlignedFrame(VNHorizontalAlign horizontal, VNVerticalAlign vertical,
                      const CGRect& containerFrame, CGFloat width, CGFloat height) {
    return VNAlignedFrameWithDefaultResolver(horizontal, vertical, VNHorizontalAlignCenter,
                                             VNVerticalAlignMiddle, containerFrame, width, height);
}

CGRect VNHorizontalFrameInset(const CGRect& frame, CGFloat left, CGFloat right) {
    CGRect inset = frame;
    insetAxis(inset.origin.x, inset.size.width, left, right);
    return inset;
}

CGRect VNVerticalFrameInset(const CGRect& frame, CGFloat top, CGFloat bottom) {
    CGRect inset = frame;
    insetAxis(inset.origin.y, inset.size.height, top, bottom);
    return inset;
}

CGRect VNFrameInset(const CGRect& frame, CGFloat left, CGFloat right, CGFloat top, CGFloat bottom) {
    return VNVerticalFrameInset(VNHorizontalFrameInset(frame, left, right), top, bottom);
}

CGRect VNFrameOutset(const CGRect& frame, CGFloat left, CGFloat right, CGFloat top,
                     CGFloat bottom) {
    CGRect outset = frame;
    outsetAxis(outset.origin.x, outset.size.width, left, right);
    outsetAxis(outset.origin.y, outset.size.height, top, bottom);
    return outset;
}

CGRect VNFrameInsetEdgeInsets(const CGRect& frame, const UIEdgeInsets& insets) {
    return VNFrameInset(frame, insets.left, insets.right, insets.top, insets.bottom);
}

CGRect VNFrameOutsetEdgeInsets(const CGRect& frame, const UIEdgeInsets& insets) {
    return VNFrameOutset(frame, insets.left, insets.right, insets.top, insets.bottom);
}

CGRect VNFrameInsetMargin(const CGRect& frame, const VNLayoutQuadDimension& margin) {
    return VNFrameInset(frame, margin.left, margin.right, margin.top, margin.bottom);
}

CGRect VNFrameOutsetMargin(const CGRect& frame, const VNLayoutQuadDimension& margin) {
    return VNFrameOutset(frame, margin.left, margin.right, margin.top, margin.bottom);
}

}  // namespace vn
