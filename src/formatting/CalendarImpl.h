// The ICU calendar behind a vn::Calendar, for the formatting sources that hand calendars to
// ICU formatters.
#pragma once

#include <unicode/calendar.h>

#include <memory>
#include <mutex>

#include "vn/formatting/Calendar.h"

namespace vn {

struct Calendar::Impl {
    // ICU calendars keep mutable fields, so every use goes through the lock.
    mutable std::mutex mutex;
    std::unique_ptr<icu::Calendar> calendar;
};

namespace formatting_internal {

// Makes a Gregorian-based ICU calendar proleptic (Gregorian rules in every year).
void makeProleptic(icu::Calendar& calendar);

struct CalendarFactory {
    // A Calendar that owns the ICU calendar.
    static Calendar make(std::unique_ptr<icu::Calendar> calendar) {
        auto impl = std::make_unique<Calendar::Impl>();
        impl->calendar = std::move(calendar);
        return Calendar(std::move(impl));
    }
};

// A new ICU calendar equal to calendar, owned by the caller.
inline icu::Calendar* cloneIcuCalendar(const Calendar& calendar) {
    std::lock_guard lock(calendar.impl().mutex);
    return calendar.impl().calendar->clone();
}

}  // namespace formatting_internal
}  // namespace vn
