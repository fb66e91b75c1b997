// The model's date conventions on vn::Date (namespace vn::DateVN).
//
// The model has two temporal types, date and date-time, plus a time-only use of date-time,
// and an "empty" value for each. All model arithmetic is done in the model calendar
// (Calendar::vn(): Gregorian, GMT):
// - the empty date is 0001-01-01T00:00:00 GMT (proleptic Gregorian), exactly
//   63,113,904,000 seconds before the reference date 2001-01-01T00:00:00 GMT;
// - a time-only date-time is one whose day is the empty date's day; its time of day is the
//   value;
// - an instant has a time part when its seconds since the reference date, taken with the
//   floating-point remainder by 86400, are not zero.
//
// Where the model gives an operation two names (isVnEmpty / isVnEmptyDate) both are offered.
// Every function is safe from any thread; the time-zone shifts read the device's zone and
// VNTimeZone's current zone at the moment of the call.
#pragma once

#include <string>

#include "vn/platform/Date.h"

namespace vn::DateVN {

// The empty date (computed once).
Date vnEmptyDate();
Date vnEmptyDateTime();
Date vnEmptyTime();
Date vnEmpty();

// Whether the instant has a time part.
bool isVnDateTime(const Date& date);
// Whether the instant falls on the empty date's day in the model calendar.
bool isVnTimeOnly(const Date& date);
bool isVnTimeOnlyDateTime(const Date& date);
// Whether the instant is exactly the empty date.
bool isVnEmpty(const Date& date);
bool isVnEmptyDate(const Date& date);

// Truncated down to a whole second (floor of the seconds since the reference date).
Date vnDateTime(const Date& date);
Date vnDateTimeNSDate(const Date& date);
// Rounded to the millisecond (seconds × 1000, rounded half away from zero, ÷ 1000).
Date vnDateTimeMS(const Date& date);
Date vnDateTimeNSDateMS(const Date& date);
// 00:00:00 GMT of the instant's day (also before the reference date).
Date vnDate(const Date& date);
Date vnDateNSDate(const Date& date);
// The instant's GMT time of day, truncated to the second, placed on the empty date.
Date vnTimeOnlyDateTime(const Date& date);
Date vnTimeOnlyDateTimeNSDate(const Date& date);
// The same with the time of day rounded to the millisecond.
Date vnTimeOnlyDateTimeMS(const Date& date);
Date vnTimeOnlyDateTimeNSDateMS(const Date& date);

// The text for JSON: "yyyy-MM-dd'T'HH:mm:ss" when the instant has a time part, else
// "yyyy-MM-dd", in GMT with the en_US_POSIX locale (fractions of a second are not shown);
// "" for a date that is not representable (see Date::isRepresentable).
std::string json(const Date& date);
std::string JSON(const Date& date);

// Shifts between GMT, the device's zone ("local") and VNTimeZone's current zone ("current").
// X-from-GMT adds X's offset from GMT at the instant; GMT-from-X subtracts it;
// current-from-local subtracts the device zone's offset and adds the current zone's; and
// local-from-current the reverse.
Date localTimeZoneDateFromGMT(const Date& date);
Date gmtTimeZoneDateFromLocal(const Date& date);
Date currentTimeZoneDateFromGMT(const Date& date);
Date gmtTimeZoneDateFromCurrent(const Date& date);
Date currentTimeZoneDateFromLocal(const Date& date);
Date localTimeZoneDateFromCurrent(const Date& date);

// The offset in seconds of VNTimeZone's current zone at the instant.
double currentTimeZoneSecondsFromGMT(const Date& date);

}  // namespace vn::DateVN
