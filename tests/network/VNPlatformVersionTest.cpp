#include "vn/network/VNPlatformVersion.h"

#include <gtest/gtest.h>

namespace vn {
namespace {

TEST(VNPlatformVersion, DefaultsTo14AndComparesMajorThenMinor) {
    VNPlatformVersion::reset();
    EXPECT_EQ(VNPlatformVersion::current(), (VNOperatingSystemVersion{14, 0}));
    EXPECT_TRUE(VNPlatformVersion::isAtLeast(14, 0));
    EXPECT_FALSE(VNPlatformVersion::isAtLeast(14, 1));

    VNPlatformVersion::setCurrent({13, 7});
    const struct {
        long major, minor;
        bool atLeast;
    } cases[] = {{13, 6, true}, {13, 7, true}, {13, 8, false}, {14, 0, false}, {12, 9, true}};
    for (const auto& c : cases)
        EXPECT_EQ(VNPlatformVersion::isAtLeast(c.major, c.minor), c.atLeast)
            << c.major << "." << c.minor;

    VNPlatformVersion::reset();
    EXPECT_EQ(VNPlatformVersion::current(), VNPlatformVersion::defaultVersion);
}

}  // namespace
}  // namespace vn
