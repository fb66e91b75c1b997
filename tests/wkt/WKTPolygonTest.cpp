#include "vn/wkt/WKTPolygon.h"

#include <gtest/gtest.h>

#include "WKTTesting.h"

namespace vn {
namespace {

using testing::expectRaises;
using testing::point;

WKTPointMPtr ring(std::vector<WKTPointPtr> points) {
    return std::make_shared<WKTPointM>(std::move(points));
}

TEST(WKTPolygon, WritesTheExteriorThenEachHole) {
    EXPECT_EQ(
        WKTPolygon({ring({point(0, 0), point(1, 0), point(1, 1), point(0, 0)})}).toWKT(),
        "POLYGON ((0.000000 0.000000, 1.000000 0.000000, 1.000000 1.000000, 0.000000 0.000000))");
    EXPECT_EQ(
        WKTPolygon({ring({point(0, 0)}), ring({point(1, 1)}), ring({point(2, 2)})}).description(),
        "(0.000000 0.000000), (1.000000 1.000000), (2.000000 2.000000)");
    EXPECT_EQ(WKTPolygon({ring({point(0, 0, 5)})}).toWKT(),
              "POLYGONZ ((0.000000 0.000000 5.000000))");
    EXPECT_EQ(WKTPolygon().toWKT(), "POLYGON EMPTY");
    EXPECT_EQ(WKTPolygon().description(), "()");
}

TEST(WKTPolygon, SplitsItsRingsIntoExteriorAndInterior) {
    const WKTPolygon empty;
    EXPECT_TRUE(empty.getExteriorPolygon()->isEmpty());
    EXPECT_NE(empty.getExteriorPolygon(),
              empty.getExteriorPolygon());  // a new empty ring each time
    EXPECT_TRUE(empty.getInteriorPolygons().empty());
    const auto exterior = ring({point(0, 0), point(1, 0), point(0, 0)});
    const auto hole = ring({point(0.2, 0.2), point(0.3, 0.3), point(0.2, 0.2)});
    WKTPolygon polygon({exterior});
    EXPECT_TRUE(polygon.getInteriorPolygons().empty());
    polygon.setPolygons(std::vector{hole});
    EXPECT_EQ(polygon.getExteriorPolygon(), exterior);
    EXPECT_EQ(polygon.getInteriorPolygons(), (std::vector<WKTPointMPtr>{hole}));
}

TEST(WKTPolygon, BecomesAMapPolygonWithHoles) {
    const auto polygon = std::make_shared<WKTPolygon>(
        std::vector{ring({point(0, 0), point(1, 0)}), ring({point(0.5, 0.25)})});
    const MapPolygon converted = polygon->toMapPolygon();
    EXPECT_EQ(converted.coordinates, (std::vector<LocationCoordinate2D>{{0, 0}, {0, 1}}));
    ASSERT_EQ(converted.interiorPolygons.size(), 1u);
    EXPECT_EQ(converted.interiorPolygons[0].coordinates,
              (std::vector<LocationCoordinate2D>{{0.25, 0.5}}));
    expectRaises([&] { polygon->copyTo(nullptr); }, "WKTPolygon [copyTo]",
                 "Parameter Polygon is nil");
}

}  // namespace
}  // namespace vn
