#include "WKTMembers.h"

#include <charconv>

#include "vn/platform/Exception.h"

namespace vn::wkt_internal {

void raise(std::string_view name, std::string_view reason) {
    throw Exception(std::string(name), std::string(reason));
}

void appendFixed(std::string& out, double value) {
    // Room for the largest double written in full with six decimals.
    char buffer[400];
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 6);
    out.append(buffer, result.ptr);
}

std::string listWKT(std::size_t memberCount, std::int32_t dimensions, std::string_view keyword2D,
                    std::string_view keyword3D, std::string_view emptyText,
                    const std::string& description) {
    if (memberCount == 0) return std::string(emptyText);
    std::string text(dimensions == 2 ? keyword2D : keyword3D);
    text += " (";
    text += description;
    text += ')';
    return text;
}

}  // namespace vn::wkt_internal
