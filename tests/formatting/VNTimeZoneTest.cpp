// The application's current time zone and its change notification on the main queue.
#include "testing/ScopedProcessState.h"
#include "vn/formatting/VNTimeZone.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "vn/concurrency/RunLoop.h"
#include "vn/platform/NotificationCenter.h"
#include "vn/platform/Thread.h"

namespace vn {
namespace {

class VNTimeZoneTest : public ::testing::Test {
  protected:
    void SetUp() override {
        TimeZone::setSystemTimeZone(*TimeZone::named("Europe/Madrid"));
        VNTimeZone::resetCurrentTimeZone();
        VNTimeZone::initializeIfNeeded();
        RunLoop::main().runOnce();  // deliver what earlier changes queued
        token_ = NotificationCenter::defaultCenter().addObserver(
            VNTimeZoneDidChangeNotification, nullptr, nullptr, [this](const Notification& n) {
                EXPECT_EQ(n.object, VNTimeZone::classObject());
                EXPECT_TRUE(Thread::isMainThread());
                ++posted_;
            });
    }
    void TearDown() override { NotificationCenter::defaultCenter().removeObserver(token_); }

    testing::ScopedProcessState state_;
    ObjectPtr token_;
    int posted_ = 0;
};

TEST_F(VNTimeZoneTest, DeviceZoneStandsInUntilAZoneIsSet) {
    EXPECT_EQ(VNTimeZone::currentTimeZoneName(), "Europe/Madrid");
    EXPECT_FALSE(VNTimeZone::setCurrentTimeZoneWithName("Nowhere/Unknown"));
    EXPECT_EQ(posted_, 0);
    EXPECT_EQ(VNTimeZone::currentTimeZoneName(), "Europe/Madrid");

    EXPECT_TRUE(VNTimeZone::setCurrentTimeZoneWithName("America/Montevideo"));
    EXPECT_EQ(posted_, 1);  // on the main thread the post is inline
    EXPECT_EQ(VNTimeZone::currentTimeZoneName(), "America/Montevideo");
    EXPECT_EQ(VNTimeZone::currentTimeZoneOffset(), Number(-180.0));
    EXPECT_TRUE(VNTimeZone::currentTimeZoneOffset().isFloatingPoint());

    EXPECT_TRUE(VNTimeZone::setCurrentTimeZoneWithName("America/Montevideo"));
    EXPECT_EQ(posted_, 1);  // the zone in effect did not change
}

TEST_F(VNTimeZoneTest, SettingTheDeviceZoneExplicitlyPostsNothing) {
    EXPECT_TRUE(VNTimeZone::setCurrentTimeZoneWithName("Europe/Madrid"));
    EXPECT_EQ(posted_, 0);
}

TEST_F(VNTimeZoneTest, ChangeFromABackgroundThreadIsPostedOnTheMainQueue) {
    bool changed = false;
    std::thread([&] { changed = VNTimeZone::setCurrentTimeZoneWithName("Asia/Tokyo"); }).join();
    EXPECT_TRUE(changed);
    EXPECT_EQ(posted_, 0);
    EXPECT_TRUE(
        RunLoop::main().runUntil([this] { return posted_ == 1; }, std::chrono::seconds(10)));
}

TEST_F(VNTimeZoneTest, DeviceChangesAreAnnouncedOnlyWhileNoZoneIsSet) {
    TimeZone::setSystemTimeZone(*TimeZone::named("Asia/Tokyo"));
    EXPECT_TRUE(
        RunLoop::main().runUntil([this] { return posted_ == 1; }, std::chrono::seconds(10)));
    EXPECT_EQ(VNTimeZone::currentTimeZoneName(), "Asia/Tokyo");

    ASSERT_TRUE(VNTimeZone::setCurrentTimeZoneWithName("America/Montevideo"));
    ASSERT_EQ(posted_, 2);
    TimeZone::setSystemTimeZone(*TimeZone::named("Europe/Madrid"));
    RunLoop::main().runOnce();
    RunLoop::main().runOnce();
    EXPECT_EQ(posted_, 2);
    EXPECT_EQ(VNTimeZone::currentTimeZoneName(), "America/Montevideo");
}

TEST_F(VNTimeZoneTest, ConvertsWallClockValuesFromANamedZone) {
    ASSERT_TRUE(VNTimeZone::setCurrentTimeZoneWithName("America/Montevideo"));  // -03:00
    const Date date = Date::fromTimeIntervalSince1970(1583020800);  // 2020-03-01 00:00 GMT
    EXPECT_EQ(VNTimeZone::convertDateTime(date, "Asia/Tokyo"), date.addingTimeInterval(12 * 3600));
    EXPECT_EQ(VNTimeZone::convertDateTime(date, "GMT"), date.addingTimeInterval(3 * 3600));
    EXPECT_EQ(VNTimeZone::convertDateTime(date, "Nowhere/Unknown"), date);
}

}  // namespace
}  // namespace vn
