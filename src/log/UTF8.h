// UTF-8 validation shared by the log's file writer and reader.
#pragma once

#include <string_view>

namespace vn::log_detail {

// Whether text is well-formed UTF-8 (no overlong forms, no surrogates, nothing above U+10FFFF).
bool isValidUTF8(std::string_view text);

}  // namespace vn::log_detail
