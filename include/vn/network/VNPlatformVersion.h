// vn::VNPlatformVersion: the version of the mobile operating system the library runs for, as
// major.minor, for the features that exist from some version on (the local-network permission
// from 14.0).
//
// The library runs away from that system, so the version is what the host application says;
// until it says anything the version is 14.0, the first version with the local-network
// permission, so that the behaviour written for it is on.
//
// Safe from any thread.
#pragma once

#include <compare>

namespace vn {

struct VNOperatingSystemVersion {
    long majorVersion = 0;
    long minorVersion = 0;

    friend auto operator<=>(const VNOperatingSystemVersion&,
                            const VNOperatingSystemVersion&) = default;
};

class VNPlatformVersion {
  public:
    // The version reported before the host sets one.
    static constexpr VNOperatingSystemVersion defaultVersion{14, 0};

    // The version set last (defaultVersion until then).
    [[nodiscard]] static VNOperatingSystemVersion current();
    // Sets the version the library reports from now on; reset() goes back to defaultVersion.
    static void setCurrent(VNOperatingSystemVersion version);
    static void reset();

    // Whether current() is at least major.minor.
    [[nodiscard]] static bool isAtLeast(long majorVersion, long minorVersion);
};

}  // namespace vn
