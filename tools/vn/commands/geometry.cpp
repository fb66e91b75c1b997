// The vn tool's layout command and the tour's section on layout geometry: dimensions from
// model text resolved against the available space, pixel alignment, near-equality and
// aligned frames.
#include <charconv>
#include <cstdio>
#include <optional>
#include <string>

#include "../Registry.h"
#include "vn/geometry/Screen.h"
#include "vn/geometry/VNFrameLayout.h"
#include "vn/geometry/VNLayoutDimension.h"
#include "vn/geometry/VNNearlyEqual.h"
#include "vn/geometry/VNPixelAlignment.h"

namespace {

using namespace vn;

std::optional<double> number(const std::string& text) {
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
    return value;
}

const char* typeName(VNLayoutDimensionType type) {
    return type == VNLayoutDimensionTypePercentage ? "percentage" : "points";
}

int resolveDimension(const std::string& text, double bound, bool constrained) {
    const VNLayoutDimension dimension = VNLayoutDimensionFromString(text);
    const CGFloat resolved = VNLayoutDimensionCalculateValueWithBoundConstranied(
        dimension.type, constrained, dimension.value, bound);
    std::printf("dimension  %s %.9g\n", typeName(dimension.type), dimension.value);
    std::printf("resolved   %.17g (bound %.17g%s)\n", resolved, bound,
                constrained ? ", constrained" : "");
    return tool::kSuccess;
}

int alignFrame(const CGRect& frame, double scale) {
    std::printf("frame      %s\n", NSStringFromCGRect(frame).c_str());
    std::printf("aligned    %s (scale %.17g)\n",
                NSStringFromCGRect(VNPixelAlignedFrame(frame, scale)).c_str(), scale);
    return tool::kSuccess;
}

extern const tool::Command kLayout;

int notANumber(const std::string& text) {
    return tool::badData(kLayout, "\"" + text + "\" is not a number");
}

int runLayout(const tool::Arguments& arguments) {
    if (arguments.size() >= 3 && arguments.size() <= 4 && arguments[0] == "dimension") {
        const bool constrained = arguments.size() == 4 && arguments[3] == "constrained";
        if (arguments.size() == 4 && !constrained) return tool::usageError(kLayout);
        const auto bound = number(arguments[2]);
        if (!bound) return notANumber(arguments[2]);
        return resolveDimension(arguments[1], *bound, constrained);
    }
    if (arguments.size() >= 5 && arguments.size() <= 6 && arguments[0] == "align") {
        double values[5] = {0, 0, 0, 0, 1.0};
        for (std::size_t i = 1; i < arguments.size(); ++i) {
            const auto value = number(arguments[i]);
            if (!value) return notANumber(arguments[i]);
            values[i - 1] = *value;
        }
        return alignFrame(CGRectMake(values[0], values[1], values[2], values[3]), values[4]);
    }
    return tool::usageError(kLayout);
}

const tool::Command kLayout{
    "layout",
    "layout dimension TEXT BOUND [constrained] | layout align X Y WIDTH HEIGHT [SCALE]",
    "resolve a model dimension (\"50%\", \"20dip\", \"12.5\") or pixel-align a frame",
    "vn layout dimension 50% 320",
    runLayout,
};

void showLayout() {
    std::printf("dimensions from model text, resolved against a bound of 320:\n");
    for (const char* text : {"50%", "100%", "20dip", "12.5", "33.3", "abc"}) {
        const VNLayoutDimension dimension = VNLayoutDimensionFromString(text);
        std::printf("  %-6s -> %-10s %-12.9g -> %.17g\n", text, typeName(dimension.type),
                    dimension.value,
                    VNLayoutDimensionCalculateValueWithBound(dimension.type, dimension.value, 320));
    }
    std::printf("\npixel-aligned frames (the far edge keeps its pixel):\n");
    const CGRect frame = CGRectMake(0.3, 10.25, 10.8, 5.5);
    for (const double scale : {1.0, 2.0, 3.0}) {
        std::printf("  %s at scale %g -> %s\n", NSStringFromCGRect(frame).c_str(), scale,
                    NSStringFromCGRect(VNPixelAlignedFrame(frame, scale)).c_str());
    }
    std::printf(
        "  10.3 at scale 2 -> %g; 1.0 and 1.2 on the same pixel at scale 3: %s, at scale 1: %s\n",
        VNPixelAlignedPointValue(10.3, 2), VNPixelAlignedEquals(1.0, 1.2, 3) ? "yes" : "no",
        VNPixelAlignedEquals(1.0, 1.2, 1) ? "yes" : "no");
    std::printf("  headless host: main screen scale %g, size %s\n", VNMainScreenScale(),
                NSStringFromCGSize(VNMainScreenSize()).c_str());

    std::printf("\nnear-equality (tolerance from max(a, b), so negatives need exact equality):\n");
    std::printf("  1.0 ~ 1.0000000000000002: %s; -1.0 ~ -1.0000000000000002: %s\n",
                VNNearlyEqualDoubles(1.0, 1.0000000000000002) ? "yes" : "no",
                VNNearlyEqualDoubles(-1.0, -1.0000000000000002) ? "yes" : "no");

    const CGRect container = CGRectMake(0, 0, 100, 60);
    std::printf("\na 40 x 20 frame aligned in %s:\n", NSStringFromCGRect(container).c_str());
    std::printf("  right/bottom %s; justify/default %s\n",
                NSStringFromCGRect(VNAlignedFrame(VNHorizontalAlignRight, VNVerticalAlignBottom,
                                                  container, 40, 20))
                    .c_str(),
                NSStringFromCGRect(VNAlignedFrame(VNHorizontalAlignJustify, VNVerticalAlignDefault,
                                                  container, 40, 20))
                    .c_str());
}

const tool::CommandRegistration kLayoutRegistration{kLayout};
const tool::TourRegistration kGeometryTour{
    {60, "Geometry: layout dimensions and pixel alignment", showLayout}};

}  // namespace
