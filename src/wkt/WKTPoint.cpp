#include "vn/wkt/WKTPoint.h"

#include <typeinfo>

#include "WKTMembers.h"

namespace vn {

using platform_internal::hashCombine;
using wkt_internal::appendFixed;
using wkt_internal::coordinateHash;

WKTPoint::WKTPoint() : WKTGeometry("Point") {}

WKTPoint::WKTPoint(double x, double y) : WKTGeometry("Point"), x_(x), y_(y) {
    setDimensions(2);
}

WKTPoint::WKTPoint(double x, double y, double z) : WKTGeometry("Point"), x_(x), y_(y), z_(z) {
    setDimensions(3);
}

std::shared_ptr<WKTPoint> WKTPoint::initWithCoordinates(const LocationCoordinate2D& coordinate) {
    return std::make_shared<WKTPoint>(coordinate.longitude, coordinate.latitude);
}

std::shared_ptr<WKTPoint> WKTPoint::emptyGeography() {
    return std::make_shared<WKTPoint>();
}

void WKTPoint::copyTo(const std::shared_ptr<WKTPoint>& other) const {
    if (!other) wkt_internal::raise("WKTPoint [copyTo]", "Parameter Point is nil");
    copyKindTo(*other);
    other->x_ = x_;
    other->y_ = y_;
    other->z_ = z_;
}

std::string WKTPoint::description() const {
    if (isEmpty()) return toWKT();
    std::string text;
    appendFixed(text, x_);
    text += ' ';
    appendFixed(text, y_);
    if (dimensions() != 2) {
        text += ' ';
        appendFixed(text, z_);
    }
    return text;
}

std::string WKTPoint::toWKT() const {
    if (isEmpty()) return "POINT EMPTY";
    return (dimensions() == 2 ? "POINT (" : "POINTZ (") + description() + ")";
}

std::shared_ptr<WKTGeometry> WKTPoint::copy() const {
    auto point = std::make_shared<WKTPoint>();
    copyTo(point);
    point->setGis(gis());
    return point;
}

bool WKTPoint::isEqual(const Object& other) const {
    if (typeid(other) != typeid(*this)) return false;
    const auto& point = static_cast<const WKTPoint&>(other);
    if (dimensions() != point.dimensions()) return false;
    return x_ == point.x_ && y_ == point.y_ && (dimensions() == 2 || z_ == point.z_);
}

std::size_t WKTPoint::hash() const {
    std::size_t seed = std::hash<std::int32_t>{}(dimensions());
    seed = hashCombine(seed, coordinateHash(x_));
    seed = hashCombine(seed, coordinateHash(y_));
    if (dimensions() != 2) seed = hashCombine(seed, coordinateHash(z_));
    return seed;
}

LocationCoordinate2D WKTPoint::toMapCoordinate() const {
    if (gis() != WKTDefaultGis) {
        wkt_internal::raise("WKTPoint [toMapCoordinate]", "Point dimensions are not CRS84 system");
    }
    return CLLocationCoordinate2DMake(y_, x_);
}

Location WKTPoint::toLocation() const {
    return {toMapCoordinate(), dimensions() == 3 ? z_ : 0.0};
}

MapPoint WKTPoint::toMapPoint() const {
    return MapPointForCoordinate(toMapCoordinate());
}

MapPointAnnotation WKTPoint::toMapPointAnnotation() const {
    return {toMapCoordinate(), {}, {}};
}

}  // namespace vn
