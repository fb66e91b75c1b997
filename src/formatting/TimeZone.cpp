#include "vn/formatting/TimeZone.h"

#include <unicode/simpletz.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "formatting/IcuSupport.h"
#include "formatting/TimeZoneImpl.h"
#include "vn/platform/NotificationCenter.h"

namespace vn {
namespace {

using formatting_internal::icuDate;
using formatting_internal::toUnicode;
using formatting_internal::toUtf8;

constexpr int kMaximumOffsetSeconds = 18 * 3600;

struct SystemZone {
    std::mutex mutex;
    std::optional<TimeZone> zone;
};

SystemZone& systemZone() {
    static auto* state = new SystemZone();  // process-wide, never destroyed
    return *state;
}

bool isUnknown(const icu::TimeZone& zone) {
    icu::UnicodeString id;
    zone.getID(id);
    return id == icu::UnicodeString(UCAL_UNKNOWN_ZONE_ID);
}

std::optional<TimeZone> hostTimeZone() {
    std::unique_ptr<icu::TimeZone> detected(icu::TimeZone::detectHostTimeZone());
    if (!detected || isUnknown(*detected)) return std::nullopt;
    icu::UnicodeString id;
    return TimeZone::named(toUtf8(detected->getID(id)));
}

}  // namespace

std::optional<TimeZone> TimeZone::named(std::string_view identifier) {
    if (identifier.empty()) return std::nullopt;
    std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(toUnicode(identifier)));
    if (!zone || isUnknown(*zone)) return std::nullopt;
    icu::UnicodeString id;
    auto impl = std::make_shared<Impl>();
    impl->identifier = toUtf8(zone->getID(id));
    impl->zone = std::move(zone);
    return TimeZone(std::move(impl));
}

std::optional<TimeZone> TimeZone::forSecondsFromGMT(int seconds) {
    if (seconds < -kMaximumOffsetSeconds || seconds > kMaximumOffsetSeconds) return std::nullopt;
    if (seconds == 0) return gmt();
    const int magnitude = std::abs(seconds);
    char name[16];
    std::snprintf(name, sizeof name, "GMT%c%02d%02d", seconds < 0 ? '-' : '+', magnitude / 3600,
                  magnitude / 60 % 60);
    auto impl = std::make_shared<Impl>();
    impl->identifier = name;
    impl->zone = std::make_unique<icu::SimpleTimeZone>(seconds * 1000, toUnicode(name));
    return TimeZone(std::move(impl));
}

TimeZone TimeZone::gmt() {
    static const TimeZone zone = *named("GMT");
    return zone;
}

TimeZone TimeZone::system() {
    SystemZone& state = systemZone();
    std::lock_guard lock(state.mutex);
    if (!state.zone) state.zone = hostTimeZone().value_or(gmt());
    return *state.zone;
}

void TimeZone::setSystemTimeZone(const TimeZone& zone) {
    {
        SystemZone& state = systemZone();
        std::lock_guard lock(state.mutex);
        state.zone = zone;
    }
    NotificationCenter::defaultCenter().postNotificationName(NSSystemTimeZoneDidChangeNotification);
}

void TimeZone::resetSystemTimeZone() {
    SystemZone& state = systemZone();
    std::lock_guard lock(state.mutex);
    state.zone.reset();
}

const std::string& TimeZone::identifier() const {
    return impl_->identifier;
}

int TimeZone::secondsFromGMT(const Date& date) const {
    UErrorCode status = U_ZERO_ERROR;
    int32_t raw = 0;
    int32_t dst = 0;
    impl_->zone->getOffset(icuDate(date), false, raw, dst, status);
    if (U_FAILURE(status)) return impl_->zone->getRawOffset() / 1000;
    return (raw + dst) / 1000;
}

bool TimeZone::isDaylightSavingTime(const Date& date) const {
    UErrorCode status = U_ZERO_ERROR;
    int32_t raw = 0;
    int32_t dst = 0;
    impl_->zone->getOffset(icuDate(date), false, raw, dst, status);
    return U_SUCCESS(status) && dst != 0;
}

bool TimeZone::operator==(const TimeZone& other) const {
    return impl_ == other.impl_ ||
           (impl_->identifier == other.impl_->identifier && *impl_->zone == *other.impl_->zone);
}

}  // namespace vn
