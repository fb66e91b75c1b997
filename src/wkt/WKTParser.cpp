#include "vn/wkt/WKTParser.h"

#include <unicode/unistr.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "WKTNumber.h"
#include "WKTSplit.h"
#include "vn/errors/NSErrorVNFoundation.h"

namespace vn {
namespace {

using wkt_internal::forEachPiece;
using wkt_internal::Splitter;

enum class Kind : std::uint8_t {
    point,
    multiPoint,
    line,
    multiLine,
    polygon,
    multiPolygon,
    collection
};

struct Keyword {
    std::string_view text;
    Kind kind;
    int coordinates;  // per point; 0 for collections, whose members decide
    int parentheses;  // levels stripped from the body
};

// In search order: the last one that occurs in a text wins.
constexpr std::array<Keyword, 19> kKeywords{{
    {"POINT", Kind::point, 2, 1},
    {"MULTIPOINT", Kind::multiPoint, 2, 1},
    {"LINESTRING", Kind::line, 2, 1},
    {"MULTILINESTRING", Kind::multiLine, 2, 2},
    {"POLYGON", Kind::polygon, 2, 2},
    {"MULTIPOLYGON", Kind::multiPolygon, 2, 3},
    {"POINTZ", Kind::point, 3, 1},
    {"POINT Z", Kind::point, 3, 1},
    {"MULTIPOINTZ", Kind::multiPoint, 3, 1},
    {"MULTIPOINT Z", Kind::multiPoint, 3, 1},
    {"LINESTRINGZ", Kind::line, 3, 1},
    {"LINESTRING Z", Kind::line, 3, 1},
    {"MULTILINESTRINGZ", Kind::multiLine, 3, 2},
    {"MULTILINESTRING Z", Kind::multiLine, 3, 2},
    {"POLYGONZ", Kind::polygon, 3, 2},
    {"POLYGON Z", Kind::polygon, 3, 2},
    {"MULTIPOLYGONZ", Kind::multiPolygon, 3, 3},
    {"MULTIPOLYGON Z", Kind::multiPolygon, 3, 3},
    {"GEOMETRYCOLLECTION", Kind::collection, 0, 1},
}};
constexpr std::size_t kCollectionIndex = 18;

// Every keyword is an optional "MULTI", one of these cores, and an optional "Z" or " Z"
// (the collection has neither). For each core: the table indexes of the plain, multi, Z,
// " Z", multi Z and multi " Z" forms.
struct Core {
    std::string_view text;
    std::array<std::size_t, 6> forms;
};
constexpr std::array<Core, 3> kCores{{
    {"POINT", {0, 1, 6, 7, 8, 9}},
    {"LINESTRING", {2, 3, 10, 11, 12, 13}},
    {"POLYGON", {4, 5, 14, 15, 16, 17}},
}};

// The tables above are kept by hand; these checks keep them in step with each other.
constexpr Kind multiKind(Kind kind) {
    return kind == Kind::point  ? Kind::multiPoint
           : kind == Kind::line ? Kind::multiLine
                                : Kind::multiPolygon;
}

// Whether the keyword at index is the core's form `form` (0 plain, 1 multi, 2 "Z", 3 " Z",
// 4 multi "Z", 5 multi " Z") with the kind, coordinates and parentheses that go with it.
constexpr bool isForm(const Core& core, Kind kind, int parentheses, std::size_t form,
                      std::size_t index) {
    constexpr std::string_view kMulti = "MULTI";
    constexpr std::array<std::string_view, 6> kSuffixes{"", "", "Z", " Z", "Z", " Z"};
    const bool multi = form == 1 || form >= 4;
    const Keyword& keyword = kKeywords[index];
    const std::string_view prefix = multi ? kMulti : std::string_view();
    const std::string_view suffix = kSuffixes[form];
    const bool spelled = keyword.text.size() == prefix.size() + core.text.size() + suffix.size() &&
                         keyword.text.substr(0, prefix.size()) == prefix &&
                         keyword.text.substr(prefix.size(), core.text.size()) == core.text &&
                         keyword.text.substr(prefix.size() + core.text.size()) == suffix;
    return spelled && keyword.kind == (multi ? multiKind(kind) : kind) &&
           keyword.coordinates == (form >= 2 ? 3 : 2) &&
           keyword.parentheses == parentheses + (multi && kind != Kind::point ? 1 : 0);
}

// Every keyword but the collection is exactly one form of one core, and within a core the
// longer forms come later in the table (the last keyword found wins, so "MULTIPOINT Z"
// must beat the "POINT", "MULTIPOINT" and "POINT Z" it contains).
constexpr bool coresCoverTheTable() {
    constexpr std::array<Kind, 3> kKinds{Kind::point, Kind::line, Kind::polygon};
    constexpr std::array<int, 3> kParentheses{1, 1, 2};
    std::array<int, kKeywords.size()> uses{};
    for (std::size_t c = 0; c < kCores.size(); ++c) {
        const Core& core = kCores[c];
        for (std::size_t form = 0; form < core.forms.size(); ++form) {
            const std::size_t index = core.forms[form];
            if (index >= kKeywords.size() || index == kCollectionIndex) return false;
            if (!isForm(core, kKinds[c], kParentheses[c], form, index)) return false;
            ++uses[index];
        }
        const auto& f = core.forms;
        if (!(f[0] < f[1] && f[0] < f[2] && f[2] < f[3] && f[1] < f[4] && f[4] < f[5] &&
              f[3] < f[5] && f[2] < f[4]))
            return false;
    }
    for (std::size_t index = 0; index < uses.size(); ++index) {
        if (uses[index] != (index == kCollectionIndex ? 0 : 1)) return false;
    }
    return true;
}

static_assert(kKeywords[kCollectionIndex].text == "GEOMETRYCOLLECTION" &&
                  kKeywords[kCollectionIndex].kind == Kind::collection,
              "kCollectionIndex names the collection");
static_assert(kKeywords.size() <= 32, "keywordIndex keeps the keywords found in 32 bits");
static_assert(coresCoverTheTable(), "kCores and kKeywords disagree");

constexpr std::string_view kNotRecognised =
    "Parameter input is invalid (WKT Geometry not recognised)";
constexpr std::string_view kBadFormat = "Parameter input is invalid (Bad Format WKT Geometry)";
constexpr std::string_view kDimensions = "Dimensions is not equal point's number (Parse WKTPoint)";
constexpr std::string_view kInvalidItem =
    "Parameter input is invalid (WKT Geometry Collection invalid item)";

constexpr std::string_view kEmpty = "EMPTY";

// Stores the error (code 1 unless given) when the caller asked for it.
void report(ErrorPtr* error, std::string_view description, std::int64_t code = 1) {
    if (error) *error = errorWithDomain(WKTParserErrorDomain, code, description);
}

// report, then the empty pointer of the caller's type.
std::nullptr_t fail(ErrorPtr* error, std::string_view description, std::int64_t code = 1) {
    report(error, description, code);
    return nullptr;
}

// The table index of the recognised keyword, or -1. Every keyword contains one of the cores
// (or is the collection), so finding the cores finds them all; their first letters are rare
// in coordinate text, so each is looked for with memchr.
int keywordIndex(std::string_view text) {
    const auto occurrences = [&](char letter, auto&& visit) {
        const char* const end = text.data() + text.size();
        for (const char* at = text.data(); at < end;) {
            const void* found = std::memchr(at, letter, static_cast<std::size_t>(end - at));
            if (!found) return;
            at = static_cast<const char*>(found);
            visit(static_cast<std::size_t>(at - text.data()));
            ++at;
        }
    };
    bool collection = false;
    occurrences('G', [&](std::size_t at) {
        const std::string_view collectionKeyword = kKeywords[kCollectionIndex].text;
        collection = collection || text.substr(at, collectionKeyword.size()) == collectionKeyword;
    });
    if (collection) return static_cast<int>(kCollectionIndex);

    std::uint32_t found = 0;
    const auto visitCore = [&](const Core& core, std::size_t at) {
        if (text.substr(at, core.text.size()) != core.text) return;
        const bool multi = at >= 5 && text.substr(at - 5, 5) == "MULTI";
        const std::string_view rest = text.substr(at + core.text.size());
        const bool z = !rest.empty() && rest[0] == 'Z';
        const bool spaceZ = rest.size() > 1 && rest[0] == ' ' && rest[1] == 'Z';
        found |= 1u << core.forms[0];
        if (multi) found |= 1u << core.forms[1];
        if (z) found |= 1u << core.forms[2];
        if (spaceZ) found |= 1u << core.forms[3];
        if (multi && z) found |= 1u << core.forms[4];
        if (multi && spaceZ) found |= 1u << core.forms[5];
    };
    occurrences('P', [&](std::size_t at) {
        visitCore(kCores[0], at);
        visitCore(kCores[2], at);
    });
    occurrences('L', [&](std::size_t at) { visitCore(kCores[1], at); });
    return static_cast<int>(std::bit_width(found)) - 1;
}

const Keyword* keywordNamed(std::string_view text) {
    for (const Keyword& keyword : kKeywords) {
        if (keyword.text == text) return &keyword;
    }
    return nullptr;
}

std::optional<std::string_view> stripParentheses(std::string_view body, int levels,
                                                 ErrorPtr* error) {
    const auto size = static_cast<std::size_t>(levels);
    const bool framed =
        body.size() >= 2 * size &&
        body.substr(0, size).find_first_not_of('(') == std::string_view::npos &&
        body.substr(body.size() - size).find_first_not_of(')') == std::string_view::npos;
    if (!framed) {
        report(error, kBadFormat);
        return std::nullopt;
    }
    return body.substr(size, body.size() - 2 * size);
}

// The text without its first and last character, a character counted as the platform's
// strings count them (UTF-16 units): of a character outside the basic plane only one half
// goes, which here leaves a fragment of its bytes behind, as inert as the lone half would be.
std::string_view withoutFirstAndLastCharacter(std::string_view text) {
    if (text.size() < 2) return {};
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    // Bytes of a character starting with this byte, one for a character outside the plane.
    const auto unitBytes = [](unsigned char lead) -> std::size_t {
        if (lead >= 0xE0 && lead < 0xF0) return 3;
        if (lead >= 0xC0 && lead < 0xE0) return 2;
        return 1;
    };
    const std::size_t first = unitBytes(byte(0));
    std::size_t lead = text.size() - 1;
    while (lead > 0 && text.size() - lead < 4 && (byte(lead) & 0xC0) == 0x80) --lead;
    // The last character goes whole when its bytes are complete, else a single byte.
    const std::size_t last = unitBytes(byte(lead)) == text.size() - lead ? text.size() - lead : 1;
    if (first + last >= text.size()) return {};
    return text.substr(first, text.size() - first - last);
}

// The pieces of a point as the spaces splitter cuts them (at white space and markers), each
// read leniently as a number: the values of the first three, and how many pieces there are,
// counting no further than four. The number is read first, so that the usual piece, which is
// nothing but its number, is passed over once.
int readCoordinates(std::string_view text, std::array<double, 3>& coordinates) {
    using wkt_internal::kMarker;
    using wkt_internal::markerAt;
    using wkt_internal::whitespaceLength;
    int count = 0;
    std::size_t at = 0;
    for (;;) {
        while (at < text.size()) {
            if (const std::size_t length = whitespaceLength(text, at)) {
                at += length;
            } else if (text[at] == '[' && markerAt(text, at)) {
                at += kMarker.size();
            } else {
                break;
            }
        }
        if (at >= text.size()) return count;
        if (count == 3) return 4;
        const std::size_t pieceStart = at;
        std::size_t numberEnd = at;
        const double value = wkt_internal::readLenientDouble(text, numberEnd);
        coordinates[static_cast<std::size_t>(count++)] = value;
        at = numberEnd > pieceStart ? numberEnd : pieceStart + 1;
        while (at < text.size() && !whitespaceLength(text, at) &&
               !(text[at] == '[' && markerAt(text, at))) {
            ++at;
        }
    }
}

template <class Member>
bool sameDimensions(const std::vector<std::shared_ptr<Member>>& members) {
    for (const auto& member : members) {
        if (member->dimensions() != members.front()->dimensions()) return false;
    }
    return true;
}

// Parses every piece of text with parse, collecting the members; stops at the first error.
template <class Member, class Parse>
std::optional<std::vector<std::shared_ptr<Member>>> parseMembers(std::string_view text,
                                                                 Splitter splitter, Parse&& parse) {
    std::vector<std::shared_ptr<Member>> members;
    members.reserve(16);
    const bool complete = forEachPiece(text, splitter, [&](std::string_view piece) {
        auto member = parse(piece);
        if (!member) return false;
        members.push_back(std::move(member));
        return true;
    });
    if (!complete) return std::nullopt;
    return members;
}

// Builds the list geometry from members of equal dimensions; mixed ones are a format error.
template <class Geometry, class Member>
std::shared_ptr<Geometry> assemble(std::optional<std::vector<std::shared_ptr<Member>>> members,
                                   ErrorPtr* error) {
    if (!members) return nullptr;
    if (!sameDimensions(*members)) return fail(error, kBadFormat);
    return std::make_shared<Geometry>(std::move(*members));
}

// The reference-system name from the text as received, given how many bytes the IRI
// removal took from it. Lengths and the dropped character are counted in UTF-16 units, as
// the platform's strings count them. Absent when the IRI has fewer than three path pieces.
std::optional<std::string> referenceSystemName(std::string_view text, std::size_t removedFrom,
                                               std::size_t removedTo) {
    const icu::UnicodeString whole =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), text.size()));
    const icu::UnicodeString removed = icu::UnicodeString::fromUTF8(icu::StringPiece(
        text.data() + removedFrom, static_cast<std::int32_t>(removedTo - removedFrom)));
    icu::UnicodeString prefix(whole, 0, removed.length());
    prefix.truncate(prefix.length() > 0 ? prefix.length() - 1 : 0);
    std::string rest;
    prefix.toUTF8String(rest);
    const std::string base = "<" + std::string(WKTCRSIRIBase);
    for (std::size_t at = rest.find(base); at != std::string::npos; at = rest.find(base, at))
        rest.erase(at, base.size());

    std::vector<std::string_view> pieces;
    std::string_view remaining = rest;
    for (std::size_t slash = remaining.find('/'); slash != std::string_view::npos;
         slash = remaining.find('/')) {
        pieces.push_back(remaining.substr(0, slash));
        remaining.remove_prefix(slash + 1);
    }
    pieces.push_back(remaining);
    if (pieces.size() < 3) return std::nullopt;
    if (pieces[2] == WKTDefaultGis) return std::string(WKTDefaultGis);
    return std::string(pieces[0]) + " " + std::string(pieces[2]);
}

