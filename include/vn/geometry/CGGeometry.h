// Plain geometry records of the platform's drawing and user-interface frameworks: points,
// sizes, rectangles, edge insets and rectangle edges, all of doubles and with the platform's
// field order, plus their make functions and their textual forms.
//
// The records are aggregates without invariants (a negative size is allowed), compare
// member-wise with ==, and may be used from any thread.
#pragma once

#include <cstdint>
#include <string>

namespace vn {

// The platform's geometry float (64-bit).
using CGFloat = double;

struct CGPoint {
    CGFloat x = 0;
    CGFloat y = 0;
    bool operator==(const CGPoint&) const = default;
};

struct CGSize {
    CGFloat width = 0;
    CGFloat height = 0;
    bool operator==(const CGSize&) const = default;
};

struct CGRect {
    CGPoint origin;
    CGSize size;
    bool operator==(const CGRect&) const = default;
};

// Insets in the platform's order: top, left, bottom, right.
struct UIEdgeInsets {
    CGFloat top = 0;
    CGFloat left = 0;
    CGFloat bottom = 0;
    CGFloat right = 0;
    bool operator==(const UIEdgeInsets&) const = default;
};

// The platform's rectangle-edge bit set: 1 top, 2 left, 4 bottom, 8 right.
using UIRectEdge = std::uint64_t;
inline constexpr UIRectEdge UIRectEdgeNone = 0;
inline constexpr UIRectEdge UIRectEdgeTop = 1;
inline constexpr UIRectEdge UIRectEdgeLeft = 2;
inline constexpr UIRectEdge UIRectEdgeBottom = 4;
inline constexpr UIRectEdge UIRectEdgeRight = 8;
inline constexpr UIRectEdge UIRectEdgeAll = 15;

inline constexpr CGPoint CGPointZero{};
inline constexpr CGSize CGSizeZero{};
inline constexpr CGRect CGRectZero{};
inline constexpr UIEdgeInsets UIEdgeInsetsZero{};

constexpr CGPoint CGPointMake(CGFloat x, CGFloat y) {
    return {x, y};
}
constexpr CGSize CGSizeMake(CGFloat width, CGFloat height) {
    return {width, height};
}
constexpr CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    return {{x, y}, {width, height}};
}
constexpr UIEdgeInsets UIEdgeInsetsMake(CGFloat top, CGFloat left, CGFloat bottom, CGFloat right) {
    return {top, left, bottom, right};
}

// The platform's textual forms, each number in its shortest round-trip form:
// "{x, y}", "{width, height}", "{{x, y}, {width, height}}", "{top, left, bottom, right}".
std::string NSStringFromCGPoint(const CGPoint& point);
std::string NSStringFromCGSize(const CGSize& size);
std::string NSStringFromCGRect(const CGRect& rect);
std::string NSStringFromUIEdgeInsets(const UIEdgeInsets& insets);

}  // namespace vn
