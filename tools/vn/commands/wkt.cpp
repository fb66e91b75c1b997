// The vn tool's wkt command and the tour's section on geometry text: Well-Known Text parsed
// into geometry values (or the parser's errors), reference systems, and geography values.
#include <cstdio>
#include <string>

#include "../Registry.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/wkt/VNGeography.h"
#include "vn/wkt/WKTParser.h"

namespace {

using namespace vn;

// Prints the geometry, or the error; returns the exit status.
int describe(std::string_view text) {
    // Developer mode puts the parser's texts into its errors instead of the log.
    const bool developerMode = VNUtilities::showDeveloperInfo();
    VNUtilities::setShowDeveloperInfo(true);
    ErrorPtr error;
    const WKTGeometryPtr geometry = WKTParser::parseGeometry(text, &error);
    VNUtilities::setShowDeveloperInfo(developerMode);
    if (!geometry) {
        std::printf("error       %s %lld\n", error->domain().c_str(),
                    static_cast<long long>(error->code()));
        std::printf("text        %s\n", error->localizedDescription().c_str());
        return tool::kBadData;
    }
    std::printf("class       %s\n", geometry->className().c_str());
    std::printf("dimensions  %d\n", geometry->dimensions());
    std::printf("gis         %s\n", geometry->gis().c_str());
    std::printf("wkt         %s\n", geometry->toWKT().c_str());
    return tool::kSuccess;
}

extern const tool::Command kWKT;

int runWKT(const tool::Arguments& arguments) {
    if (arguments.empty()) return tool::usageError(kWKT);
    std::string text = arguments.front();
    for (std::size_t i = 1; i < arguments.size(); ++i) text += " " + arguments[i];
    return describe(text);
}

const tool::Command kWKT{
    "wkt",
    "wkt TEXT...",
    "parse Well-Known Text (arguments joined by blanks): class, dimensions, reference system, text",
    "vn wkt 'POINT(-56.16 -34.9)'",
    runWKT,
};

void showWKT() {
    const char* texts[] = {
        "POINT(-56.16 -34.9)",
        "POLYGON((0 0, 4 0, 4 4, 0 0), (1 1, 2 1, 1 1))",
        "MULTIPOINT Z((1 2 3), (4 5 6))",
        "<http://www.opengis.net/def/crs/EPSG/0/4326>LINESTRING(1 2, 3 4)",
        "GEOMETRYCOLLECTION(POINT(1 2), POINT(3 4))",
        "GEOMETRYCOLLECTION(LINESTRING(1 2, 3 4))",
        "POINT EMPTY",
        "point(1 2)",
    };
    for (const char* text : texts) {
        std::printf("%s\n", text);
        describe(text);
        std::printf("\n");
    }
    const LocationCoordinate2D montevideo{-34.9, -56.16};
    std::printf(
        "a coordinate (-34.9, -56.16) as geography: %s; as geolocation text: %s\n",
        VNUtilities::geoLocationStringFromCoordinate(montevideo, VNDataTypeGeography).c_str(),
        VNUtilities::geoLocationStringFromCoordinate(montevideo, VNDataTypeCharacter).c_str());
    const LocationCoordinate2D read =
        VNUtilities::coordinateFromGeoString("POINT(-56.16 -34.9)", VNDataTypeGeography);
    std::printf("POINT(-56.16 -34.9) read as geography: latitude %g, longitude %g\n", read.latitude,
                read.longitude);
}

const tool::CommandRegistration kWKTRegistration{kWKT};
const tool::TourRegistration kWKTTour{{70, "WKT: geometry text and geography values", showWKT}};

}  // namespace
