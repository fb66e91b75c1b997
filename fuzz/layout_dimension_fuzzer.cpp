// libFuzzer target: any model text reads as a layout dimension of a known kind; a text and
// the same text as a loosely typed value read alike.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "FuzzInput.h"
#include "vn/geometry/VNLayoutDimension.h"
#include "vn/platform/Value.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const vn::VNLayoutDimension dimension = vn::VNLayoutDimensionFromString(text);
    vn_fuzz::check(dimension.type == vn::VNLayoutDimensionTypePercentage ||
                       dimension.type == vn::VNLayoutDimensionTypePoints,
                   "a dimension of an unknown kind");
    const vn::VNLayoutDimension fromValue = vn::VNLayoutDimensionFromValue(vn::Value(text));
    vn_fuzz::check(fromValue.type == dimension.type, "a text and its value read differently");
    vn_fuzz::check(fromValue.value == dimension.value ||
                       (fromValue.value != fromValue.value && dimension.value != dimension.value),
                   "a text and its value read differently");
    return 0;
}
