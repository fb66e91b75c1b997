// WKTGeometryCollection: an ordered list of geometries of the six other classes (a collection
// does not hold collections).
//
// Text form: "GEOMETRYCOLLECTION(" + the members' Well-Known Texts joined with ", " + ")",
// with no blank before the parenthesis, also when empty: "GEOMETRYCOLLECTION()".
#pragma once

#include <memory>
#include <vector>

#include "vn/platform/Object.h"
#include "vn/wkt/WKTGeometry.h"

namespace vn {

class WKTGeometryCollection final : public WKTGeometry {
  public:
    // An empty collection: dimensions 0, no members.
    WKTGeometryCollection();

    // Appends a geometry; the collection's dimensions do not change. Raises
    // "WKTGeometryCollection [addGeometry]" with "Parameter Geometry is nil" for null and with
    // "Geometry is invalid (WKT Geometry not recognised)" for an object that is not a point,
    // multipoint, line, multiline, polygon or multipolygon (a collection among them).
    void addGeometry(const ObjectPtr& geometry);
    const std::vector<WKTGeometryPtr>& getGeometries() const { return geometries_; }
    void removeGeometries() { geometries_.clear(); }

    // Copies type, dimensions and copies of the members into other, replacing its members.
    // Raises "WKTGeometryCollection [copyTo]" / "Parameter Geometry Collection is nil".
    void copyTo(const std::shared_ptr<WKTGeometryCollection>& other) const;

    // The members' Well-Known Texts joined with ", ".
    std::string description() const override;
    std::string toWKT() const override;
    std::shared_ptr<WKTGeometry> copy() const override;
    bool isEqual(const Object& other) const override;
    using WKTGeometry::isEqual;
    std::size_t hash() const override;

  private:
    std::vector<WKTGeometryPtr> geometries_;
};

using WKTGeometryCollectionPtr = std::shared_ptr<WKTGeometryCollection>;

}  // namespace vn
