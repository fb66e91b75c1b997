// Placing a frame of a wanted size inside a container by the model's alignment values, and
// growing or shrinking frames by margins.
//
// Alignment values are the model's (VNHorizontalAlign, VNVerticalAlign): horizontal 1 left,
// 2 center, 3 right, while 0 default, 4 justify and any other value are resolved by a default;
// vertical 1 top, 2 middle, 3 bottom, anything else resolved by a default.
//
// Aligning one axis (container origin o and length L, wanted length l, alignment a, default d):
// when L - l <= 0 the container's origin and length are kept; otherwise the length becomes l
// and the alignment used is a when it is 1, 2 or 3, else d; 2 moves the origin by
// (L - l) / 2, 3 by L - l, anything else keeps it. The other axis is copied unchanged.
//
// Pure functions: safe from any thread.
#pragma once

#include "vn/geometry/CGGeometry.h"
#include "vn/geometry/VNLayoutDimension.h"
#include "vn/model/VNModelEnumerations.h"

namespace vn {

// Horizontal axis; an unresolved alignment means center.
CGRect VNHorizontalAlignedFrame(VNHorizontalAlign alignment, const CGRect& containerFrame,
                                CGFloat width);
CGRect VNHorizontalAlignedFrameWithDefaultResolver(VNHorizontalAlign alignment,
                                                   VNHorizontalAlign defaultAlignment,
                                                   const CGRect& containerFrame, CGFloat width);

// Vertical axis; an unresolved alignment means middle.
CGRect VNVerticalAlignedFrame(VNVerticalAlign alignment, const CGRect& containerFrame,
                              CGFloat height);
CGRect VNVerticalAlignedFrameWithDefaultResolver(VNVerticalAlign alignment,
                                                 VNVerticalAlign defaultAlignment,
                                                 const CGRect& containerFrame, CGFloat height);

// Both axes, with the defaults center and middle, or with the given defaults.
CGRect VNAlignedFrame(VNHorizontalAlign horizontal, VNVerticalAlign vertical,
                      const CGRect& containerFrame, CGFloat width, CGFloat height);
CGRect VNAlignedFrameWithDefaultResolver(VNHorizontalAlign horizontal, VNVerticalAlign vertical,
                                         VNHorizontalAlign defaultHorizontal,
                                         VNVerticalAlign defaultVertical,
                                         const CGRect& containerFrame, CGFloat width,
                                         CGFloat height);

// x grows by min(left, width); width becomes max(width - (left + right), 0).
CGRect VNHorizontalFrameInset(const CGRect& frame, CGFloat left, CGFloat right);
// y grows by min(top, height); height becomes max(height - (top + bottom), 0).
CGRect VNVerticalFrameInset(const CGRect& frame, CGFloat top, CGFloat bottom);
// Both of the above at once.
CGRect VNFrameInset(const CGRect& frame, CGFloat left, CGFloat right, CGFloat top, CGFloat bottom);
// x - left, y - top, width max(width + left + right, 0), height max(height + top + bottom, 0).
CGRect VNFrameOutset(const CGRect& frame, CGFloat left, CGFloat right, CGFloat top, CGFloat bottom);

// The same with the four values taken from edge insets or from a quad dimension.
CGRect VNFrameInsetEdgeInsets(const CGRect& frame, const UIEdgeInsets& insets);
CGRect VNFrameOutsetEdgeInsets(const CGRect& frame, const UIEdgeInsets& insets);
CGRect VNFrameInsetMargin(const CGRect& frame, const VNLayoutQuadDimension& margin);
CGRect VNFrameOutsetMargin(const CGRect& frame, const VNLayoutQuadDimension& margin);

}  // namespace vn