// One text made ready for its member parser: the keyword, the reference system and the body
// without keyword and parentheses. The body may view into the strings held here, so a
// Prepared stays where it was made.
struct Prepared {
    const Keyword* keyword = nullptr;
    std::string gis;
    std::string_view body;
    std::string withoutIRI;
    std::string withoutKeyword;

    Prepared() = default;
    Prepared(const Prepared&) = delete;
    Prepared& operator=(const Prepared&) = delete;
};

// Removes every occurrence of the keyword with the white space after it.
std::string_view removeKeyword(std::string_view text, std::string_view keyword,
                               std::string& storage) {
    const std::size_t first = text.find(keyword);
    if (first == std::string_view::npos) return text;
    const std::size_t firstEnd =
        first + keyword.size() + wkt_internal::whitespaceRunLength(text, first + keyword.size());
    if (first == 0 && text.find(keyword, firstEnd) == std::string_view::npos)
        return text.substr(firstEnd);
    storage.reserve(text.size());
    std::size_t copied = 0;
    for (std::size_t at = first; at != std::string_view::npos; at = text.find(keyword, copied)) {
        storage.append(text.substr(copied, at - copied));
        copied = at + keyword.size() + wkt_internal::whitespaceRunLength(text, at + keyword.size());
    }
    storage.append(text.substr(copied));
    return storage;
}

