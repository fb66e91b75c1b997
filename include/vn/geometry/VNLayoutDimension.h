// Layout dimensions of the application model and the small records the layout code passes
// around with them.
//
// A model gives a control's size either as a percentage of the available space ("50%") or
// as a number of points ("20dip", "12.5"). VNLayoutDimension holds such a value; the
// functions here read it from model text or values and resolve it against the available
// space. VNLayoutQuadDimension holds four margins in clockwise order from the top, and
// VNLayoutExpandDirection says towards which sides a frame may grow.
//
// Everything here is a pure function on plain values: safe from any thread.
#pragma once

#include <cstdint>
#include <string_view>

#include "vn/geometry/CGGeometry.h"
#include "vn/platform/Value.h"

namespace vn {

// The kind of a layout dimension (unsigned 8-bit): 0 percentage, 1 absolute points.
using VNLayoutDimensionType = std::uint8_t;
inline constexpr VNLayoutDimensionType VNLayoutDimensionTypePercentage = 0;
inline constexpr VNLayoutDimensionType VNLayoutDimensionTypePoints = 1;

struct VNLayoutDimension {
    VNLayoutDimensionType type = VNLayoutDimensionTypePercentage;
    // The percentage (100 = all the available space) or the number of points.
    double value = 0;
    bool operator==(const VNLayoutDimension&) const = default;
};

// Reads a dimension from model text:
// - the empty text gives the default;
// - text containing "%": a percentage, the float value of the text before the first "%"
//   (0 when no number starts it, as "abc%");
// - otherwise text containing "dip": points, the float value of the text before "dip";
// - otherwise points when a float can be scanned from the start of the text (leading
//   white space skipped; what follows the number is ignored), else the default.
// Values pass through single precision: "33.3" arrives as the float nearest to 33.3.
VNLayoutDimension VNLayoutDimensionFromStringWithDefault(std::string_view text,
                                                         VNLayoutDimensionType defaultType,
                                                         double defaultValue);
// The same with the default 100 percent.
[[nodiscard]] VNLayoutDimension VNLayoutDimensionFromString(std::string_view text);

// Reads a dimension from a loosely typed model value: nil gives the default; a text reads as
// VNLayoutDimensionFromStringWithDefault; a number gives points with the number's float value;
// any other value gives the default.
VNLayoutDimension VNLayoutDimensionFromValueWithDefault(const Value& value,
                                                        VNLayoutDimensionType defaultType,
                                                        double defaultValue);
// The same with the default 100 percent.
VNLayoutDimension VNLayoutDimensionFromValue(const Value& value);

// Resolves a dimension against the available space (bound):
// a value of 0 gives 0 whatever the type; a percentage of exactly 100 gives the bound itself,
// other percentages value × bound / 100; points give the value; any other type gives 0.
CGFloat VNLayoutDimensionCalculateValueWithBound(VNLayoutDimensionType type, double value,
                                                 CGFloat bound);

// As VNLayoutDimensionCalculateValueWithBound; when constrained is set, an absolute value is
// additionally limited to the bound (the smaller of the two). Percentages are resolved exactly
// as by the unconstrained form (so 150 percent gives one and a half bounds), and negative
// values are not changed by the limit. The name keeps its established spelling.
CGFloat VNLayoutDimensionCalculateValueWithBoundConstranied(VNLayoutDimensionType type,
                                                            bool constrained, double value,
                                                            CGFloat bound);

// Four margins clockwise from the top. The platform's edge insets are ordered top, left,
// bottom, right: the conversions swap the second and fourth values.
struct VNLayoutQuadDimension {
    CGFloat top = 0;
    CGFloat right = 0;
    CGFloat bottom = 0;
    CGFloat left = 0;
    bool operator==(const VNLayoutQuadDimension&) const = default;
};

constexpr VNLayoutQuadDimension VNLayoutQuadDimensionMake(CGFloat top, CGFloat right,
                                                          CGFloat bottom, CGFloat left) {
    return {top, right, bottom, left};
}
constexpr VNLayoutQuadDimension VNLayoutQuadDimensionMakeWithUIEdgeInsets(
    const UIEdgeInsets& insets) {
    return {insets.top, insets.right, insets.bottom, insets.left};
}
// The name keeps its established spelling.
constexpr UIEdgeInsets UIEdgeInsetsMakeWithVNLayoutQueadDimension(
    const VNLayoutQuadDimension& quad) {
    return {quad.top, quad.left, quad.bottom, quad.right};
}

// Insets with only the vertical (top, bottom) or only the horizontal (left, right) values set.
constexpr UIEdgeInsets VNVerticalEdgeInsetsMake(CGFloat top, CGFloat bottom) {
    return {top, 0, bottom, 0};
}
constexpr UIEdgeInsets VNHorizontalEdgeInsetsMake(CGFloat left, CGFloat right) {
    return {0, left, 0, right};
}

// Component-wise sum; VNUIEdgeInsetsAdd is the same operation, offered for both records.
VNLayoutQuadDimension VNLayoutQuadDimensionAdd(const VNLayoutQuadDimension& a,
                                               const VNLayoutQuadDimension& b);
VNLayoutQuadDimension VNUIEdgeInsetsAdd(const VNLayoutQuadDimension& a,
                                        const VNLayoutQuadDimension& b);
UIEdgeInsets VNUIEdgeInsetsAdd(const UIEdgeInsets& a, const UIEdgeInsets& b);

// Adds inset to all four values; an inset of 0 returns the input unchanged (a -0.0 stays -0.0).
// VNUIEdgeInsetsAddInset is the same operation, offered for both records.
VNLayoutQuadDimension VNLayoutQuadDimensionAddInset(const VNLayoutQuadDimension& quad,
                                                    CGFloat inset);
VNLayoutQuadDimension VNUIEdgeInsetsAddInset(const VNLayoutQuadDimension& quad, CGFloat inset);
UIEdgeInsets VNUIEdgeInsetsAddInset(const UIEdgeInsets& insets, CGFloat inset);

// The sides towards which a frame may expand: 1 top, 2 bottom, 4 left, 8 right.
using VNLayoutExpandDirection = std::uint64_t;
inline constexpr VNLayoutExpandDirection VNLayoutExpandDirectionNone = 0;
inline constexpr VNLayoutExpandDirection VNLayoutExpandDirectionTop = 1;
inline constexpr VNLayoutExpandDirection VNLayoutExpandDirectionBottom = 2;
inline constexpr VNLayoutExpandDirection VNLayoutExpandDirectionLeft = 4;
inline constexpr VNLayoutExpandDirection VNLayoutExpandDirectionRight = 8;
inline constexpr VNLayoutExpandDirection VNLayoutExpandDirectionAll = 15;

// Bit remapping between the two bit sets; bits outside the four sides are dropped.
VNLayoutExpandDirection VNLayoutExpandDirectionMakeWithUIRectEdge(UIRectEdge edges);
UIRectEdge UIRectEdgeMakeWithVNLayoutExpandDirection(VNLayoutExpandDirection directions);

}  // namespace vn
