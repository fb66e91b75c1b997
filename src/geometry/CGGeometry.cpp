#include "vn/geometry/CGGeometry.h"

#include <charconv>
#include <initializer_list>

namespace vn {
namespace {

void appendNumber(std::string& out, CGFloat value) {
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    out.append(buffer, result.ptr);
}

std::string braced(std::initializer_list<CGFloat> values) {
    std::string out = "{";
    bool first = true;
    for (const CGFloat value : values) {
        if (!first) out += ", ";
        first = false;
        appendNumber(out, value);
    }
    out += '}';
    return out;
}

}  // namespace

std::string NSStringFromCGPoint(const CGPoint& point) {
    return braced({point.x, point.y});
}

std::string NSStringFromCGSize(const CGSize& size) {
    return braced({size.width, size.height});
}

std::string NSStringFromCGRect(const CGRect& rect) {
    return "{" + NSStringFromCGPoint(rect.origin) + ", " + NSStringFromCGSize(rect.size) + "}";
}

std::string NSStringFromUIEdgeInsets(const UIEdgeInsets& insets) {
    return braced({insets.top, insets.left, insets.bottom, insets.right});
}

}  // namespace vn
