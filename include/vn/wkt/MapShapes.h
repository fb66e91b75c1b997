// The map framework's records that geometry values convert into: map points (the flat
// projection the map draws in), locations, point annotations, polylines and polygons with
// their multi forms. Coordinates are latitude/longitude pairs in degrees.
//
// Plain values without invariants; they compare member-wise with == and may be used from any
// thread.
#pragma once

#include <string>
#include <vector>

#include "vn/platform/LocationCoordinate2D.h"

namespace vn {

// A point of the map's flat (spherical Mercator) projection: the world is a square of
// MapSizeWorldWidth points, x growing eastwards from longitude -180 and y southwards from the
// projection's northern edge.
struct MapPoint {
    double x = 0;
    double y = 0;
    bool operator==(const MapPoint&) const = default;
};

inline constexpr double MapSizeWorldWidth = 268435456.0;  // 2^28

// The map point of a coordinate. Latitudes beyond the projection's limit (±85.0511287798°)
// are taken at that limit, so every result lies within the world square.
MapPoint MapPointForCoordinate(const LocationCoordinate2D& coordinate);

// A location: a coordinate with an altitude in metres (0 when unknown).
struct Location {
    LocationCoordinate2D coordinate;
    double altitude = 0;
    bool operator==(const Location&) const = default;
};

// A pin on the map; title and subtitle are empty unless the caller sets them.
struct MapPointAnnotation {
    LocationCoordinate2D coordinate;
    std::string title;
    std::string subtitle;
    bool operator==(const MapPointAnnotation&) const = default;
};

struct MapPolyline {
    std::vector<LocationCoordinate2D> coordinates;
    bool operator==(const MapPolyline&) const = default;
};

struct MapMultiPolyline {
    std::vector<MapPolyline> polylines;
    bool operator==(const MapMultiPolyline&) const = default;
};

// An outline with optional holes (each hole a polygon of its own, as the map framework has it).
struct MapPolygon {
    std::vector<LocationCoordinate2D> coordinates;
    std::vector<MapPolygon> interiorPolygons;
    bool operator==(const MapPolygon&) const = default;
};

struct MapMultiPolygon {
    std::vector<MapPolygon> polygons;
    bool operator==(const MapMultiPolygon&) const = default;
};

}  // namespace vn
