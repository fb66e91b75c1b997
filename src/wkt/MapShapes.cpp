#include "vn/wkt/MapShapes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vn {

MapPoint MapPointForCoordinate(const LocationCoordinate2D& coordinate) {
    // Beyond this latitude the projection's square would be left (and at ±90 it diverges).
    constexpr double kLatitudeLimit = 85.0511287798066;
    const double latitude = std::clamp(coordinate.latitude, -kLatitudeLimit, kLatitudeLimit);
    const double sine = std::sin(latitude * std::numbers::pi / 180);
    const double x = (coordinate.longitude + 180) / 360 * MapSizeWorldWidth;
    const double y =
        (0.5 - std::log((1 + sine) / (1 - sine)) / (4 * std::numbers::pi)) * MapSizeWorldWidth;
    return {x, y};
}

}  // namespace vn
