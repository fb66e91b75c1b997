// Model pictures turned into formatters: the displayed texts (worked out by hand from the
// picture rules), read-back, the per-thread cache and its locale observer, and robustness
// against arbitrary pictures.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <future>
#include <limits>
#include <random>
#include <thread>

#include "testing/ScopedProcessState.h"
#include "vn/concurrency/RunLoop.h"
#include "vn/formatting/DateFormatter.h"
#include "vn/formatting/FormatterCacheLimit.h"
#include "vn/formatting/NumberFormatter.h"
#include "vn/formatting/VNNumberWithPictureFormatter.h"
#include "vn/platform/Locale.h"
#include "vn/platform/Thread.h"

namespace vn {
namespace {

struct PictureCase {
    const char* picture;
    bool hasDecimals;
    const char* locale;
    double number;
    const char* shown;
    bool readsBack;  // the shown text reads back as the number
};

const PictureCase kPictureCases[] = {
    // Suppressed positions and the zero symbol.
    // The cache key holds picture and locale only, so each picture appears with one
    // numberHasDecimals per locale.
    {"ZZZ9", false, "en_US", 0, "0", true},
    {"ZZZ9", false, "en_US", 1234, "1234", true},
    {"ZZZ9", false, "en_US", 12345, "12345", true},
    {"ZZZZ", false, "en_US", 0, "", true},
    {"ZZZZ", false, "en_US", 5, "5", true},
    {"ZZ,ZZZ.ZZ", true, "en_US", 0, "", true},
    {"ZZ,ZZZ.ZZ", false, "en_GB", 0, "", true},
    {"ZZZ.ZZ", false, "en_US", 1.5, "1.5", true},
    // Grouping and decimals in the five locales.
    {"ZZ,ZZZ.ZZ", true, "en_US", 1234.5, "1,234.50", true},
    {"ZZ,ZZZ.ZZ", true, "de_DE", 1234.5, "1.234,50", true},
    {"ZZ,ZZZ.ZZ", true, "es_UY", 1234.5, "1.234,50", true},
    // French groups with a narrow no-break space.
    {"ZZ,ZZZ.ZZ", true, "fr_FR", 1234.5, "1\u202F234,50", true},
    {"ZZ,ZZZ.ZZ", true, "en_US_POSIX", 1234.5, "1,234.50", true},
    {"ZZ,ZZZ.ZZ", false, "en_GB", 1234.5, "1,234.5", true},
    {"ZZZ,ZZ9", false, "en_US", 1234567, "1,234,567", true},
    {"ZZZ,ZZ9", false, "de_DE", 1234567, "1.234.567", true},
    {"ZZZ,ZZ9", false, "fr_FR", 1234567, "1\u202F234\u202F567", true},
    {"ZZ,ZZ9.99", true, "en_US", 1234567.891, "1,234,567.89", false},
    {"ZZ9.99", true, "es_UY", -1234.5, "-1234,50", true},
    {"ZZ9.ZZ", true, "en_US", 1.5, "1.50", true},
    {"9999", false, "en_US", 5, "0005", true},
    {"99.99", true, "en_US_POSIX", 1.5, "01.50", true},
    {"9.999", true, "en_US", 0.12345, "0.123", false},
    // Rounding: half to even, as the platform formatter rounds.
    {"ZZ9", false, "en_US", 2.5, "2", false},
    {"ZZ9", false, "en_US", 3.5, "4", false},
    {"ZZ9", false, "en_US", -2.5, "-2", false},
    {"ZZ9.99", true, "en_US", 0.005, "0.00", false},
    {"ZZ9.99", true, "en_US", 0.015, "0.02", false},
    // Parentheses.
    {"(ZZ9.99)", true, "en_US", -5, "(5.00)", true},
    {"(ZZ9.99)", true, "en_US", 5, "5.00", true},
    {"(ZZ9.99)", true, "en_US", 0, "0.00", true},
    {"(ZZ9.99 kg)", true, "en_US", -5, "(5.00) kg", true},
    {"(ZZ9.99 kg)", true, "en_US", 5, "5.00 kg", true},
    // DB / CR: the same affixes whichever word ends the picture.
    {"ZZ9DB", false, "en_US", -5, "5DB", true},
    {"ZZ9DB", false, "en_US", 5, "5CR", true},
    {"ZZ9CR", false, "en_US", -5, "5DB", true},
    {"ZZ9CR", false, "en_US", 5, "5CR", true},
    {"$ ZZ9DB", false, "en_US", -5, "$ 5DB", true},
    {"ZZ9 pts DB", false, "de_DE", 5, "5CR pts ", true},
    {"ZZ9 pts DB", false, "de_DE", -5, "5DB pts ", true},
    // Leading plus.
    {"+ZZ9", false, "en_US", 5, "+5", true},
    {"+ZZ9", false, "en_US", -5, "-5", true},
    {"+ZZ9.99", true, "de_DE", 1234.5, "+1234,50", true},
    {"+USD ZZ9", false, "en_US", -5, "USD -5", true},
    {"+USD ZZ9", false, "en_US", 5, "+USD 5", true},
    // Leading and trailing literals.
    {"USD ZZ9.99", true, "en_US", 5, "USD 5.00", true},
    {"USD ZZ9.99", true, "en_US", -5, "USD -5.00", true},
    {"ZZ9.99 kg", true, "fr_FR", -5, "-5,00 kg", true},
    // Quoted specials: the translation quotes them, and the quotes stay in the affixes.
    {"ZZ9%", false, "en_US", 5, "5'%'", true},
    {"'ZZ9", false, "en_US", 5, "'5", true},
    // Literals between digit positions: the mask formatter, whatever the locale.
    {"999-9999", false, "en_US", 1234567, "123-4567", true},
    {"999-9999", false, "de_DE", 123, "000-0123", true},
    {"999-9999", false, "en_US", -123, "000--123", false},
    {"99/99/9999", false, "es_UY", 1022020, "01/02/2020", true},
    {"Z9-99", false, "en_US", 1234, "12-34", true},
    {"Z9-99", false, "en_US", 5, "0-05", true},
    {"99%99", false, "en_US", 1234, "12'%'34", true},
};

TEST(VNPicture, ShowsNumbersAsTheRulesSay) {
    for (const PictureCase& c : kPictureCases) {
        SCOPED_TRACE(std::string(c.picture) + " " + c.locale + " " + std::to_string(c.number));
        const auto formatter =
            NumberFormatter::numberFormatterForVNPicture(c.picture, c.locale, c.hasDecimals);
        EXPECT_EQ(formatter->stringFromNumber(Number(c.number)), c.shown);
        if (!c.readsBack) continue;
        const auto read = formatter->numberFromString(c.shown);
        ASSERT_TRUE(read.has_value());
        EXPECT_DOUBLE_EQ(read->doubleValue(), c.number);
    }
}

TEST(VNPicture, ChoosesTheFormatterKindAndDecimalResults) {
    const auto phone =
        NumberFormatter::numberFormatterForVNPicture("999-9999", std::nullopt, false);
    const auto* mask = dynamic_cast<const VNNumberWithPictureFormatter*>(phone.get());
    ASSERT_NE(mask, nullptr);
    EXPECT_EQ(mask->vnNumberFormat(), "000-0000");
    EXPECT_EQ(phone->numberFromString("1234567"), std::nullopt);

    // A leading literal stays outside the pattern, so no mask is needed for it.
    const auto money = NumberFormatter::numberFormatterForVNPicture("USD ZZ9.99", "en_US", true);
    EXPECT_EQ(dynamic_cast<const VNNumberWithPictureFormatter*>(money.get()), nullptr);
    EXPECT_EQ(money->positiveFormat(), "##0.00");
    EXPECT_TRUE(money->generatesDecimalNumbers());
    EXPECT_TRUE(money->numberFromString("USD 1.10")->isDecimal());

    const auto whole = NumberFormatter::numberFormatterForVNPicture("ZZ9", "en_US", false);
    EXPECT_FALSE(whole->generatesDecimalNumbers());
    EXPECT_EQ(whole->numberFromString("12")->kind(), Number::Kind::signedInteger);
}

TEST(VNPicture, QuotesSpecialLiteralsButNeverTheDigitNine) {
    const auto hash = NumberFormatter::numberFormatterForVNPicture("ZZ#ZZ", std::nullopt, false);
    EXPECT_EQ(dynamic_cast<const VNNumberWithPictureFormatter&>(*hash).vnNumberFormat(), "##'#'##");
    const auto percent = NumberFormatter::numberFormatterForVNPicture("Z%9", std::nullopt, false);
    EXPECT_EQ(dynamic_cast<const VNNumberWithPictureFormatter&>(*percent).vnNumberFormat(),
              "#'%'0");
    // 9 is a digit position, and a quote in the picture is a quoted quote.
    const auto nine = NumberFormatter::numberFormatterForVNPicture("9Z9", std::nullopt, false);
    EXPECT_EQ(nine->positiveFormat(), "0#0");
    EXPECT_EQ(nine->stringFromNumber(Number(7)), "007");
    const auto quote = NumberFormatter::numberFormatterForVNPicture("Z'Z", std::nullopt, false);
    EXPECT_EQ(dynamic_cast<const VNNumberWithPictureFormatter&>(*quote).vnNumberFormat(), "#''#");
}

TEST(VNPicture, LiteralsThatIcuReadsAsSignsStayLiteral) {
    const auto approximately =
        NumberFormatter::numberFormatterForVNPicture("~ZZ9~", "en_US", false);
    EXPECT_EQ(approximately->stringFromNumber(Number(5)), "~5~");
    EXPECT_EQ(approximately->stringFromNumber(Number(-5)), "~-5~");
    EXPECT_EQ(approximately->numberFromString("~5~"), Number(5));
    EXPECT_EQ(approximately->numberFromString("~-5~"), Number(-5));
    EXPECT_EQ(approximately->numberFromString("5"), std::nullopt);
}

TEST(VNPicture, PeriodWithoutDecimalsKeepsLaterPositionsOptional) {
    EXPECT_EQ(
        NumberFormatter::numberFormatterForVNPicture("ZZ9.ZZ", "it_IT", false)->positiveFormat(),
        "##0.##");
    EXPECT_EQ(
        NumberFormatter::numberFormatterForVNPicture("ZZ9.ZZ", "de_DE", true)->positiveFormat(),
        "##0.00");
}

TEST(VNPicture, CachesPerPictureAndLocaleUnderTheModelKeys) {
    const auto first = NumberFormatter::numberFormatterForVNPicture("ZZ9.99", "en_US", true);
    EXPECT_EQ(NumberFormatter::numberFormatterForVNPicture("ZZ9.99", "en_US", true), first);
    // numberHasDecimals is not part of the key: the first request decided it.
    EXPECT_EQ(NumberFormatter::numberFormatterForVNPicture("ZZ9.99", "en_US", false), first);
    const auto german = NumberFormatter::numberFormatterForVNPicture("ZZ9.99", "de_DE", true);
    const auto current = NumberFormatter::numberFormatterForVNPicture("ZZ9.99", std::nullopt, true);
    EXPECT_NE(german, first);
    EXPECT_NE(current, first);

    const Value::Dictionary& cache = Thread::threadDictionary();
    EXPECT_EQ(
        cache.at("VNNSNumberFormatterWithVNPictureZZ9.99LocaleIden_US").objectAs<NumberFormatter>(),
        first);
    EXPECT_EQ(
        cache.at("VNNSNumberFormatterWithVNPictureZZ9.99LocaleIdde_DE").objectAs<NumberFormatter>(),
        german);
    EXPECT_EQ(cache.at("VNNSNumberFormatterWithVNPictureZZ9.99").objectAs<NumberFormatter>(),
              current);
}

TEST(VNPicture, FormattersAreNeverSharedBetweenThreads) {
    const auto here = NumberFormatter::numberFormatterForVNPicture("ZZZ9", "en_US", false);
    NumberFormatterPtr there;
    NumberFormatterPtr thereAgain;
    std::thread([&] {
        there = NumberFormatter::numberFormatterForVNPicture("ZZZ9", "en_US", false);
        thereAgain = NumberFormatter::numberFormatterForVNPicture("ZZZ9", "en_US", false);
    }).join();
    EXPECT_NE(here, there);
    EXPECT_EQ(there, thereAgain);
}

std::size_t cachedCount(std::string_view prefix) {
    std::size_t count = 0;
    for (const auto& [key, value] : Thread::threadDictionary())
        count += std::string_view(key).starts_with(prefix) ? 1 : 0;
    return count;
}

TEST(VNPicture, UnderALimitEachThreadKeepsThatManyFormattersLeastRecentlyUsedOut) {
    const testing::ScopedProcessState state;
    std::thread([] {
        EXPECT_EQ(NumberFormatter::numberFormatterForVNPicture("ZZ9", "en_US", false),
                  NumberFormatter::numberFormatterForVNPicture("ZZ9", "en_US", false));
        for (int i = 0; i < 300; ++i)
            NumberFormatter::numberFormatterForVNPicture("Z" + std::to_string(i), "en_US", false);
        EXPECT_EQ(cachedCount("VNNSNumberFormatter"), 301u);  // no limit by default
        // A limit set later also bounds what the thread made before it.
        const auto kept = NumberFormatter::numberFormatterForVNPicture("ZZ9", "en_US", false);
        setCachedFormattersPerThreadLimit(kSuggestedCachedFormattersPerThread);
        EXPECT_EQ(NumberFormatter::numberFormatterForVNPicture("ZZ9", "en_US", false), kept);
        EXPECT_EQ(cachedCount("VNNSNumberFormatter"), kSuggestedCachedFormattersPerThread);
    }).join();
    const std::size_t capacity = kSuggestedCachedFormattersPerThread;
    std::thread([&] {
        const auto kept = NumberFormatter::numberFormatterForVNPicture("ZZ9", "en_US", false);
        const auto dropped = NumberFormatter::numberFormatterForNumberFormat("0.0", "en_US");
        for (std::size_t i = 0; i < 3 * capacity; ++i) {
            const std::string picture = "ZZ" + std::to_string(i) + "9";
            NumberFormatter::numberFormatterForVNPicture(picture, "en_US", false);
            // Requested all along, "ZZ9" stays the most recently used.
            EXPECT_EQ(NumberFormatter::numberFormatterForVNPicture("ZZ9", "en_US", false), kept);
            EXPECT_LE(cachedCount("VNNSNumberFormatter"), capacity);
        }
        EXPECT_EQ(cachedCount("VNNSNumberFormatter"), capacity);
        EXPECT_EQ(Thread::threadDictionary().count("VNNSNumberFormatterWithFormat0.0LocaleIden_US"),
                  0u);
        EXPECT_NE(NumberFormatter::numberFormatterForNumberFormat("0.0", "en_US"), dropped);
        EXPECT_EQ(cachedCount("VNNSNumberFormatter"), capacity);
        // Date formatters are a family of their own.
        DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat("yyyy");
        EXPECT_EQ(cachedCount("VNNSNumberFormatter"), capacity);
        EXPECT_EQ(cachedCount("VNNSDateFormatter"), 1u);
    }).join();
}

TEST(VNPicture, LocaleChangeClearsOnlyTheMainThreadsFormatterCaches) {
    ASSERT_TRUE(Thread::isMainThread());
    const testing::ScopedProcessState state;
    NumberFormatter::numberFormatterForVNPicture("ZZ9", std::nullopt,
                                                 false);  // registers the observer
    DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat("yyyy");
    Thread::threadDictionary()["VNNSOther"] = Value("kept");

    std::promise<void> changed;
    std::promise<bool> backgroundKept;
    std::thread background([&] {
        NumberFormatter::numberFormatterForVNPicture("ZZ9", std::nullopt, false);
        changed.get_future().wait();
        backgroundKept.set_value(
            Thread::threadDictionary().contains("VNNSNumberFormatterWithVNPictureZZ9"));
    });

    Locale::setCurrent("de_DE");
    const auto cleared = [] {
        const Value::Dictionary& cache = Thread::threadDictionary();
        return !cache.contains("VNNSNumberFormatterWithVNPictureZZ9") &&
               !cache.contains("VNNSDateFormatterWithFormatyyyy");
    };
    EXPECT_TRUE(RunLoop::main().runUntil(cleared, std::chrono::seconds(10)));
    EXPECT_TRUE(Thread::threadDictionary().contains("VNNSOther"));
    changed.set_value();
    EXPECT_TRUE(backgroundKept.get_future().get());
    background.join();

    // A new request after the change is built for the new current locale.
    EXPECT_EQ(NumberFormatter::numberFormatterForVNPicture("ZZ9", std::nullopt, false)
                  ->locale()
                  .identifier(),
              "de_DE");
}

TEST(VNPicture, ArbitraryPicturesNeverCrash) {
    const std::vector<std::string> alphabet = {
        "Z", "9",  ".",    ",",    "(", ")", "+",  "D",  "B", "C",  "R", "'", "#",
        "%", "E",  ";",    "@",    "*", "0", "1",  "8",  "-", "/",  " ", "¤", "‰",
        "ü", "日", "\xff", "\xc3", "z", "e", "\"", "\\", "$", "\t", "~"};
    const std::vector<std::optional<std::string>> locales = {
        std::nullopt, "en_US", "de_DE", "fr_FR", "es_UY", "en_US_POSIX", "xx_YY"};
    const std::vector<Number> numbers = {
        Number(0),
        Number(-1),
        Number(7),
        Number(1.5),
        Number(-1234.567),
        Number(1e15),
        Number(std::nan("")),
        Number(-std::numeric_limits<double>::infinity()),
        Number(std::numeric_limits<std::uint64_t>::max()),
        Number(*Decimal::parse("-98765432109876543210.0123456789"))};
    std::mt19937 random(20240601);
    for (int i = 0; i < 3000; ++i) {
        std::string picture;
        const int length = static_cast<int>(random() % 14);
        for (int j = 0; j < length; ++j) picture += alphabet[random() % alphabet.size()];
        const auto& locale = locales[random() % locales.size()];
        SCOPED_TRACE(picture);
        const auto formatter =
            NumberFormatter::numberFormatterForVNPicture(picture, locale, random() % 2 == 0);
        const auto* mask = dynamic_cast<const VNNumberWithPictureFormatter*>(formatter.get());
        const bool maskHasDigits =
            mask && mask->vnNumberFormat().find_first_of("0#") != std::string::npos;
        for (const Number& number : numbers) {
            const std::string shown = formatter->stringFromNumber(number);
            // A mask formatter is fatal on a text without digits by contract, so its read-back is
            // tried only where its output is sure to carry one: positive integers under a mask
            // with digit positions.
            const bool surelyHasDigits =
                maskHasDigits && number.isInteger() && number.doubleValue() >= 1;
            if (!mask || surelyHasDigits) formatter->numberFromString(shown);
        }
    }
    SUCCEED();
}

}  // namespace
}  // namespace vn
