// Proleptic Gregorian calendars: fields of instants and instants of fields.
#include "vn/formatting/Calendar.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace vn {
namespace {

DateComponents day(int year, int month, int dayOfMonth) {
    DateComponents c;
    c.year = year;
    c.month = month;
    c.day = dayOfMonth;
    return c;
}

TEST(Calendar, ModelCalendarIsGregorianInGMTEvenBefore1582) {
    const Calendar& model = Calendar::vn();
    EXPECT_EQ(&model, &Calendar::vn());
    EXPECT_EQ(model.identifier(), "gregorian");
    EXPECT_EQ(model.timeZone(), TimeZone::gmt());

    // 1582-10-05 to 1582-10-14 do not exist in a calendar that switches from the Julian one.
    const auto skipped = model.dateFromComponents(day(1582, 10, 5));
    ASSERT_TRUE(skipped.has_value());
    EXPECT_EQ(model.components(*skipped).day, 5);
    EXPECT_EQ(model.dateFromComponents(day(1582, 10, 15))->timeIntervalSinceDate(*skipped),
              10 * 86400.0);
    EXPECT_EQ(model.dateFromComponents(day(1, 1, 1))->timeIntervalSinceReferenceDate,
              -63113904000.0);
}

TEST(Calendar, ComponentsRoundTripAndInvalidFieldsAreRefused) {
    const Calendar& model = Calendar::vn();
    DateComponents fields = day(1969, 7, 20);
    fields.hour = 20;
    fields.minute = 17;
    fields.second = 40;
    const Date landing = *model.dateFromComponents(fields);
    EXPECT_EQ(landing.timeIntervalSince1970(), -14182940.0);
    const DateComponents back = model.components(landing.addingTimeInterval(0.25));
    EXPECT_EQ(back.year, 1969);
    EXPECT_EQ(back.month, 7);
    EXPECT_EQ(back.day, 20);
    EXPECT_EQ(back.hour, 20);
    EXPECT_EQ(back.second, 40);
    EXPECT_EQ(back.nanosecond, 250000000);
    EXPECT_EQ(back.weekday, 1);  // a Sunday
    EXPECT_EQ(model.dateFromComponents(day(2020, 13, 1)), std::nullopt);
    EXPECT_EQ(model.dateFromComponents(day(2019, 2, 29)), std::nullopt);
}

TEST(Calendar, DaysFollowTheCalendarsZone) {
    Calendar tokyo = Calendar::gregorian(*TimeZone::named("Asia/Tokyo"));
    const Date lateGmt = *Calendar::vn().dateFromComponents([] {
        DateComponents c = day(2020, 3, 1);
        c.hour = 20;
        return c;
    }());
    EXPECT_EQ(tokyo.components(lateGmt).day, 2);
    EXPECT_EQ(tokyo.startOfDay(lateGmt), lateGmt.addingTimeInterval(-5 * 3600));  // 05:00 in Tokyo
    EXPECT_FALSE(tokyo.isDateInSameDayAsDate(lateGmt, lateGmt.addingTimeInterval(-12 * 3600)));
    EXPECT_TRUE(
        Calendar::vn().isDateInSameDayAsDate(lateGmt, lateGmt.addingTimeInterval(-12 * 3600)));

    Calendar copy = tokyo;
    copy.setTimeZone(TimeZone::gmt());
    EXPECT_EQ(copy.components(lateGmt).day, 1);
    EXPECT_EQ(tokyo.components(lateGmt).day, 2);  // copies are independent
}

TEST(Calendar, ModelCalendarIsSafeFromManyThreads) {
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t, &wrong] {
            for (int i = 0; i < 500; ++i) {
                const int year = 1900 + (t * 500 + i) % 200;
                const auto date = Calendar::vn().dateFromComponents(day(year, 6, 15));
                if (!date || Calendar::vn().components(*date).year != year)
                    ++wrong[static_cast<std::size_t>(t)];
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

}  // namespace
}  // namespace vn
