// The four splitters of Well-Known Text, by hand and in place.
//
// Each splitter gives exactly what replacing every match of its regular expression by the
// marker "[SPLIT]", splitting the result at "[SPLIT]" and keeping the non-empty pieces would
// give (the marker also splits where it occurs literally in the text):
//   spaces              \s+
//   commas              \s*,\s*
//   parentCommas        \)(\s*,\s*)*\(
//   doubleParentCommas  \)\)(\s*,\s*)*\(\(
// with \s the Unicode white-space characters (U+0009-000D, U+0020, U+0085, U+00A0, U+1680,
// U+2000-200A, U+2028, U+2029, U+202F, U+205F, U+3000) written in UTF-8. A match never
// contains a letter of the marker, so matches and literal markers never overlap and the first
// to start is the next separator.
//
// Pieces are views into the text; nothing is allocated. These loops are the parser's hot
// path: bytes are classified through one table, and the searches for a few characters test
// eight bytes at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace vn::wkt_internal {

enum class Splitter { spaces, commas, parentCommas, doubleParentCommas };

// What a byte may start, as bits.
inline constexpr std::uint8_t kAsciiSpace = 1;   // \t \n \v \f \r and the blank
inline constexpr std::uint8_t kSpaceLead = 2;    // first byte of a multi-byte white space
inline constexpr std::uint8_t kMarkerStart = 4;  // "["
inline constexpr std::uint8_t kComma = 8;

inline constexpr std::array<std::uint8_t, 256> kByteClass = [] {
    std::array<std::uint8_t, 256> classes{};
    for (const unsigned char c : {' ', '\t', '\n', '\v', '\f', '\r'}) classes[c] = kAsciiSpace;
    for (const unsigned char c : {0xC2, 0xE1, 0xE2, 0xE3}) classes[c] = kSpaceLead;
    classes['['] = kMarkerStart;
    classes[','] = kComma;
    return classes;
}();

inline constexpr std::string_view kMarker = "[SPLIT]";

inline std::uint8_t byteClass(char c) {
    return kByteClass[static_cast<unsigned char>(c)];
}

// Length of the multi-byte white-space character at text[at] (its first byte has the class
// kSpaceLead); 0 when the bytes there are another character.
std::size_t multiByteWhitespaceLength(std::string_view text, std::size_t at);

// Length in bytes of the white-space character starting at text[at]; 0 when there is none.
inline std::size_t whitespaceLength(std::string_view text, std::size_t at) {
    if (at >= text.size()) return 0;
    const std::uint8_t byte = byteClass(text[at]);
    if (byte & kAsciiSpace) return 1;
    return byte & kSpaceLead ? multiByteWhitespaceLength(text, at) : 0;
}

// Length in bytes of the run of white space starting at text[at].
inline std::size_t whitespaceRunLength(std::string_view text, std::size_t at) {
    std::size_t end = at;
    while (const std::size_t length = whitespaceLength(text, end)) end += length;
    return end - at;
}

inline bool markerAt(std::string_view text, std::size_t at) {
    return text.substr(at, kMarker.size()) == kMarker;
}

// A separator found in a text: [begin, end).
struct Separator {
    std::size_t begin;
    std::size_t end;
};

// The first separator of the splitter's kind (expression match or literal marker) that starts
// at or after from; begin is std::string_view::npos when there is none.
Separator nextSeparator(std::string_view text, std::size_t from, Splitter splitter);

// Calls visit(piece) for every non-empty piece in order while visit returns true. Returns
// false when visit stopped the walk.
template <class Visitor>
bool forEachPiece(std::string_view text, Splitter splitter, Visitor&& visit) {
    std::size_t start = 0;
    while (start <= text.size()) {
        const Separator separator = nextSeparator(text, start, splitter);
        const std::size_t pieceEnd =
            separator.begin == std::string_view::npos ? text.size() : separator.begin;
        if (pieceEnd > start && !visit(text.substr(start, pieceEnd - start))) return false;
        if (separator.begin == std::string_view::npos) break;
        start = separator.end;
    }
    return true;
}

inline std::vector<std::string_view> split(std::string_view text, Splitter splitter) {
    std::vector<std::string_view> pieces;
    forEachPiece(text, splitter, [&](std::string_view piece) {
        pieces.push_back(piece);
        return true;
    });
    return pieces;
}

}  // namespace vn::wkt_internal