bool prepare(std::string_view text, Prepared& prepared, ErrorPtr* error) {
    const int index = keywordIndex(text);
    if (index < 0) {
        report(error, kNotRecognised);
        return false;
    }
    prepared.keyword = &kKeywords[static_cast<std::size_t>(index)];

    std::string_view withoutIRI = text;
    const std::size_t open = text.find('<');
    const std::size_t close = text.rfind('>');
    if (open != std::string_view::npos && close != std::string_view::npos && close > open) {
        const std::size_t end = close + 1 + wkt_internal::whitespaceRunLength(text, close + 1);
        auto gis = referenceSystemName(text, open, end);
        if (!gis) {
            report(error, kBadFormat);
            return false;
        }
        prepared.gis = std::move(*gis);
        prepared.withoutIRI.reserve(text.size() - (end - open));
        prepared.withoutIRI.append(text.substr(0, open)).append(text.substr(end));
        withoutIRI = prepared.withoutIRI;
    } else {
        prepared.gis = WKTDefaultGis;
    }

    const std::string_view stripped =
        removeKeyword(withoutIRI, prepared.keyword->text, prepared.withoutKeyword);
    const auto body = stripParentheses(stripped, prepared.keyword->parentheses, error);
    if (!body) return false;
    prepared.body = *body;
    return true;
}

