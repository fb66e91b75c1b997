#include "vn/wkt/WKTGeometry.h"

#include "vn/wkt/WKTPoint.h"

namespace vn {

WKTGeometry::~WKTGeometry() = default;

std::string WKTGeometry::emptyValue() {
    return "EMPTY";
}

std::shared_ptr<WKTGeometry> WKTGeometry::emptyGeography() {
    return WKTPoint::emptyGeography();
}

void WKTGeometry::copyKindTo(WKTGeometry& other) const {
    other.type_ = type_;
    other.dimensions_ = dimensions_;
}

}  // namespace vn
