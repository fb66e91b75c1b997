// WKTParser: reads geometry written as Well-Known Text into the WKT geometry values.
//
// The reading is deliberately simple and keeps these rules, which callers rely on:
// - The kind is recognised by plain, case-sensitive substring search over the keywords
//   POINT, MULTIPOINT, LINESTRING, MULTILINESTRING, POLYGON, MULTIPOLYGON, their forms with
//   "Z" and " Z" appended (3 coordinates per point), and GEOMETRYCOLLECTION; the last of them
//   in that order that occurs wins, so any text containing GEOMETRYCOLLECTION is a collection.
// - A reference-system IRI in angle brackets may come first:
//   "<http://www.opengis.net/def/crs/EPSG/0/4326>POINT(1 2)" gives gis "EPSG 4326", an IRI
//   ending in .../CRS84 gives "CRS84", no IRI gives "CRS84". Everything from the first "<" to
//   the last ">" (and the white space after it) is removed, and the name is read from as many
//   characters at the start of the text, less the last one: so with a blank between the IRI
//   and the keyword the ">" stays on the code ("EPSG 4326>", and a CRS84 IRI is not
//   recognised as CRS84). Characters are counted as UTF-16 units.
// - After the keyword (and the white space following it) a fixed number of parentheses is
//   stripped: one for points, multipoints, lines and collections, two for multilines and
//   polygons, three for multipolygons. Empty geometries are written inside them:
//   "POINT (EMPTY)", "POLYGON ((EMPTY))"; "POINT EMPTY" is a format error.
// - Coordinate lists are cut by the splitters of WKTString. Each coordinate is the number that
//   starts its piece (0 when none does). A collection is split at every comma, so it can only
//   hold members whose own text has no comma (points): GEOMETRYCOLLECTION(POINT(1 2),
//   POINT(3 4)) reads, GEOMETRYCOLLECTION(LINESTRING(1 2, 3 4)) is a format error.
// - Ring closure, orientation and point counts are not checked.
//
// Failures are errors of the domain "wkt.parser" (WKTParserErrorDomain):
//   code 2 "Parameter input is nil"                                   no input
//   code 1 "Parameter input is invalid (WKT Geometry not recognised)" no keyword
//   code 1 "Parameter input is invalid (Bad Format WKT Geometry)"     parentheses, IRI, members
//   code 1 "Dimensions is not equal point's number (Parse WKTPoint)"  coordinate count
//   code 1 "Parameter input is invalid (WKT Geometry Collection invalid item)" nested collection
// The first error met wins. The texts reach the error as errorWithDomain (vn/errors) decides:
// in the user information in developer mode, else only in the log; parseGeometry without an
// error parameter makes no error at all. Two cases are format errors so that no text can
// raise: an IRI whose path has fewer than three pieces after the standard base, and members
// of different dimensions (an EMPTY member among others, as in LINESTRING(1 2, EMPTY)), which
// the geometries' own setters would refuse with an exception.
//
// No text makes the parser raise or crash: every answer is a geometry or an error. Class
// methods only; safe from any thread.
#pragma once

#include <optional>
#include <string_view>

#include "vn/platform/Error.h"
#include "vn/wkt/WKTGeometry.h"
#include "vn/wkt/WKTGeometryCollection.h"
#include "vn/wkt/WKTLine.h"
#include "vn/wkt/WKTLineM.h"
#include "vn/wkt/WKTPoint.h"
#include "vn/wkt/WKTPointM.h"
#include "vn/wkt/WKTPolygon.h"
#include "vn/wkt/WKTPolygonM.h"

namespace vn {

inline constexpr std::string_view WKTParserErrorDomain = "wkt.parser";

// The OGC's base of coordinate-reference-system IRIs.
inline constexpr std::string_view WKTCRSIRIBase = "http://www.opengis.net/def/crs/";

class WKTParser {
  public:
    WKTParser() = delete;

    // The geometry, or null on any failure (no error is reported).
    [[nodiscard]] static WKTGeometryPtr parseGeometry(std::optional<std::string_view> input);
    // The geometry, or null with the error stored through error (when error is not null).
    [[nodiscard]] static WKTGeometryPtr parseGeometry(std::optional<std::string_view> input,
                                                      ErrorPtr* error);

    // The recognised keyword ("MULTIPOLYGON Z", "GEOMETRYCOLLECTION", ...), absent when none
    // occurs in the text.
    static std::optional<std::string_view> checkTypeWKT(std::string_view input);

    // The body without the outer parentheses of the keyword's level (a view into input).
    // A failed check stores the format error and gives nothing; a text that is not one of
    // the keywords gives nothing without error.
    static std::optional<std::string_view> cleanParents(std::string_view input,
                                                        std::string_view typeGeometry,
                                                        ErrorPtr* error);

    // Parsers of one body (parentheses already stripped) with 2 or 3 coordinates per point;
    // "EMPTY" gives the empty geometry of the class. Other dimensions than 2 and 3 give the
    // dimensions error.
    [[nodiscard]] static WKTPointPtr parsePoint(std::string_view input, int dimensions,
                                                ErrorPtr* error);
    [[nodiscard]] static WKTPointMPtr parseMultiPoint(std::string_view input, int dimensions,
                                                      ErrorPtr* error);
    [[nodiscard]] static WKTLinePtr parseLine(std::string_view input, int dimensions,
                                              ErrorPtr* error);
    [[nodiscard]] static WKTLineMPtr parseMultiLine(std::string_view input, int dimensions,
                                                    ErrorPtr* error);
    [[nodiscard]] static WKTPolygonPtr parsePolygon(std::string_view input, int dimensions,
                                                    ErrorPtr* error);
    [[nodiscard]] static WKTPolygonMPtr parseMultiPolygon(std::string_view input, int dimensions,
                                                          ErrorPtr* error);
};

}  // namespace vn
