// vn::DateFormatter: converts instants to text and back, by date and time styles in a locale
// or by an explicit date-format pattern ("yyyy-MM-dd'T'HH:mm:ss"), in a calendar and a time
// zone. Gregorian calendars are proleptic: the instant 0001-01-01T00:00:00 GMT formats as
// "0001-01-01" and that text reads back as the same instant.
//
// The class also carries the model's cached date formatters, kept per thread in the thread
// dictionary under keys that begin with "VNNSDateFormatter" (for the life of the thread unless
// a host bounds them: vn/formatting/FormatterCacheLimit.h), the short model date formats and
// the mapping of the model's date and time formats to styles.
//
// Thread safety: a formatter is not synchronised. Configure it and use it from one thread at
// a time; the cached formatters are per thread for this reason.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vn/formatting/Calendar.h"
#include "vn/formatting/TimeZone.h"
#include "vn/formatting/VNDataDateFormat.h"
#include "vn/platform/Date.h"
#include "vn/platform/Locale.h"
#include "vn/platform/Object.h"

namespace vn {

class DateFormatter;
using DateFormatterPtr = std::shared_ptr<DateFormatter>;

class DateFormatter : public Object {
  public:
    // The platform's date-formatter styles with their raw values.
    enum class Style : std::uint8_t {
        noStyle = 0,
        shortStyle = 1,
        mediumStyle = 2,
        longStyle = 3,
        fullStyle = 4,
    };

    // A formatter in the user's current locale, with the locale's calendar and the device's
    // time zone, both styles noStyle and no pattern: it formats every instant as "".
    DateFormatter();
    ~DateFormatter() override;

    // Changing the locale recomputes a style-made pattern for the new locale.
    Locale locale() const;
    void setLocale(const Locale& locale);

    // Setting a style replaces the pattern by the one the two styles make in the locale.
    Style dateStyle() const;
    void setDateStyle(Style style);
    Style timeStyle() const;
    void setTimeStyle(Style style);

    // The longest pattern (in UTF-8 bytes) the formatter reads. ICU reads a run of adjacent
    // numeric fields in time that grows with the square of the pattern's length, so a longer
    // pattern is treated as one ICU cannot read: it formats every instant as "" and reads no
    // text. dateFormat() still answers the pattern as it was set.
    static constexpr std::size_t kMaximumPatternLength = 512;
    // The longest text (in UTF-8 bytes) dateFromString reads; a longer text reads as no date.
    // It is far above what any pattern within kMaximumPatternLength writes, and keeps ICU's
    // reading of digit runs (quadratic in their length) short.
    static constexpr std::size_t kMaximumTextLength = 32768;

    // The pattern in use: the one set last, or the one the styles make. A pattern that cannot
    // be read, or that has a field (a run of one unquoted letter) wider than
    // kMaximumFieldWidth, formats every date as "" and reads no text, as the empty pattern.
    // In a locale without flexible day periods (an unknown one, such as "xx_YY") the day
    // period "B" is shown and read as the AM/PM marker "a", as ICU shows it there; ICU's own
    // reading of it in such a locale is not safe.
    std::string dateFormat() const;
    void setDateFormat(std::string_view pattern);
    static constexpr std::size_t kMaximumFieldWidth = 32;

    // The calendar fields are taken from; by default the locale's calendar. The formatter's
    // own time zone applies, whatever the calendar's zone.
    Calendar calendar() const;
    void setCalendar(const Calendar& calendar);
    TimeZone timeZone() const;
    void setTimeZone(const TimeZone& zone);

    // "" for a date that is not representable (see Date::isRepresentable).
    [[nodiscard]] std::string stringFromDate(const Date& date) const;
    // Reads the whole text by the pattern (not leniently); absent when it does not match, when
    // text is left over, when it is longer than kMaximumTextLength, or when the date read is
    // not representable. With fractional seconds
    // ("S") in the pattern, a text with more than kMaximumDigitRun digits in a row is refused
    // (absent) before it is read: the ICU in use cannot read longer fractions safely.
    [[nodiscard]] std::optional<Date> dateFromString(std::string_view text) const;
    static constexpr std::size_t kMaximumDigitRun = 32;

    std::string description() const override;

    // ---- The model's cached date formatters -----------------------------------------------
    //
    // The first request made on the main thread registers, once per process, an observer of
    // NSCurrentLocaleDidChangeNotification on the main queue, which removes every
    // "VNNSDateFormatter…" entry from the dictionary of the thread it runs on (the main
    // thread). The time zone of these formatters is always GMT, whatever the locale: the
    // model stores wall-clock values in GMT.

    // A style formatter: locale for the identifier when one is given; the two styles; the
    // calendar: with useCurrentCalendar the user's current calendar set to GMT, else
    // Calendar::vn(); with hasMilliseconds every ":ss" of the resulting pattern becomes
    // ":ss.SSS"; time zone GMT.
    // Key: "VNNSDateFormatterDateStyle<d>TimeStyle<t>" [+ identifier + "LocaleId"] ["MS"] ["CC"].
    static DateFormatterPtr dateFormatterWithTimeZone_UTC_ForDateFormatterDateStyle(
        Style dateStyle, Style timeStyle, bool hasMilliseconds,
        const std::optional<std::string>& localeId, bool useCurrentCalendar);

    // A pattern formatter in the "en_US_POSIX" locale and GMT, with the model's calendar.
    // Key: "VNNSDateFormatterWithFormat" + pattern.
    static DateFormatterPtr dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(
        std::string_view pattern);

    // The style of the same name (see VNDataDateFormat.h); a raw value outside the
    // enumeration gives shortStyle, the model's default presentation.
    static Style dateFormatterStyleFromVNDataDateFormat(VNDataDateFormat format);
    static Style dateFormatterStyleFromVNDataTimeFormat(VNDataTimeFormat format);

    // The pattern of a short model date format: "ANSI" and "Y4MD" "yyyy/MM/dd", "YMD"
    // "yy/MM/dd", "MDY" "MM/dd/yy", "DMY" "dd/MM/yy", "MDY4" "MM/dd/yyyy", "DMY4"
    // "dd/MM/yyyy" (names compared exactly); absent for any other name.
    static std::optional<std::string> vnDateFormatForShortVNFormat(std::string_view name);

  private:
    struct State;
    void invalidate();
    void prepare() const;

    std::unique_ptr<State> state_;
};

}  // namespace vn
