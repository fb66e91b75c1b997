#include "vn/formatting/Calendar.h"

#include <unicode/gregocal.h>

#include <cfloat>
#include <cmath>

#include "formatting/CalendarImpl.h"
#include "formatting/IcuSupport.h"
#include "formatting/TimeZoneImpl.h"
#include "vn/platform/FatalError.h"
#include "vn/platform/Locale.h"

namespace vn {
namespace formatting_internal {

void makeProleptic(icu::Calendar& calendar) {
    if (auto* gregorian = dynamic_cast<icu::GregorianCalendar*>(&calendar)) {
        UErrorCode status = U_ZERO_ERROR;
        gregorian->setGregorianChange(-DBL_MAX, status);
    }
}

}  // namespace formatting_internal

namespace {

using formatting_internal::cloneIcuTimeZone;
using formatting_internal::dateFromIcu;
using formatting_internal::icuDate;

std::unique_ptr<icu::Calendar> makeIcuCalendar(const TimeZone& zone, const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(cloneIcuTimeZone(zone), locale, status));
    if (U_FAILURE(status) || !calendar) {
        status = U_ZERO_ERROR;
        calendar = std::make_unique<icu::GregorianCalendar>(cloneIcuTimeZone(zone), status);
        if (U_FAILURE(status)) fatalError("Calendar: the ICU calendar data is not available");
    }
    formatting_internal::makeProleptic(*calendar);
    return calendar;
}

int field(const icu::Calendar& calendar, UCalendarDateFields which) {
    UErrorCode status = U_ZERO_ERROR;
    const int value = calendar.get(which, status);
    return U_SUCCESS(status) ? value : 0;
}

}  // namespace

Calendar::Calendar(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

Calendar Calendar::gregorian(const TimeZone& zone) {
    return formatting_internal::CalendarFactory::make(
        makeIcuCalendar(zone, icu::Locale("en_US_POSIX@calendar=gregorian")));
}

const Calendar& Calendar::vn() {
    static const auto* calendar =
        new Calendar(gregorian(TimeZone::gmt()));  // process-wide, never destroyed
    return *calendar;
}

Calendar Calendar::current() {
    return formatting_internal::CalendarFactory::make(makeIcuCalendar(
        TimeZone::system(), formatting_internal::icuLocale(Locale::current().identifier())));
}

Calendar::Calendar(const Calendar& other) : impl_(std::make_unique<Impl>()) {
    impl_->calendar.reset(formatting_internal::cloneIcuCalendar(other));
}

Calendar& Calendar::operator=(const Calendar& other) {
    if (this != &other) {
        std::unique_ptr<icu::Calendar> copy(formatting_internal::cloneIcuCalendar(other));
        std::lock_guard lock(impl_->mutex);
        impl_->calendar = std::move(copy);
    }
    return *this;
}

Calendar::Calendar(Calendar&& other) noexcept = default;
Calendar& Calendar::operator=(Calendar&& other) noexcept = default;
Calendar::~Calendar() = default;

std::string Calendar::identifier() const {
    std::lock_guard lock(impl_->mutex);
    return impl_->calendar->getType();
}

TimeZone Calendar::timeZone() const {
    std::string identifier;
    {
        std::lock_guard lock(impl_->mutex);
        icu::UnicodeString id;
        impl_->calendar->getTimeZone().getID(id);
        identifier = formatting_internal::toUtf8(id);
    }
    return TimeZone::named(identifier).value_or(TimeZone::gmt());
}

void Calendar::setTimeZone(const TimeZone& zone) {
    std::lock_guard lock(impl_->mutex);
    impl_->calendar->adoptTimeZone(cloneIcuTimeZone(zone));
}

DateComponents Calendar::components(const Date& date) const {
    std::lock_guard lock(impl_->mutex);
    icu::Calendar& calendar = *impl_->calendar;
    UErrorCode status = U_ZERO_ERROR;
    calendar.setTime(icuDate(date), status);
    DateComponents c;
    c.era = field(calendar, UCAL_ERA);
    c.year = field(calendar, UCAL_YEAR);
    c.month = field(calendar, UCAL_MONTH) + 1;
    c.day = field(calendar, UCAL_DATE);
    c.hour = field(calendar, UCAL_HOUR_OF_DAY);
    c.minute = field(calendar, UCAL_MINUTE);
    c.second = field(calendar, UCAL_SECOND);
    // The fraction of the second below the millisecond is not kept by ICU: take it from the date.
    const double seconds = date.timeIntervalSinceReferenceDate;
    const double fraction = seconds - std::floor(seconds);
    c.nanosecond = static_cast<int>(std::floor(fraction * 1e9));
    c.weekday = field(calendar, UCAL_DAY_OF_WEEK);
    return c;
}

std::optional<Date> Calendar::dateFromComponents(const DateComponents& c) const {
    std::lock_guard lock(impl_->mutex);
    icu::Calendar& calendar = *impl_->calendar;
    calendar.clear();
    calendar.setLenient(false);
    if (c.era) calendar.set(UCAL_ERA, *c.era);
    calendar.set(UCAL_YEAR, c.year.value_or(1));
    calendar.set(UCAL_MONTH, c.month.value_or(1) - 1);
    calendar.set(UCAL_DATE, c.day.value_or(1));
    calendar.set(UCAL_HOUR_OF_DAY, c.hour.value_or(0));
    calendar.set(UCAL_MINUTE, c.minute.value_or(0));
    calendar.set(UCAL_SECOND, c.second.value_or(0));
    UErrorCode status = U_ZERO_ERROR;
    const UDate milliseconds = calendar.getTime(status);
    calendar.setLenient(true);
    if (U_FAILURE(status)) return std::nullopt;
    return dateFromIcu(milliseconds).addingTimeInterval(c.nanosecond.value_or(0) / 1e9);
}

Date Calendar::startOfDay(const Date& date) const {
    DateComponents day = components(date);
    day.hour = day.minute = day.second = day.nanosecond = 0;
    day.weekday.reset();
    return dateFromComponents(day).value_or(date);
}

bool Calendar::isDateInSameDayAsDate(const Date& date, const Date& other) const {
    const DateComponents a = components(date);
    const DateComponents b = components(other);
    return a.era == b.era && a.year == b.year && a.month == b.month && a.day == b.day;
}

}  // namespace vn
