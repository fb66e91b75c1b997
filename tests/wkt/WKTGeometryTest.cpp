#include "vn/wkt/WKTGeometry.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "WKTTesting.h"
#include "vn/wkt/WKTGeometryCollection.h"
#include "vn/wkt/WKTLine.h"
#include "vn/wkt/WKTLineM.h"
#include "vn/wkt/WKTPointM.h"
#include "vn/wkt/WKTPolygon.h"
#include "vn/wkt/WKTPolygonM.h"

namespace vn {
namespace {

using testing::expectRaises;
using testing::point;

// One geometry of every class, filled with 2-dimensional members.
std::vector<WKTGeometryPtr> oneOfEach() {
    const auto ring =
        std::make_shared<WKTPointM>(std::vector{point(0, 0), point(1, 0), point(0, 0)});
    const auto polygon = std::make_shared<WKTPolygon>(std::vector{ring});
    auto collection = std::make_shared<WKTGeometryCollection>();
    collection->addGeometry(point(5, 6));
    return {
        point(1, 2),
        std::make_shared<WKTPointM>(std::vector{point(1, 2), point(3, 4)}),
        std::make_shared<WKTLine>(std::vector{point(1, 2), point(3, 4)}),
        std::make_shared<WKTLineM>(
            std::vector{std::make_shared<WKTLine>(std::vector{point(1, 2)})}),
        polygon,
        std::make_shared<WKTPolygonM>(std::vector{polygon}),
        collection,
    };
}

TEST(WKTGeometry, EveryClassHasItsKindAndStartsEmptyInCRS84) {
    const std::vector<std::string> types = {
        "Point",        "MultiPoint",        "Line", "MultiLine", "Polygon",
        "MultiPolygon", "GeometryCollection"};
    const std::vector<WKTGeometryPtr> empties = {std::make_shared<WKTPoint>(),
                                                 std::make_shared<WKTPointM>(),
                                                 std::make_shared<WKTLine>(),
                                                 std::make_shared<WKTLineM>(),
                                                 std::make_shared<WKTPolygon>(),
                                                 std::make_shared<WKTPolygonM>(),
                                                 std::make_shared<WKTGeometryCollection>()};
    for (std::size_t i = 0; i < empties.size(); ++i) {
        EXPECT_EQ(empties[i]->type(), types[i]);
        EXPECT_TRUE(empties[i]->isEmpty()) << types[i];
        EXPECT_EQ(empties[i]->gis(), "CRS84") << types[i];
    }
    EXPECT_EQ(WKTGeometry::emptyValue(), "EMPTY");
    EXPECT_EQ(WKTGeometry::emptyGeography()->toWKT(), "POINT EMPTY");
}

TEST(WKTGeometry, EqualOnlyToTheSameClassWithEqualMembers) {
    const auto first = oneOfEach();
    const auto second = oneOfEach();
    for (std::size_t i = 0; i < first.size(); ++i) {
        for (std::size_t j = 0; j < second.size(); ++j) {
            EXPECT_EQ(first[i]->isEqual(*second[j]), i == j)
                << first[i]->toWKT() << " / " << second[j]->toWKT();
        }
        EXPECT_EQ(first[i]->hash(), second[i]->hash()) << first[i]->toWKT();
        EXPECT_FALSE(first[i]->isEqual(nullptr));
    }
    EXPECT_FALSE(WKTLine().isEqual(WKTPointM()));  // empty, but of different classes
}

TEST(WKTGeometry, CopiesAreDeepAndIndependent) {
    for (const auto& original : oneOfEach()) {
        original->setGis("EPSG 4326");
        const WKTGeometryPtr copy = original->copy();
        EXPECT_NE(copy, original);
        EXPECT_TRUE(copy->isEqual(*original)) << original->toWKT();
        EXPECT_EQ(copy->gis(), "EPSG 4326");
        EXPECT_EQ(copy->toWKT(), original->toWKT());
    }
    const auto line = std::make_shared<WKTLine>(std::vector{point(1, 2)});
    const auto copy = std::static_pointer_cast<WKTLine>(line->copy());
    copy->getListPoints().front()->setDimensionX(99);
    EXPECT_EQ(line->getListPoints().front()->dimensionX(), 1);
}

TEST(WKTGeometry, MemberSettersRaiseWithTheirOwnNamesAndReasons) {
    // The texts below are the established ones, oddities included: the multiline's nil reason
    // speaks of points, and two reasons hold a run of 25 blanks.
    const std::string blanks(25, ' ');
    struct Setter {
        std::string name;
        std::function<void(const Value&)> set;
        Value member2D;
        Value member3D;
        std::string nilReason;
        std::string classReason;
        std::string dimensionsReason;
    };
    const auto line3D = std::make_shared<WKTLine>(std::vector{point(1, 2, 3)});
    const auto ring3D = std::make_shared<WKTPointM>(std::vector{point(1, 2, 3)});
    const auto polygon3D = std::make_shared<WKTPolygon>(std::vector{ring3D});
    const std::vector<Setter> setters = {
        {"WKTPointM [setListPoints]", [](const Value& v) { WKTPointM().setListPoints(v); },
         point(1, 2), point(1, 2, 3), "Parameter points is nil",
         "Parameter points have a class that is not WKTPoint",
         "Parameter points have WKTPoint with different dimensions"},
        {"WKTLine [setListPoints]", [](const Value& v) { WKTLine().setListPoints(v); }, point(1, 2),
         point(1, 2, 3), "Parameter points is nil",
         "Parameter points have a class that is not WKTPoint",
         "Parameter points have WKTPoint with different dimensions"},
        {"WKTLineM [setListLines]", [](const Value& v) { WKTLineM().setListLines(v); },
         std::make_shared<WKTLine>(std::vector{point(1, 2)}), line3D, "Parameter points is nil",
         "Parameter lines have a class that is not WKTLine",
         "Parameter lines have WKTLine with different dimensions"},
        {"WKTPolygon [setPolygons]", [](const Value& v) { WKTPolygon().setPolygons(v); },
         std::make_shared<WKTPointM>(std::vector{point(1, 2)}), ring3D,
         "Parameter Multi Points list is nil",
         "Parameter points have a class that is not WKTMultiPoint",
         "Parameter Multi Points list have WKTMultiPoint with" + blanks + "different dimensions"},
        {"WKTPolygonM [setPolygons]", [](const Value& v) { WKTPolygonM().setPolygons(v); },
         std::make_shared<WKTPolygon>(
             std::vector{std::make_shared<WKTPointM>(std::vector{point(1, 2)})}),
         polygon3D, "Parameter Polygons is nil",
         "Parameter Polygons have a class that is not WKTPolygon",
         "Parameter Polygons have WKTPolygon with" + blanks + "different dimensions"},
    };
    for (const Setter& s : setters) {
        SCOPED_TRACE(s.name);
        expectRaises([&] { s.set(Value()); }, s.name, s.nilReason);
        expectRaises([&] { s.set("not a list"); }, s.name, s.classReason);
        expectRaises([&] { s.set(Value::Array{s.member2D, "text"}); }, s.name, s.classReason);
        expectRaises(
            [&] {
                s.set(Value::Array{s.member2D, std::make_shared<WKTGeometryCollection>()});
            },
            s.name, s.classReason);
        expectRaises(
            [&] {
                s.set(Value::Array{s.member2D, s.member3D});
            },
            s.name, s.dimensionsReason);
        // Checked in list order: the dimensions fault comes before a later wrong class.
        expectRaises(
            [&] {
                s.set(Value::Array{s.member2D, s.member3D, 7});
            },
            s.name, s.dimensionsReason);
        EXPECT_NO_THROW(s.set(Value::Array{s.member3D, s.member3D}));
        EXPECT_NO_THROW(s.set(Value::Array{}));
    }
}

TEST(WKTGeometry, ARaisingSetterLeavesTheListAsItWas) {
    WKTLine line(std::vector{point(1, 2)});
    EXPECT_THROW(line.setListPoints(std::vector{point(3, 4), point(5, 6, 7)}), Exception);
    EXPECT_THROW(line.setListPoints(std::vector<WKTPointPtr>{point(3, 4), nullptr}), Exception);
    EXPECT_EQ(line.getListPoints().size(), 1u);
    EXPECT_EQ(line.dimensions(), 2);
}

}  // namespace
}  // namespace vn
