#include "vn/wkt/WKTPolygonM.h"

#include <typeinfo>

#include "WKTMembers.h"

namespace vn {
namespace {

// The run of blanks is part of the established message.
constexpr wkt_internal::MemberRules kPolygonRules{
    "WKTPolygonM [setPolygons]",
    "Parameter Polygons is nil",
    "Parameter Polygons have a class that is not WKTPolygon",
    "Parameter Polygons have WKTPolygon with                         different dimensions",
};

}  // namespace

WKTPolygonM::WKTPolygonM() : WKTGeometry("MultiPolygon") {}

WKTPolygonM::WKTPolygonM(std::vector<WKTPolygonPtr> polygons) : WKTPolygonM() {
    setPolygons(std::move(polygons));
}

void WKTPolygonM::setPolygons(std::vector<WKTPolygonPtr> polygons) {
    wkt_internal::appendMembers(polygons_, *this, std::move(polygons), kPolygonRules);
}

void WKTPolygonM::setPolygons(const Value& polygons) {
    wkt_internal::appendMembers(polygons_, *this, polygons, kPolygonRules);
}

void WKTPolygonM::removePolygons() {
    polygons_.clear();
    setDimensions(0);
}

void WKTPolygonM::copyTo(const std::shared_ptr<WKTPolygonM>& other) const {
    if (!other) wkt_internal::raise("WKTPolygonM [copyTo]", "Parameter Multi Polygon is nil");
    copyKindTo(*other);
    other->polygons_ = wkt_internal::copiedMembers(polygons_);
}

std::string WKTPolygonM::description() const {
    return wkt_internal::joinedDescriptions(polygons_, true);
}

std::string WKTPolygonM::toWKT() const {
    return wkt_internal::listWKT(polygons_.size(), dimensions(), "MULTIPOLYGON", "MULTIPOLYGONZ",
                                 "MULTIPOLYGON EMPTY", description());
}

std::shared_ptr<WKTGeometry> WKTPolygonM::copy() const {
    auto multiPolygon = std::make_shared<WKTPolygonM>();
    copyTo(multiPolygon);
    multiPolygon->setGis(gis());
    return multiPolygon;
}

bool WKTPolygonM::isEqual(const Object& other) const {
    if (typeid(other) != typeid(*this)) return false;
    const auto& multiPolygon = static_cast<const WKTPolygonM&>(other);
    return dimensions() == multiPolygon.dimensions() &&
           wkt_internal::membersEqual(polygons_, multiPolygon.polygons_);
}

std::size_t WKTPolygonM::hash() const {
    return wkt_internal::membersHash(dimensions(), polygons_);
}

MapMultiPolygon WKTPolygonM::toMapMultiPolygon() const {
    MapMultiPolygon multiPolygon;
    multiPolygon.polygons.reserve(polygons_.size());
    for (const auto& polygon : polygons_) multiPolygon.polygons.push_back(polygon->toMapPolygon());
    return multiPolygon;
}

}  // namespace vn
