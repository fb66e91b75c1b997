// Splitting UTF-8 text into one slice per code point, for the walks that go through a text
// from its right end. A byte that does not start a well-formed sequence is a slice of its
// own, so malformed text is walked without loss and without reading past its end.
#pragma once

#include <unicode/utf8.h>

#include <cstdint>
#include <string_view>
#include <vector>

namespace vn::formatting {

inline std::vector<std::string_view> codePointSlices(std::string_view text) {
    std::vector<std::string_view> slices;
    slices.reserve(text.size());
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<int32_t>(text.size());
    int32_t offset = 0;
    while (offset < length) {
        const int32_t start = offset;
        UChar32 codePoint = 0;
        U8_NEXT(bytes, offset, length, codePoint);
        slices.push_back(
            text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(offset - start)));
    }
    return slices;
}

}  // namespace vn::formatting
