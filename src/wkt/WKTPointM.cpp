#include "vn/wkt/WKTPointM.h"

#include <typeinfo>

#include "WKTMembers.h"

namespace vn {
namespace {

constexpr wkt_internal::MemberRules kPointRules{
    "WKTPointM [setListPoints]",
    "Parameter points is nil",
    "Parameter points have a class that is not WKTPoint",
    "Parameter points have WKTPoint with different dimensions",
};

}  // namespace

WKTPointM::WKTPointM() : WKTGeometry("MultiPoint") {}

WKTPointM::WKTPointM(std::vector<WKTPointPtr> points) : WKTPointM() {
    setListPoints(std::move(points));
}

void WKTPointM::setListPoints(std::vector<WKTPointPtr> points) {
    wkt_internal::appendMembers(points_, *this, std::move(points), kPointRules);
}

void WKTPointM::setListPoints(const Value& points) {
    wkt_internal::appendMembers(points_, *this, points, kPointRules);
}

void WKTPointM::removeListPoints() {
    points_.clear();
    setDimensions(0);
}

void WKTPointM::copyTo(const std::shared_ptr<WKTPointM>& other) const {
    if (!other)
        wkt_internal::raise("WKTParser Multi Point [copyTo]", "Parameter Multi Point is nil");
    copyKindTo(*other);
    other->points_ = wkt_internal::copiedMembers(points_);
}

std::string WKTPointM::description() const {
    return wkt_internal::joinedDescriptions(points_, false);
}

std::string WKTPointM::toWKT() const {
    return wkt_internal::listWKT(points_.size(), dimensions(), "MULTIPOINT", "MULTIPOINTZ",
                                 "MULTIPOINT EMPTY", description());
}

std::shared_ptr<WKTGeometry> WKTPointM::copy() const {
    auto multiPoint = std::make_shared<WKTPointM>();
    copyTo(multiPoint);
    multiPoint->setGis(gis());
    return multiPoint;
}

bool WKTPointM::isEqual(const Object& other) const {
    if (typeid(other) != typeid(*this)) return false;
    const auto& multiPoint = static_cast<const WKTPointM&>(other);
    return dimensions() == multiPoint.dimensions() &&
           wkt_internal::membersEqual(points_, multiPoint.points_);
}

std::size_t WKTPointM::hash() const {
    return wkt_internal::membersHash(dimensions(), points_);
}

std::vector<MapPointAnnotation> WKTPointM::toMapMultiAnnotation() const {
    std::vector<MapPointAnnotation> annotations;
    annotations.reserve(points_.size());
    for (const auto& point : points_) {
        annotations.push_back(
            {CLLocationCoordinate2DMake(point->dimensionY(), point->dimensionX()), {}, {}});
    }
    return annotations;
}

}  // namespace vn
