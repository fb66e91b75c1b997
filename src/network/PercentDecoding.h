// The removal of percent-encoding that the query reader and the warning texts share. Stricter
// than the formatting area's urlSimpleUnescape(), which keeps a stray "%": here a text that is
// not properly percent-encoded has no decoded form at all.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vn::network_internal {

// The text with every "%" and two hexadecimal digits replaced by that byte ("+" stays "+");
// absent when a "%" is not followed by two hexadecimal digits or the bytes are not UTF-8.
std::optional<std::string> removingPercentEncoding(std::string_view text);

}  // namespace vn::network_internal
