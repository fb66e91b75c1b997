#include "testing/CapturingLogListener.h"
#include "testing/ScopedProcessState.h"
#include "vn/wkt/WKTParser.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <limits>
#include <mutex>
#include <random>
#include <string>
#include <vector>

#include "vn/log/VNLog.h"
#include "vn/platform/ExecutionEnvironment.h"
#include "vn/wkt/WKTString.h"

namespace vn {
namespace {

constexpr const char* kNotRecognised = "Parameter input is invalid (WKT Geometry not recognised)";
constexpr const char* kBadFormat = "Parameter input is invalid (Bad Format WKT Geometry)";
constexpr const char* kDimensions = "Dimensions is not equal point's number (Parse WKTPoint)";
constexpr const char* kInvalidItem =
    "Parameter input is invalid (WKT Geometry Collection invalid item)";

// The parts of a text between "|".
std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == '|') {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

// In developer mode the parser's texts reach the errors themselves.
class WKTParserTest : public ::testing::Test {
  protected:
    void SetUp() override { VNUtilities::setShowDeveloperInfo(true); }

    testing::ScopedProcessState state;

    // "<class> <gis> <WKT>" of the result, or "error <code> <text>".
    static std::string outcome(std::string_view text) {
        ErrorPtr error;
        const WKTGeometryPtr geometry = WKTParser::parseGeometry(text, &error);
        if (geometry) {
            EXPECT_EQ(error, nullptr);
            return geometry->className() + " " + geometry->gis() + " " + geometry->toWKT();
        }
        if (!error) return "no geometry and no error";
        EXPECT_EQ(error->domain(), "wkt.parser");
        return "error " + std::to_string(error->code()) + " " +
               error->userInfoLocalizedDescription().value_or("?");
    }
};

TEST_F(WKTParserTest, ReadsEveryKindOfGeometry) {
    struct Case {
        const char* text;
        std::string expected;
    };
    const std::string err = std::string("error 1 ");
    const Case cases[] = {
        {"POINT(1 2)", "WKTPoint CRS84 POINT (1.000000 2.000000)"},
        {"POINT Z(1 2 3)", "WKTPoint CRS84 POINTZ (1.000000 2.000000 3.000000)"},
        {"POINTZ(1 2 3)", "WKTPoint CRS84 POINTZ (1.000000 2.000000 3.000000)"},
        {"POINT( -1.5e1\t2 )", "WKTPoint CRS84 POINT (-15.000000 2.000000)"},
        {"POINT (EMPTY)", "WKTPoint CRS84 POINT EMPTY"},
        {"MULTIPOINT(1 2, 3 4)",
         "WKTPointM CRS84 MULTIPOINT (1.000000 2.000000, 3.000000 4.000000)"},
        {"MULTIPOINT((1 2), (3 4))",
         "WKTPointM CRS84 MULTIPOINT (1.000000 2.000000, 3.000000 4.000000)"},
        // One parenthesised point is not a group list: its "(1" reads as 0.
        {"MULTIPOINT((1 2))", "WKTPointM CRS84 MULTIPOINT (0.000000 2.000000)"},
        {"MULTIPOINT Z(1 2 3)", "WKTPointM CRS84 MULTIPOINTZ (1.000000 2.000000 3.000000)"},
        // Group lists lose their first and last character as the platform counts characters:
        // a whole one, or half of one outside the basic plane, which then stays as a piece.
        {"MULTIPOINT((1 2), (3 4 \u00E9)",
         "WKTPointM CRS84 MULTIPOINT (1.000000 2.000000, 3.000000 4.000000)"},
        {"MULTIPOINT((1 2), (3 4 \U0001F600)", err + kDimensions},
        {"LINESTRING(1 2, 3 4)", "WKTLine CRS84 LINESTRING (1.000000 2.000000, 3.000000 4.000000)"},
        {"LINESTRING()", "WKTLine CRS84 LINESTRING EMPTY"},
        {"MULTILINESTRING((1 2, 3 4), (5 6))",
         "WKTLineM CRS84 MULTILINESTRING ((1.000000 2.000000, 3.000000 4.000000), (5.000000 "
         "6.000000))"},
        {"MULTILINESTRING((EMPTY))", "WKTLineM CRS84 MULTILINESTRING EMPTY"},
        {"POLYGON((0 0, 1 0, 1 1, 0 0), (0.2 0.2, 0.3 0.3, 0.2 0.2))",
         "WKTPolygon CRS84 POLYGON ((0.000000 0.000000, 1.000000 0.000000, 1.000000 1.000000, "
         "0.000000 0.000000), "
         "(0.200000 0.200000, 0.300000 0.300000, 0.200000 0.200000))"},
        {"POLYGON Z((0 0 1, 1 0 1, 0 0 1))",
         "WKTPolygon CRS84 POLYGONZ ((0.000000 0.000000 1.000000, 1.000000 0.000000 1.000000, "
         "0.000000 0.000000 "
         "1.000000))"},
        {"POLYGON((EMPTY))", "WKTPolygon CRS84 POLYGON EMPTY"},
        {"MULTIPOLYGON(((0 0, 1 0, 0 0)), ((5 5, 6 5, 5 5), (5.5 5.1, 5.6 5.1, 5.5 5.1)))",
         "WKTPolygonM CRS84 MULTIPOLYGON (((0.000000 0.000000, 1.000000 0.000000, 0.000000 "
         "0.000000)), "
         "((5.000000 5.000000, 6.000000 5.000000, 5.000000 5.000000), "
         "(5.500000 5.100000, 5.600000 5.100000, 5.500000 5.100000)))"},
        {"GEOMETRYCOLLECTION(POINT(1 2), POINT(3 4))",
         "WKTGeometryCollection CRS84 GEOMETRYCOLLECTION(POINT (1.000000 2.000000), POINT "
         "(3.000000 4.000000))"},
        {"GEOMETRYCOLLECTION()", "WKTGeometryCollection CRS84 GEOMETRYCOLLECTION()"},
        {"POINT(1 2 3)", err + kDimensions},
        {"POINT()", err + kDimensions},
        {"point(1 2)", err + kNotRecognised},
        {"", err + kNotRecognised},
        {"POINT 1 2", err + kBadFormat},
        {"POINT EMPTY", err + kBadFormat},
        {" POINT(1 2)", err + kBadFormat},        // the blank stays before the parenthesis
        {"POINT  Z(1 2 3)", err + kBadFormat},    // two blanks: keyword POINT, body "Z(...)"
        {"POLYGON(0 0, 1 1)", err + kBadFormat},  // one level instead of two
        {"MULTIPOLYGON((0 0, 1 1))", err + kBadFormat},
        {"LINESTRING(1 2, EMPTY)", err + kBadFormat},  // an empty member among others
        {"GEOMETRYCOLLECTION(LINESTRING(1 2, 3 4))", err + kBadFormat},
        {"GEOMETRYCOLLECTION(POINT(1 2), point(3 4), POINT(1))",
         err + kNotRecognised},  // the first error wins
        {"GEOMETRYCOLLECTION(EMPTY)", err + kNotRecognised},
    };
    for (const Case& c : cases) EXPECT_EQ(outcome(c.text), c.expected) << c.text;
}

TEST_F(WKTParserTest, RecognisesTheLastKeywordInTableOrder) {
    static const char* const kTable[] = {
        "POINT",        "MULTIPOINT",    "LINESTRING",       "MULTILINESTRING",    "POLYGON",
        "MULTIPOLYGON", "POINTZ",        "POINT Z",          "MULTIPOINTZ",        "MULTIPOINT Z",
        "LINESTRINGZ",  "LINESTRING Z",  "MULTILINESTRINGZ", "MULTILINESTRING Z",  "POLYGONZ",
        "POLYGON Z",    "MULTIPOLYGONZ", "MULTIPOLYGON Z",   "GEOMETRYCOLLECTION",
    };
    const auto naive = [](const std::string& text) -> std::optional<std::string_view> {
        std::optional<std::string_view> found;
        for (const char* keyword : kTable) {
            if (text.find(keyword) != std::string::npos) found = keyword;
        }
        return found;
    };
    // Pieces of keywords, and the characters that stand around keywords in texts.
    const std::vector<std::string> fragments = split(
        "POINT|LINESTRING|POLYGON|MULTI|MULT|Z| Z| |(|1 "
        "2|GEOMETRYCOLLECTION|GEOMETRYCOLLECTIO|POIN|LINE|POLY|GON|point|"
        "\u00A0Z");
    std::mt19937 random(7);
    std::uniform_int_distribution<std::size_t> pick(0, fragments.size() - 1);
    std::uniform_int_distribution<int> count(0, 6);
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        for (int n = count(random); n > 0; --n) text += fragments[pick(random)];
        ASSERT_EQ(WKTParser::checkTypeWKT(text), naive(text)) << text;
    }
    EXPECT_EQ(WKTParser::checkTypeWKT("MULTIPOLYGON Z (((1 2 3)))"), "MULTIPOLYGON Z");
    EXPECT_EQ(WKTParser::checkTypeWKT("POINT(1 2) GEOMETRYCOLLECTION"), "GEOMETRYCOLLECTION");
}

TEST_F(WKTParserTest, TakesTheReferenceSystemFromALeadingIRI) {
    const std::string base = "<http://www.opengis.net/def/crs/";
    struct Case {
        std::string text;
        std::string expected;
    };
    const Case cases[] = {
        {base + "OGC/1.3/CRS84>POINT(1 2)", "WKTPoint CRS84 POINT (1.000000 2.000000)"},
        {base + "EPSG/0/4326>POINT(1 2)", "WKTPoint EPSG 4326 POINT (1.000000 2.000000)"},
        // One character after the IRI goes with it: with a blank there, the ">" stays.
        {base + "EPSG/0/4326> POINT(1 2)", "WKTPoint EPSG 4326> POINT (1.000000 2.000000)"},
        {base + "OGC/1.3/CRS84> POINT(1 2)", "WKTPoint OGC CRS84> POINT (1.000000 2.000000)"},
        // Characters are counted as the platform counts them (UTF-16 units), not as bytes.
        {base + "\u00C9PSG/0/4326>POINT(1 2)", "WKTPoint \u00C9PSG 4326 POINT (1.000000 2.000000)"},
        {base + "\U0001F5FA/0/4326>POINT(1 2)",
         "WKTPoint \U0001F5FA 4326 POINT (1.000000 2.000000)"},
        {base + "EPSG/0/3857>LINESTRING(1 2, 3 4)",
         "WKTLine EPSG 3857 LINESTRING (1.000000 2.000000, 3.000000 4.000000)"},
        // Fewer than three path pieces: a format error, not a crash.
        {"<urn:x>POINT(1 2)", std::string("error 1 ") + kBadFormat},
        {"POINT(1 2)" + base + "EPSG/0/4326>", std::string("error 1 ") + kBadFormat},
        // From the first "<" to the last ">".
        {"<a/b/c><d/e/f>POINT(1 2)", "WKTPoint <a c><d POINT (1.000000 2.000000)"},
        {"<a/b/c>POINT(1 2)<d>", std::string("error 1 ") + kBadFormat},
        // The name comes from the start of the text, wherever the IRI was: here from
        // "GEOMETRYCOLLECTION(<http://www.opengis.net/" less its last character.
        {"GEOMETRYCOLLECTION(" + base + "EPSG/0/4326>POINT(1 2))",
         "WKTGeometryCollection GEOMETRYCOLLECTION(<http: www.opengis.net GEOMETRYCOLLECTION(POINT "
         "(1.000000 "
         "2.000000))"},
        // A lone "<" or a ">" before the "<" is no IRI.
        {"POINT(1 2)<", std::string("error 1 ") + kBadFormat},
        {"> <POINT(1 2)", std::string("error 1 ") + kBadFormat},
    };
    for (const Case& c : cases) EXPECT_EQ(outcome(c.text), c.expected) << c.text;
    // Members of a collection carry the system of their own text, which has lost its IRI.
    const auto collection = std::dynamic_pointer_cast<WKTGeometryCollection>(
        WKTParser::parseGeometry(base + "EPSG/0/4326>GEOMETRYCOLLECTION(POINT(1 2), POINT(3 4))"));
    ASSERT_TRUE(collection);
    EXPECT_EQ(collection->gis(), "EPSG 4326");
    ASSERT_EQ(collection->getGeometries().size(), 2u);
    EXPECT_EQ(collection->getGeometries()[0]->gis(), "CRS84");
}

TEST_F(WKTParserTest, StripsTheParenthesesOfEachLevel) {
    ErrorPtr error;
    EXPECT_EQ(WKTParser::cleanParents("()", "GEOMETRYCOLLECTION", &error), "");
    EXPECT_EQ(WKTParser::cleanParents("((1 2), (3 4))", "POLYGON Z", &error), "1 2), (3 4");
    EXPECT_EQ(WKTParser::cleanParents("(((1 2)))", "MULTIPOLYGON", &error), "1 2");
    EXPECT_EQ(WKTParser::cleanParents("(1 2)", "CIRCLE", &error),
              std::nullopt);  // no keyword, no error
    EXPECT_EQ(error, nullptr);
    for (const auto& [body, keyword] :
         std::vector<std::pair<std::string, std::string>>{{"", "POINT"},
                                                          {"(", "POINT"},
                                                          {"", "POLYGON"},
                                                          {"(1 2)", "MULTILINESTRING"},
                                                          {"(((1 2))", "MULTIPOLYGON"}}) {
        error = nullptr;
        EXPECT_EQ(WKTParser::cleanParents(body, keyword, &error), std::nullopt) << body;
        ASSERT_TRUE(error) << body;
        EXPECT_EQ(error->userInfoLocalizedDescription(), kBadFormat);
    }
}

// A point's coordinates are the pieces the spaces splitter gives, each read as the C library
// reads the number that starts it (the alphabet has no hexadecimal, infinity or NaN forms).
TEST_F(WKTParserTest, PointCoordinatesAreTheSpaceSeparatedPieces) {
    static const std::vector<std::string> fragments = {
        // numbers and what is not quite one
        "1", "-2.5", "+.5", "7e3", "1e-2", "e", "-", ".", "0", "99999999999999999999", "1.2.3",
        "abc", "1e400",
        // separators and other characters
        "(", ",", " ", "  ", "\t", "\n", "\u00A0", "\u2003", "\u3000", "\u00E9", "[SPLIT]", "["};
    std::mt19937 random(3);
    std::uniform_int_distribution<std::size_t> pick(0, fragments.size() - 1);
    std::uniform_int_distribution<int> count(0, 7);
    for (int i = 0; i < 20000; ++i) {
        std::string text;
        for (int n = count(random); n > 0; --n) text += fragments[pick(random)];
        if (text == "EMPTY") continue;
        const std::vector<std::string> pieces = WKTString::splitSpacesNSString(text);
        for (const int dimensions : {2, 3}) {
            ErrorPtr error;
            const WKTPointPtr point = WKTParser::parsePoint(text, dimensions, &error);
            ASSERT_EQ(point != nullptr, pieces.size() == static_cast<std::size_t>(dimensions))
                << text;
            if (!point) continue;
            const double read[] = {point->dimensionX(), point->dimensionY(), point->dimensionZ()};
            for (int k = 0; k < dimensions; ++k) {
                const std::string& piece = pieces[static_cast<std::size_t>(k)];
                const bool number =
                    piece.find_first_of("0123456789") != std::string::npos &&
                    (std::isdigit(static_cast<unsigned char>(piece[0])) ||
                     ((piece[0] == '+' || piece[0] == '-' || piece[0] == '.') && piece.size() > 1 &&
                      (std::isdigit(static_cast<unsigned char>(piece[1])) ||
                       (piece[1] == '.' && piece.size() > 2 &&
                        std::isdigit(static_cast<unsigned char>(piece[2]))))));
                const double expected = number ? std::strtod(piece.c_str(), nullptr) : 0.0;
                ASSERT_EQ(read[k], expected) << "piece \"" << piece << "\" of \"" << text << "\"";
            }
        }
    }
    ErrorPtr error;
    EXPECT_EQ(WKTParser::parsePoint("0x10 1", 2, &error)->dimensionX(), 0);  // no hexadecimal
    EXPECT_EQ(WKTParser::parsePoint("1 2 3 4", 4, &error), nullptr);         // only 2 or 3
    EXPECT_EQ(error->userInfoLocalizedDescription(), kDimensions);
}

TEST_F(WKTParserTest, NestedCollectionsAreInvalidItems) {
    // Every "GEOMETRYCOLLECTION" is removed from the text before its body is read, so a nested
    // one only survives when the removal joins it together: GEOMETRYCOLLE + (removed) + CTION.
    const std::string keyword = "GEOMETRYCOLLECTION";
    const auto encode = [&](const std::string& text) {
        std::string encoded;
        for (std::size_t at = 0; at < text.size();) {
            if (text.compare(at, keyword.size(), keyword) == 0) {
                encoded += "GEOMETRYCOLLE" + keyword + "CTION";
                at += keyword.size();
            } else {
                encoded += text[at++];
            }
        }
        return encoded;
    };
    std::string nested = keyword + "()";
    EXPECT_EQ(outcome(nested), "WKTGeometryCollection CRS84 GEOMETRYCOLLECTION()");
    for (int depth = 1; depth <= 60; ++depth) {
        nested = keyword + "(" + encode(nested) + ")";
        if (depth <= 3) {
            EXPECT_EQ(outcome(nested), std::string("error 1 ") + kInvalidItem) << nested;
        }
    }
    EXPECT_EQ(outcome(nested), std::string("error 1 ") + kInvalidItem);
    // When the innermost collection fails, its own error comes back.
    EXPECT_EQ(outcome(keyword + "(" + encode(keyword + "(POINT(1))") + ")"),
              std::string("error 1 ") + kDimensions);
}

TEST_F(WKTParserTest, MissingInputIsErrorCodeTwo) {
    ErrorPtr error;
    EXPECT_EQ(WKTParser::parseGeometry(std::nullopt, &error), nullptr);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), "wkt.parser");
    EXPECT_EQ(error->code(), 2);
    EXPECT_EQ(error->userInfoLocalizedDescription(), "Parameter input is nil");
    EXPECT_EQ(WKTParser::parseGeometry(std::nullopt), nullptr);
    EXPECT_EQ(WKTParser::parseGeometry("POINT(1)"), nullptr);
    EXPECT_EQ(WKTParser::parseGeometry("POINT(1 2)", nullptr)->toWKT(),
              "POINT (1.000000 2.000000)");
}

