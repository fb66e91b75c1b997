#include "vn/wkt/VNGeography.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

using VNUtilities::coordinateFromGeoString;
using VNUtilities::geoLocationStringFromCoordinate;
using VNUtilities::polylineFromGeoLine;
using VNUtilities::wktPointFromGeoString;

TEST(VNGeography, ReadsCoordinatesByDataType) {
    struct Case {
        std::optional<std::string_view> text;
        VNDataType type;
        LocationCoordinate2D expected;
    };
    const LocationCoordinate2D invalid = kCLLocationCoordinate2DInvalid;
    const Case cases[] = {
        {"POINT(-56.16 -34.9)", VNDataTypeGeography, {-34.9, -56.16}},  // X is the longitude
        {"POINT EMPTY", VNDataTypeGeography, invalid},
        {"LINESTRING(1 2, 3 4)", VNDataTypeGeography, invalid},
        {"-34.9,-56.16", VNDataTypeGeography, invalid},
        {"<http://www.opengis.net/def/crs/EPSG/0/4326>POINT(-56.16 -34.9)", VNDataTypeGeography,
         invalid},
        {std::nullopt, VNDataTypeGeography, invalid},
        {"POINT(500 500)", VNDataTypeGeography, {500, 500}},     // not range-checked
        {"-34.9,-56.16", VNDataTypeCharacter, {-34.9, -56.16}},  // latitude first
        {"POINT(-56.16 -34.9)", VNDataTypeVarChar, invalid},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(coordinateFromGeoString(c.text, c.type), c.expected)
            << c.text.value_or("(absent)");
    }
}

TEST(VNGeography, WritesCoordinatesByDataType) {
    EXPECT_EQ(geoLocationStringFromCoordinate({-34.9, -56.16}, VNDataTypeGeography),
              "POINT (-56.160000 -34.900000)");
    EXPECT_EQ(geoLocationStringFromCoordinate(kCLLocationCoordinate2DInvalid, VNDataTypeGeography),
              "POINT EMPTY");
    EXPECT_EQ(geoLocationStringFromCoordinate({-34.9, -56.16}, VNDataTypeCharacter),
              "-34.9000000,-56.1600000");
    EXPECT_EQ(geoLocationStringFromCoordinate(kCLLocationCoordinate2DInvalid, VNDataTypeCharacter),
              "");
    // A written geography value reads back as the same coordinate.
    const LocationCoordinate2D coordinate{12.5, -7.25};
    EXPECT_EQ(
        coordinateFromGeoString(geoLocationStringFromCoordinate(coordinate, VNDataTypeGeography),
                                VNDataTypeGeography),
        coordinate);
}

TEST(VNGeography, AcceptsOnlyPointsAndTheEmptyPointText) {
    const auto point = wktPointFromGeoString("POINT Z(1 2 3)");
    ASSERT_TRUE(point);
    EXPECT_EQ(point->dimensionZ(), 3);
    const auto empty = wktPointFromGeoString("POINT EMPTY");
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->isEmpty());
    EXPECT_EQ(wktPointFromGeoString(" POINT EMPTY"), nullptr);
    EXPECT_EQ(wktPointFromGeoString("MULTIPOINT(1 2)"), nullptr);
    EXPECT_EQ(wktPointFromGeoString(std::nullopt), nullptr);
}

TEST(VNGeography, ReadsOnlyNonEmptyLinesAsPolylines) {
    const auto polyline = polylineFromGeoLine("LINESTRING(-56.16 -34.9, -56.2 -34.8)");
    ASSERT_TRUE(polyline);
    EXPECT_EQ(polyline->coordinates,
              (std::vector<LocationCoordinate2D>{{-34.9, -56.16}, {-34.8, -56.2}}));
    EXPECT_EQ(polylineFromGeoLine("LINESTRING(EMPTY)"), std::nullopt);
    EXPECT_EQ(polylineFromGeoLine("MULTILINESTRING((1 2, 3 4))"), std::nullopt);
    EXPECT_EQ(polylineFromGeoLine(std::nullopt), std::nullopt);
}

}  // namespace
}  // namespace vn
