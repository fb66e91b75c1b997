#include "vn/wkt/MapShapes.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vn {
namespace {

TEST(MapShapes, ProjectsCoordinatesOntoTheWorldSquare) {
    const double w = MapSizeWorldWidth;
    EXPECT_EQ(MapPointForCoordinate({0, 0}), (MapPoint{w / 2, w / 2}));
    EXPECT_EQ(MapPointForCoordinate({0, -180}).x, 0);
    EXPECT_EQ(MapPointForCoordinate({0, 180}).x, w);
    // 45° north lies at y = (1 - ln(tan(67.5°)) / π) / 2 of the world.
    EXPECT_NEAR(MapPointForCoordinate({45, 0}).y,
                w * (1 - std::log(std::tan(M_PI * 3 / 8)) / M_PI) / 2, 1e-6);
    EXPECT_LT(MapPointForCoordinate({10, 0}).y, MapPointForCoordinate({-10, 0}).y);  // north is up
    // The poles stay inside the square.
    EXPECT_NEAR(MapPointForCoordinate({90, 0}).y, 0, 1e-3);
    EXPECT_NEAR(MapPointForCoordinate({-90, 0}).y, w, 1e-3);
}

}  // namespace
}  // namespace vn
