#include "vn/wkt/WKTLine.h"

#include <typeinfo>

#include "WKTMembers.h"

namespace vn {
namespace {

constexpr wkt_internal::MemberRules kPointRules{
    "WKTLine [setListPoints]",
    "Parameter points is nil",
    "Parameter points have a class that is not WKTPoint",
    "Parameter points have WKTPoint with different dimensions",
};

}  // namespace

WKTLine::WKTLine() : WKTGeometry("Line") {}

WKTLine::WKTLine(std::vector<WKTPointPtr> points) : WKTLine() {
    setListPoints(std::move(points));
}

void WKTLine::setListPoints(std::vector<WKTPointPtr> points) {
    wkt_internal::appendMembers(points_, *this, std::move(points), kPointRules);
}

void WKTLine::setListPoints(const Value& points) {
    wkt_internal::appendMembers(points_, *this, points, kPointRules);
}

void WKTLine::removeListPoints() {
    points_.clear();
    setDimensions(0);
}

void WKTLine::copyTo(const std::shared_ptr<WKTLine>& other) const {
    if (!other) wkt_internal::raise("WKTLine [copyTo]", "Parameter Line is nil");
    copyKindTo(*other);
    other->points_ = wkt_internal::copiedMembers(points_);
}

std::string WKTLine::description() const {
    return wkt_internal::joinedDescriptions(points_, false);
}

std::string WKTLine::toWKT() const {
    return wkt_internal::listWKT(points_.size(), dimensions(), "LINESTRING", "LINESTRINGZ",
                                 "LINESTRING EMPTY", description());
}

std::shared_ptr<WKTGeometry> WKTLine::copy() const {
    auto line = std::make_shared<WKTLine>();
    copyTo(line);
    line->setGis(gis());
    return line;
}

bool WKTLine::isEqual(const Object& other) const {
    if (typeid(other) != typeid(*this)) return false;
    const auto& line = static_cast<const WKTLine&>(other);
    return dimensions() == line.dimensions() && wkt_internal::membersEqual(points_, line.points_);
}

std::size_t WKTLine::hash() const {
    return wkt_internal::membersHash(dimensions(), points_);
}

MapPolyline WKTLine::toMapLine() const {
    MapPolyline polyline;
    polyline.coordinates.reserve(points_.size());
    for (const auto& point : points_) {
        polyline.coordinates.push_back(
            CLLocationCoordinate2DMake(point->dimensionY(), point->dimensionX()));
    }
    return polyline;
}

}  // namespace vn
