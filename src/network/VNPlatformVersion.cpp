#include "vn/network/VNPlatformVersion.h"

#include <mutex>

namespace vn {
namespace {

struct VersionSlot {
    std::mutex mutex;
    VNOperatingSystemVersion version = VNPlatformVersion::defaultVersion;
};

VersionSlot& versionSlot() {
    static VersionSlot* const slot = new VersionSlot;  // read by tasks ending during exit
    return *slot;
}

}  // namespace

VNOperatingSystemVersion VNPlatformVersion::current() {
    std::lock_guard lock(versionSlot().mutex);
    return versionSlot().version;
}

void VNPlatformVersion::setCurrent(VNOperatingSystemVersion version) {
    std::lock_guard lock(versionSlot().mutex);
    versionSlot().version = version;
}

void VNPlatformVersion::reset() {
    setCurrent(defaultVersion);
}

bool VNPlatformVersion::isAtLeast(long majorVersion, long minorVersion) {
    return current() >= VNOperatingSystemVersion{majorVersion, minorVersion};
}

}  // namespace vn
