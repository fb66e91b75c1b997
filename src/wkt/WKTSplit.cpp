#include "WKTSplit.h"

#include <cstring>

namespace vn::wkt_internal {
namespace {

constexpr std::size_t npos = std::string_view::npos;

unsigned char byteAt(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

// Whether any byte of the word equals the byte repeated in pattern (the classic test for a
// zero byte in the word's exclusive or with the pattern).
bool hasByte(std::uint64_t word, std::uint64_t pattern) {
    const std::uint64_t x = word ^ pattern;
    return ((x - 0x0101010101010101ULL) & ~x & 0x8080808080808080ULL) != 0;
}

// The first position at or after from holding a or b; npos when there is none.
std::size_t findEither(std::string_view text, std::size_t from, char a, char b) {
    const std::uint64_t patternA = 0x0101010101010101ULL * static_cast<unsigned char>(a);
    const std::uint64_t patternB = 0x0101010101010101ULL * static_cast<unsigned char>(b);
    std::size_t at = from;
    for (; at + 8 <= text.size(); at += 8) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + at, sizeof word);
        if (hasByte(word, patternA) || hasByte(word, patternB)) break;
    }
    for (; at < text.size(); ++at) {
        if (text[at] == a || text[at] == b) return at;
    }
    return npos;
}

// Length of the white-space character that ends just before end, not reaching before from.
// In UTF-8 a white space is recognised from its end as surely as from its start: the first
// byte of each multi-byte one cannot be the inner byte of another character.
std::size_t whitespaceLengthBefore(std::string_view text, std::size_t from, std::size_t end) {
    if (end <= from) return 0;
    const auto last = static_cast<unsigned char>(text[end - 1]);
    if (last < 0x80) return byteClass(text[end - 1]) & kAsciiSpace ? 1 : 0;
    for (const std::size_t length : {std::size_t{2}, std::size_t{3}}) {
        if (end - from >= length &&
            multiByteWhitespaceLength(text.substr(0, end), end - length) == length) {
            return length;
        }
    }
    return 0;
}

// The end of the run of white space and commas starting at from, and whether it has a comma.
std::size_t commaRunEnd(std::string_view text, std::size_t from, bool& hasComma) {
    std::size_t at = from;
    hasComma = false;
    while (at < text.size()) {
        if (text[at] == ',') {
            hasComma = true;
            ++at;
        } else if (const std::size_t length = whitespaceLength(text, at)) {
            at += length;
        } else {
            break;
        }
    }
    return at;
}

// \s+ or the marker, in one pass.
Separator nextSpaces(std::string_view text, std::size_t from) {
    for (std::size_t at = from; at < text.size(); ++at) {
        const std::uint8_t byte = byteClass(text[at]);
        if (byte == 0 || byte == kComma) continue;
        if (byte == kMarkerStart) {
            if (markerAt(text, at)) return {at, at + kMarker.size()};
        } else if (const std::size_t length = whitespaceLength(text, at)) {
            return {at, at + length + whitespaceRunLength(text, at + length)};
        }
    }
    return {npos, npos};
}

// \s*,\s* or the marker: the white space directly before the first comma, the comma, and the
// white space after it.
Separator nextCommas(std::string_view text, std::size_t from) {
    for (std::size_t at = findEither(text, from, ',', '['); at != npos;
         at = findEither(text, at + 1, ',', '[')) {
        if (text[at] == '[') {
            if (markerAt(text, at)) return {at, at + kMarker.size()};
            continue;
        }
        std::size_t begin = at;
        while (const std::size_t length = whitespaceLengthBefore(text, from, begin))
            begin -= length;
        return {begin, at + 1 + whitespaceRunLength(text, at + 1)};
    }
    return {npos, npos};
}

// \)(\s*,\s*)*\( with the parenthesis repeated `parentheses` times on each side: between them
// nothing, or a run of white space and commas holding at least one comma. Or the marker.
Separator nextParentCommas(std::string_view text, std::size_t from, std::size_t parentheses) {
    for (std::size_t close = findEither(text, from, ')', '['); close != npos;
         close = findEither(text, close + 1, ')', '[')) {
        if (text[close] == '[') {
            if (markerAt(text, close)) return {close, close + kMarker.size()};
            continue;
        }
        if (parentheses == 2 && byteAt(text, close + 1) != ')') continue;
        bool hasComma = false;
        const std::size_t runEnd = commaRunEnd(text, close + parentheses, hasComma);
        const bool runAllowed = runEnd == close + parentheses || hasComma;
        const bool opens =
            byteAt(text, runEnd) == '(' && (parentheses == 1 || byteAt(text, runEnd + 1) == '(');
        if (runAllowed && opens) return {close, runEnd + parentheses};
    }
    return {npos, npos};
}

}  // namespace

std::size_t multiByteWhitespaceLength(std::string_view text, std::size_t at) {
    const unsigned char second = byteAt(text, at + 1);
    const unsigned char third = byteAt(text, at + 2);
    switch (byteAt(text, at)) {
        case 0xC2:  // U+0085, U+00A0
            return second == 0x85 || second == 0xA0 ? 2 : 0;
        case 0xE1:  // U+1680
            return second == 0x9A && third == 0x80 ? 3 : 0;
        case 0xE2:
            if (second == 0x80) {  // U+2000-200A, U+2028, U+2029, U+202F
                return (third >= 0x80 && third <= 0x8A) || third == 0xA8 || third == 0xA9 ||
                               third == 0xAF
                           ? 3
                           : 0;
            }
            return second == 0x81 && third == 0x9F ? 3 : 0;  // U+205F
        case 0xE3:                                           // U+3000
            return second == 0x80 && third == 0x80 ? 3 : 0;
        default:
            return 0;
    }
}

Separator nextSeparator(std::string_view text, std::size_t from, Splitter splitter) {
    switch (splitter) {
        case Splitter::spaces:
            return nextSpaces(text, from);
        case Splitter::commas:
            return nextCommas(text, from);
        case Splitter::parentCommas:
            return nextParentCommas(text, from, 1);
        case Splitter::doubleParentCommas:
            return nextParentCommas(text, from, 2);
    }
    return {npos, npos};
}

}  // namespace vn::wkt_internal
