#include "vn/wkt/WKTGeometryCollection.h"

#include <gtest/gtest.h>

#include "WKTTesting.h"
#include "vn/platform/Error.h"
#include "vn/wkt/WKTLine.h"

namespace vn {
namespace {

using testing::expectRaises;
using testing::point;

TEST(WKTGeometryCollection, WritesItsKeywordWithoutABlank) {
    const auto collection = std::make_shared<WKTGeometryCollection>();
    EXPECT_EQ(collection->toWKT(), "GEOMETRYCOLLECTION()");
    collection->addGeometry(point(1, 2));
    collection->addGeometry(std::make_shared<WKTLine>());
    EXPECT_EQ(collection->toWKT(),
              "GEOMETRYCOLLECTION(POINT (1.000000 2.000000), LINESTRING EMPTY)");
    EXPECT_EQ(collection->dimensions(), 0);  // members do not change it
    const auto target = std::make_shared<WKTGeometryCollection>();
    collection->copyTo(target);
    EXPECT_TRUE(target->isEqual(*collection));
    collection->removeGeometries();
    EXPECT_EQ(collection->toWKT(), "GEOMETRYCOLLECTION()");
}

TEST(WKTGeometryCollection, AcceptsOnlyTheSixMemberClasses) {
    WKTGeometryCollection collection;
    const std::string name = "WKTGeometryCollection [addGeometry]";
    const std::string invalid = "Geometry is invalid (WKT Geometry not recognised)";
    expectRaises([&] { collection.addGeometry(nullptr); }, name, "Parameter Geometry is nil");
    expectRaises([&] { collection.addGeometry(std::make_shared<WKTGeometryCollection>()); }, name,
                 invalid);
    expectRaises([&] { collection.addGeometry(std::make_shared<Error>("vn", 1)); }, name, invalid);
    EXPECT_TRUE(collection.getGeometries().empty());
    expectRaises([&] { collection.copyTo(nullptr); }, "WKTGeometryCollection [copyTo]",
                 "Parameter Geometry Collection is nil");
}

}  // namespace
}  // namespace vn
