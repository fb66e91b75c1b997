// The model's date conventions: the empty date, time-only values, truncations, the JSON form
// and the time-zone shifts, before and after 1970 and 2001.
#include "testing/ScopedProcessState.h"
#include "vn/formatting/DateVN.h"

#include <gtest/gtest.h>

#include <cmath>

#include "vn/formatting/Calendar.h"
#include "vn/formatting/TimeZone.h"
#include "vn/formatting/VNTimeZone.h"

namespace vn {
namespace {

using namespace DateVN;

Date gmt(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
         double fraction = 0) {
    DateComponents c;
    c.year = year;
    c.month = month;
    c.day = day;
    c.hour = hour;
    c.minute = minute;
    c.second = second;
    return Calendar::vn().dateFromComponents(c)->addingTimeInterval(fraction);
}

TEST(DateVN, EmptyDateIsYearOneInTheProlepticCalendar) {
    EXPECT_EQ(vnEmptyDate().timeIntervalSinceReferenceDate, -63113904000.0);
    for (const Date& same : {vnEmptyDateTime(), vnEmptyTime(), vnEmpty()})
        EXPECT_EQ(same, vnEmptyDate());
    EXPECT_EQ(json(vnEmptyDate()), "0001-01-01");

    EXPECT_TRUE(isVnEmptyDate(vnEmptyDate()));
    EXPECT_TRUE(isVnEmpty(vnEmptyDate()));
    EXPECT_TRUE(isVnTimeOnly(vnEmptyDate()));
    EXPECT_FALSE(isVnEmptyDate(vnEmptyDate().addingTimeInterval(1)));
    EXPECT_TRUE(isVnTimeOnlyDateTime(vnEmptyDate().addingTimeInterval(86399.999)));
    EXPECT_FALSE(isVnTimeOnly(vnEmptyDate().addingTimeInterval(86400)));
    EXPECT_FALSE(isVnTimeOnly(vnEmptyDate().addingTimeInterval(-0.001)));
}

TEST(DateVN, TimePartIsTheRemainderOfADay) {
    EXPECT_FALSE(isVnDateTime(gmt(2020, 3, 1)));
    EXPECT_FALSE(isVnDateTime(gmt(1969, 7, 20)));
    EXPECT_FALSE(isVnDateTime(gmt(1, 1, 1)));
    EXPECT_TRUE(isVnDateTime(gmt(2020, 3, 1, 0, 0, 1)));
    EXPECT_TRUE(isVnDateTime(gmt(1969, 7, 20, 20, 17, 40)));
    EXPECT_TRUE(isVnDateTime(gmt(2000, 12, 31, 0, 0, 0, 0.5)));
}

struct TruncationCase {
    Date instant;
    Date day;
    double secondOfDay;
};

TEST(DateVN, TruncationsHoldBeforeAndAfterTheReferenceDates) {
    const TruncationCase cases[] = {
        {gmt(2020, 3, 1, 23, 59, 59), gmt(2020, 3, 1), 86399},
        {gmt(2001, 1, 1, 0, 0, 0), gmt(2001, 1, 1), 0},
        {gmt(2000, 12, 31, 23, 59, 59, 0.75), gmt(2000, 12, 31), 86399},
        {gmt(1999, 12, 31, 12, 0, 0), gmt(1999, 12, 31), 43200},
        {gmt(1969, 7, 20, 20, 17, 40, 0.25), gmt(1969, 7, 20), 73060},
        {gmt(1582, 10, 5, 6, 0, 0), gmt(1582, 10, 5), 21600},
        {gmt(1, 1, 1, 10, 20, 30), gmt(1, 1, 1), 37230},
    };
    for (const TruncationCase& c : cases) {
        SCOPED_TRACE(json(c.instant));
        EXPECT_EQ(vnDate(c.instant), c.day);
        EXPECT_EQ(vnDateNSDate(c.instant), c.day);
        EXPECT_EQ(vnTimeOnlyDateTime(c.instant), vnEmptyDate().addingTimeInterval(c.secondOfDay));
        EXPECT_TRUE(isVnTimeOnly(vnTimeOnlyDateTimeNSDate(c.instant)));
        EXPECT_EQ(vnDateTime(c.instant).timeIntervalSinceReferenceDate,
                  std::floor(c.instant.timeIntervalSinceReferenceDate));
    }
}

TEST(DateVN, WholeSecondAndMillisecondTruncations) {
    const Date base = gmt(2020, 3, 1, 10, 20, 30);
    EXPECT_EQ(vnDateTime(base.addingTimeInterval(0.9)), base);
    EXPECT_EQ(vnDateTimeNSDate(base.addingTimeInterval(-0.1)), base.addingTimeInterval(-1));
    // 62.5 ms is exact in binary: the half millisecond rounds away from zero.
    EXPECT_EQ(vnDateTimeMS(Date{0.0625}).timeIntervalSinceReferenceDate, 0.063);
    EXPECT_EQ(vnDateTimeNSDateMS(Date{-0.0625}).timeIntervalSinceReferenceDate, -0.063);
    EXPECT_EQ(vnDateTimeMS(Date{12.3456}).timeIntervalSinceReferenceDate, 12.346);

    const Date before1970 = gmt(1969, 7, 20, 20, 17, 40, 0.0625);
    EXPECT_EQ(vnTimeOnlyDateTime(before1970), vnEmptyDate().addingTimeInterval(73060));
    EXPECT_EQ(vnTimeOnlyDateTimeMS(before1970), vnEmptyDate().addingTimeInterval(73060.063));
    EXPECT_EQ(vnTimeOnlyDateTimeNSDateMS(before1970), vnEmptyDate().addingTimeInterval(73060.063));
}

TEST(DateVN, JsonTextIsDateOrDateTimeInGMT) {
    EXPECT_EQ(json(gmt(2020, 3, 1)), "2020-03-01");
    EXPECT_EQ(JSON(gmt(2020, 3, 1, 10, 20, 30)), "2020-03-01T10:20:30");
    EXPECT_EQ(json(gmt(2020, 3, 1, 10, 20, 30, 0.999)), "2020-03-01T10:20:30");
    EXPECT_EQ(json(gmt(1999, 12, 31)), "1999-12-31");
    EXPECT_EQ(json(gmt(1969, 7, 20, 20, 17, 40)), "1969-07-20T20:17:40");
    EXPECT_EQ(json(gmt(1582, 10, 5)), "1582-10-05");  // a day the Julian switch would skip
    EXPECT_EQ(json(gmt(1, 1, 1, 0, 0, 1)), "0001-01-01T00:00:01");
}

class DateVNShifts : public ::testing::Test {
  protected:
    void SetUp() override {
        TimeZone::setSystemTimeZone(
            *TimeZone::named("America/Montevideo"));  // -03:00, no daylight saving
        ASSERT_TRUE(VNTimeZone::setCurrentTimeZoneWithName("Asia/Tokyo"));  // +09:00
    }

