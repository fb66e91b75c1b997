#include "vn/wkt/WKTPoint.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "WKTTesting.h"

namespace vn {
namespace {

using testing::expectRaises;
using testing::point;

TEST(WKTPoint, WritesSixDecimalsWithAPointWhateverTheNumber) {
    EXPECT_EQ(WKTPoint().toWKT(), "POINT EMPTY");
    EXPECT_EQ(WKTPoint().description(), "POINT EMPTY");
    struct Case {
        WKTPoint point;
        const char* wkt;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const Case cases[] = {
        {WKTPoint(1, 2), "POINT (1.000000 2.000000)"},
        {WKTPoint(1, 2, 3), "POINTZ (1.000000 2.000000 3.000000)"},
        {WKTPoint(0.0000015, 2.4999999), "POINT (0.000002 2.500000)"},  // rounded as %f rounds
        {WKTPoint(0.0000005, 0), "POINT (0.000000 0.000000)"},          // 4.99999...e-07 in binary
        {WKTPoint(-0.0, 1e20), "POINT (-0.000000 100000000000000000000.000000)"},
        {WKTPoint(infinity, -infinity), "POINT (inf -inf)"},
    };
    for (const Case& c : cases) EXPECT_EQ(c.point.toWKT(), c.wkt);
    WKTPoint odd(1, 2);
    odd.setDimensions(7);  // anything but 2 writes the third coordinate
    EXPECT_EQ(odd.toWKT(), "POINTZ (1.000000 2.000000 0.000000)");
}

TEST(WKTPoint, EqualityIgnoresTheReferenceSystemAndAnUnusedZ) {
    const auto a = point(1, 2);
    const auto b = point(1, 2);
    b->setGis("EPSG 4326");
    b->setDimensionZ(9);
    EXPECT_TRUE(a->isEqual(*b));
    EXPECT_EQ(a->hash(), b->hash());
    EXPECT_FALSE(a->isEqual(*point(1, 2, 0)));  // dimensions differ
    EXPECT_FALSE(point(1, 2, 3)->isEqual(*point(1, 2, 4)));
    EXPECT_TRUE(point(0.0, 0.0)->isEqual(*point(-0.0, -0.0)));
    EXPECT_EQ(point(0.0, 0.0)->hash(), point(-0.0, -0.0)->hash());
    EXPECT_FALSE(point(std::nan(""), 0)->isEqual(*point(std::nan(""), 0)));
}

TEST(WKTPoint, CopyToKeepsTheTargetsReferenceSystem) {
    const auto source = point(1, 2, 3);
    source->setGis("EPSG 4326");
    const auto target = point(7, 7);
    source->copyTo(target);
    EXPECT_TRUE(target->isEqual(*source));
    EXPECT_EQ(target->gis(), "CRS84");
    expectRaises([&] { source->copyTo(nullptr); }, "WKTPoint [copyTo]", "Parameter Point is nil");
}

TEST(WKTPoint, ConvertsToMapValuesOnlyInCRS84) {
    const auto montevideo = WKTPoint::initWithCoordinates({-34.9, -56.16});
    EXPECT_EQ(montevideo->dimensionX(), -56.16);  // X is the longitude
    EXPECT_EQ(montevideo->toMapCoordinate(), (LocationCoordinate2D{-34.9, -56.16}));
    EXPECT_EQ(montevideo->toMapPointAnnotation().coordinate, (LocationCoordinate2D{-34.9, -56.16}));
    EXPECT_EQ(montevideo->toMapPoint(), MapPointForCoordinate({-34.9, -56.16}));
    EXPECT_EQ(point(1, 2, 30)->toLocation(), (Location{{2, 1}, 30}));

    montevideo->setGis("EPSG 4326");
    const std::string name = "WKTPoint [toMapCoordinate]";
    const std::string reason = "Point dimensions are not CRS84 system";
    expectRaises([&] { montevideo->toMapCoordinate(); }, name, reason);
    expectRaises([&] { montevideo->toLocation(); }, name, reason);
    expectRaises([&] { montevideo->toMapPoint(); }, name, reason);
    expectRaises([&] { montevideo->toMapPointAnnotation(); }, name, reason);
}

}  // namespace
}  // namespace vn
