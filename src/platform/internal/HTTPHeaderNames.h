// Header-field names compare without regard to ASCII case (RFC 9110), whatever the locale;
// requests and responses look their fields up alike. Internal to the library: never installed.
#pragma once

#include <algorithm>
#include <optional>
#include <string_view>

namespace vn::platform_internal {

inline char asciiLowercase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline bool headerNamesEqual(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return asciiLowercase(x) == asciiLowercase(y); });
}

// The value of the first field named so among (name, value) pairs; absent when none is.
template <typename Fields>
std::optional<std::string_view> headerFieldValue(const Fields& fields, std::string_view name) {
    for (const auto& [fieldName, value] : fields) {
        if (headerNamesEqual(fieldName, name)) return std::string_view(value);
    }
    return std::nullopt;
}

}  // namespace vn::platform_internal
