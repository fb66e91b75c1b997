#include "WKTNumber.h"

#include "platform/internal/DecimalReading.h"

namespace vn::wkt_internal {

double readLenientDouble(std::string_view text, std::size_t& at) {
    std::size_t position = at;
    while (position < text.size() &&
           (text[position] == ' ' || (text[position] >= '\t' && text[position] <= '\r'))) {
        ++position;
    }
    double value = 0;
    // Coordinates sit inside longer texts and are mostly short: the exact reading goes first.
    const std::size_t end =
        platform_internal::readDecimalWithPoint<platform_internal::ExactReading::always>(
            text, position, &value);
    if (end == position) return 0;
    at = end;
    return value;
}

}  // namespace vn::wkt_internal
