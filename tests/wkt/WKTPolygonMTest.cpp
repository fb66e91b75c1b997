#include "vn/wkt/WKTPolygonM.h"

#include <gtest/gtest.h>

#include "WKTTesting.h"

namespace vn {
namespace {

using testing::expectRaises;
using testing::point;

WKTPolygonPtr triangle(double at) {
    return std::make_shared<WKTPolygon>(std::vector{
        std::make_shared<WKTPointM>(std::vector{point(at, at), point(at + 1, at), point(at, at)})});
}

TEST(WKTPolygonM, WritesCopiesAndConvertsEachPolygon) {
    EXPECT_EQ(WKTPolygonM().toWKT(), "MULTIPOLYGON EMPTY");
    const auto multiPolygon = std::make_shared<WKTPolygonM>(std::vector{triangle(0), triangle(5)});
    EXPECT_EQ(multiPolygon->toWKT(),
              "MULTIPOLYGON (((0.000000 0.000000, 1.000000 0.000000, 0.000000 0.000000)), "
              "((5.000000 5.000000, 6.000000 5.000000, 5.000000 5.000000)))");
    EXPECT_FALSE(multiPolygon->isEqual(WKTPolygonM({triangle(5), triangle(0)})));  // order counts
    const auto target = std::make_shared<WKTPolygonM>(std::vector{triangle(9)});
    multiPolygon->copyTo(target);
    EXPECT_TRUE(target->isEqual(*multiPolygon));
    expectRaises([&] { multiPolygon->copyTo(nullptr); }, "WKTPolygonM [copyTo]",
                 "Parameter Multi Polygon is nil");
    const MapMultiPolygon converted = multiPolygon->toMapMultiPolygon();
    ASSERT_EQ(converted.polygons.size(), 2u);
    EXPECT_EQ(converted.polygons[1].coordinates,
              (std::vector<LocationCoordinate2D>{{5, 5}, {5, 6}, {5, 5}}));
}

}  // namespace
}  // namespace vn
