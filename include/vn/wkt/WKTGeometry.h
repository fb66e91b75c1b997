// WKTGeometry: the common base of the Well-Known Text geometry values.
//
// Seven concrete classes derive from it: WKTPoint, WKTPointM (multipoint, also a polygon
// ring), WKTLine, WKTLineM (multiline), WKTPolygon, WKTPolygonM (multipolygon) and
// WKTGeometryCollection. Each knows its kind (type), its number of coordinates per point
// (dimensions: 0 empty, 2 for X Y, 3 for X Y Z) and its reference system (gis), compares by
// value, copies itself into another instance and writes itself as Well-Known Text.
//
// Misuse (a missing argument, a member of the wrong class, members of different dimensions,
// a map conversion outside "CRS84") raises vn::Exception named "<class> [<method>]" with a
// fixed reason; nothing here returns an error object. The map conversions of the list
// geometries take their points' coordinates as they stand (latitude = Y, longitude = X); only
// a point's own conversions check the reference system.
//
// Geometries are held by std::shared_ptr. A geometry may be read from several threads at
// once; changing it needs exclusive access.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "vn/platform/Object.h"

namespace vn {

// The reference system every geometry starts with.
inline constexpr std::string_view WKTDefaultGis = "CRS84";

class WKTGeometry : public Object {
  public:
    ~WKTGeometry() override;

    // The kind: "Point", "MultiPoint", "Line", "MultiLine", "Polygon", "MultiPolygon" or
    // "GeometryCollection".
    std::string_view type() const { return type_; }

    // 0 for an empty geometry, 2 for (X Y), 3 for (X Y Z). Member lists set it from their
    // first member; it may also be set directly.
    std::int32_t dimensions() const { return dimensions_; }
    void setDimensions(std::int32_t dimensions) { dimensions_ = dimensions; }

    // The reference system: "CRS84" after every initialiser; the parser sets "<authority>
    // <code>" (such as "EPSG 4326") when the text names another one.
    const std::string& gis() const { return gis_; }
    void setGis(std::string gis) { gis_ = std::move(gis); }

    // True exactly when dimensions() is 0.
    bool isEmpty() const { return dimensions_ == 0; }

    // The word for emptiness in Well-Known Text: "EMPTY".
    static std::string emptyValue();
    // A new empty geometry: an empty point, whose text is "POINT EMPTY".
    static std::shared_ptr<WKTGeometry> emptyGeography();

    // The geometry as Well-Known Text, e.g. "POINT (1.000000 2.000000)", "POINTZ (...)",
    // "GEOMETRYCOLLECTION(...)", "LINESTRING EMPTY". Numbers have six decimals.
    virtual std::string toWKT() const = 0;

    // The coordinate text without the keyword, e.g. "1.000000 2.000000" for a point.
    std::string description() const override = 0;

    // A deep copy, reference system included, whose members are copies as well.
    virtual std::shared_ptr<WKTGeometry> copy() const = 0;

    // Value equality: same class and dimensions, equal coordinates (exact double equality) or
    // pairwise equal members in order. type and gis take no part. A null other is not equal.
    using Object::isEqual;
    bool isEqual(const std::shared_ptr<const Object>& other) const {
        return other && isEqual(*other);
    }

  protected:
    explicit WKTGeometry(std::string_view type) : type_(type) {}
    // Copies the fields that copyTo passes on: type and dimensions.
    void copyKindTo(WKTGeometry& other) const;

  private:
    std::string_view type_;
    std::int32_t dimensions_ = 0;
    std::string gis_{WKTDefaultGis};
};

using WKTGeometryPtr = std::shared_ptr<WKTGeometry>;

}  // namespace vn
