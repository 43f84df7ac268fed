#include "platform/foundation/NSCalendar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "tests/platform/foundation/ZoneText.h"
#include "tests/support/DayZones.h"

namespace tavrion {
namespace {

using test::instant;
using test::textInZone;
using test::zoneNamed;

NSDateComponents years(int count) {
    return {count, 0, 0, 0, 0, 0};
}
NSDateComponents months(int count) {
    return {0, count, 0, 0, 0, 0};
}
NSDateComponents days(int count) {
    return {0, 0, count, 0, 0, 0};
}
NSDateComponents hours(int count) {
    return {0, 0, 0, count, 0, 0};
}

struct AddRow {
    const char* zone;
    const char* start;
    NSDateComponents components;
    const char* result;
};

TEST(NSCalendar, daysAndMonthsKeepTheWallClockAndHoursAreAbsolute) {
    const std::vector<AddRow> rows{
        {"America/New_York", "2024-03-09T12:00:00-05:00", days(1), "2024-03-10T12:00:00-04:00"},
        {"America/New_York", "2024-03-09T12:00:00-05:00", hours(24), "2024-03-10T13:00:00-04:00"},
        {"America/New_York", "2024-03-09T02:30:00-05:00", days(1), "2024-03-10T03:30:00-04:00"},
        {"America/New_York", "2024-03-11T02:30:00-04:00", days(-1), "2024-03-10T03:30:00-04:00"},
        {"America/New_York", "2024-11-02T01:30:00-04:00", days(1), "2024-11-03T01:30:00-04:00"},
        {"America/New_York", "2024-11-04T01:30:00-05:00", days(-1), "2024-11-03T01:30:00-05:00"},
        {"America/New_York", "2024-11-03T01:30:00-05:00", days(0), "2024-11-03T01:30:00-05:00"},
        {"America/New_York", "2024-01-31T12:00:00-05:00", months(1), "2024-02-29T12:00:00-05:00"},
        {"America/New_York", "2023-01-31T12:00:00-05:00", months(1), "2023-02-28T12:00:00-05:00"},
        {"America/New_York", "2024-01-31T12:00:00-05:00", months(-2), "2023-11-30T12:00:00-05:00"},
        {"America/New_York", "2024-01-15T12:00:00-05:00", months(-13), "2022-12-15T12:00:00-05:00"},
        {"America/New_York", "2024-11-15T12:00:00-05:00", months(14), "2026-01-15T12:00:00-05:00"},
        {"America/New_York", "2024-02-29T12:00:00-05:00", years(1), "2025-02-28T12:00:00-05:00"},
        {"America/New_York", "2024-02-29T12:00:00-05:00", years(-4), "2020-02-29T12:00:00-05:00"},
        {"America/Sao_Paulo", "2018-11-03T00:00:00-03:00", days(1), "2018-11-04T01:00:00-02:00"},
        {"America/Sao_Paulo", "2018-10-04T00:00:00-03:00", months(1), "2018-11-04T01:00:00-02:00"},
        {"America/Sao_Paulo", "2018-11-04T01:00:00-02:00", days(-6), "2018-10-29T01:00:00-03:00"},
        {"Africa/Cairo", "2010-04-30T01:00:00+03:00", days(-3), "2010-04-27T01:00:00+02:00"},
        {"Europe/Berlin", "2024-01-31T12:00:00+01:00", NSDateComponents{1, 1, 1, 1, 1, 1},
         "2025-03-01T13:01:01+01:00"},
    };
    for (const AddRow& row : rows) {
        const NSCalendar calendar(zoneNamed(row.zone));
        const NSDate moved = calendar.dateByAddingComponents(row.components, instant(row.start));
        EXPECT_EQ(textInZone(calendar.timeZone(), moved), row.result)
            << row.zone << " " << row.start;
    }
}

TEST(NSCalendar, fractionsOfASecondAreKept) {
    const NSCalendar calendar(zoneNamed("Europe/Berlin"));
    EXPECT_EQ(calendar.dateByAddingComponents(days(1), instant("2024-06-01T12:00:00.75Z")),
              instant("2024-06-02T12:00:00.75Z"));
    EXPECT_EQ(calendar.dateByAddingComponents(days(-1), instant("1999-06-02T12:00:00.25Z")),
              instant("1999-06-01T12:00:00.25Z"));
}

TEST(NSCalendar, theStartOfADayIsTheSameAtAllItsTimes) {
    const NSCalendar calendar(zoneNamed("America/Sao_Paulo"));
    const NSDate start = instant("2018-11-04T01:00:00-02:00");
    EXPECT_EQ(calendar.startOfDayForDate(start), start);
    EXPECT_EQ(calendar.startOfDayForDate(instant("2018-11-04T23:59:59.9-02:00")), start);
    EXPECT_EQ(calendar.startOfDayForDate(start.dateByAddingTimeInterval(-0.5)),
              instant("2018-11-03T00:00:00-03:00"));
    const NSCalendar havana(zoneNamed("America/Havana"));
    EXPECT_EQ(havana.startOfDayForDate(instant("2024-11-03T00:30:00-05:00")),
              instant("2024-11-03T00:00:00-04:00"));
}

struct DayRow {
    const char* zone;
    const char* from;
    const char* to;
    std::int64_t days;
};

TEST(NSCalendar, theDayComponentCountsWholeStepsAtTheWallClock) {
    const std::vector<DayRow> rows{
        {"America/New_York", "2024-03-09T23:00:00-05:00", "2024-03-10T01:00:00-05:00", 0},
        {"America/New_York", "2024-03-09T12:00:00-05:00", "2024-03-10T12:00:00-04:00", 1},
        {"America/New_York", "2024-03-09T12:00:00-05:00", "2024-03-10T11:59:00-04:00", 0},
        {"America/New_York", "2024-03-10T00:00:00-05:00", "2024-03-11T00:00:00-04:00", 1},
        {"America/New_York", "2024-11-03T00:00:00-04:00", "2024-11-04T00:00:00-05:00", 1},
        {"America/New_York", "2024-03-11T00:00:00-04:00", "2024-03-09T12:00:00-05:00", -1},
        {"America/Sao_Paulo", "2018-11-03T00:00:00-03:00", "2018-11-04T01:00:00-02:00", 1},
        {"America/Sao_Paulo", "2018-11-04T01:00:00-02:00", "2018-11-05T00:00:00-02:00", 0},
        {"Africa/Cairo", "2010-04-30T01:00:00+03:00", "2010-05-01T00:00:00+03:00", 0},
        {"Europe/Berlin", "2024-01-01T00:00:00Z", "2024-01-01T00:00:00Z", 0},
        {"Europe/Berlin", "2024-06-01T00:00:00Z", "2024-06-01T23:59:59Z", 0},
        {"Europe/Berlin", "2024-06-01T23:59:59Z", "2024-06-01T00:00:00Z", 0},
        {"Europe/Berlin", "2024-06-02T00:00:00Z", "2024-05-02T00:00:00Z", -31},
    };
    for (const DayRow& row : rows) {
        const NSCalendar calendar(zoneNamed(row.zone));
        EXPECT_EQ(calendar.dayComponentFromDate(instant(row.from), instant(row.to)), row.days)
            << row.zone << " " << row.from << " " << row.to;
    }
}

TEST(NSCalendar, theDayComponentSpansAllOfTime) {
    const NSCalendar calendar{NSTimeZone()};
    EXPECT_EQ(calendar.dayComponentFromDate(NSDate::distantPast(), NSDate::distantFuture()),
              static_cast<std::int64_t>((63113904000.0 + 63114076800.0) / 86400));
}

TEST(NSCalendar, datesOfOneDayAreOfOneDay) {
    const NSCalendar calendar(zoneNamed("America/New_York"));
    EXPECT_TRUE(calendar.isDateInSameDay(instant("2024-03-10T05:00:00Z"),
                                         instant("2024-03-11T03:59:59.9Z")));
    EXPECT_FALSE(calendar.isDateInSameDay(instant("2024-03-10T04:59:59.9Z"),
                                          instant("2024-03-10T05:00:00Z")));
    EXPECT_FALSE(
        calendar.isDateInSameDay(instant("2023-03-10T12:00:00Z"), instant("2024-03-10T12:00:00Z")));
}

TEST(NSCalendar, aYearStartsWithItsFirstInstant) {
    const NSCalendar calendar(zoneNamed("Asia/Kolkata"));
    EXPECT_EQ(calendar.dateFromYear(2024), instant("2024-01-01T00:00:00+05:30"));
    EXPECT_EQ(calendar.dateFromYear(1),
              instant("0001-01-01T00:00:00Z")
                  .dateByAddingTimeInterval(
                      -calendar.timeZone().secondsFromGMTForDate(instant("0001-01-01T00:00:00Z"))));
}

TEST(NSCalendar, datesBeyondAllReckoningStayAsTheyAre) {
    const double infinity = std::numeric_limits<double>::infinity();
    const NSCalendar calendar(zoneNamed("Europe/Berlin"));
    const NSDateComponents some{1, 1, 1, 1, 1, 1};
    for (const double seconds : {infinity, -infinity, 1e300, -1e300, 1e15}) {
        const NSDate date = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
        EXPECT_EQ(calendar.startOfDayForDate(date), date);
        EXPECT_EQ(calendar.startOfNextDayForDate(date), date);
        EXPECT_EQ(calendar.dateByAddingComponents(some, date), date);
        EXPECT_EQ(calendar.dayComponentFromDate(date, date), 0);
        EXPECT_EQ(calendar.dayComponentFromDate(NSDate(), date) > 0, seconds > 0);
    }
    const NSDate none = NSDate::dateWithTimeIntervalSinceReferenceDate(std::nan(""));
    EXPECT_TRUE(std::isnan(calendar.startOfDayForDate(none).timeIntervalSinceReferenceDate()));
    EXPECT_EQ(calendar.dayComponentFromDate(none, NSDate()), 0);
}

TEST(NSCalendar, stepsOfAnySizeStayReckonable) {
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    const NSCalendar calendar(zoneNamed("Europe/Berlin"));
    const NSDate after =
        calendar.dateByAddingComponents({most, most, most, most, most, most}, NSDate());
    const NSDate before =
        calendar.dateByAddingComponents({least, least, least, least, least, least}, NSDate());
    EXPECT_GT(after, NSDate::distantFuture());
    EXPECT_LT(before, NSDate::distantPast());
}

class CalendarOfZones : public testing::TestWithParam<DayZone> {
  protected:
    const NSCalendar calendar{GetParam().timeZone()};
};

INSTANTIATE_TEST_SUITE_P(NSCalendar, CalendarOfZones, testing::ValuesIn(dayZones), nameOfDayZone);

TEST_P(CalendarOfZones, oneDayFollowsAnother) {
    const std::vector<WalkedDay> days = GetParam().days(40, 40);
    for (std::size_t i = 1; i < days.size(); ++i) {
        EXPECT_EQ(calendar.startOfNextDayForDate(days[i - 1].first), days[i].first);
        EXPECT_EQ(calendar.startOfNextDayForDate(days[i - 1].last), days[i].first);
        EXPECT_TRUE(calendar.isDateInSameDay(days[i].first, days[i].last));
        EXPECT_FALSE(calendar.isDateInSameDay(days[i - 1].last, days[i].first));
    }
}

TEST_P(CalendarOfZones, aYearBeginsWithTheFirstInstantOfItsFirstDay) {
    const NSDate start = calendar.dateFromYear(GetParam().year);
    EXPECT_EQ(calendar.startOfDayForDate(start), start);
    EXPECT_EQ(calendar.timeZone().civilDay(start), CivilDay::fromDate(GetParam().year, 1, 1));
}

TEST(NSCalendar, theCurrentOneIsOfThePluggedRegion) {
    Regional region(zoneNamed("Asia/Kolkata"), "en_US");
    const Port<Regional>::Plug plug(region);
    EXPECT_EQ(NSCalendar::currentCalendar().timeZone().name(), "Asia/Kolkata");
}

}  // namespace
}  // namespace tavrion
