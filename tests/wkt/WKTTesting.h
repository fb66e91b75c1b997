// Helpers shared by the WKT tests: making points briefly, and the shared check of raised
// exceptions.
#pragma once

#include <memory>

#include "testing/ExpectRaises.h"
#include "vn/wkt/WKTPoint.h"

namespace vn::testing {

inline WKTPointPtr point(double x, double y) {
    return std::make_shared<WKTPoint>(x, y);
}
inline WKTPointPtr point(double x, double y, double z) {
    return std::make_shared<WKTPoint>(x, y, z);
}

}  // namespace vn::testing
