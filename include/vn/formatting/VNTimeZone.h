// VNTimeZone: the process-wide current time zone of the running application, which may
// differ from the device's. Until a zone is set, the device's zone (TimeZone::system())
// stands in.
//
// Changes are announced with VNTimeZoneDidChangeNotification (object: VNTimeZone::classObject())
// on the default notification centre, always delivered on the main queue:
// - setCurrentTimeZoneWithName() posts it when the effective zone changed;
// - when the device's zone changes (NSSystemTimeZoneDidChangeNotification) and no zone is
//   set, the observer registered by initializeIfNeeded() posts it; when a zone is set the
//   device's change is ignored.
//
// The stored zone is one process-wide value. Every member is safe from any thread (a lock
// guards the value), but callers are expected to set it from one thread, in practice the
// main thread, so that the notifications arrive in the order of the changes.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "vn/formatting/TimeZone.h"
#include "vn/platform/Date.h"
#include "vn/platform/Number.h"
#include "vn/platform/Object.h"

namespace vn {

inline constexpr std::string_view VNTimeZoneDidChangeNotification =
    "VNTimeZoneDidChangeNotification";

class VNTimeZone final : public Object {
  public:
    // The object that stands for the class: the sender of VNTimeZoneDidChangeNotification.
    static const std::shared_ptr<VNTimeZone>& classObject();

    // Once per process: registers the observer of NSSystemTimeZoneDidChangeNotification on the
    // main queue. Every other member calls it, so an explicit call is only needed by hosts
    // that want device changes announced before first using the class.
    static void initializeIfNeeded();

    // The stored zone, or the device's zone when none is stored.
    static TimeZone currentTimeZone();
    static std::string currentTimeZoneName();
    // The offset of currentTimeZone() from GMT now, in minutes, as a double number
    // (GMT-03:00 gives -180).
    static Number currentTimeZoneOffset();

    // Stores the zone for the identifier and returns true; an unknown identifier changes
    // nothing and returns false. When the effective zone changed, VNTimeZoneDidChangeNotification
    // is posted through vn_dispatch_on_main_queue (inline on the main thread).
    static bool setCurrentTimeZoneWithName(std::string_view identifier);

    // Moves the instant by the difference between the named zone's offset and the current
    // zone's offset at the instant, so that a wall-clock value read in the named zone reads
    // the same in the current zone. An unknown zone name returns the instant unchanged.
    static Date convertDateTime(const Date& date, std::string_view fromTimeZone);

    // Forgets the stored zone without posting (for tests and hosts that restart a session).
    static void resetCurrentTimeZone();

    std::string description() const override { return "VNTimeZone"; }

  private:
    VNTimeZone() = default;
};

}  // namespace vn
