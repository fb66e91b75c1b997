// vn::LocationCoordinate2D: a latitude/longitude pair in degrees, and the platform's notion
// of a valid coordinate.
#pragma once

namespace vn {

struct LocationCoordinate2D {
    double latitude = 0;
    double longitude = 0;

    bool operator==(const LocationCoordinate2D&) const = default;
};

// The platform's invalid coordinate (-180, -180).
inline constexpr LocationCoordinate2D kCLLocationCoordinate2DInvalid{-180.0, -180.0};

// Valid when the latitude is within ±90 and the longitude within ±180 (NaN is not valid).
inline bool CLLocationCoordinate2DIsValid(const LocationCoordinate2D& coordinate) {
    return coordinate.latitude >= -90.0 && coordinate.latitude <= 90.0 &&
           coordinate.longitude >= -180.0 && coordinate.longitude <= 180.0;
}

inline LocationCoordinate2D CLLocationCoordinate2DMake(double latitude, double longitude) {
    return {latitude, longitude};
}

}  // namespace vn
