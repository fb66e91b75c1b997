// Location values of the model in their two text forms, chosen by the value's data type:
// the geography type (VNDataTypeGeography) is written as Well-Known Text, a point with
// X = longitude and Y = latitude ("POINT (-56.160000 -34.900000)"); every other type uses the
// geolocation text "latitude,longitude" of vn/values/GeoLocationText.h.
//
// Reading never fails: a text that does not parse, or parses into the wrong kind of geometry,
// gives the invalid coordinate (kCLLocationCoordinate2DInvalid) or nothing. No state; safe
// from any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vn/model/VNDataType.h"
#include "vn/platform/LocationCoordinate2D.h"
#include "vn/wkt/MapShapes.h"
#include "vn/wkt/WKTPoint.h"

namespace vn::VNUtilities {

// Geography: the coordinate of the point the text holds (latitude = Y, longitude = X); an
// absent or empty point, another geometry, a failed parse, or a point in a reference system
// other than "CRS84" gives the invalid coordinate. The coordinate is not range-checked.
// Other types: coordinateFromGeoLocationString(text).
LocationCoordinate2D coordinateFromGeoString(std::optional<std::string_view> text, VNDataType type);

// Geography: the Well-Known Text of the point (X = longitude, Y = latitude), or "POINT EMPTY"
// for a coordinate that is not valid. Other types: geoLocationStringFromCoordinate(coordinate),
// the empty text for a coordinate that is not valid.
[[nodiscard]] std::string geoLocationStringFromCoordinate(const LocationCoordinate2D& coordinate,
                                                          VNDataType type);

// The point a Well-Known Text holds; the exact text "POINT EMPTY" (which the parser refuses)
// gives a new empty point; any other geometry or a failed parse gives null.
[[nodiscard]] WKTPointPtr wktPointFromGeoString(std::optional<std::string_view> text);

// The Well-Known Text line as a map polyline (latitude = Y, longitude = X); absent when the
// text is not a line with at least one point.
[[nodiscard]] std::optional<MapPolyline> polylineFromGeoLine(std::optional<std::string_view> text);

}  // namespace vn::VNUtilities
