#include "vn/wkt/WKTPolygon.h"

#include <typeinfo>

#include "WKTMembers.h"

namespace vn {
namespace {

// The run of blanks is part of the established message.
constexpr wkt_internal::MemberRules kRingRules{
    "WKTPolygon [setPolygons]",
    "Parameter Multi Points list is nil",
    "Parameter points have a class that is not WKTMultiPoint",
    "Parameter Multi Points list have WKTMultiPoint with                         different "
    "dimensions",
};

std::vector<LocationCoordinate2D> coordinatesOf(const WKTPointM& ring) {
    std::vector<LocationCoordinate2D> coordinates;
    coordinates.reserve(ring.getListPoints().size());
    for (const auto& point : ring.getListPoints()) {
        coordinates.push_back(CLLocationCoordinate2DMake(point->dimensionY(), point->dimensionX()));
    }
    return coordinates;
}

}  // namespace

WKTPolygon::WKTPolygon() : WKTGeometry("Polygon") {}

WKTPolygon::WKTPolygon(std::vector<WKTPointMPtr> rings) : WKTPolygon() {
    setPolygons(std::move(rings));
}

void WKTPolygon::setPolygons(std::vector<WKTPointMPtr> rings) {
    wkt_internal::appendMembers(rings_, *this, std::move(rings), kRingRules);
}

void WKTPolygon::setPolygons(const Value& rings) {
    wkt_internal::appendMembers(rings_, *this, rings, kRingRules);
}

WKTPointMPtr WKTPolygon::getExteriorPolygon() const {
    return rings_.empty() ? std::make_shared<WKTPointM>() : rings_.front();
}

std::vector<WKTPointMPtr> WKTPolygon::getInteriorPolygons() const {
    if (rings_.size() < 2) return {};
    return {rings_.begin() + 1, rings_.end()};
}

void WKTPolygon::removePolygons() {
    rings_.clear();
    setDimensions(0);
}

void WKTPolygon::copyTo(const std::shared_ptr<WKTPolygon>& other) const {
    if (!other) wkt_internal::raise("WKTPolygon [copyTo]", "Parameter Polygon is nil");
    copyKindTo(*other);
    other->rings_ = wkt_internal::copiedMembers(rings_);
}

std::string WKTPolygon::description() const {
    std::string text = "(" + getExteriorPolygon()->description() + ")";
    if (rings_.size() > 1) {
        text += ", ";
        text += wkt_internal::joinedDescriptions(getInteriorPolygons(), true);
    }
    return text;
}

std::string WKTPolygon::toWKT() const {
    return wkt_internal::listWKT(rings_.size(), dimensions(), "POLYGON", "POLYGONZ",
                                 "POLYGON EMPTY", description());
}

std::shared_ptr<WKTGeometry> WKTPolygon::copy() const {
    auto polygon = std::make_shared<WKTPolygon>();
    copyTo(polygon);
    polygon->setGis(gis());
    return polygon;
}

bool WKTPolygon::isEqual(const Object& other) const {
    if (typeid(other) != typeid(*this)) return false;
    const auto& polygon = static_cast<const WKTPolygon&>(other);
    return dimensions() == polygon.dimensions() &&
           wkt_internal::membersEqual(rings_, polygon.rings_);
}

std::size_t WKTPolygon::hash() const {
    return wkt_internal::membersHash(dimensions(), rings_);
}

MapPolygon WKTPolygon::toMapPolygon() const {
    MapPolygon polygon;
    polygon.coordinates = coordinatesOf(*getExteriorPolygon());
    for (const auto& hole : getInteriorPolygons())
        polygon.interiorPolygons.push_back({coordinatesOf(*hole), {}});
    return polygon;
}

}  // namespace vn
