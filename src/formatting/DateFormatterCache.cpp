// The model's cached date formatters and date-format tables (class members of
// vn::DateFormatter).
#include <array>
#include <utility>

#include "formatting/FormatterCache.h"
#include "vn/formatting/DateFormatter.h"

namespace vn {
namespace {

using formatting_internal::threadCachedObject;

formatting_internal::LocaleChangeCacheObserver& dateFormatterObserver() {
    static auto* observer = new formatting_internal::LocaleChangeCacheObserver(
        "VNNSDateFormatter");  // process-wide, never destroyed
    return *observer;
}

void appendStyle(std::string& key, DateFormatter::Style style) {
    key.append(std::to_string(static_cast<unsigned>(style)));
}

// Every ":ss" of the pattern becomes ":ss.SSS".
std::string withMilliseconds(std::string pattern) {
    constexpr std::string_view seconds = ":ss";
    for (std::size_t at = pattern.find(seconds); at != std::string::npos;
         at = pattern.find(seconds, at)) {
        pattern.insert(at + seconds.size(), ".SSS");
        at += seconds.size() + 4;
    }
    return pattern;
}

DateFormatter::Style styleForRawValue(unsigned raw) {
    return raw <= static_cast<unsigned>(DateFormatter::Style::fullStyle)
               ? static_cast<DateFormatter::Style>(raw)
               : DateFormatter::Style::shortStyle;
}

}  // namespace

DateFormatterPtr DateFormatter::dateFormatterWithTimeZone_UTC_ForDateFormatterDateStyle(
    Style dateStyle, Style timeStyle, bool hasMilliseconds,
    const std::optional<std::string>& localeId, bool useCurrentCalendar) {
    std::string& key =
        formatting_internal::beginKey(dateFormatterObserver(), "VNNSDateFormatterDateStyle");
    appendStyle(key, dateStyle);
    key.append("TimeStyle");
    appendStyle(key, timeStyle);
    if (localeId) {
        key.append(*localeId);
        key.append("LocaleId");
    }
    if (hasMilliseconds) key.append("MS");
    if (useCurrentCalendar) key.append("CC");
    return threadCachedObject<DateFormatter>(dateFormatterObserver(), key, [&] {
        auto formatter = std::make_shared<DateFormatter>();
        if (localeId) formatter->setLocale(Locale(*localeId));
        formatter->setDateStyle(dateStyle);
        formatter->setTimeStyle(timeStyle);
        if (useCurrentCalendar) {
            Calendar calendar = Calendar::current();
            calendar.setTimeZone(TimeZone::gmt());
            formatter->setCalendar(calendar);
        } else {
            formatter->setCalendar(Calendar::vn());
        }
        if (hasMilliseconds) formatter->setDateFormat(withMilliseconds(formatter->dateFormat()));
        formatter->setTimeZone(TimeZone::gmt());
        return formatter;
    });
}

DateFormatterPtr DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(
    std::string_view pattern) {
    std::string& key =
        formatting_internal::beginKey(dateFormatterObserver(), "VNNSDateFormatterWithFormat");
    key.append(pattern);
    return threadCachedObject<DateFormatter>(dateFormatterObserver(), key, [&] {
        auto formatter = std::make_shared<DateFormatter>();
        formatter->setLocale(Locale("en_US_POSIX"));
        formatter->setCalendar(Calendar::vn());
        formatter->setTimeZone(TimeZone::gmt());
        formatter->setDateFormat(pattern);
        return formatter;
    });
}

DateFormatter::Style DateFormatter::dateFormatterStyleFromVNDataDateFormat(
    VNDataDateFormat format) {
    return styleForRawValue(format);
}

DateFormatter::Style DateFormatter::dateFormatterStyleFromVNDataTimeFormat(
    VNDataTimeFormat format) {
    return styleForRawValue(format);
}

std::optional<std::string> DateFormatter::vnDateFormatForShortVNFormat(std::string_view name) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 7> kFormats{{
        {"ANSI", "yyyy/MM/dd"},
        {"YMD", "yy/MM/dd"},
        {"MDY", "MM/dd/yy"},
        {"DMY", "dd/MM/yy"},
        {"MDY4", "MM/dd/yyyy"},
        {"DMY4", "dd/MM/yyyy"},
        {"Y4MD", "yyyy/MM/dd"},
    }};
    for (const auto& [shortName, pattern] : kFormats) {
        if (shortName == name) return std::string(pattern);
    }
    return std::nullopt;
}

}  // namespace vn
