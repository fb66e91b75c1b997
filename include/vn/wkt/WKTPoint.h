// WKTPoint: one position of two (X Y) or three (X Y Z) coordinates, or an empty point.
//
// In map terms X is the longitude and Y the latitude (the Well-Known Text order). Text forms:
// "POINT (1.000000 2.000000)", "POINTZ (1.000000 2.000000 3.000000)", "POINT EMPTY".
#pragma once

#include <memory>

#include "vn/platform/LocationCoordinate2D.h"
#include "vn/wkt/MapShapes.h"
#include "vn/wkt/WKTGeometry.h"

namespace vn {

class WKTPoint final : public WKTGeometry {
  public:
    // An empty point: dimensions 0, coordinates 0.
    WKTPoint();
    // A 2-dimensional point.
    WKTPoint(double x, double y);
    // A 3-dimensional point.
    WKTPoint(double x, double y, double z);

    // A 2-dimensional point from a map coordinate: X = longitude, Y = latitude.
    [[nodiscard]] static std::shared_ptr<WKTPoint> initWithCoordinates(
        const LocationCoordinate2D& coordinate);
    // A new empty point.
    static std::shared_ptr<WKTPoint> emptyGeography();

    double dimensionX() const { return x_; }
    double dimensionY() const { return y_; }
    double dimensionZ() const { return z_; }
    void setDimensionX(double x) { x_ = x; }
    void setDimensionY(double y) { y_ = y; }
    void setDimensionZ(double z) { z_ = z; }

    // Copies type, dimensions and coordinates into other (its gis stays).
    // Raises "WKTPoint [copyTo]" / "Parameter Point is nil" when other is null.
    void copyTo(const std::shared_ptr<WKTPoint>& other) const;

    // "%f %f" of X and Y for 2 dimensions, "%f %f %f" with Z otherwise; an empty point
    // describes itself by its toWKT(), "POINT EMPTY".
    std::string description() const override;
    std::string toWKT() const override;
    std::shared_ptr<WKTGeometry> copy() const override;
    // Compares X, then Y, then (unless dimensions is 2) Z.
    bool isEqual(const Object& other) const override;
    using WKTGeometry::isEqual;
    std::size_t hash() const override;

    // Map conversions; all require gis() to be "CRS84" and otherwise raise
    // "WKTPoint [toMapCoordinate]" / "Point dimensions are not CRS84 system".
    // latitude = Y, longitude = X.
    LocationCoordinate2D toMapCoordinate() const;
    // The coordinate, with Z as the altitude for a 3-dimensional point (else 0).
    Location toLocation() const;
    MapPoint toMapPoint() const;
    // A pin at the coordinate, without title.
    MapPointAnnotation toMapPointAnnotation() const;

  private:
    double x_ = 0;
    double y_ = 0;
    double z_ = 0;
};

using WKTPointPtr = std::shared_ptr<WKTPoint>;

}  // namespace vn
