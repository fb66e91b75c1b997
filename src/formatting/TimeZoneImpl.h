// The ICU zone behind a vn::TimeZone, for the formatting sources that hand zones to ICU.
#pragma once

#include <unicode/timezone.h>

#include <memory>
#include <string>

#include "vn/formatting/TimeZone.h"

namespace vn {

struct TimeZone::Impl {
    std::unique_ptr<const icu::TimeZone> zone;
    std::string identifier;
};

namespace formatting_internal {

// A new ICU zone equal to zone, owned by the caller.
inline icu::TimeZone* cloneIcuTimeZone(const TimeZone& zone) {
    return zone.impl().zone->clone();
}

// Milliseconds since 1970 for ICU.
inline double icuDate(const Date& date) {
    return date.timeIntervalSince1970() * 1000.0;
}
inline Date dateFromIcu(double milliseconds) {
    return Date::fromTimeIntervalSince1970(milliseconds / 1000.0);
}

}  // namespace formatting_internal
}  // namespace vn