    testing::ScopedProcessState state;
};

TEST_F(DateVNShifts, ShiftBetweenGmtDeviceAndCurrentZones) {
    const Date t = gmt(2020, 3, 1, 12, 0, 0);
    constexpr double hour = 3600;
    EXPECT_EQ(localTimeZoneDateFromGMT(t), t.addingTimeInterval(-3 * hour));
    EXPECT_EQ(gmtTimeZoneDateFromLocal(t), t.addingTimeInterval(3 * hour));
    EXPECT_EQ(currentTimeZoneDateFromGMT(t), t.addingTimeInterval(9 * hour));
    EXPECT_EQ(gmtTimeZoneDateFromCurrent(t), t.addingTimeInterval(-9 * hour));
    EXPECT_EQ(currentTimeZoneDateFromLocal(t), t.addingTimeInterval(12 * hour));
    EXPECT_EQ(localTimeZoneDateFromCurrent(t), t.addingTimeInterval(-12 * hour));
    EXPECT_EQ(currentTimeZoneSecondsFromGMT(t), 9 * hour);
    // vnDate works in GMT whatever the zones.
    EXPECT_EQ(vnDate(gmt(2020, 3, 1, 23, 59, 59)), gmt(2020, 3, 1));
}

TEST_F(DateVNShifts, OffsetsAreTakenAtTheInstant) {
    ASSERT_TRUE(VNTimeZone::setCurrentTimeZoneWithName("America/New_York"));
    const Date winter = gmt(2020, 1, 15, 12);
    const Date summer = gmt(2020, 7, 15, 12);
    EXPECT_EQ(currentTimeZoneSecondsFromGMT(winter), -5 * 3600);
    EXPECT_EQ(currentTimeZoneSecondsFromGMT(summer), -4 * 3600);
    EXPECT_EQ(currentTimeZoneDateFromLocal(summer), summer.addingTimeInterval(-3600));
}

}  // namespace
}  // namespace vn
