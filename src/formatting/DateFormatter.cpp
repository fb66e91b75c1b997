#include "vn/formatting/DateFormatter.h"

#include <unicode/datefmt.h>
#include <unicode/smpdtfmt.h>
#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/ures.h>

#include <algorithm>
#include <string>

#include "formatting/CalendarImpl.h"
#include "formatting/IcuSupport.h"
#include "formatting/TimeZoneImpl.h"
#include "vn/platform/FatalError.h"

namespace vn {
namespace {

using formatting_internal::icuLocale;
using formatting_internal::toUnicode;
using formatting_internal::toUtf8;

icu::DateFormat::EStyle icuStyle(DateFormatter::Style style) {
    switch (style) {
        case DateFormatter::Style::shortStyle:
            return icu::DateFormat::kShort;
        case DateFormatter::Style::mediumStyle:
            return icu::DateFormat::kMedium;
        case DateFormatter::Style::longStyle:
            return icu::DateFormat::kLong;
        case DateFormatter::Style::fullStyle:
            return icu::DateFormat::kFull;
        case DateFormatter::Style::noStyle:
            break;
    }
    return icu::DateFormat::kNone;
}

std::string stylePattern(DateFormatter::Style date, DateFormatter::Style time,
                         const std::string& localeId) {
    if (date == DateFormatter::Style::noStyle && time == DateFormatter::Style::noStyle) return "";
    std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateTimeInstance(
        icuStyle(date), icuStyle(time), icuLocale(localeId)));
    const auto* simple = dynamic_cast<const icu::SimpleDateFormat*>(format.get());
    if (!simple) return "";
    icu::UnicodeString pattern;
    return toUtf8(simple->toPattern(pattern));
}

// What the guards around ICU need to know of a pattern: its widest field (a run of one
// unquoted letter) and whether it reads fractional seconds ("S").
struct PatternFields {
    std::size_t widest = 0;
    bool fractionalSeconds = false;
};

PatternFields patternFields(std::string_view pattern) {
    PatternFields fields;
    bool quoted = false;
    char previous = 0;
    std::size_t run = 0;
    for (const char c : pattern) {
        if (c == '\'') quoted = !quoted;
        const bool letter = !quoted && ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'));
        run = !letter ? 0 : c == previous ? run + 1 : 1;
        previous = letter ? c : 0;
        fields.widest = std::max(fields.widest, run);
        fields.fractionalSeconds = fields.fractionalSeconds || (letter && c == 'S');
    }
    return fields;
}

// ICU divides a fraction by ten to the power of its digit count less three, in 32 bits: from
// 35 digits on the divisor wraps to zero and the process dies. A longer run of digits (of any
// script; invisible format characters between them do not end a run) is therefore never read.
bool hasOverlongDigitRun(const icu::UnicodeString& text) {
    std::size_t run = 0;
    for (int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1)) {
        const UChar32 c = text.char32At(at);
        if (u_isdigit(c)) {
            if (++run > DateFormatter::kMaximumDigitRun) return true;
        } else if (u_charType(c) != U_FORMAT_CHAR) {
            run = 0;
        }
    }
    return false;
}

// Whether ICU has flexible day periods ("in the evening") for the locale or one of its
// parents, found as ICU's own lookup finds them.
bool hasDayPeriodRules(const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUResourceBundlePointer data(ures_openDirect(nullptr, "dayPeriods", &status));
    const icu::LocalUResourceBundlePointer locales(
        ures_getByKey(data.getAlias(), "locales", nullptr, &status));
    if (U_FAILURE(status)) return false;
    std::string name = locale.getBaseName();
    if (name.empty()) name = "root";
    while (!name.empty()) {
        UErrorCode lookup = U_ZERO_ERROR;
        int32_t length = 0;
        ures_getStringByKey(locales.getAlias(), name.c_str(), &length, &lookup);
        if (U_SUCCESS(lookup)) return true;
        char parent[ULOC_FULLNAME_CAPACITY] = {};
        UErrorCode parentStatus = U_ZERO_ERROR;
        uloc_getParent(name.c_str(), parent, sizeof parent, &parentStatus);
        if (U_FAILURE(parentStatus)) return false;
        name = parent;
    }
    return false;
}

// ICU shows the flexible day period "B" as the AM/PM marker "a" for a locale without day
// periods, but reading it there dereferences missing rules and kills the process. Such a
// pattern gets "a" in place of "B", which shows the same and reads safely.
std::string withSafeDayPeriods(const std::string& pattern, const icu::Locale& locale) {
    std::string result = pattern;
    bool quoted = false;
    bool replaced = false;
    for (char& c : result) {
        if (c == '\'') quoted = !quoted;
        if (c == 'B' && !quoted) {
            c = 'a';
            replaced = true;
        }
    }
    return replaced && !hasDayPeriodRules(locale) ? result : pattern;
}

