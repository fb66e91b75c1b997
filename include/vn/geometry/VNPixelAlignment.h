// Placing points and frames on whole device pixels, so that edges drawn there stay sharp.
//
// A scale is the number of pixels per point (the main screen's scale, see Screen.h). Values
// are aligned in pixels when the scale is above 1, and to whole points otherwise. Rounding is
// to the nearest pixel with halves away from zero.
//
// Thread safety: everything may be called from any thread; the forms "WithMainScreenScale"
// read the host's screen description, which the host sets on its main thread.
#pragma once

#include "vn/geometry/CGGeometry.h"

namespace vn {

// Width and height rounded down.
CGSize VNIntegerSize(const CGSize& size);

// Each coordinate rounded to the nearest whole number (halves away from zero).
CGPoint VNIntegerPoint(const CGPoint& point);

// Aligns a frame to pixels, each axis on its own (x with width, then y with height):
// 1. above scale 1 the axis is taken in pixels (origin and length multiplied by the scale);
// 2. origin and length are rounded down, both in single precision (the values are converted
//    to float first, so that results match those of the layout code elsewhere);
// 3. when the origin had a fractional part f > 0 and f plus the fractional part of the length
//    reaches 1, the length grows by one pixel, so that the far edge does not move inwards by
//    a whole pixel;
// 4. above scale 1 the results are divided by the scale again.
// So (0.3, 0, 10.8, 5) at scale 1 gives (0, 0, 11, 5) and (0.3, 0, 10.5, 5) gives (0, 0, 10, 5).
CGRect VNPixelAlignedFrame(const CGRect& frame, CGFloat scale);

// VNPixelAlignedFrame at scale 1.
CGRect VNIntegerFrame(const CGRect& frame);

// VNPixelAlignedFrame at the main screen's scale.
CGRect VNPixelAlignedFrameWithMainScreenScale(const CGRect& frame);

// A whole number is returned unchanged; otherwise above scale 1 the nearest pixel
// round(value × scale) / scale, else round(value). So 10.3 at scale 2 gives 10.5.
CGFloat VNPixelAlignedPointValue(CGFloat value, CGFloat scale);

// VNPixelAlignedPointValue on each coordinate.
CGPoint VNPixelAlignedPoint(const CGPoint& point, CGFloat scale);

// The same at the main screen's scale, which is only read when a value is not already whole.
CGFloat VNPixelAlignedPointValueWithMainScreenScale(CGFloat value);
CGPoint VNPixelAlignedPointWithMainScreenScale(const CGPoint& point);

// Whether a and b land on the same pixel at the given scale: equal when a - b is exactly 0;
// not equal when they are a pixel or more apart (|a - b| × scale >= 1); otherwise equal when
// their pixel-aligned values are equal. So 1.0 and 1.2 differ at scale 3 (aligned to 1 and
// 1.3333333) but are equal at scale 1.
bool VNPixelAlignedEquals(CGFloat a, CGFloat b, CGFloat scale);

// As VNPixelAlignedEquals at the main screen's scale, except that the distance test is made
// in points, without the scale: values a point or more apart are not equal. The two forms
// deliberately differ there.
bool VNPixelAlignedEqualsWithMainScreenScale(CGFloat a, CGFloat b);

}  // namespace vn
