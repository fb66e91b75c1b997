#include "vn/values/GeoLocationText.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>

#include "testing/ScopedProcessState.h"
#include "vn/platform/Locale.h"

namespace vn {
namespace {

using VNUtilities::coordinateFromGeoLocationString;
using VNUtilities::geoLocationStringFromCoordinate;

constexpr LocationCoordinate2D kInvalid = kCLLocationCoordinate2DInvalid;

TEST(GeoLocationText, ReadsLatitudeSeparatorsAndLongitude) {
    struct Case {
        std::optional<std::string_view> text;
        LocationCoordinate2D expected;
    };
    const Case cases[] = {
        {"-34.9, -56.16", {-34.9, -56.16}},
        {"-34.9;-56.16xyz", {-34.9, -56.16}},
        {" 1 ,;, 2 ", {1, 2}},
        {"90,180", {90, 180}},
        {"-90;-180", {-90, -180}},
        {"0,0", {0, 0}},
        {"-34.9 -56.16", kInvalid},  // no separator
        {"95,10", kInvalid},         // latitude out of range
        {"10,180.5", kInvalid},
        {"1e400,0", kInvalid},
        {"1,", kInvalid},
        {",1", kInvalid},
        {"abc", kInvalid},
        {"", kInvalid},
        {std::nullopt, kInvalid},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(coordinateFromGeoLocationString(c.text), c.expected)
            << c.text.value_or("(absent)");
    }
    EXPECT_EQ(coordinateFromGeoLocationString(Value("-34.9,-56.16")),
              (LocationCoordinate2D{-34.9, -56.16}));
    EXPECT_EQ(coordinateFromGeoLocationString(Value(12)), kInvalid);
    EXPECT_EQ(coordinateFromGeoLocationString(Value::null()), kInvalid);
}

TEST(GeoLocationText, ReadsThePointWhateverTheLocale) {
    const testing::ScopedProcessState state;
    Locale::setCurrent("de_DE");
    EXPECT_EQ(coordinateFromGeoLocationString("1.5,2.5"), (LocationCoordinate2D{1.5, 2.5}));
    EXPECT_EQ(coordinateFromGeoLocationString("1,5;2"), (LocationCoordinate2D{1, 5}));
}

TEST(GeoLocationText, WritesSevenDecimalsOrNothingForInvalidCoordinates) {
    EXPECT_EQ(geoLocationStringFromCoordinate({-34.9, -56.16}), "-34.9000000,-56.1600000");
    EXPECT_EQ(geoLocationStringFromCoordinate({0, 0}), "0.0000000,0.0000000");
    EXPECT_EQ(geoLocationStringFromCoordinate({90, -180}), "90.0000000,-180.0000000");
    EXPECT_EQ(geoLocationStringFromCoordinate({0.123456789, 1e-9}), "0.1234568,0.0000000");
    EXPECT_EQ(geoLocationStringFromCoordinate(kInvalid), "");
    EXPECT_EQ(geoLocationStringFromCoordinate({91, 0}), "");
    EXPECT_EQ(geoLocationStringFromCoordinate({std::numeric_limits<double>::quiet_NaN(), 0}), "");
}

TEST(GeoLocationText, WrittenTextReadsBackAsTheSameCoordinate) {
    for (const LocationCoordinate2D coordinate :
         {LocationCoordinate2D{-34.9, -56.16}, LocationCoordinate2D{45.1234567, 179.9999999},
          LocationCoordinate2D{-0.0000001, 0.5}}) {
        EXPECT_EQ(coordinateFromGeoLocationString(geoLocationStringFromCoordinate(coordinate)),
                  coordinate);
    }
}

}  // namespace
}  // namespace vn