WKTGeometryPtr parseBody(const Prepared& prepared, ErrorPtr* error) {
    const std::string_view body = prepared.body;
    const int dimensions = prepared.keyword->coordinates;
    switch (prepared.keyword->kind) {
        case Kind::point:
            return WKTParser::parsePoint(body, dimensions, error);
        case Kind::multiPoint:
            return WKTParser::parseMultiPoint(body, dimensions, error);
        case Kind::line:
            return WKTParser::parseLine(body, dimensions, error);
        case Kind::multiLine:
            return WKTParser::parseMultiLine(body, dimensions, error);
        case Kind::polygon:
            return WKTParser::parsePolygon(body, dimensions, error);
        case Kind::multiPolygon:
            return WKTParser::parseMultiPolygon(body, dimensions, error);
        case Kind::collection:
            break;
    }
    return nullptr;
}

// A geometry that is not a collection, with its reference system.
WKTGeometryPtr parseSimple(Prepared& prepared, ErrorPtr* error) {
    WKTGeometryPtr geometry = parseBody(prepared, error);
    if (geometry) geometry->setGis(std::move(prepared.gis));
    return geometry;
}

}  // namespace

WKTGeometryPtr WKTParser::parseGeometry(std::optional<std::string_view> input) {
    return parseGeometry(input, nullptr);
}

