#include "vn/network/VNPlatformVersion.h"

#include "network/ProcessWideSetting.h"

namespace vn {
namespace {

network_internal::ProcessWideSetting<VNOperatingSystemVersion>& versionSetting() {
    static auto* const setting = new network_internal::ProcessWideSetting<VNOperatingSystemVersion>(
        VNPlatformVersion::defaultVersion);
    return *setting;
}

}  // namespace

VNOperatingSystemVersion VNPlatformVersion::current() {
    return versionSetting().get();
}

void VNPlatformVersion::setCurrent(VNOperatingSystemVersion version) {
    versionSetting().exchange(version);
}

void VNPlatformVersion::reset() {
    setCurrent(defaultVersion);
}

bool VNPlatformVersion::isAtLeast(long majorVersion, long minorVersion) {
    return current() >= VNOperatingSystemVersion{majorVersion, minorVersion};
}

}  // namespace vn
