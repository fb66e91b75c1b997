// The ICU-backed number formatter and the model's cached plain, pattern and digit-limited
// formatters.
#include "vn/formatting/NumberFormatter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "vn/platform/Thread.h"

namespace vn {
namespace {

NumberFormatterPtr formatterFor(const char* locale, const char* pattern) {
    auto formatter = std::make_shared<NumberFormatter>();
    formatter->setLocale(Locale(locale));
    formatter->setPositiveFormat(pattern);
    return formatter;
}

TEST(NumberFormatter, FormatsEveryKindOfNumberExactly) {
    const auto formatter = formatterFor("en_US", "#,##0.##########");
    EXPECT_EQ(formatter->stringFromNumber(Number(true)), "1");
    EXPECT_EQ(formatter->stringFromNumber(Number(-42)), "-42");
    EXPECT_EQ(formatter->stringFromNumber(Number(std::numeric_limits<std::uint64_t>::max())),
              "18,446,744,073,709,551,615");
    EXPECT_EQ(formatter->stringFromNumber(Number(0.1f)),
              "0.1");  // the float's digits, not its binary expansion
    EXPECT_EQ(
        formatter->stringFromNumber(Number(*Decimal::parse("12345678901234567890.0123456789"))),
        "12,345,678,901,234,567,890.0123456789");
    EXPECT_EQ(formatter->stringFromNumber(Number(std::nan(""))), "NaN");
    EXPECT_EQ(formatter->stringForObjectValue(Value(2.5)), "2.5");
    EXPECT_EQ(formatter->stringForObjectValue(Value("2.5")), std::nullopt);
    EXPECT_EQ(formatter->stringForObjectValue(Value()), std::nullopt);
}

TEST(NumberFormatter, ReadsWholeTextsOnlyWithTheRequestedKind) {
    const auto formatter = formatterFor("de_DE", "#,##0.##");
    EXPECT_EQ(formatter->numberFromString("12")->kind(), Number::Kind::signedInteger);
    EXPECT_EQ(formatter->numberFromString("1.234,5")->kind(), Number::Kind::doublePrecision);
    EXPECT_DOUBLE_EQ(formatter->numberFromString("-1.234,5")->doubleValue(), -1234.5);
    EXPECT_EQ(formatter->numberFromString("12abc"), std::nullopt);
    EXPECT_EQ(formatter->numberFromString(""), std::nullopt);
    EXPECT_EQ(formatter->numberFromString("abc"), std::nullopt);

    formatter->setGeneratesDecimalNumbers(true);
    const auto decimal = formatter->numberFromString("0,1");
    ASSERT_TRUE(decimal.has_value());
    EXPECT_TRUE(decimal->isDecimal());
    EXPECT_EQ(decimal->decimalValue(), *Decimal::parse("0.1"));  // exact, not the double 0.1
}

TEST(NumberFormatter, ZeroSymbolReplacesExactZeroBothWays) {
    const auto formatter = formatterFor("en_US", "#0.00");
    formatter->setZeroSymbol("-");
    EXPECT_EQ(formatter->stringFromNumber(Number(0)), "-");
    EXPECT_EQ(formatter->stringFromNumber(Number(-0.0)), "-");
    EXPECT_EQ(formatter->stringFromNumber(Number(0.001)), "0.00");  // not zero, only shown as zero
    EXPECT_EQ(formatter->numberFromString("-"), Number(0));
    formatter->setZeroSymbol(std::nullopt);
    EXPECT_EQ(formatter->stringFromNumber(Number(0)), "0.00");
}

TEST(NumberFormatter, AffixesAreIndependentAndResetByANewPattern) {
    const auto formatter = formatterFor("en_US", "##0");
    formatter->setPositivePrefix("+");
    EXPECT_EQ(formatter->stringFromNumber(Number(5)), "+5");
    EXPECT_EQ(formatter->stringFromNumber(Number(-5)), "-5");
    formatter->setNegativePrefix("(");
    formatter->setNegativeSuffix(")");
    EXPECT_EQ(formatter->stringFromNumber(Number(-5)), "(5)");
    EXPECT_EQ(formatter->numberFromString("(5)"), Number(-5));

    // A locale change keeps the pattern and the affixes.
    formatter->setPositiveFormat("#,##0.00");
    formatter->setPositiveSuffix(" kg");
    formatter->setLocale(Locale("de_DE"));
    EXPECT_EQ(formatter->stringFromNumber(Number(1234.5)), "1.234,50 kg");
    EXPECT_EQ(formatter->negativePrefix(), "-");  // the new pattern cleared "("
}

TEST(NumberFormatter, AffixesAreShownAndReadAsWrittenWhateverTheirCharacters) {
    // Characters that ICU's affix syntax gives a meaning (the approximately sign among them)
    // are literal text in affixes.
    for (const std::string special : {"~", "'", "-", "+", "%", "‰", "¤", "''", "a~b'~", "~-"}) {
        SCOPED_TRACE(special);
        const auto formatter = formatterFor("en_US", "#,##0");
        formatter->setPositivePrefix(special + "p");
        formatter->setPositiveSuffix("s" + special);
        formatter->setNegativePrefix(special + "n");
        formatter->setNegativeSuffix("m" + special);
        EXPECT_EQ(formatter->positivePrefix(), special + "p");
        EXPECT_EQ(formatter->negativeSuffix(), "m" + special);
        EXPECT_EQ(formatter->stringFromNumber(Number(1234)), special + "p1,234s" + special);
        EXPECT_EQ(formatter->stringFromNumber(Number(-5)), special + "n5m" + special);
        EXPECT_EQ(formatter->numberFromString(special + "p1,234s" + special), Number(1234));
        EXPECT_EQ(formatter->numberFromString(special + "n5m" + special), Number(-5));
        EXPECT_EQ(formatter->numberFromString("1234"), std::nullopt);
    }

    // An approximately sign set after the digit limits keeps them.
    const auto limited = formatterFor("en_US", "0.00");
    limited->setMaximumFractionDigits(1);
    limited->setPositiveSuffix(" ~");
    EXPECT_EQ(limited->stringFromNumber(Number(2.25)), "2.2 ~");
    EXPECT_EQ(limited->numberFromString("2.5 ~"), Number(2.5));

    // Unquoted in a pattern it is literal text too.
    const auto patterned = formatterFor("en_US", "~#,##0;(~#)");
    EXPECT_EQ(patterned->stringFromNumber(Number(1234)), "~1,234");
    EXPECT_EQ(patterned->stringFromNumber(Number(-7)), "(~7)");
    EXPECT_EQ(patterned->numberFromString("~1,234"), Number(1234));
    EXPECT_EQ(patterned->numberFromString("(~7)"), Number(-7));
}

TEST(NumberFormatter, UnreadablePatternChangesNothingAndForcedPositionsAreShown) {
    const auto formatter = formatterFor("en_US", "#,##0.00");
    for (const char* unreadable : {"#,,#", "#.#.#", "#.-0"}) {
        formatter->setPositiveFormat(unreadable);
        EXPECT_EQ(formatter->positiveFormat(), "#,##0.00");
        EXPECT_EQ(formatter->stringFromNumber(Number(1234.5)), "1,234.50");
    }
    formatter->setPositiveFormat("0##");
    EXPECT_EQ(formatter->positiveFormat(), "0##");
    EXPECT_EQ(formatter->stringFromNumber(Number(5)), "005");
    formatter->setPositiveFormat("#.#0");
    EXPECT_EQ(formatter->stringFromNumber(Number(5)), "5.00");
}

// Patterns and texts beyond the documented lengths are refused like unreadable ones; right at
// the lengths they are read as before.
TEST(NumberFormatter, PatternsAndTextsAreReadUpToTheirMaximumLength) {
    const auto formatter = formatterFor("en_US", "#,##0.00");
    const std::string literal(NumberFormatter::kMaximumPatternLength - 3, 'a');
    formatter->setPositiveFormat("'" + literal + "'0");
    EXPECT_EQ(formatter->stringFromNumber(Number(7)), literal + "7");
    formatter->setPositiveFormat("'" + literal + "a'0");
    EXPECT_EQ(formatter->positiveFormat(), "'" + literal + "'0");
    formatter->setPositiveFormat(std::string(NumberFormatter::kMaximumPatternLength + 1, '9'));
    EXPECT_EQ(formatter->positiveFormat(), "'" + literal + "'0");

    const auto plain = formatterFor("en_US", "0");
    const std::string zeros(NumberFormatter::kMaximumTextLength - 1, '0');
    EXPECT_EQ(plain->numberFromString(zeros + "5"), Number(5));
    EXPECT_EQ(plain->numberFromString(zeros + "50"), std::nullopt);
    EXPECT_EQ(plain->numberFromString(std::string(1 << 20, '9')), std::nullopt);
    plain->setZeroSymbol(std::string(NumberFormatter::kMaximumTextLength + 1, '-'));
    EXPECT_EQ(plain->numberFromString(*plain->zeroSymbol()), Number(std::int64_t{0}));

    const auto picture = NumberFormatter::numberFormatterForVNPicture(
        std::string(NumberFormatter::kMaximumPatternLength + 1, '9'), "en_US", true);
    EXPECT_EQ(picture->positiveFormat(), NumberFormatter().positiveFormat());
    EXPECT_EQ(picture->stringFromNumber(Number(42)), "42");
}

TEST(NumberFormatter, StylesAndDigitLimits) {
    NumberFormatter formatter;
    formatter.setLocale(Locale("en_US"));
    EXPECT_EQ(formatter.numberStyle(), NumberFormatter::Style::none);
    EXPECT_EQ(formatter.stringFromNumber(Number(1234.5678)), "1235");
    formatter.setNumberStyle(NumberFormatter::Style::decimal);
    EXPECT_EQ(formatter.stringFromNumber(Number(1234.5678)), "1,234.568");
    formatter.setMaximumFractionDigits(1);
    formatter.setMaximumIntegerDigits(3);
    EXPECT_EQ(formatter.stringFromNumber(Number(1234.5678)),
              "234.6");  // excess integer digits go from the left
    formatter.setNumberStyle(NumberFormatter::Style::percent);
    EXPECT_EQ(formatter.stringFromNumber(Number(0.25)), "25%");
}

TEST(NumberFormatter, DigitLimitedFormatterTakesIntegerDigitsAsTotalLength) {
    const auto limited = NumberFormatter::numberFormatterForMaximumFractionDigits(2, 8, "en_US");
    EXPECT_EQ(limited->numberStyle(), NumberFormatter::Style::decimal);
    EXPECT_EQ(limited->maximumFractionDigits(), 2);
    EXPECT_EQ(limited->maximumIntegerDigits(), 6);
    EXPECT_TRUE(limited->generatesDecimalNumbers());
    EXPECT_EQ(limited->stringFromNumber(Number(12345678.125)), "345,678.12");

    const NumberFormatter plain;
    const auto unlimited =
        NumberFormatter::numberFormatterForMaximumFractionDigits(0, 0, std::nullopt);
    EXPECT_EQ(unlimited->numberStyle(), NumberFormatter::Style::none);
    EXPECT_EQ(unlimited->maximumIntegerDigits(), plain.maximumIntegerDigits());
    EXPECT_EQ(unlimited->maximumFractionDigits(), plain.maximumFractionDigits());
    EXPECT_FALSE(unlimited->generatesDecimalNumbers());

    EXPECT_EQ(NumberFormatter::numberFormatterForMaximumFractionDigits(0, 5, std::nullopt)
                  ->maximumIntegerDigits(),
              5);
    EXPECT_EQ(NumberFormatter::numberFormatterForMaximumFractionDigits(3, 2, std::nullopt)
                  ->maximumIntegerDigits(),
              2);

    const Value::Dictionary& cache = Thread::threadDictionary();
    EXPECT_EQ(
        cache.at("VNNSNumberFormatterFraction2Integer8LocaleIden_US").objectAs<NumberFormatter>(),
        limited);
    EXPECT_EQ(cache.at("VNNSNumberFormatterFraction0Integer0").objectAs<NumberFormatter>(),
              unlimited);
}

TEST(NumberFormatter, PatternFormattersAreCachedUnderTheirKeys) {
    const auto plain = NumberFormatter::numberFormatterForNumberFormat("#,##0", "de_DE");
    const auto zero = NumberFormatter::numberFormatterForNumberFormat("#,##0", "-", "de_DE");
    const auto noLocale =
        NumberFormatter::numberFormatterForNumberFormat("#,##0", std::nullopt, std::nullopt);
    EXPECT_NE(plain, zero);
    EXPECT_EQ(plain->stringFromNumber(Number(0)), "0");
    EXPECT_EQ(zero->stringFromNumber(Number(0)), "-");
    EXPECT_EQ(zero->stringFromNumber(Number(12345)), "12.345");
    const Value::Dictionary& cache = Thread::threadDictionary();
    EXPECT_EQ(
        cache.at("VNNSNumberFormatterWithFormat#,##0LocaleIdde_DE").objectAs<NumberFormatter>(),
        plain);
    EXPECT_EQ(cache.at("VNNSNumberFormatterWith0Symbol-Format#,##0LocaleIdde_DE")
                  .objectAs<NumberFormatter>(),
              zero);
    EXPECT_EQ(cache.at("VNNSNumberFormatterWithFormat#,##0").objectAs<NumberFormatter>(), noLocale);

    // Something else stored under a key is replaced by a formatter.
    Thread::threadDictionary()["VNNSNumberFormatterWithFormat0.0"] = Value("not a formatter");
    const auto rebuilt = NumberFormatter::numberFormatterForNumberFormat("0.0", std::nullopt);
    EXPECT_EQ(rebuilt->stringFromNumber(Number(1)), "1.0");
    EXPECT_EQ(cache.at("VNNSNumberFormatterWithFormat0.0").objectAs<NumberFormatter>(), rebuilt);
}

TEST(NumberFormatter, PosixFormattersReadPlainNumbers) {
    const auto posix = NumberFormatter::numberFormatterForLocale_en_US_POSIX();
    const auto decimal = NumberFormatter::decimalNumberFormatterForLocales_en_US_POSIX();
    EXPECT_EQ(posix->locale().identifier(), "en_US_POSIX");
    EXPECT_EQ(posix->numberFromString("1.5")->kind(), Number::Kind::doublePrecision);
    EXPECT_EQ(decimal->numberFromString("1.5")->decimalValue(), *Decimal::parse("1.5"));
    EXPECT_EQ(Thread::threadDictionary().at("VNNSNumberFormatter").objectAs<NumberFormatter>(),
              posix);
    EXPECT_EQ(
        Thread::threadDictionary().at("VNNSNumberFormatterDecimal").objectAs<NumberFormatter>(),
        decimal);
}

}  // namespace
}  // namespace vn
