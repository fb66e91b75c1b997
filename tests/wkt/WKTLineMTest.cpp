#include "vn/wkt/WKTLineM.h"

#include <gtest/gtest.h>

#include "WKTTesting.h"

namespace vn {
namespace {

using testing::expectRaises;
using testing::point;

WKTLinePtr line(std::vector<WKTPointPtr> points) {
    return std::make_shared<WKTLine>(std::move(points));
}

TEST(WKTLineM, WritesEachLineInParentheses) {
    EXPECT_EQ(WKTLineM().toWKT(), "MULTILINESTRING EMPTY");
    EXPECT_EQ(WKTLineM({line({point(0, 0), point(1, 1)}), line({point(2, 2)})}).toWKT(),
              "MULTILINESTRING ((0.000000 0.000000, 1.000000 1.000000), (2.000000 2.000000))");
    EXPECT_EQ(WKTLineM({line({point(0, 0, 0)})}).toWKT(),
              "MULTILINESTRINGZ ((0.000000 0.000000 0.000000))");
}

TEST(WKTLineM, CopiesAndConvertsEveryLine) {
    const auto multiLine = std::make_shared<WKTLineM>(
        std::vector{line({point(1, 2), point(3, 4)}), line({point(5, 6)})});
    const auto target = std::make_shared<WKTLineM>();
    multiLine->copyTo(target);
    EXPECT_TRUE(target->isEqual(*multiLine));
    expectRaises([&] { multiLine->copyTo(nullptr); }, "WKTLineM [copyTo]",
                 "Parameter Multi Line is nil");
    const MapMultiPolyline converted = multiLine->toMapMultiLine();
    ASSERT_EQ(converted.polylines.size(), 2u);
    EXPECT_EQ(converted.polylines[0].coordinates,
              (std::vector<LocationCoordinate2D>{{2, 1}, {4, 3}}));
    EXPECT_EQ(converted.polylines[1].coordinates, (std::vector<LocationCoordinate2D>{{6, 5}}));
}

}  // namespace
}  // namespace vn
