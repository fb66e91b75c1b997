// WKTPolygon: a list of rings, each a WKTPointM of equal dimensions; the first ring is the
// exterior, the others are holes. Ring closure and orientation are not checked.
//
// Text forms: "POLYGON ((0.000000 0.000000, 1.000000 0.000000, 1.000000 1.000000,
// 0.000000 0.000000))", "POLYGONZ (...)", "POLYGON EMPTY".
#pragma once

#include <memory>
#include <vector>

#include "vn/platform/Value.h"
#include "vn/wkt/MapShapes.h"
#include "vn/wkt/WKTGeometry.h"
#include "vn/wkt/WKTPointM.h"

namespace vn {

class WKTPolygon final : public WKTGeometry {
  public:
    // An empty polygon: dimensions 0, no rings.
    WKTPolygon();
    // A polygon of the given rings (see setPolygons).
    explicit WKTPolygon(std::vector<WKTPointMPtr> rings);

    // Appends rings (not cleared first; removePolygons clears them) and sets dimensions to the
    // first given ring's, or to 0 when none is given. Raises "WKTPolygon [setPolygons]" with
    // "Parameter points have a class that is not WKTMultiPoint" for a null ring and with
    // "Parameter Multi Points list have WKTMultiPoint with" + 25 blanks + "different
    // dimensions" when a ring's dimensions differ from the first's; nothing is appended then.
    void setPolygons(std::vector<WKTPointMPtr> rings);
    // The loosely typed form: nil raises "Parameter Multi Points list is nil"; a value other
    // than an array of WKTPointM objects raises the class reason.
    void setPolygons(const Value& rings);
    // Every ring, the exterior first.
    const std::vector<WKTPointMPtr>& getPolygon() const { return rings_; }
    // The first ring; a new empty multipoint when there is none.
    WKTPointMPtr getExteriorPolygon() const;
    // The rings after the first; empty when there are fewer than two.
    std::vector<WKTPointMPtr> getInteriorPolygons() const;
    // Removes every ring; the polygon is empty again (dimensions 0).
    void removePolygons();

    // Copies type, dimensions and copies of the rings into other, replacing its rings.
    // Raises "WKTPolygon [copyTo]" / "Parameter Polygon is nil" for null.
    void copyTo(const std::shared_ptr<WKTPolygon>& other) const;

    // "(exterior)" then, for each hole, ", (hole)"; "()" for a polygon without rings.
    std::string description() const override;
    std::string toWKT() const override;
    std::shared_ptr<WKTGeometry> copy() const override;
    bool isEqual(const Object& other) const override;
    using WKTGeometry::isEqual;
    std::size_t hash() const override;

    // The exterior ring's coordinates with one interior polygon per hole.
    MapPolygon toMapPolygon() const;

  private:
    std::vector<WKTPointMPtr> rings_;
};

using WKTPolygonPtr = std::shared_ptr<WKTPolygon>;

}  // namespace vn
