#include "platform/foundation/CalendarDays.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "platform/foundation/NSCalendar.h"
#include "tests/support/DayZones.h"

namespace tavrion {
namespace {

NSDate instant(const char* text) {
    return *dateFromIsoText(text);
}

struct Stretch {
    const char* zone;
    const char* from;
    const char* to;
};

/// Days without a midnight, days with two, days that are shown again for a part, and a day that the
/// calendar left out.
constexpr Stretch stretches[] = {
    {"America/Sao_Paulo", "2017-10-10T00:00:00Z", "2017-10-20T00:00:00Z"},
    {"America/Sao_Paulo", "2018-02-12T00:00:00Z", "2018-02-22T00:00:00Z"},
    {"Africa/Cairo", "2023-04-24T00:00:00Z", "2023-05-02T00:00:00Z"},
    {"Asia/Beirut", "2022-03-22T00:00:00Z", "2022-04-01T00:00:00Z"},
    {"Asia/Beirut", "2022-10-25T00:00:00Z", "2022-11-03T00:00:00Z"},
    {"America/St_Johns", "2006-10-25T00:00:00Z", "2006-11-03T00:00:00Z"},
    {"America/Havana", "2022-11-02T00:00:00Z", "2022-11-10T00:00:00Z"},
    {"Pacific/Apia", "2011-12-26T00:00:00Z", "2012-01-04T00:00:00Z"},
    {"Europe/Berlin", "2026-03-25T00:00:00Z", "2026-04-01T00:00:00Z"},
    {"Antarctica/Troll", "2022-10-25T00:00:00Z", "2022-11-03T00:00:00Z"},
};

TEST(CalendarDays, everyInstantIsOnTheDayThatTheZoneSays) {
    std::mt19937 random(3);
    for (const Stretch& stretch : stretches) {
        const NSTimeZone zone = *NSTimeZone::timeZoneWithName(stretch.zone);
        CalendarDays rising(zone);
        CalendarDays jumping(zone);
        const double from = instant(stretch.from).timeIntervalSinceReferenceDate();
        const double to = instant(stretch.to).timeIntervalSinceReferenceDate();
        for (double seconds = from; seconds < to; seconds += 29.5) {
            const CivilDay day =
                zone.civilDay(NSDate::dateWithTimeIntervalSinceReferenceDate(seconds));
            ASSERT_EQ(rising.dayOf(seconds), day) << stretch.zone << " " << seconds;
        }
        for (int i = 0; i < 2000; ++i) {
            const double seconds = from + static_cast<double>(random() % 800000);
            ASSERT_EQ(jumping.dayOf(seconds),
                      zone.civilDay(NSDate::dateWithTimeIntervalSinceReferenceDate(seconds)))
                << stretch.zone << " " << seconds;
        }
    }
}

TEST(CalendarDays, theDaysOfAnIntervalAreAllDaysThatTheCalendarHas) {
    for (const Stretch& stretch : stretches) {
        const NSTimeZone zone = *NSTimeZone::timeZoneWithName(stretch.zone);
        const NSDateInterval interval(instant(stretch.from), instant(stretch.to));
        std::set<CivilDay> lived;
        for (NSDate date = interval.startDate(); date < interval.endDate();
             date = date.dateByAddingTimeInterval(900)) {
            lived.insert(zone.civilDay(date));
        }
        std::vector<CivilDay> told;
        for (const CalendarDay& day : calendarDaysOf(interval, zone)) {
            told.push_back(day.day);
            EXPECT_EQ(day.start, NSCalendar(zone).startOfDayForDate(day.start));
        }
        EXPECT_EQ(told, std::vector<CivilDay>(lived.begin(), lived.end())) << stretch.zone;
    }
}

class CalendarDaysOfZones : public testing::TestWithParam<DayZone> {};

INSTANTIATE_TEST_SUITE_P(CalendarDays, CalendarDaysOfZones, testing::ValuesIn(dayZones),
                         nameOfDayZone);

TEST_P(CalendarDaysOfZones, areTheDaysThatWereLived) {
    const std::vector<WalkedDay> lived = GetParam().days(40, 40);
    const auto days =
        calendarDaysOf({lived.front().noon(), lived.back().last}, GetParam().timeZone());
    ASSERT_EQ(days.size(), lived.size());
    CalendarDays lookUp(GetParam().timeZone());
    for (std::size_t i = 0; i < days.size(); ++i) {
        EXPECT_EQ(days[i].day, lived[i].day);
        EXPECT_EQ(days[i].start, lived[i].first);
        for (const NSDate date : {lived[i].first, lived[i].noon(), lived[i].last}) {
            EXPECT_EQ(lookUp.dayOf(date.timeIntervalSinceReferenceDate()), lived[i].day);
        }
    }
}

TEST(CalendarDays, aDayThatBeginsAtTheEndIsNotReported) {
    const NSTimeZone utc;
    const auto daysUntil = [&](const char* end) {
        return calendarDaysOf({instant("2026-03-01T12:00:00Z"), instant(end)}, utc).size();
    };
    EXPECT_EQ(daysUntil("2026-03-02T00:00:00Z"), 1U);
    EXPECT_EQ(daysUntil("2026-03-02T00:00:01Z"), 2U);
    EXPECT_EQ(daysUntil("2026-03-01T12:00:00Z"), 1U);
}

TEST(CalendarDays, anEndlessIntervalHasTheDaysOfTheYearsOneToNineThousand) {
    const NSTimeZone utc;
    const auto at = &NSDate::dateWithTimeIntervalSinceReferenceDate;
    EXPECT_EQ(calendarDaysOf({at(-1e300), at(1e300)}, utc).size(), 3652059U);
    EXPECT_TRUE(calendarDaysOf({at(-1e300), at(-1e299)}, utc).empty());
}

}  // namespace
}  // namespace tavrion
