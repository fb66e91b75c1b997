#include "vn/formatting/DateVN.h"

#include <cmath>

#include "vn/formatting/Calendar.h"
#include "vn/formatting/DateFormatter.h"
#include "vn/formatting/VNTimeZone.h"

namespace vn::DateVN {
namespace {

constexpr double kSecondsPerDay = 86400.0;

// The non-negative remainder of value by 86400.
double dayRemainder(double value) {
    double remainder = std::fmod(value, kSecondsPerDay);
    if (remainder < 0) remainder += kSecondsPerDay;
    return remainder;
}

double secondsIntoEmptyDay(const Date& date) {
    return dayRemainder(date.timeIntervalSinceDate(vnEmptyDate()));
}

double localOffset(const Date& date) {
    return TimeZone::system().secondsFromGMT(date);
}

}  // namespace

Date vnEmptyDate() {
    static const Date empty = [] {
        DateComponents first;
        first.year = first.month = first.day = 1;
        return *Calendar::vn().dateFromComponents(first);
    }();
    return empty;
}

Date vnEmptyDateTime() {
    return vnEmptyDate();
}
Date vnEmptyTime() {
    return vnEmptyDate();
}
Date vnEmpty() {
    return vnEmptyDate();
}

bool isVnDateTime(const Date& date) {
    return std::fmod(date.timeIntervalSinceReferenceDate, kSecondsPerDay) != 0;
}

// The model calendar is GMT, so its days are the 86400-second intervals counted from the
// empty date.
bool isVnTimeOnly(const Date& date) {
    const double sinceEmpty = date.timeIntervalSinceDate(vnEmptyDate());
    return sinceEmpty >= 0 && sinceEmpty < kSecondsPerDay;
}

bool isVnTimeOnlyDateTime(const Date& date) {
    return isVnTimeOnly(date);
}
bool isVnEmpty(const Date& date) {
    return date == vnEmptyDate();
}
bool isVnEmptyDate(const Date& date) {
    return isVnEmpty(date);
}

Date vnDateTime(const Date& date) {
    return Date{std::floor(date.timeIntervalSinceReferenceDate)};
}
Date vnDateTimeNSDate(const Date& date) {
    return vnDateTime(date);
}

Date vnDateTimeMS(const Date& date) {
    return Date{std::round(date.timeIntervalSinceReferenceDate * 1000.0) / 1000.0};
}
Date vnDateTimeNSDateMS(const Date& date) {
    return vnDateTimeMS(date);
}

Date vnDate(const Date& date) {
    const double seconds = date.timeIntervalSinceReferenceDate;
    return Date{seconds - dayRemainder(seconds)};
}

Date vnDateNSDate(const Date& date) {
    return vnDate(date);
}

Date vnTimeOnlyDateTime(const Date& date) {
    return vnEmptyDate().addingTimeInterval(std::floor(secondsIntoEmptyDay(date)));
}

Date vnTimeOnlyDateTimeNSDate(const Date& date) {
    return vnTimeOnlyDateTime(date);
}

Date vnTimeOnlyDateTimeMS(const Date& date) {
    return vnEmptyDate().addingTimeInterval(std::round(secondsIntoEmptyDay(date) * 1000.0) /
                                            1000.0);
}

Date vnTimeOnlyDateTimeNSDateMS(const Date& date) {
    return vnTimeOnlyDateTimeMS(date);
}

std::string json(const Date& date) {
    const std::string_view pattern = isVnDateTime(date) ? "yyyy-MM-dd'T'HH:mm:ss" : "yyyy-MM-dd";
    return DateFormatter::dateFormatterWithTimeZone_UTC_Locale_en_US_POSIX_forDateFormat(pattern)
        ->stringFromDate(date);
}

std::string JSON(const Date& date) {
    return json(date);
}

Date localTimeZoneDateFromGMT(const Date& date) {
    return date.addingTimeInterval(localOffset(date));
}
Date gmtTimeZoneDateFromLocal(const Date& date) {
    return date.addingTimeInterval(-localOffset(date));
}

Date currentTimeZoneDateFromGMT(const Date& date) {
    return date.addingTimeInterval(currentTimeZoneSecondsFromGMT(date));
}

Date gmtTimeZoneDateFromCurrent(const Date& date) {
    return date.addingTimeInterval(-currentTimeZoneSecondsFromGMT(date));
}

Date currentTimeZoneDateFromLocal(const Date& date) {
    return date.addingTimeInterval(currentTimeZoneSecondsFromGMT(date) - localOffset(date));
}

Date localTimeZoneDateFromCurrent(const Date& date) {
    return date.addingTimeInterval(localOffset(date) - currentTimeZoneSecondsFromGMT(date));
}

double currentTimeZoneSecondsFromGMT(const Date& date) {
    return VNTimeZone::currentTimeZone().secondsFromGMT(date);
}

}  // namespace vn::DateVN
