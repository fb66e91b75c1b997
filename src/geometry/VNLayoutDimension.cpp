#include "vn/geometry/VNLayoutDimension.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "vn/platform/Scanner.h"

namespace vn {
namespace {

constexpr double kAllTheSpace = 100;

// The platform's scanner reading a float from the start (white space skipped).
std::optional<float> scanFloat(std::string_view text) {
    return Scanner(text).scanFloat();
}

// The platform's lenient float value of a text: 0 when no number starts it.
float floatValue(std::string_view text) {
    return scanFloat(text).value_or(0.0f);
}

}  // namespace

VNLayoutDimension VNLayoutDimensionFromStringWithDefault(std::string_view text,
                                                         VNLayoutDimensionType defaultType,
                                                         double defaultValue) {
    if (text.empty()) return {defaultType, defaultValue};
    if (const auto percent = text.find('%'); percent != std::string_view::npos) {
        return {VNLayoutDimensionTypePercentage, floatValue(text.substr(0, percent))};
    }
    if (const auto dip = text.find("dip"); dip != std::string_view::npos) {
        return {VNLayoutDimensionTypePoints, floatValue(text.substr(0, dip))};
    }
    if (const auto points = scanFloat(text)) return {VNLayoutDimensionTypePoints, *points};
    return {defaultType, defaultValue};
}

VNLayoutDimension VNLayoutDimensionFromString(std::string_view text) {
    return VNLayoutDimensionFromStringWithDefault(text, VNLayoutDimensionTypePercentage,
                                                  kAllTheSpace);
}

VNLayoutDimension VNLayoutDimensionFromValueWithDefault(const Value& value,
                                                        VNLayoutDimensionType defaultType,
                                                        double defaultValue) {
    if (const std::string* text = value.string()) {
        return VNLayoutDimensionFromStringWithDefault(*text, defaultType, defaultValue);
    }
    if (const Number* number = value.number())
        return {VNLayoutDimensionTypePoints, number->floatValue()};
    return {defaultType, defaultValue};
}

VNLayoutDimension VNLayoutDimensionFromValue(const Value& value) {
    return VNLayoutDimensionFromValueWithDefault(value, VNLayoutDimensionTypePercentage,
                                                 kAllTheSpace);
}

CGFloat VNLayoutDimensionCalculateValueWithBound(VNLayoutDimensionType type, double value,
                                                 CGFloat bound) {
    if (value == 0) return 0;
    switch (type) {
        case VNLayoutDimensionTypePercentage:
            // All the space is the bound itself, not bound × 100 / 100 with its rounding.
            return value == kAllTheSpace ? bound : value * bound / kAllTheSpace;
        case VNLayoutDimensionTypePoints:
            return value;
        default:
            return 0;
    }
}

CGFloat VNLayoutDimensionCalculateValueWithBoundConstranied(VNLayoutDimensionType type,
                                                            bool constrained, double value,
                                                            CGFloat bound) {
    const CGFloat resolved = VNLayoutDimensionCalculateValueWithBound(type, value, bound);
    if (constrained && type == VNLayoutDimensionTypePoints) return std::min(resolved, bound);
    return resolved;
}

VNLayoutQuadDimension VNLayoutQuadDimensionAdd(const VNLayoutQuadDimension& a,
                                               const VNLayoutQuadDimension& b) {
    return {a.top + b.top, a.right + b.right, a.bottom + b.bottom, a.left + b.left};
}

VNLayoutQuadDimension VNUIEdgeInsetsAdd(const VNLayoutQuadDimension& a,
                                        const VNLayoutQuadDimension& b) {
    return VNLayoutQuadDimensionAdd(a, b);
}

UIEdgeInsets VNUIEdgeInsetsAdd(const UIEdgeInsets& a, const UIEdgeInsets& b) {
    return {a.top + b.top, a.left + b.left, a.bottom + b.bottom, a.right + b.right};
}

VNLayoutQuadDimension VNLayoutQuadDimensionAddInset(const VNLayoutQuadDimension& quad,
                                                    CGFloat inset) {
    if (inset == 0) return quad;
    return {quad.top + inset, quad.right + inset, quad.bottom + inset, quad.left + inset};
}

VNLayoutQuadDimension VNUIEdgeInsetsAddInset(const VNLayoutQuadDimension& quad, CGFloat inset) {
    return VNLayoutQuadDimensionAddInset(quad, inset);
}

UIEdgeInsets VNUIEdgeInsetsAddInset(const UIEdgeInsets& insets, CGFloat inset) {
    if (inset == 0) return insets;
    return {insets.top + inset, insets.left + inset, insets.bottom + inset, insets.right + inset};
}

namespace {

// Pairs of (expand-direction bit, rectangle-edge bit) naming the same side.
constexpr std::pair<VNLayoutExpandDirection, UIRectEdge> kSides[] = {
    {VNLayoutExpandDirectionTop, UIRectEdgeTop},
    {VNLayoutExpandDirectionBottom, UIRectEdgeBottom},
    {VNLayoutExpandDirectionLeft, UIRectEdgeLeft},
    {VNLayoutExpandDirectionRight, UIRectEdgeRight},
};

}  // namespace

VNLayoutExpandDirection VNLayoutExpandDirectionMakeWithUIRectEdge(UIRectEdge edges) {
    VNLayoutExpandDirection directions = VNLayoutExpandDirectionNone;
    for (const auto& [direction, edge] : kSides) {
        if (edges & edge) directions |= direction;
    }
    return directions;
}

UIRectEdge UIRectEdgeMakeWithVNLayoutExpandDirection(VNLayoutExpandDirection directions) {
    UIRectEdge edges = UIRectEdgeNone;
    for (const auto& [direction, edge] : kSides) {
        if (directions & direction) edges |= edge;
    }
    return edges;
}

}  // namespace vn
