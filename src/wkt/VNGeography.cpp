#include "vn/wkt/VNGeography.h"

#include "vn/values/GeoLocationText.h"
#include "vn/wkt/WKTLine.h"
#include "vn/wkt/WKTParser.h"

namespace vn::VNUtilities {

LocationCoordinate2D coordinateFromGeoString(std::optional<std::string_view> text,
                                             VNDataType type) {
    if (type != VNDataTypeGeography) return coordinateFromGeoLocationString(text);
    const WKTPointPtr point = wktPointFromGeoString(text);
    // Only a point in the default system can become a coordinate; others would raise.
    if (!point || point->isEmpty() || point->gis() != WKTDefaultGis)
        return kCLLocationCoordinate2DInvalid;
    return point->toMapCoordinate();
}

std::string geoLocationStringFromCoordinate(const LocationCoordinate2D& coordinate,
                                            VNDataType type) {
    if (type != VNDataTypeGeography) return geoLocationStringFromCoordinate(coordinate);
    if (!CLLocationCoordinate2DIsValid(coordinate)) return WKTPoint().toWKT();
    return WKTPoint::initWithCoordinates(coordinate)->toWKT();
}

WKTPointPtr wktPointFromGeoString(std::optional<std::string_view> text) {
    if (auto point = std::dynamic_pointer_cast<WKTPoint>(WKTParser::parseGeometry(text)))
        return point;
    if (text == "POINT EMPTY") return WKTPoint::emptyGeography();
    return nullptr;
}

std::optional<MapPolyline> polylineFromGeoLine(std::optional<std::string_view> text) {
    const auto line = std::dynamic_pointer_cast<WKTLine>(WKTParser::parseGeometry(text));
    if (!line || line->getListPoints().empty()) return std::nullopt;
    return line->toMapLine();
}

}  // namespace vn::VNUtilities
