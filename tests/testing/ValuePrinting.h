// Readable test failures for values: GoogleTest prints a vn::Value by its description.
#pragma once

#include <ostream>

#include "vn/platform/Value.h"

namespace vn {

// Found by GoogleTest through argument-dependent lookup.
inline void PrintTo(const Value& value, std::ostream* out) {
    *out << value.description();
}

}  // namespace vn
