#include "vn/platform/Date.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace vn {
namespace {

struct CivilDate {
    std::int64_t year;
    unsigned month;
    unsigned day;
};

// Days since 1970-01-01 to a proleptic Gregorian date (H. Hinnant's algorithm).
CivilDate civilFromDays(std::int64_t days) {
    days += 719468;
    const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const auto dayOfEra = static_cast<unsigned>(days - era * 146097);
    const unsigned yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned shiftedMonth = (5 * dayOfYear + 2) / 153;
    const unsigned day = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
    const unsigned month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    const std::int64_t year =
        static_cast<std::int64_t>(yearOfEra) + era * 400 + (month <= 2 ? 1 : 0);
    return {year, month, day};
}

}  // namespace

Date Date::now() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return fromTimeIntervalSince1970(std::chrono::duration<double>(sinceEpoch).count());
}

bool Date::isRepresentable() const {
    // Written so that NaN compares false.
    return std::fabs(timeIntervalSince1970()) <= kRepresentableSecondsFrom1970;
}

std::string Date::description() const {
    if (!isRepresentable()) return "";
    const double seconds = std::floor(timeIntervalSince1970());
    const auto whole = static_cast<std::int64_t>(seconds);
    std::int64_t days = whole / 86400;
    std::int64_t secondOfDay = whole % 86400;
    if (secondOfDay < 0) {
        secondOfDay += 86400;
        --days;
    }
    const CivilDate date = civilFromDays(days);
    char text[64];
    std::snprintf(text, sizeof text, "%04lld-%02u-%02u %02lld:%02lld:%02lld +0000",
                  static_cast<long long>(date.year), date.month, date.day,
                  static_cast<long long>(secondOfDay / 3600),
                  static_cast<long long>(secondOfDay / 60 % 60),
                  static_cast<long long>(secondOfDay % 60));
    return text;
}

}  // namespace vn
