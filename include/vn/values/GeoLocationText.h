// The model's geolocation text: a latitude and a longitude in degrees, written "lat,long".
// These functions read such a text into the platform's coordinate and write a coordinate back.
// (The geography type's Well-Known Text form is handled with the geometry text, not here.)
// They keep no state and are safe from any thread.
#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/LocationCoordinate2D.h"
#include "vn/platform/Value.h"

namespace vn::VNUtilities {

// Reads, with white space skipped: a number (the latitude, "." as decimal separator), at least
// one "," or ";" (a run of both also separates), and a number (the longitude); whatever follows
// is ignored. An absent or empty text, a missing part, and a coordinate the platform does not
// consider valid (latitude beyond ±90, longitude beyond ±180) all give
// kCLLocationCoordinate2DInvalid. "-34.9, -56.16" and "-34.9;-56.16xyz" give (-34.9, -56.16);
// "-34.9 -56.16" and "95,10" give the invalid coordinate.
LocationCoordinate2D coordinateFromGeoLocationString(std::optional<std::string_view> text);
// The Value form (chosen only for an actual vn::Value): a text as above; anything else gives
// the invalid coordinate.
template <std::same_as<Value> V>
LocationCoordinate2D coordinateFromGeoLocationString(const V& value) {
    const std::string* text = value.string();
    return coordinateFromGeoLocationString(text ? std::optional<std::string_view>(*text)
                                                : std::nullopt);
}

// "latitude,longitude", each with exactly seven decimals and "." as separator whatever the
// locale ("-34.9000000,-56.1600000"); the empty text when the coordinate is not valid.
[[nodiscard]] std::string geoLocationStringFromCoordinate(const LocationCoordinate2D& coordinate);

}  // namespace vn::VNUtilities
