// vn::Calendar: breaks instants into calendar fields (year, month, day, time of day) and back,
// in a time zone.
//
// Every Gregorian calendar here is proleptic: the Gregorian rules apply to every year,
// including those before the Gregorian reform of 1582, so year 1, month 1, day 1 is the
// instant 0001-01-01T00:00:00 of the model and not a Julian date.
//
// Calendar::vn() is the model's calendar (Gregorian, GMT), built once per process. A
// Calendar is a value (copies are independent); its members are safe from any thread. A
// moved-from Calendar may only be assigned to or destroyed.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "vn/formatting/TimeZone.h"
#include "vn/platform/Date.h"

namespace vn {
namespace formatting_internal {
struct CalendarFactory;
}

// The fields of an instant in a calendar. Absent fields are not set (for dateFromComponents:
// taken as the smallest value: month 1, day 1, hour 0, ...). month and day count from 1;
// weekday counts 1 (Sunday) to 7 (Saturday); era 1 is the common era.
struct DateComponents {
    std::optional<int> era;
    std::optional<int> year;
    std::optional<int> month;
    std::optional<int> day;
    std::optional<int> hour;
    std::optional<int> minute;
    std::optional<int> second;
    std::optional<int> nanosecond;
    std::optional<int> weekday;

    bool operator==(const DateComponents&) const = default;
};

class Calendar {
  public:
    // A proleptic Gregorian calendar in the zone.
    static Calendar gregorian(const TimeZone& zone);
    // The model's calendar: Gregorian, time zone GMT (offset 0). Made once, never changed.
    static const Calendar& vn();
    // The user's current calendar: the current locale's calendar (Gregorian for most
    // locales, proleptic like every Gregorian calendar here) in the device's time zone.
    static Calendar current();

    Calendar(const Calendar& other);
    Calendar& operator=(const Calendar& other);
    Calendar(Calendar&& other) noexcept;
    Calendar& operator=(Calendar&& other) noexcept;
    ~Calendar();

    // "gregorian", "buddhist", "japanese", ...
    std::string identifier() const;
    TimeZone timeZone() const;
    void setTimeZone(const TimeZone& zone);

    // Every field of the instant (all of DateComponents set).
    DateComponents components(const Date& date) const;
    // The instant of the fields; absent when the fields are out of range (month 13, day 0,
    // ...) or beyond the calendar's limits.
    [[nodiscard]] std::optional<Date> dateFromComponents(const DateComponents& components) const;
    // 00:00:00 of the instant's day.
    Date startOfDay(const Date& date) const;
    // Whether both instants fall on the same day (same era, year, month and day).
    bool isDateInSameDayAsDate(const Date& date, const Date& other) const;

    struct Impl;
    const Impl& impl() const { return *impl_; }

  private:
    friend struct formatting_internal::CalendarFactory;
    explicit Calendar(std::unique_ptr<Impl> impl);

    std::unique_ptr<Impl> impl_;
};

}  // namespace vn
