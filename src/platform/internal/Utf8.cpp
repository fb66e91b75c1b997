#include "platform/internal/Utf8.h"

#include <cstring>

namespace vn::platform_internal {
namespace {

constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// The offset of the first byte at or after from that is not ASCII, eight bytes at a time:
// most texts a log or a JSON writer checks are ASCII through and through.
std::size_t asciiPrefixEnd(std::string_view text, std::size_t from) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080ULL;
    while (text.size() - from >= sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + from, sizeof word);
        if (word & kHighBits) break;
        from += sizeof word;
    }
    while (from < text.size() && static_cast<std::uint8_t>(text[from]) < 0x80) ++from;
    return from;
}

}  // namespace

bool isValidUtf8(std::string_view text) {
    for (std::size_t at = asciiPrefixEnd(text, 0); at < text.size();) {
        const Utf8Step step = decodeUtf8(text, at);
        if (!step.wellFormed) return false;
        at = asciiPrefixEnd(text, at + step.length);
    }
    return true;
}

std::string replacingInvalidUtf8(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 8);
    for (std::size_t at = 0; at < text.size();) {
        const Utf8Step step = decodeUtf8(text, at);
        if (step.wellFormed) {
            result.append(text.substr(at, step.length));
        } else {
            result.append(kReplacementCharacter);
        }
        at += step.length;
    }
    return result;
}

void appendUtf8(std::string& out, char32_t codePoint) {
    if ((codePoint >= 0xD800 && codePoint <= 0xDFFF) || codePoint > 0x10FFFF) {
        out.append(kReplacementCharacter);
    } else if (codePoint < 0x80) {
        out += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        out += static_cast<char>(0xC0 | (codePoint >> 6));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        out += static_cast<char>(0xE0 | (codePoint >> 12));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (codePoint >> 18));
        out += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    }
}

}  // namespace vn::platform_internal
