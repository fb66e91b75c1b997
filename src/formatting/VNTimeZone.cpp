#include "vn/formatting/VNTimeZone.h"

#include <mutex>
#include <optional>

#include "vn/concurrency/DispatchQueue.h"
#include "vn/concurrency/VNDispatch.h"
#include "vn/platform/NotificationCenter.h"

namespace vn {
namespace {

struct StoredZone {
    std::mutex mutex;
    std::optional<TimeZone> zone;
};

StoredZone& storedZone() {
    static auto* state = new StoredZone();  // process-wide, never destroyed
    return *state;
}

bool hasStoredZone() {
    StoredZone& state = storedZone();
    std::lock_guard lock(state.mutex);
    return state.zone.has_value();
}

void postDidChange() {
    NotificationCenter::defaultCenter().postNotificationName(VNTimeZoneDidChangeNotification,
                                                             VNTimeZone::classObject());
}

}  // namespace

const std::shared_ptr<VNTimeZone>& VNTimeZone::classObject() {
    static const auto* object =
        new std::shared_ptr<VNTimeZone>(new VNTimeZone());  // process-wide, never destroyed
    return *object;
}

void VNTimeZone::initializeIfNeeded() {
    static std::once_flag once;
    std::call_once(once, [] {
        NotificationCenter::defaultCenter().addObserver(NSSystemTimeZoneDidChangeNotification,
                                                        nullptr, DispatchQueue::main(),
                                                        [](const Notification&) {
                                                            if (!hasStoredZone()) postDidChange();
                                                        });
    });
}

TimeZone VNTimeZone::currentTimeZone() {
    initializeIfNeeded();
    {
        StoredZone& state = storedZone();
        std::lock_guard lock(state.mutex);
        if (state.zone) return *state.zone;
    }
    return TimeZone::system();
}

std::string VNTimeZone::currentTimeZoneName() {
    return currentTimeZone().identifier();
}

Number VNTimeZone::currentTimeZoneOffset() {
    return Number(currentTimeZone().secondsFromGMT() / 60.0);
}

bool VNTimeZone::setCurrentTimeZoneWithName(std::string_view identifier) {
    initializeIfNeeded();
    const std::optional<TimeZone> zone = TimeZone::named(identifier);
    if (!zone) return false;
    const TimeZone before = currentTimeZone();
    {
        StoredZone& state = storedZone();
        std::lock_guard lock(state.mutex);
        state.zone = zone;
    }
    if (!(before == *zone)) vn_dispatch_on_main_queue(postDidChange);
    return true;
}

Date VNTimeZone::convertDateTime(const Date& date, std::string_view fromTimeZone) {
    const std::optional<TimeZone> from = TimeZone::named(fromTimeZone);
    if (!from) return date;
    return date.addingTimeInterval(from->secondsFromGMT(date) -
                                   currentTimeZone().secondsFromGMT(date));
}

void VNTimeZone::resetCurrentTimeZone() {
    StoredZone& state = storedZone();
    std::lock_guard lock(state.mutex);
    state.zone.reset();
}

}  // namespace vn
