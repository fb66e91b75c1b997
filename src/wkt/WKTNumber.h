// The lenient reading of a coordinate: the number that starts the text, 0 when none does.
#pragma once

#include <cstddef>
#include <string_view>

namespace vn::wkt_internal {

// Reads the number at text[at] after ASCII white space: [+-]digits[.digits][(e|E)[+-]digits]
// with the decimal point whatever the process locale, correctly rounded. at moves past the
// number, or stays when none starts there (the value is then 0). Values beyond the double
// range give ±infinity, values too small for it ±0.
[[nodiscard]] double readLenientDouble(std::string_view text, std::size_t& at);

}  // namespace vn::wkt_internal