// A collection member that is itself a collection always ends in an error: its own, or the
// invalid-item error once it has been read. So nested collections are followed as a chain,
// one level after the other, instead of by recursion whose depth the text would choose.
WKTGeometryPtr WKTParser::parseGeometry(std::optional<std::string_view> input, ErrorPtr* error) {
    if (!input) return fail(error, "Parameter input is nil", 2);
    std::string_view text = *input;
    std::string nestedText;
    bool nested = false;
    for (;;) {
        Prepared prepared;
        if (!prepare(text, prepared, error)) return nullptr;
        if (prepared.keyword->kind != Kind::collection) return parseSimple(prepared, error);

        auto collection = std::make_shared<WKTGeometryCollection>();
        std::optional<std::string_view> nestedCollection;
        const bool complete =
            forEachPiece(prepared.body, Splitter::commas, [&](std::string_view piece) {
                if (keywordIndex(piece) == static_cast<int>(kCollectionIndex)) {
                    nestedCollection = piece;
                    return false;
                }
                Prepared member;
                if (!prepare(piece, member, error)) return false;
                WKTGeometryPtr geometry = parseSimple(member, error);
                if (!geometry) return false;
                collection->addGeometry(geometry);
                return true;
            });
        if (nestedCollection) {
            std::string next(*nestedCollection);
            nestedText.swap(next);
            text = nestedText;
            nested = true;
            continue;
        }
        if (!complete) return nullptr;
        if (nested) return fail(error, kInvalidItem);
        collection->setGis(std::move(prepared.gis));
        return collection;
    }
}

