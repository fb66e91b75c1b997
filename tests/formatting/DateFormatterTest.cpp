// Date formatters: styles and patterns, proleptic years, strict reading, and the model's
// cached formatters with their keys and tables.
#include "testing/ScopedProcessState.h"
#include "vn/formatting/DateFormatter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "vn/formatting/DateVN.h"
#include "vn/formatting/FormatterCacheLimit.h"
#include "vn/platform/Thread.h"

namespace vn {
namespace {

// 2020-03-01T10:20:30.250 GMT
const Date kInstant = Date::fromTimeIntervalSince1970(1583058030.25);

TEST(DateFormatter, PatternsFormatAndReadBackInTheirZone) {
    DateFormatter formatter;
    formatter.setLocale(Locale("en_US_POSIX"));
    formatter.setTimeZone(*TimeZone::named("America/Montevideo"));
    formatter.setDateFormat("yyyy-MM-dd HH:mm:ss.SSS");
    EXPECT_EQ(formatter.stringFromDate(kInstant), "2020-03-01 07:20:30.250");
    EXPECT_EQ(formatter.dateFromString("2020-03-01 07:20:30.250"), kInstant);
    EXPECT_EQ(formatter.dateFromString("2020-03-01 07:20:30.250 trailing"), std::nullopt);
    EXPECT_EQ(formatter.dateFromString("2020-02-30 07:20:30.000"), std::nullopt);  // not lenient
    EXPECT_EQ(formatter.dateFromString(""), std::nullopt);
}

// A pattern beyond the documented length formats as "" and reads nothing, like an unreadable
// one; a text beyond its length reads as no date. Right at the lengths both work as before.
TEST(DateFormatter, PatternsAndTextsAreReadUpToTheirMaximumLength) {
    DateFormatter formatter;
    formatter.setLocale(Locale("en_US_POSIX"));
    formatter.setTimeZone(TimeZone::gmt());
    const std::string literal(DateFormatter::kMaximumPatternLength - 6, 'a');
    formatter.setDateFormat("yyyy'" + literal + "'");
    EXPECT_EQ(formatter.stringFromDate(kInstant), "2020" + literal);
    EXPECT_TRUE(formatter.dateFromString("2020" + literal).has_value());
    formatter.setDateFormat("yyyy'" + literal + "a'");
    EXPECT_EQ(formatter.dateFormat(), "yyyy'" + literal + "a'");
    EXPECT_EQ(formatter.stringFromDate(kInstant), "");
    EXPECT_EQ(formatter.dateFromString("2020" + literal + "a"), std::nullopt);

    // Without fractional seconds, so that the long run of digits is not refused for itself.
    formatter.setDateFormat("yyyy-MM-dd HH:mm:ss");
    const std::string padded(DateFormatter::kMaximumTextLength - 19, '0');
    EXPECT_EQ(formatter.dateFromString(padded + "2020-03-01 10:20:30"),
              kInstant.addingTimeInterval(-0.25));
    EXPECT_EQ(formatter.dateFromString(padded + "02020-03-01 10:20:30"), std::nullopt);
    EXPECT_EQ(formatter.dateFromString(std::string(1 << 20, '9')), std::nullopt);
}

TEST(DateFormatter, LongFractionsAndWidePatternsNeverReachIcu) {
    DateFormatter formatter;
    formatter.setLocale(Locale("en_US_POSIX"));
    formatter.setTimeZone(TimeZone::gmt());
    formatter.setDateFormat("yyyy-MM-dd'T'HH:mm:ss.SSS");
    const std::string prefix = "2020-03-01T10:20:30.";
    EXPECT_EQ(formatter.dateFromString(prefix + "250"), kInstant);
    EXPECT_EQ(formatter.dateFromString(prefix + std::string(35, '1')), std::nullopt);
    EXPECT_EQ(formatter.dateFromString(prefix + std::string(33, '1')), std::nullopt);
    std::string arabicIndic;  // digits of another script, and digits split by a direction mark
    for (int i = 0; i < 40; ++i) arabicIndic += "\u0661";
    EXPECT_EQ(formatter.dateFromString(prefix + arabicIndic), std::nullopt);
    EXPECT_EQ(
        formatter.dateFromString(prefix + std::string(20, '1') + "\u200E" + std::string(20, '1')),
        std::nullopt);

    // A pattern whose own literal digits make its output one long run reads nothing back.
    formatter.setDateFormat("SSSSSSSSSSSSS1e2147483648SSSyyyS");
    EXPECT_EQ(formatter.dateFromString(formatter.stringFromDate(kInstant)), std::nullopt);

    // Fields wider than the limit make the pattern unreadable; at the limit they work.
    formatter.setDateFormat(std::string(DateFormatter::kMaximumFieldWidth, 'y'));
    EXPECT_TRUE(formatter.stringFromDate(kInstant).ends_with("2020"));
    formatter.setDateFormat(std::string(DateFormatter::kMaximumFieldWidth + 1, 'S'));
    EXPECT_EQ(formatter.stringFromDate(kInstant), "");
    EXPECT_EQ(formatter.dateFromString("2020"), std::nullopt);
    formatter.setDateFormat("'" + std::string(100, 'S') + "' yyyy");  // quoted: literal text
    EXPECT_EQ(formatter.stringFromDate(kInstant), std::string(100, 'S') + " 2020");

    // A year read that no calendar can show is no date.
    formatter.setDateFormat("yyyyyyyy");
    EXPECT_EQ(formatter.dateFromString("99999999"), std::nullopt);
}

TEST(DateFormatter, DayPeriodsAreReadSafelyInLocalesWithoutThem) {
    const Date evening = Date::fromTimeIntervalSince1970(20 * 3600.0);
    DateFormatter english;
    english.setLocale(Locale("en_US"));
    english.setTimeZone(TimeZone::gmt());
    english.setDateFormat("BBBB");
    EXPECT_EQ(english.stringFromDate(evening), "in the evening");

    for (const char* unknown : {"xx_YY", "zz"}) {
        DateFormatter formatter;
        formatter.setLocale(Locale(unknown));
        formatter.setTimeZone(TimeZone::gmt());
        formatter.setDateFormat("h B");
        EXPECT_EQ(formatter.stringFromDate(evening), "8 PM");  // as ICU shows it there
        EXPECT_EQ(formatter.dateFromString("8 PM"), evening);
        for (const char* text : {"8 in the evening", "8 at night", "8 in the morning"})
            EXPECT_EQ(formatter.dateFromString(text), std::nullopt) << text;
        formatter.setDateFormat("h 'B' B");  // quoted: literal text
        EXPECT_EQ(formatter.stringFromDate(evening), "8 B PM");
    }
}

TEST(DateFormatter, DatesThatAreNotRepresentableShowAsTheEmptyText) {
    const std::vector<Date> unrepresentable = {
        Date{std::nan("")}, Date{std::numeric_limits<double>::infinity()},
        Date{-std::numeric_limits<double>::infinity()},
        Date::fromTimeIntervalSince1970(Date::kRepresentableSecondsFrom1970 * 1.01),
        Date::fromTimeIntervalSince1970(-Date::kRepresentableSecondsFrom1970 * 1.01)};
    const auto posix =
        DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(
            "yyyy-MM-dd'T'HH:mm:ss");
    const auto styled = DateFormatter::dateFormatterWithTimeZone_UTC_ForDateFormatterDateStyle(
        DateFormatter::Style::fullStyle, DateFormatter::Style::fullStyle, true, "en_US", false);
    DateFormatter formatter;
    formatter.setLocale(Locale("en_US_POSIX"));
    for (const Date& date : unrepresentable) {
        SCOPED_TRACE(date.timeIntervalSinceReferenceDate);
        EXPECT_EQ(posix->stringFromDate(date), "");
        EXPECT_EQ(styled->stringFromDate(date), "");
        EXPECT_EQ(DateVN::json(date), "");
        EXPECT_EQ(date.description(), "");
        // Every pattern letter, the day periods among them (ICU's crashed on NaN).
        for (char letter = 'A'; letter <= 'z'; ++letter) {
            formatter.setDateFormat(std::string(4, letter));
            EXPECT_EQ(formatter.stringFromDate(date), "");
        }
    }
    const Date edge = Date::fromTimeIntervalSince1970(Date::kRepresentableSecondsFrom1970);
    EXPECT_TRUE(edge.isRepresentable());
    EXPECT_EQ(posix->stringFromDate(edge), "3170843-11-07T09:46:40");
}

TEST(DateFormatter, YearOneFormatsAndReadsBackAsTheEmptyDate) {
    const auto json =
        DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat("yyyy-MM-dd");
    EXPECT_EQ(json->stringFromDate(DateVN::vnEmptyDate()), "0001-01-01");
    EXPECT_EQ(json->dateFromString("0001-01-01"), DateVN::vnEmptyDate());
    EXPECT_EQ(json->dateFromString("1582-10-10"),
              DateVN::vnEmptyDate().addingTimeInterval(577730 * 86400.0));
}

TEST(DateFormatter, StylesMakeTheLocalesPatternUntilAPatternIsSet) {
    DateFormatter formatter;
    EXPECT_EQ(formatter.stringFromDate(kInstant), "");  // no style, no pattern
    formatter.setLocale(Locale("en_US"));
    formatter.setTimeZone(TimeZone::gmt());
    formatter.setDateStyle(DateFormatter::Style::shortStyle);
    EXPECT_EQ(formatter.dateFormat(), "M/d/yy");
    EXPECT_EQ(formatter.stringFromDate(kInstant), "3/1/20");
    formatter.setLocale(Locale("de_DE"));
    EXPECT_EQ(formatter.stringFromDate(kInstant), "01.03.20");
    formatter.setDateFormat("dd/MM/yyyy");
    EXPECT_EQ(formatter.stringFromDate(kInstant), "01/03/2020");
    formatter.setTimeStyle(DateFormatter::Style::shortStyle);
    EXPECT_EQ(formatter.stringFromDate(kInstant), "01.03.20, 10:20");
}

TEST(DateFormatter, CachedStyleFormattersAreGmtWithOptionalMilliseconds) {
    const testing::ScopedProcessState state;
    TimeZone::setSystemTimeZone(*TimeZone::named("Asia/Tokyo"));
    const auto formatter = DateFormatter::dateFormatterWithTimeZone_UTC_ForDateFormatterDateStyle(
        DateFormatter::Style::shortStyle, DateFormatter::Style::mediumStyle, true, "de_DE", false);
    EXPECT_EQ(formatter->dateFormat(), "dd.MM.yy, HH:mm:ss.SSS");
    EXPECT_EQ(formatter->stringFromDate(kInstant), "01.03.20, 10:20:30.250");
    EXPECT_EQ(formatter->timeZone(), TimeZone::gmt());
    EXPECT_EQ(formatter->calendar().identifier(), "gregorian");
    EXPECT_EQ(formatter->dateFromString("01.03.20, 10:20:30.250"), kInstant);

    const auto current = DateFormatter::dateFormatterWithTimeZone_UTC_ForDateFormatterDateStyle(
        DateFormatter::Style::mediumStyle, DateFormatter::Style::noStyle, false, std::nullopt,
        true);
    EXPECT_EQ(current->timeZone(), TimeZone::gmt());

    const Value::Dictionary& cache = Thread::threadDictionary();
    EXPECT_EQ(
        cache.at("VNNSDateFormatterDateStyle1TimeStyle2de_DELocaleIdMS").objectAs<DateFormatter>(),
        formatter);
    EXPECT_EQ(cache.at("VNNSDateFormatterDateStyle2TimeStyle0CC").objectAs<DateFormatter>(),
              current);
    EXPECT_EQ(DateFormatter::dateFormatterWithTimeZone_UTC_ForDateFormatterDateStyle(
                  DateFormatter::Style::shortStyle, DateFormatter::Style::mediumStyle, true,
                  "de_DE", false),
              formatter);
}

TEST(DateFormatter, PosixFormattersAreCachedPerThreadAndPattern) {
    const auto here =
        DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat("yyyy/MM/dd");
    EXPECT_EQ(Thread::threadDictionary()
                  .at("VNNSDateFormatterWithFormatyyyy/MM/dd")
                  .objectAs<DateFormatter>(),
              here);
    EXPECT_EQ(here->locale().identifier(), "en_US_POSIX");
    DateFormatterPtr there;
    std::thread([&] {
        there = DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(
            "yyyy/MM/dd");
    }).join();
    EXPECT_NE(here, there);
    EXPECT_EQ(there->stringFromDate(kInstant), "2020/03/01");
}

TEST(DateFormatter, UnderALimitEachThreadKeepsThatManyFormatters) {
    const testing::ScopedProcessState state;
    const std::size_t capacity = kSuggestedCachedFormattersPerThread;
    setCachedFormattersPerThreadLimit(capacity);
    std::thread([&] {
        const auto first =
            DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(
                "'0' yyyy");
        for (std::size_t i = 1; i <= 2 * capacity; ++i) {
            const std::string pattern = "'" + std::to_string(i) + "' yyyy";
            const auto formatter =
                DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(
                    pattern);
            EXPECT_EQ(formatter->stringFromDate(kInstant), std::to_string(i) + " 2020");
        }
        std::size_t cached = 0;
        for (const auto& [key, value] : Thread::threadDictionary())
            cached += key.starts_with("VNNSDateFormatter") ? 1 : 0;
        EXPECT_EQ(cached, capacity);
        EXPECT_NE(DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(
                      "'0' yyyy"),
                  first);  // the least recently used went first
    }).join();
}

TEST(DateFormatter, ShortModelFormatsAndStyleMappings) {
    const std::pair<const char*, const char*> formats[] = {
        {"ANSI", "yyyy/MM/dd"}, {"YMD", "yy/MM/dd"},    {"MDY", "MM/dd/yy"},    {"DMY", "dd/MM/yy"},
        {"MDY4", "MM/dd/yyyy"}, {"DMY4", "dd/MM/yyyy"}, {"Y4MD", "yyyy/MM/dd"},
    };
    for (const auto& [name, pattern] : formats)
        EXPECT_EQ(DateFormatter::vnDateFormatForShortVNFormat(name), pattern);
    for (const char* unknown : {"ansi", "", "DMY2", "YDM"}) {
        EXPECT_EQ(DateFormatter::vnDateFormatForShortVNFormat(unknown), std::nullopt) << unknown;
    }

    using Style = DateFormatter::Style;
    EXPECT_EQ(DateFormatter::dateFormatterStyleFromVNDataDateFormat(VNDataDateFormatNone),
              Style::noStyle);
    EXPECT_EQ(DateFormatter::dateFormatterStyleFromVNDataDateFormat(VNDataDateFormatShort),
              Style::shortStyle);
    EXPECT_EQ(DateFormatter::dateFormatterStyleFromVNDataDateFormat(VNDataDateFormatFull),
              Style::fullStyle);
    EXPECT_EQ(
        DateFormatter::dateFormatterStyleFromVNDataDateFormat(static_cast<VNDataDateFormat>(9)),
        Style::shortStyle);
    EXPECT_EQ(DateFormatter::dateFormatterStyleFromVNDataTimeFormat(VNDataTimeFormatMedium),
              Style::mediumStyle);
    EXPECT_EQ(DateFormatter::dateFormatterStyleFromVNDataTimeFormat(VNDataTimeFormatLong),
              Style::longStyle);
    EXPECT_EQ(
        DateFormatter::dateFormatterStyleFromVNDataTimeFormat(static_cast<VNDataTimeFormat>(200)),
        Style::shortStyle);
}

}  // namespace
}  // namespace vn
