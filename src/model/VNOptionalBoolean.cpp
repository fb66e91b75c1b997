#include "vn/model/VNOptionalBoolean.h"

#include <string>

#include "vn/platform/FatalError.h"

namespace vn {

std::optional<bool> asBool(VNOptionalBoolean value) {
    switch (value) {
        case VNOptionalBooleanNotSet:
            return std::nullopt;
        case VNOptionalBooleanTrue:
            return true;
        case VNOptionalBooleanFalse:
            return false;
    }
    fatalError("VNOptionalBoolean " + std::to_string(static_cast<unsigned>(value)) +
               " is not 0, 1 or 2");
}

}  // namespace vn
