// WKTPolygonM: a multipolygon, a list of WKTPolygon of equal dimensions.
//
// Text forms: "MULTIPOLYGON (((0.000000 0.000000, ...)), ((...), (...)))",
// "MULTIPOLYGONZ (...)", "MULTIPOLYGON EMPTY".
#pragma once

#include <memory>
#include <vector>

#include "vn/platform/Value.h"
#include "vn/wkt/MapShapes.h"
#include "vn/wkt/WKTGeometry.h"
#include "vn/wkt/WKTPolygon.h"

namespace vn {

class WKTPolygonM final : public WKTGeometry {
  public:
    // An empty multipolygon: dimensions 0, no polygons.
    WKTPolygonM();
    // A multipolygon of the given polygons (see setPolygons).
    explicit WKTPolygonM(std::vector<WKTPolygonPtr> polygons);

    // Appends polygons (not cleared first; removePolygons clears them) and sets dimensions to
    // the first given polygon's, or to 0 when none is given. Raises "WKTPolygonM [setPolygons]"
    // with "Parameter Polygons have a class that is not WKTPolygon" for a null polygon and with
    // "Parameter Polygons have WKTPolygon with" + 25 blanks + "different dimensions" when a
    // polygon's dimensions differ from the first's; nothing is appended then.
    void setPolygons(std::vector<WKTPolygonPtr> polygons);
    // The loosely typed form: nil raises "Parameter Polygons is nil"; a value other than an
    // array of WKTPolygon objects raises the class reason.
    void setPolygons(const Value& polygons);
    const std::vector<WKTPolygonPtr>& getPolygons() const { return polygons_; }
    // Removes every polygon; the multipolygon is empty again (dimensions 0).
    void removePolygons();

    // Copies type, dimensions and copies of the polygons into other, replacing its polygons.
    // Raises "WKTPolygonM [copyTo]" / "Parameter Multi Polygon is nil" for null.
    void copyTo(const std::shared_ptr<WKTPolygonM>& other) const;

    // Each polygon's description in "(" ")", joined with ", ".
    std::string description() const override;
    std::string toWKT() const override;
    std::shared_ptr<WKTGeometry> copy() const override;
    bool isEqual(const Object& other) const override;
    using WKTGeometry::isEqual;
    std::size_t hash() const override;

    // One map polygon per polygon, in order.
    MapMultiPolygon toMapMultiPolygon() const;

  private:
    std::vector<WKTPolygonPtr> polygons_;
};

using WKTPolygonMPtr = std::shared_ptr<WKTPolygonM>;

}  // namespace vn
