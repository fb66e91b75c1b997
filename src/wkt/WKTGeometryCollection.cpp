#include "vn/wkt/WKTGeometryCollection.h"

#include <typeinfo>

#include "WKTMembers.h"
#include "vn/wkt/WKTLine.h"
#include "vn/wkt/WKTLineM.h"
#include "vn/wkt/WKTPoint.h"
#include "vn/wkt/WKTPointM.h"
#include "vn/wkt/WKTPolygon.h"
#include "vn/wkt/WKTPolygonM.h"

namespace vn {
namespace {

bool isMemberClass(const Object& object) {
    const std::type_info& type = typeid(object);
    return type == typeid(WKTPoint) || type == typeid(WKTPointM) || type == typeid(WKTLine) ||
           type == typeid(WKTLineM) || type == typeid(WKTPolygon) || type == typeid(WKTPolygonM);
}

}  // namespace

WKTGeometryCollection::WKTGeometryCollection() : WKTGeometry("GeometryCollection") {}

void WKTGeometryCollection::addGeometry(const ObjectPtr& geometry) {
    constexpr std::string_view kName = "WKTGeometryCollection [addGeometry]";
    if (!geometry) wkt_internal::raise(kName, "Parameter Geometry is nil");
    if (!isMemberClass(*geometry))
        wkt_internal::raise(kName, "Geometry is invalid (WKT Geometry not recognised)");
    geometries_.push_back(std::static_pointer_cast<WKTGeometry>(geometry));
}

void WKTGeometryCollection::copyTo(const std::shared_ptr<WKTGeometryCollection>& other) const {
    if (!other)
        wkt_internal::raise("WKTGeometryCollection [copyTo]",
                            "Parameter Geometry Collection is nil");
    copyKindTo(*other);
    other->geometries_ = wkt_internal::copiedMembers(geometries_);
}

std::string WKTGeometryCollection::description() const {
    std::string text;
    for (std::size_t i = 0; i < geometries_.size(); ++i) {
        if (i > 0) text += ", ";
        text += geometries_[i]->toWKT();
    }
    return text;
}

std::string WKTGeometryCollection::toWKT() const {
    return "GEOMETRYCOLLECTION(" + description() + ")";
}

std::shared_ptr<WKTGeometry> WKTGeometryCollection::copy() const {
    auto collection = std::make_shared<WKTGeometryCollection>();
    copyTo(collection);
    collection->setGis(gis());
    return collection;
}

bool WKTGeometryCollection::isEqual(const Object& other) const {
    if (typeid(other) != typeid(*this)) return false;
    const auto& collection = static_cast<const WKTGeometryCollection&>(other);
    return dimensions() == collection.dimensions() &&
           wkt_internal::membersEqual(geometries_, collection.geometries_);
}

std::size_t WKTGeometryCollection::hash() const {
    return wkt_internal::membersHash(dimensions(), geometries_);
}

}  // namespace vn
