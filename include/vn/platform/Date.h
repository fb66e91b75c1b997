// vn::Date: an instant, as seconds since the reference date 2001-01-01 00:00:00 GMT.
#pragma once

#include <compare>
#include <string>

namespace vn {

struct Date {
    // Seconds between 1970-01-01 and 2001-01-01, both GMT.
    static constexpr double kTimeIntervalBetween1970AndReferenceDate = 978307200.0;

    double timeIntervalSinceReferenceDate = 0;

    static Date now();
    static Date fromTimeIntervalSince1970(double seconds) {
        return Date{seconds - kTimeIntervalBetween1970AndReferenceDate};
    }
    double timeIntervalSince1970() const {
        return timeIntervalSinceReferenceDate + kTimeIntervalBetween1970AndReferenceDate;
    }
    Date addingTimeInterval(double seconds) const {
        return Date{timeIntervalSinceReferenceDate + seconds};
    }
    double timeIntervalSinceDate(const Date& other) const {
        return timeIntervalSinceReferenceDate - other.timeIntervalSinceReferenceDate;
    }

    // Dates farther than this from 1970 (about 3.17 million years), and those that are not
    // finite (NaN, infinities), are not representable: no calendar shows them, and every
    // conversion of a date to text (description(), the date formatters, the model's JSON
    // dates) gives the empty text for them.
    static constexpr double kRepresentableSecondsFrom1970 = 1e14;
    [[nodiscard]] bool isRepresentable() const;

    // "yyyy-MM-dd HH:mm:ss +0000" in the proleptic Gregorian calendar, GMT, seconds truncated;
    // "" for a date that is not representable.
    std::string description() const;

    auto operator<=>(const Date&) const = default;
};

}  // namespace vn
