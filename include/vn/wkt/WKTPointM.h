// WKTPointM: a multipoint, a list of WKTPoint of equal dimensions. A polygon's rings are
// multipoints as well.
//
// Text forms: "MULTIPOINT (1.000000 2.000000, 3.000000 4.000000)", "MULTIPOINTZ (...)",
// "MULTIPOINT EMPTY".
#pragma once

#include <memory>
#include <vector>

#include "vn/platform/Value.h"
#include "vn/wkt/MapShapes.h"
#include "vn/wkt/WKTGeometry.h"
#include "vn/wkt/WKTPoint.h"

namespace vn {

class WKTPointM final : public WKTGeometry {
  public:
    // An empty multipoint: dimensions 0, no points.
    WKTPointM();
    // A multipoint of the given points (see setListPoints).
    explicit WKTPointM(std::vector<WKTPointPtr> points);

    // Appends points to the list (the list is not cleared first; removeListPoints clears it)
    // and sets dimensions to the first given point's, or to 0 when none is given.
    // Raises "WKTPointM [setListPoints]" with "Parameter points have a class that is not
    // WKTPoint" for a null point and "Parameter points have WKTPoint with different
    // dimensions" when a point's dimensions differ from the first's; nothing is appended then.
    void setListPoints(std::vector<WKTPointPtr> points);
    // The loosely typed form: nil raises "Parameter points is nil"; a value other than an
    // array of WKTPoint objects raises the class reason.
    void setListPoints(const Value& points);
    const std::vector<WKTPointPtr>& getListPoints() const { return points_; }
    // Removes every point; the multipoint is empty again (dimensions 0).
    void removeListPoints();

    // Copies type, dimensions and copies of the points into other, replacing its points.
    // Raises "WKTParser Multi Point [copyTo]" / "Parameter Multi Point is nil" for null.
    void copyTo(const std::shared_ptr<WKTPointM>& other) const;

    // The points' descriptions joined with ", "; the empty text without points.
    std::string description() const override;
    std::string toWKT() const override;
    std::shared_ptr<WKTGeometry> copy() const override;
    bool isEqual(const Object& other) const override;
    using WKTGeometry::isEqual;
    std::size_t hash() const override;

    // One pin per point, in order (latitude = Y, longitude = X).
    std::vector<MapPointAnnotation> toMapMultiAnnotation() const;

  private:
    std::vector<WKTPointPtr> points_;
};

using WKTPointMPtr = std::shared_ptr<WKTPointM>;

}  // namespace vn
