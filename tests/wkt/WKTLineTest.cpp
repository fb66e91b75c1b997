#include "vn/wkt/WKTLine.h"

#include <gtest/gtest.h>

#include "WKTTesting.h"

namespace vn {
namespace {

using testing::expectRaises;
using testing::point;

TEST(WKTLine, SettingTwiceKeepsBothSets) {
    WKTLine line;
    EXPECT_EQ(line.toWKT(), "LINESTRING EMPTY");
    line.setListPoints(std::vector{point(0, 0), point(1, 1)});
    EXPECT_EQ(line.toWKT(), "LINESTRING (0.000000 0.000000, 1.000000 1.000000)");
    line.setListPoints(std::vector{point(2, 2)});
    EXPECT_EQ(line.toWKT(), "LINESTRING (0.000000 0.000000, 1.000000 1.000000, 2.000000 2.000000)");
    line.removeListPoints();
    EXPECT_EQ(line.toWKT(), "LINESTRING EMPTY");
    EXPECT_EQ(WKTLine({point(0, 0, 1)}).toWKT(), "LINESTRINGZ (0.000000 0.000000 1.000000)");
}

TEST(WKTLine, MixedDimensionsRaise) {
    const std::string name = "WKTLine [setListPoints]";
    const std::string reason = "Parameter points have WKTPoint with different dimensions";
    expectRaises(
        [] {
            WKTLine().setListPoints(std::vector{point(0, 0), point(1, 1, 1)});
        },
        name, reason);
    expectRaises([] { WKTLine(std::vector{point(0, 0, 0), point(1, 1)}); }, name, reason);
    expectRaises([] { WKTLine().copyTo(nullptr); }, "WKTLine [copyTo]", "Parameter Line is nil");
}

TEST(WKTLine, BecomesAPolylineInOrder) {
    const MapPolyline polyline = WKTLine({point(-56.16, -34.9), point(-56.2, -34.8)}).toMapLine();
    EXPECT_EQ(polyline.coordinates,
              (std::vector<LocationCoordinate2D>{{-34.9, -56.16}, {-34.8, -56.2}}));
}

}  // namespace
}  // namespace vn
