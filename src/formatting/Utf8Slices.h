// Splitting UTF-8 text into one slice per code point, for the walks that go through a text
// from its right end. A byte that does not start a well-formed sequence is a slice of its
// own, so malformed text is walked without loss and without reading past its end.
#pragma once

#include <string_view>
#include <vector>

#include "platform/internal/Utf8.h"

namespace vn::formatting_internal {

inline std::vector<std::string_view> codePointSlices(std::string_view text) {
    std::vector<std::string_view> slices;
    slices.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        const std::size_t length = platform_internal::decodeUtf8(text, offset).length;
        slices.push_back(text.substr(offset, length));
        offset += length;
    }
    return slices;
}

}  // namespace vn::formatting_internal
