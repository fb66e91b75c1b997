#include "network/PercentDecoding.h"

#include <algorithm>
#include <cctype>

#include "vn/formatting/StringUtilities.h"

namespace vn::network_internal {
namespace {

bool isHexDigitAt(std::string_view text, std::size_t at) {
    return at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at])) != 0;
}

bool everyPercentStartsAnEscape(std::string_view text) {
    for (std::size_t at = text.find('%'); at != std::string_view::npos;
         at = text.find('%', at + 3)) {
        if (!isHexDigitAt(text, at + 1) || !isHexDigitAt(text, at + 2)) return false;
    }
    return true;
}

}  // namespace

std::optional<std::string> removingPercentEncoding(std::string_view text) {
    // Most names and values are plain ASCII without escapes: nothing to decode or check.
    if (std::all_of(text.begin(), text.end(), [](char c) { return c != '%' && (c & 0x80) == 0; }))
        return std::string(text);
    if (!everyPercentStartsAnEscape(text)) return std::nullopt;
    return urlSimpleUnescape(text);
}

}  // namespace vn::network_internal