// Valid texts, then each mutated many times: cut short, characters dropped, doubled or
// replaced by structural characters, huge or odd numbers, non-ASCII and invalid UTF-8 bytes.
TEST_F(WKTParserTest, EveryTextGivesAGeometryOrAParserError) {
    const std::vector<std::string> seeds = {
        "POINT(1 2)",
        "POINT Z (1 2 3)",
        "MULTIPOINT((1 2), (3 4))",
        "MULTIPOINT Z(1 2 3, 4 5 6)",
        "LINESTRING(1 2, 3 4, 5 6)",
        "MULTILINESTRING((1 2, 3 4), (5 6, 7 8))",
        "POLYGON((0 0, 1 0, 1 1, 0 0), (0.2 0.2, 0.3 0.3, 0.2 0.2))",
        "MULTIPOLYGON(((0 0, 1 0, 0 0)), ((5 5, 6 5, 5 5), (5.1 5.1, 5.2 5.1, 5.1 5.1)))",
        "GEOMETRYCOLLECTION(POINT(1 2), POINT Z(3 4 5))",
        "<http://www.opengis.net/def/crs/EPSG/0/4326>POLYGON((EMPTY))",
    };
    const std::vector<std::string> inserts = {
        // structure
        "(", ")", ",", " ", "((", "))", "), (", ")), ((", "EMPTY", "Z", " Z", "POINT", "MULTI", "<",
        ">", "GEOMETRYCOLLECTION", "[SPLIT]",
        // numbers
        "1e999999", "-1e-999999", "123456789012345678901234567890", ".", "-", "nan",
        // non-ASCII, invalid UTF-8 and a NUL
        "\u00A0", "\u3000", "\U0001F600", "\xFF", "\xC2", "\xE2\x80", std::string(1, '\0')};
    std::mt19937 random(99);
    const auto below = [&](std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
    };
    std::size_t geometries = 0;
    std::size_t errors = 0;
    for (int i = 0; i < 6000; ++i) {
        std::string text = seeds[below(seeds.size())];
        for (std::size_t mutations = 1 + below(4); mutations > 0; --mutations) {
            const std::size_t at = text.empty() ? 0 : below(text.size() + 1);
            switch (below(5)) {
                case 0:
                    text.resize(at);
                    break;
                case 1:
                    if (at < text.size()) text.erase(at, 1 + below(3));
                    break;
                case 2:
                    text.insert(at, inserts[below(inserts.size())]);
                    break;
                case 3:
                    text.insert(at, text.substr(at, below(12)));
                    break;
                default:
                    if (at < text.size()) text[at] = "(), Z0.E-"[below(9)];
                    break;
            }
        }
        ErrorPtr error;
        WKTGeometryPtr geometry;
        ASSERT_NO_THROW(geometry = WKTParser::parseGeometry(text, &error)) << text;
        ASSERT_NE(geometry == nullptr, error == nullptr) << text;
        if (geometry) {
            ++geometries;
            EXPECT_NO_THROW(geometry->toWKT()) << text;
        } else {
            ++errors;
            EXPECT_EQ(error->domain(), "wkt.parser") << text;
            EXPECT_EQ(error->code(), 1) << text;
        }
    }
    // The mutations reach both outcomes in numbers.
    EXPECT_GT(geometries, 500u);
    EXPECT_GT(errors, 500u);
}

TEST(WKTParser, OutsideDeveloperModeTheTextGoesToTheLogOnly) {
    const testing::ScopedProcessState state;
    const auto listener = std::make_shared<testing::CapturingLogListener>();
    VNLog::addListener(listener);
    ErrorPtr error;
    EXPECT_EQ(WKTParser::parseGeometry("CIRCLE(1 2)", &error), nullptr);
    VNLog::removeListener(listener);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), "wkt.parser");
    EXPECT_EQ(error->code(), 1);
    EXPECT_FALSE(error->hasUserInfoLocalizedDescription());
    const auto messages = listener->messages();
    ASSERT_FALSE(messages.empty());
    EXPECT_NE(messages.back().find(std::string("ERROR: ") + kNotRecognised), std::string::npos)
        << messages.back();
}

}  // namespace
}  // namespace vn
