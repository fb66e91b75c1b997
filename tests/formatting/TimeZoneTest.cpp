// Time zones by identifier and offset, and the host-settable device zone.
#include "testing/ScopedProcessState.h"
#include "vn/formatting/TimeZone.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "vn/platform/NotificationCenter.h"

namespace vn {
namespace {

TEST(TimeZone, KnowsZonesByIdentifierAndRejectsOthers) {
    EXPECT_EQ(TimeZone::named("GMT")->identifier(), "GMT");
    EXPECT_EQ(TimeZone::named("America/Montevideo")->identifier(), "America/Montevideo");
    EXPECT_EQ(TimeZone::named("GMT-03:00")->secondsFromGMT(Date{0}), -3 * 3600);
    for (const char* unknown : {"", "Nowhere/Unknown", "gmt+99", "Etc/Unknown"}) {
        EXPECT_EQ(TimeZone::named(unknown), std::nullopt) << unknown;
    }
    EXPECT_EQ(TimeZone::gmt().secondsFromGMT(Date{1e9}), 0);
}

TEST(TimeZone, OffsetsFollowDaylightSavingAtTheInstant) {
    const TimeZone madrid = *TimeZone::named("Europe/Madrid");
    const Date january = Date::fromTimeIntervalSince1970(1579089600);  // 2020-01-15 12:00 GMT
    const Date july = Date::fromTimeIntervalSince1970(1594814400);     // 2020-07-15 12:00 GMT
    EXPECT_EQ(madrid.secondsFromGMT(january), 3600);
    EXPECT_EQ(madrid.secondsFromGMT(july), 7200);
    EXPECT_FALSE(madrid.isDaylightSavingTime(january));
    EXPECT_TRUE(madrid.isDaylightSavingTime(july));
}

TEST(TimeZone, FixedOffsetsAreNamedAfterTheirOffset) {
    EXPECT_EQ(TimeZone::forSecondsFromGMT(-10800)->identifier(), "GMT-0300");
    EXPECT_EQ(TimeZone::forSecondsFromGMT(19800)->identifier(), "GMT+0530");
    EXPECT_EQ(TimeZone::forSecondsFromGMT(19800)->secondsFromGMT(Date{0}), 19800);
    EXPECT_EQ(TimeZone::forSecondsFromGMT(0), TimeZone::gmt());
    EXPECT_EQ(TimeZone::forSecondsFromGMT(19 * 3600), std::nullopt);
    EXPECT_FALSE(*TimeZone::named("Europe/Madrid") == *TimeZone::named("Europe/Lisbon"));
}

TEST(TimeZone, SystemZoneComesFromTheHostUntilTheHostSetsIt) {
    const testing::ScopedProcessState state;  // puts TZ and the system zone back
    setenv("TZ", "Asia/Kolkata", 1);
    TimeZone::resetSystemTimeZone();
    EXPECT_EQ(TimeZone::system().identifier(), "Asia/Kolkata");

    int posted = 0;
    auto token = NotificationCenter::defaultCenter().addObserver(
        NSSystemTimeZoneDidChangeNotification, nullptr, nullptr,
        [&](const Notification&) { ++posted; });
    TimeZone::setSystemTimeZone(*TimeZone::named("Pacific/Auckland"));
    EXPECT_EQ(posted, 1);
    EXPECT_EQ(TimeZone::system().identifier(), "Pacific/Auckland");
    NotificationCenter::defaultCenter().removeObserver(token);

    setenv("TZ", "America/Montevideo", 1);
    TimeZone::resetSystemTimeZone();
    EXPECT_EQ(TimeZone::system().identifier(), "America/Montevideo");
}

}  // namespace
}  // namespace vn
