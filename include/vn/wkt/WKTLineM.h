// WKTLineM: a multiline, a list of WKTLine of equal dimensions.
//
// Text forms: "MULTILINESTRING ((0.000000 0.000000, 1.000000 1.000000), (...))",
// "MULTILINESTRINGZ (...)", "MULTILINESTRING EMPTY".
#pragma once

#include <memory>
#include <vector>

#include "vn/platform/Value.h"
#include "vn/wkt/MapShapes.h"
#include "vn/wkt/WKTGeometry.h"
#include "vn/wkt/WKTLine.h"

namespace vn {

class WKTLineM final : public WKTGeometry {
  public:
    // An empty multiline: dimensions 0, no lines.
    WKTLineM();
    // A multiline of the given lines (see setListLines).
    explicit WKTLineM(std::vector<WKTLinePtr> lines);

    // Appends lines to the list (not cleared first; removeListLines clears it) and sets
    // dimensions to the first given line's, or to 0 when none is given. Raises
    // "WKTLineM [setListLines]" with "Parameter lines have a class that is not WKTLine" for a
    // null line and "Parameter lines have WKTLine with different dimensions" when a line's
    // dimensions differ from the first's; nothing is appended then.
    void setListLines(std::vector<WKTLinePtr> lines);
    // The loosely typed form: nil raises "Parameter points is nil" (the established text);
    // a value other than an array of WKTLine objects raises the class reason.
    void setListLines(const Value& lines);
    const std::vector<WKTLinePtr>& getListLines() const { return lines_; }
    // Removes every line; the multiline is empty again (dimensions 0).
    void removeListLines();

    // Copies type, dimensions and copies of the lines into other, replacing its lines.
    // Raises "WKTLineM [copyTo]" / "Parameter Multi Line is nil" for null.
    void copyTo(const std::shared_ptr<WKTLineM>& other) const;

    // Each line's description in "(" ")", joined with ", ".
    std::string description() const override;
    std::string toWKT() const override;
    std::shared_ptr<WKTGeometry> copy() const override;
    bool isEqual(const Object& other) const override;
    using WKTGeometry::isEqual;
    std::size_t hash() const override;

    // One polyline per line, in order.
    MapMultiPolyline toMapMultiLine() const;

  private:
    std::vector<WKTLinePtr> lines_;
};

using WKTLineMPtr = std::shared_ptr<WKTLineM>;

}  // namespace vn
