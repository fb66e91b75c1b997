// vn::TimeZone: a time zone by its identifier ("GMT", "America/Montevideo", "GMT-03:00"),
// with its offset from GMT at any instant (daylight saving included), and the device's time
// zone ("system" zone) that the host may change.
//
// The system zone is read from the host (the TZ variable, else the system's configured zone)
// on first use and kept until resetSystemTimeZone() or setSystemTimeZone(). A host that learns
// of a change of the device's zone calls setSystemTimeZone(), which posts
// NSSystemTimeZoneDidChangeNotification on the default notification centre; the host may also
// post that notification itself.
//
// TimeZone is an immutable value, cheap to copy and safe to use from any thread.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vn/platform/Date.h"

namespace vn {

inline constexpr std::string_view NSSystemTimeZoneDidChangeNotification =
    "NSSystemTimeZoneDidChangeNotification";

class TimeZone {
  public:
    // The zone for an identifier: a zone database name ("Europe/Madrid"), "GMT"/"UTC", or a
    // fixed offset written "GMT+hh:mm" / "GMT-hhmm". Absent for anything else.
    static std::optional<TimeZone> named(std::string_view identifier);
    // A fixed offset from GMT, named "GMT+hhmm" (GMT itself for 0). Absent beyond ±18 hours.
    [[nodiscard]] static std::optional<TimeZone> forSecondsFromGMT(int seconds);
    static TimeZone gmt();

    // The device's current zone. Safe from any thread.
    static TimeZone system();
    // Replaces the device's zone (for hosts and tests) and posts
    // NSSystemTimeZoneDidChangeNotification synchronously on the calling thread.
    static void setSystemTimeZone(const TimeZone& zone);
    // Forgets the known device zone: the next system() reads it from the host again. Posts
    // nothing.
    static void resetSystemTimeZone();

    const std::string& identifier() const;
    // Offset from GMT in seconds at the instant (daylight saving time included).
    int secondsFromGMT(const Date& date) const;
    int secondsFromGMT() const { return secondsFromGMT(Date::now()); }
    bool isDaylightSavingTime(const Date& date) const;

    // Same identifier and same rules.
    bool operator==(const TimeZone& other) const;

    struct Impl;
    const Impl& impl() const { return *impl_; }

  private:
    explicit TimeZone(std::shared_ptr<const Impl> impl) : impl_(std::move(impl)) {}

    std::shared_ptr<const Impl> impl_;
};

}  // namespace vn
