// Percent-encoding by RFC 3986's unreserved rule, appended in place: URL component escaping
// and the OAuth signature (which escapes every parameter and then the whole parameter string
// again) share it. Internal to the library: never installed.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace vn::platform_internal {

// Letters, digits, "-", ".", "_" and "~": the bytes that stand for themselves.
inline constexpr std::array<bool, 256> kURLUnreservedBytes = [] {
    std::array<bool, 256> unreserved{};
    for (int c = 0; c < 256; ++c) {
        unreserved[c] = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                        (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_' || c == '~';
    }
    return unreserved;
}();

[[nodiscard]] inline bool isURLUnreservedByte(char c) {
    return kURLUnreservedBytes[static_cast<unsigned char>(c)];
}

// Appends text to out with every other byte as "%XX" (upper-case hex), encoded `rounds` times
// over: the result is what encoding the once-encoded text again gives (an escape's "%" becomes
// "%25" per extra round; the hex digits are unreserved). rounds is at least 1.
inline void appendPercentEncoded(std::string& out, std::string_view text, int rounds = 1) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    const std::size_t escapeLength = 3 + 2 * static_cast<std::size_t>(rounds - 1);
    // Sized for the worst case and trimmed after: one pass over the text instead of a counting
    // pass and a writing pass (the OAuth signature runs this on every request).
    const std::size_t at = out.size();
    out.resize(at + text.size() * escapeLength);
    char* const start = out.data() + at;
    char* write = start;
    for (const char c : text) {
        if (isURLUnreservedByte(c)) {
            *write++ = c;
            continue;
        }
        *write++ = '%';
        for (int round = 1; round < rounds; ++round) {
            *write++ = '2';
            *write++ = '5';
        }
        const auto byte = static_cast<unsigned char>(c);
        *write++ = kHex[byte >> 4];
        *write++ = kHex[byte & 0x0F];
    }
    out.resize(at + static_cast<std::size_t>(write - start));
}

}  // namespace vn::platform_internal
