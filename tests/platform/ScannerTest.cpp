#include "vn/platform/Scanner.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <random>
#include <sstream>
#include <string>

#include <locale.h>

#include "testing/ScopedProcessState.h"
#include "vn/platform/Exception.h"

namespace vn {
namespace {

constexpr std::int64_t kInt64Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kInt64Min = std::numeric_limits<std::int64_t>::min();
constexpr std::uint64_t kUInt64Max = std::numeric_limits<std::uint64_t>::max();

TEST(Scanner, ReadsLeadingSignedIntegersAndSaturatesOnOverflow) {
    struct Case {
        std::string text;
        std::optional<std::int64_t> value;
        std::size_t location;  // after the scan
    };
    const Case cases[] = {
        {"42", 42, 2},
        {"  -17abc", -17, 5},
        {"+5", 5, 2},
        {" \n\t\r12", 12, 6},
        {"\u00A0\u3000"
         "7",
         7, 6},  // Unicode blanks are skipped too
        {"007", 7, 3},
        {"9223372036854775807", kInt64Max, 19},
        {"9223372036854775808", kInt64Max, 19},
        {"-9223372036854775808", kInt64Min, 20},
        {"-99999999999999999999x", kInt64Min, 21},
        {"123456789012345678901234567890", kInt64Max, 30},
        {"abc", std::nullopt, 0},
        {"-", std::nullopt, 0},
        {"+-1", std::nullopt, 0},
        {"  x", std::nullopt, 0},  // a failed scan does not consume the blanks either
        {"", std::nullopt, 0},
        {"\xFF"
         "1",
         std::nullopt, 0},
    };
    for (const Case& c : cases) {
        Scanner scanner(c.text);
        EXPECT_EQ(scanner.scanInt64(), c.value) << c.text;
        EXPECT_EQ(scanner.scanLocation(), c.location) << c.text;
    }
}

TEST(Scanner, ReadsUnsignedIntegersButRefusesAMinusSign) {
    EXPECT_EQ(Scanner("18446744073709551615").scanUInt64(), kUInt64Max);
    EXPECT_EQ(Scanner("18446744073709551616").scanUInt64(), kUInt64Max);
    EXPECT_EQ(Scanner("99999999999999999999999").scanUInt64(), kUInt64Max);
    EXPECT_EQ(Scanner(" +3").scanUInt64(), 3u);
    EXPECT_EQ(Scanner("-1").scanUInt64(), std::nullopt);
    std::uint64_t untouched = 99;
    EXPECT_FALSE(Scanner("-0").scanUnsignedLongLong(&untouched));
    EXPECT_EQ(untouched, 99u);
}

TEST(Scanner, ReadsSuccessiveItemsSkippingWhiteSpaceBetweenThem) {
    Scanner scanner("  12 , -3.5;word  ");
    EXPECT_EQ(scanner.scanInt64(), 12);
    EXPECT_EQ(scanner.scanString(","), ",");
    EXPECT_EQ(scanner.scanDouble(), -3.5);
    EXPECT_EQ(scanner.scanCharacters(Scanner::CharacterSet(";")), ";");
    EXPECT_FALSE(scanner.isAtEnd());
    EXPECT_EQ(scanner.scanUpToCharacters(Scanner::CharacterSet::whitespaces()), "word");
    EXPECT_TRUE(scanner.isAtEnd());
    EXPECT_EQ(scanner.scanInt64(), std::nullopt);
}

TEST(Scanner, ReadsFloatingSyntaxLikeStrtod) {
    struct Case {
        std::string text;
        std::optional<double> value;
        std::size_t location;
    };
    const double inf = std::numeric_limits<double>::infinity();
    const Case cases[] = {
        {"1.5", 1.5, 3},          {".5", 0.5, 2},           {"5.", 5.0, 2},
        {"+.5e1", 5.0, 5},        {"1e5", 1e5, 3},          {"1e", 1.0, 1},
        {"1e+", 1.0, 1},          {"2E-2x", 0.02, 4},       {"-1.25e-2!", -0.0125, 8},
        {"1e400", inf, 5},        {"-1e400", -inf, 6},      {"4e-320", 4e-320, 6},
        {"0x10", 0.0, 1},         {"1.2.3", 1.2, 3},        {"00012.50", 12.5, 8},
        {".", std::nullopt, 0},   {"-.", std::nullopt, 0},  {"e5", std::nullopt, 0},
        {"inf", std::nullopt, 0}, {"nan", std::nullopt, 0}, {"--1", std::nullopt, 0},
    };
    for (const Case& c : cases) {
        Scanner scanner(c.text);
        EXPECT_EQ(scanner.scanDouble(), c.value) << c.text;
        EXPECT_EQ(scanner.scanLocation(), c.location) << c.text;
    }
    const std::optional<double> negativeZero = Scanner("-1e-400").scanDouble();
    ASSERT_TRUE(negativeZero.has_value());
    EXPECT_EQ(*negativeZero, 0.0);
    EXPECT_TRUE(std::signbit(*negativeZero));
}

TEST(Scanner, ReadsFloatsRoundedOnceToFloatPrecision) {
    // 1.00000005960464477539062500000001 lies just above the midpoint of two floats: rounding
    // through a double first would land on the midpoint and round to even, i.e. down.
    EXPECT_EQ(Scanner("1.00000005960464477539062500000001").scanFloat(),
              1.00000011920928955078125f);
    EXPECT_EQ(Scanner("0.1").scanFloat(), 0.1f);
    EXPECT_EQ(Scanner("1e39").scanFloat(), std::numeric_limits<float>::infinity());
}

// Short numbers with small exponents are computed directly. These texts sit on both sides of
// where that stops (the length of a short text, powers of ten up to 1e22 for doubles and 1e10
// for floats, float mantissas up to 2^24) and where doubles stop being exact (2^53); the
// generated ones cover every small exponent.
TEST(Scanner, ReadsShortNumbersBitForBitAsStrtodAndStrtofDo) {
    const locale_t cLocale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    ASSERT_NE(cLocale, static_cast<locale_t>(nullptr));
    const auto expectSameAsC = [&](const std::string& text) {
        char* end = nullptr;
        const double expected = strtod_l(text.c_str(), &end, cLocale);
        double actual = 0;
        ASSERT_EQ(Scanner::readDoubleWithPoint(text, 0, &actual),
                  static_cast<std::size_t>(end - text.c_str()))
            << text;
        ASSERT_EQ(std::memcmp(&actual, &expected, sizeof actual), 0)
            << text << " gives " << actual << ", strtod " << expected;
        const float expectedFloat = strtof_l(text.c_str(), nullptr, cLocale);
        float actualFloat = 0;
        Scanner::readFloatWithPoint(text, 0, &actualFloat);
        ASSERT_EQ(std::memcmp(&actualFloat, &expectedFloat, sizeof actualFloat), 0)
            << text << " gives " << actualFloat << ", strtof " << expectedFloat;
    };
    std::istringstream boundaryTexts(
        "9007199254740992 9007199254740993 -9007199254740993 9007199254740992e22 "
        "9007199254740993e-22 1e22 1e23 1e-22 1e-23 3e22 3e-23 16777216 16777217 16777217e10 "
        "16777216e-10 1e10 1e11 1e-10 1e-11 1234567890123456789 12345678901234567890 "
        "0.1234567890123456789e3 000000000000000000000000001.5 "
        "0.000000000000000000000000000001 -0 -0.0e5 +0.0 5. .5 1e 1e+ 1e-x 2.5E+3 "
        "7e0000000000000000000000000001 1e99999 4.9e-324 1.7976931348623157e308 123.456e-3 "
        "0.1 0.3 123456789012 1234567890123 0.0000000001 1.2345678e-5 -1.2345678e-5 "
        "9.99999999e22 9.99999999e-22");
    for (std::string text; boundaryTexts >> text;) expectSameAsC(text);
    std::mt19937_64 random(7);
    for (int i = 0; i < 100000; ++i) {
        const std::uint64_t mantissa = random() >> (random() % 64);
        std::string text = std::to_string(mantissa);
        const std::size_t point = random() % (text.size() + 1);
        if (point < text.size()) text.insert(point, ".");
        const int exponent = static_cast<int>(random() % 61) - 30;
        if (exponent != 0) text += "e" + std::to_string(exponent);
        if (random() % 2 == 0) text.insert(0, "-");
        expectSameAsC(text);
    }
    freelocale(cLocale);
}

TEST(Scanner, UsesTheConfiguredDecimalSeparator) {
    Scanner comma("1,5 1.5");
    comma.setDecimalSeparator(",");
    EXPECT_EQ(comma.scanDouble(), 1.5);
    EXPECT_EQ(comma.scanDouble(), 1.0);  // "." is no separator here: "1" is read, ".5" remains
    EXPECT_EQ(comma.scanLocation(), 5u);

    Scanner arabic("3\u066B25");  // the Arabic decimal separator is two bytes long
    arabic.setDecimalSeparator("\u066B");
    EXPECT_EQ(arabic.scanDouble(), 3.25);
    EXPECT_TRUE(arabic.isAtEnd());

    Scanner german("2,75");
    german.setLocale(Locale("de_DE"));
    EXPECT_EQ(german.decimalSeparator(), ",");
    EXPECT_EQ(german.scanDecimal(), Decimal::parse("2.75"));
}

TEST(Scanner, LocalizedScannerTakesTheCurrentLocalesSeparator) {
    const testing::ScopedProcessState state;
    Locale::setCurrent("de_DE");
    EXPECT_EQ(Scanner::localizedScanner("1,5").scanDouble(), 1.5);
    Locale::setCurrent("en_US");
    EXPECT_EQ(Scanner::localizedScanner("1,5").scanDouble(), 1.0);
}

TEST(Scanner, ReadsDecimalsWithThirtyEightDigits) {
    EXPECT_EQ(Scanner(" -0.001e2x").scanDecimal(), Decimal::parse("-0.1"));
    EXPECT_EQ(Scanner("12.345").scanDecimal()->description(), "12.345");
    const std::optional<Decimal> long40 =
        Scanner("1234567890123456789012345678901234567890").scanDecimal();
    ASSERT_TRUE(long40.has_value());
    EXPECT_EQ(long40->description(), "1234567890123456789012345678901234567800");
    EXPECT_TRUE(Scanner("1e999").scanDecimal()->isNaN());
    Scanner notANumber("abc");
    EXPECT_EQ(notANumber.scanDecimal(), std::nullopt);
    EXPECT_EQ(notANumber.scanLocation(), 0u);
}

TEST(Scanner, MatchesStringsIgnoringAsciiCaseUnlessAskedNotTo) {
    Scanner scanner("SELECT x");
    EXPECT_EQ(scanner.scanString("select"), "SELECT");  // the text as written
    scanner.setScanLocation(0);
    scanner.setCaseSensitive(true);
    EXPECT_EQ(scanner.scanString("select"), std::nullopt);
    EXPECT_EQ(scanner.scanString(""), std::nullopt);
    EXPECT_EQ(scanner.scanString("SELECT x and more"), std::nullopt);
}

TEST(Scanner, ScansUpToAStringOrToTheEnd) {
    Scanner scanner("key -- value");
    EXPECT_EQ(scanner.scanUpToString("--"), "key ");
    EXPECT_EQ(scanner.scanUpToString("--"), std::nullopt);  // already at the stop text
    EXPECT_TRUE(scanner.scanString("--", nullptr));
    EXPECT_EQ(scanner.scanUpToString("--"), "value");
    EXPECT_TRUE(scanner.isAtEnd());
}

TEST(Scanner, CharacterSetsHoldUnicodeAndToleratesInvalidUTF8) {
    const Scanner::CharacterSet euros("€,");
    EXPECT_TRUE(euros.contains(U'€'));
    EXPECT_FALSE(euros.contains(U'$'));
    EXPECT_EQ(Scanner("€,€x").scanCharacters(euros), "€,€");
    // Malformed bytes are single characters outside every set, so scanning always moves on.
    EXPECT_EQ(Scanner("\xFF\xC3\xE2\x82,rest").scanUpToCharacters(Scanner::CharacterSet(",")),
              "\xFF\xC3\xE2\x82");
    EXPECT_FALSE(Scanner::CharacterSet("\xE2\x82").contains(U'€'));
    EXPECT_TRUE(Scanner::CharacterSet().isEmpty());
}

TEST(Scanner, CustomSkipSetsChangeWhatIsPassedOver) {
    Scanner exact(" 5");
    exact.setCharactersToBeSkipped(Scanner::CharacterSet());
    EXPECT_EQ(exact.scanInt64(), std::nullopt);

    Scanner dashes("--7");
    dashes.setCharactersToBeSkipped(Scanner::CharacterSet("-"));
    std::optional<Scanner> copy(dashes);
    dashes = Scanner("other");  // the copy keeps its own skip set alive
    EXPECT_EQ(copy->scanInt64(), 7);
}

TEST(Scanner, RejectsLocationsBeyondTheEnd) {
    Scanner scanner("abc");
    scanner.setScanLocation(3);
    EXPECT_TRUE(scanner.isAtEnd());
    try {
        scanner.setScanLocation(4);
        FAIL() << "no exception";
    } catch (const Exception& exception) {
        EXPECT_EQ(exception.name(), NSRangeException);
        EXPECT_NE(exception.reason().find("beyond the end"), std::string::npos);
    }
    EXPECT_EQ(scanner.scanLocation(), 3u);
}

}  // namespace
}  // namespace vn
