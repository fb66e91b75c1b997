// UTF-8 checking and decoding shared by every area that handles texts from outside (logs,
// JSON, archives, scanners, descriptions). Internal to the library: never installed.
//
// "Well-formed" is the strict definition of Unicode's table 3-7: no overlong form, no
// surrogate (U+D800...U+DFFF), nothing above U+10FFFF, no truncated sequence, no stray
// continuation byte. Lenient decoding walks any byte string without loss: a byte that does
// not start a well-formed sequence is taken alone, and each caller decides what it stands for.
// Every function is pure and safe from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vn::platform_internal {

// One step of a lenient walk through a UTF-8 text.
struct Utf8Step {
    // The decoded code point when wellFormed; otherwise the value of the lone byte (0x80-0xFF).
    char32_t codePoint;
    // Bytes taken: the sequence's length (1-4), or 1 for a byte that starts no well-formed
    // sequence, so that a walk always moves on.
    std::size_t length;
    bool wellFormed;
};

// The length of the well-formed sequence that lead starts when its second byte is second:
// 0 when no such sequence exists. Only the first two bytes decide the range; the others must
// be continuation bytes.
inline std::size_t utf8SequenceLength(std::uint8_t lead, std::uint8_t second) {
    if (lead >= 0xC2 && lead <= 0xDF) return (second & 0xC0) == 0x80 ? 2 : 0;
    // The second byte's range narrows for the leads that could otherwise start an overlong
    // form (E0, F0), a surrogate (ED) or a code point above U+10FFFF (F4).
    const std::uint8_t low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const std::uint8_t high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (second < low || second > high) return 0;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    return 0;
}

// Decodes the sequence at text[at]; at must be below text.size(). Never reads past the end.
inline Utf8Step decodeUtf8(std::string_view text, std::size_t at) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data()) + at;
    const std::uint8_t lead = bytes[0];
    if (lead < 0x80) return {lead, 1, true};
    const std::size_t available = text.size() - at;
    const std::size_t length = available < 2 ? 0 : utf8SequenceLength(lead, bytes[1]);
    if (length == 0 || length > available) return {lead, 1, false};
    char32_t codePoint = lead & (0x7F >> length);
    for (std::size_t k = 1; k < length; ++k) {
        if ((bytes[k] & 0xC0) != 0x80) return {lead, 1, false};
        codePoint = (codePoint << 6) | (bytes[k] & 0x3F);
    }
    return {codePoint, length, true};
}

// Whether the whole text is well-formed UTF-8 (the empty text is).
[[nodiscard]] bool isValidUtf8(std::string_view text);

// The text with every byte that starts no well-formed sequence replaced by U+FFFD; a
// well-formed text comes back unchanged.
[[nodiscard]] std::string replacingInvalidUtf8(std::string_view text);

// Appends the UTF-8 form of codePoint; surrogates and values above U+10FFFF append U+FFFD.
void appendUtf8(std::string& out, char32_t codePoint);

}  // namespace vn::platform_internal
