#include "vn/wkt/WKTPointM.h"

#include <gtest/gtest.h>

#include "WKTTesting.h"

namespace vn {
namespace {

using testing::expectRaises;
using testing::point;

TEST(WKTPointM, WritesItsPointsOrEmpty) {
    EXPECT_EQ(WKTPointM().toWKT(), "MULTIPOINT EMPTY");
    EXPECT_EQ(WKTPointM({point(1, 2), point(3, 4)}).toWKT(),
              "MULTIPOINT (1.000000 2.000000, 3.000000 4.000000)");
    EXPECT_EQ(WKTPointM({point(1, 2, 3)}).toWKT(), "MULTIPOINTZ (1.000000 2.000000 3.000000)");
    EXPECT_EQ(WKTPointM({std::make_shared<WKTPoint>()}).toWKT(), "MULTIPOINTZ (POINT EMPTY)");
}

TEST(WKTPointM, SettingAppendsAndTakesTheDimensionsOfTheGivenList) {
    WKTPointM multiPoint({point(1, 2)});
    multiPoint.setListPoints(
        std::vector{point(3, 4, 5)});  // unlike the points already there: allowed
    EXPECT_EQ(multiPoint.dimensions(), 3);
    multiPoint.setListPoints(std::vector<WKTPointPtr>{});
    EXPECT_EQ(multiPoint.getListPoints().size(), 2u);
    EXPECT_EQ(multiPoint.dimensions(), 0);
    // Points with dimensions 0 are written with the three-dimensional keyword.
    EXPECT_EQ(multiPoint.toWKT(), "MULTIPOINTZ (1.000000 2.000000, 3.000000 4.000000 5.000000)");
    multiPoint.removeListPoints();
    EXPECT_TRUE(multiPoint.getListPoints().empty());
}

TEST(WKTPointM, CopiesAndBecomesOnePinPerPoint) {
    const auto source = std::make_shared<WKTPointM>(std::vector{point(-56.16, -34.9), point(2, 1)});
    const auto target = std::make_shared<WKTPointM>(std::vector{point(8, 8)});
    source->copyTo(target);
    EXPECT_TRUE(target->isEqual(*source));
    // The established name of this exception says "WKTParser Multi Point".
    expectRaises([&] { source->copyTo(nullptr); }, "WKTParser Multi Point [copyTo]",
                 "Parameter Multi Point is nil");
    const auto annotations = source->toMapMultiAnnotation();
    ASSERT_EQ(annotations.size(), 2u);
    EXPECT_EQ(annotations[0].coordinate, (LocationCoordinate2D{-34.9, -56.16}));
    EXPECT_EQ(annotations[1].coordinate, (LocationCoordinate2D{1, 2}));
}

}  // namespace
}  // namespace vn
