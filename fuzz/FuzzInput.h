// What every libFuzzer target here shares: one input cut into the several texts a parser call
// needs, a number taken from the input's bytes, and the invariant checks. A failed check
// aborts, which libFuzzer reports as a crash and the corpus replay as a failed test.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/internal/Utf8.h"

namespace vn_fuzz {

// The input split at NUL bytes into exactly N fields: missing fields are empty, and the last
// field keeps any further NUL bytes.
template <std::size_t N>
std::array<std::string_view, N> fields(const std::uint8_t* data, std::size_t size) {
    std::array<std::string_view, N> result{};
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    for (std::size_t i = 0; i + 1 < N; ++i) {
        const std::size_t cut = rest.find('\0');
        if (cut == std::string_view::npos) {
            result[i] = rest;
            return result;
        }
        result[i] = rest.substr(0, cut);
        rest.remove_prefix(cut + 1);
    }
    result[N - 1] = rest;
    return result;
}

// A double made of the first eight bytes of text (zero-padded), so that the fuzzer reaches
// every bit pattern, NaN and the infinities included.
inline double doubleFromBytes(std::string_view text) {
    std::array<char, sizeof(double)> bytes{};
    if (!text.empty()) {  // an empty view may hold a null pointer, which memcpy must not get
        std::memcpy(bytes.data(), text.data(), std::min(text.size(), bytes.size()));
    }
    double value = 0;
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

[[noreturn]] inline void fail(const char* what) {
    std::fprintf(stderr, "invariant broken: %s\n", what);
    std::abort();
}

inline void check(bool holds, const char* what) {
    if (!holds) fail(what);
}

inline void checkUtf8(std::string_view text, const char* what) {
    check(vn::platform_internal::isValidUtf8(text), what);
}

}  // namespace vn_fuzz