std::optional<std::string_view> WKTParser::checkTypeWKT(std::string_view input) {
    const int index = keywordIndex(input);
    if (index < 0) return std::nullopt;
    return kKeywords[static_cast<std::size_t>(index)].text;
}

std::optional<std::string_view> WKTParser::cleanParents(std::string_view input,
                                                        std::string_view typeGeometry,
                                                        ErrorPtr* error) {
    const Keyword* keyword = keywordNamed(typeGeometry);
    if (!keyword) return std::nullopt;
    return stripParentheses(input, keyword->parentheses, error);
}

WKTPointPtr WKTParser::parsePoint(std::string_view input, int dimensions, ErrorPtr* error) {
    if (input == kEmpty) return std::make_shared<WKTPoint>();
    std::array<double, 3> coordinates{};
    const int count = readCoordinates(input, coordinates);
    if ((dimensions != 2 && dimensions != 3) || count != dimensions)
        return fail(error, kDimensions);
    if (dimensions == 2) return std::make_shared<WKTPoint>(coordinates[0], coordinates[1]);
    return std::make_shared<WKTPoint>(coordinates[0], coordinates[1], coordinates[2]);
}

WKTPointMPtr WKTParser::parseMultiPoint(std::string_view input, int dimensions, ErrorPtr* error) {
    if (input == kEmpty) return std::make_shared<WKTPointM>();
    int groups = 0;
    forEachPiece(input, Splitter::parentCommas, [&](std::string_view) { return ++groups < 2; });
    const auto parsePiece = [&](std::string_view piece) {
        return parsePoint(piece, dimensions, error);
    };
    if (groups < 2)
        return assemble<WKTPointM>(parseMembers<WKTPoint>(input, Splitter::commas, parsePiece),
                                   error);
    return assemble<WKTPointM>(parseMembers<WKTPoint>(withoutFirstAndLastCharacter(input),
                                                      Splitter::parentCommas, parsePiece),
                               error);
}

WKTLinePtr WKTParser::parseLine(std::string_view input, int dimensions, ErrorPtr* error) {
    if (input == kEmpty) return std::make_shared<WKTLine>();
    const auto parsePiece = [&](std::string_view piece) {
        return parsePoint(piece, dimensions, error);
    };
    return assemble<WKTLine>(parseMembers<WKTPoint>(input, Splitter::commas, parsePiece), error);
}

WKTLineMPtr WKTParser::parseMultiLine(std::string_view input, int dimensions, ErrorPtr* error) {
    if (input == kEmpty) return std::make_shared<WKTLineM>();
    const auto parsePiece = [&](std::string_view piece) {
        return parseLine(piece, dimensions, error);
    };
    return assemble<WKTLineM>(parseMembers<WKTLine>(input, Splitter::parentCommas, parsePiece),
                              error);
}

WKTPolygonPtr WKTParser::parsePolygon(std::string_view input, int dimensions, ErrorPtr* error) {
    if (input == kEmpty) return std::make_shared<WKTPolygon>();
    const auto parsePiece = [&](std::string_view piece) {
        return parseMultiPoint(piece, dimensions, error);
    };
    return assemble<WKTPolygon>(parseMembers<WKTPointM>(input, Splitter::parentCommas, parsePiece),
                                error);
}

WKTPolygonMPtr WKTParser::parseMultiPolygon(std::string_view input, int dimensions,
                                            ErrorPtr* error) {
    if (input == kEmpty) return std::make_shared<WKTPolygonM>();
    const auto parsePiece = [&](std::string_view piece) {
        return parsePolygon(piece, dimensions, error);
    };
    return assemble<WKTPolygonM>(
        parseMembers<WKTPolygon>(input, Splitter::doubleParentCommas, parsePiece), error);
}

}  // namespace vn