// Every call gets a fresh status: a failed UErrorCode makes later ICU calls do nothing.
std::unique_ptr<icu::SimpleDateFormat> makeSimpleDateFormat(const std::string& pattern,
                                                            const std::string& localeId) {
    const icu::Locale locale = icuLocale(localeId);
    UErrorCode status = U_ZERO_ERROR;
    const bool readable = pattern.size() <= DateFormatter::kMaximumPatternLength &&
                          patternFields(pattern).widest <= DateFormatter::kMaximumFieldWidth;
    if (readable) {
        auto format = std::make_unique<icu::SimpleDateFormat>(
            toUnicode(withSafeDayPeriods(pattern, locale)), locale, status);
        if (U_SUCCESS(status)) return format;
    }
    // A pattern ICU cannot read (or is not given, being too long or too wide) formats as the
    // empty text, as an empty pattern does.
    status = U_ZERO_ERROR;
    auto format = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString(), locale, status);
    if (U_FAILURE(status)) fatalError("DateFormatter: the ICU date data is not available");
    return format;
}

}  // namespace

struct DateFormatter::State {
    std::string localeId;
    Style dateStyle = Style::noStyle;
    Style timeStyle = Style::noStyle;
    std::optional<std::string> pattern;  // set explicitly; else the styles'
    std::optional<Calendar> calendar;    // set explicitly; else the locale's
    TimeZone timeZone = TimeZone::gmt();
    mutable std::unique_ptr<icu::SimpleDateFormat> icu;  // built on first use after a change
    mutable bool readsFractionalSeconds = false;         // decided with icu
};

DateFormatter::DateFormatter() : state_(std::make_unique<State>()) {
    state_->localeId = Locale::current().identifier();
    state_->timeZone = TimeZone::system();
}

DateFormatter::~DateFormatter() = default;

void DateFormatter::invalidate() {
    state_->icu.reset();
}

void DateFormatter::prepare() const {
    State& s = *state_;
    if (s.icu) return;
    const std::string pattern = dateFormat();
    auto format = makeSimpleDateFormat(pattern, s.localeId);
    s.readsFractionalSeconds = patternFields(pattern).fractionalSeconds;
    if (s.calendar) {
        format->adoptCalendar(formatting_internal::cloneIcuCalendar(*s.calendar));
    } else {
        std::unique_ptr<icu::Calendar> calendar(format->getCalendar()->clone());
        formatting_internal::makeProleptic(*calendar);
        format->adoptCalendar(calendar.release());
    }
    format->adoptTimeZone(formatting_internal::cloneIcuTimeZone(s.timeZone));
    format->setLenient(false);
    s.icu = std::move(format);
}

Locale DateFormatter::locale() const {
    return Locale(state_->localeId);
}

void DateFormatter::setLocale(const Locale& locale) {
    state_->localeId = locale.identifier();
    invalidate();
}

DateFormatter::Style DateFormatter::dateStyle() const {
    return state_->dateStyle;
}

void DateFormatter::setDateStyle(Style style) {
    state_->dateStyle = style;
    state_->pattern.reset();
    invalidate();
}

DateFormatter::Style DateFormatter::timeStyle() const {
    return state_->timeStyle;
}

void DateFormatter::setTimeStyle(Style style) {
    state_->timeStyle = style;
    state_->pattern.reset();
    invalidate();
}

std::string DateFormatter::dateFormat() const {
    if (state_->pattern) return *state_->pattern;
    return stylePattern(state_->dateStyle, state_->timeStyle, state_->localeId);
}

void DateFormatter::setDateFormat(std::string_view pattern) {
    state_->pattern = std::string(pattern);
    invalidate();
}

Calendar DateFormatter::calendar() const {
    if (state_->calendar) return *state_->calendar;
    prepare();
    return formatting_internal::CalendarFactory::make(
        std::unique_ptr<icu::Calendar>(state_->icu->getCalendar()->clone()));
}

void DateFormatter::setCalendar(const Calendar& calendar) {
    state_->calendar = calendar;
    invalidate();
}

TimeZone DateFormatter::timeZone() const {
    return state_->timeZone;
}

void DateFormatter::setTimeZone(const TimeZone& zone) {
    state_->timeZone = zone;
    invalidate();
}

std::string DateFormatter::stringFromDate(const Date& date) const {
    if (!date.isRepresentable()) return "";
    prepare();
    icu::UnicodeString text;
    state_->icu->format(formatting_internal::icuDate(date), text);
    return toUtf8(text);
}

std::optional<Date> DateFormatter::dateFromString(std::string_view text) const {
    if (text.size() > kMaximumTextLength) return std::nullopt;
    prepare();
    const icu::UnicodeString input = toUnicode(text);
    if (state_->readsFractionalSeconds && hasOverlongDigitRun(input)) return std::nullopt;
    icu::ParsePosition position(0);
    const UDate parsed = state_->icu->parse(input, position);
    if (position.getErrorIndex() >= 0 || position.getIndex() == 0 ||
        position.getIndex() != input.length()) {
        return std::nullopt;
    }
    const Date date = formatting_internal::dateFromIcu(parsed);
    if (!date.isRepresentable()) return std::nullopt;
    return date;
}

std::string DateFormatter::description() const {
    return "<DateFormatter: locale " + state_->localeId + ", format \"" + dateFormat() +
           "\", time zone " + state_->timeZone.identifier() + ">";
}

}  // namespace vn
