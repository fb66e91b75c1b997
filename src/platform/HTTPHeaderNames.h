// Header-field names compare without regard to ASCII case (RFC 9110), whatever the locale.
#pragma once

#include <algorithm>
#include <string_view>

namespace vn::platform_detail {

inline char asciiLowercase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline bool headerNamesEqual(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return asciiLowercase(x) == asciiLowercase(y); });
}

}  // namespace vn::platform_detail
