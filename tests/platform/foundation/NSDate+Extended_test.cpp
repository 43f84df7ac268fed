#include <gtest/gtest.h>

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "tests/platform/foundation/ZoneText.h"
#include "tests/support/DayZones.h"

namespace tavrion {
namespace {

using test::instant;
using test::textInZone;
using test::zoneNamed;

/// Plugs a zone and keeps it for the life of the scope.
class InZone {
  public:
    explicit InZone(const char* name) : region_(zoneNamed(name), "en_US"), plug_(region_) {}
    std::string text(NSDate date) const { return textInZone(region_.timeZone(), date); }

  private:
    Regional region_;
    Port<Regional>::Plug plug_;
};

struct DayRow {
    const char* zone;
    const char* date;
    const char* start;
    const char* end;
};

TEST(NSDateExtended, aDayGoesFromItsStartToItsLastWholeSecond) {
    const DayRow rows[] = {
        {"Europe/Berlin", "2024-06-01T15:00:00.5+02:00", "2024-06-01T00:00:00+02:00",
         "2024-06-01T23:59:59+02:00"},
        {"America/New_York", "2024-03-10T15:00:00-04:00", "2024-03-10T00:00:00-05:00",
         "2024-03-10T23:59:59-04:00"},
        {"America/New_York", "2024-11-03T15:00:00-05:00", "2024-11-03T00:00:00-04:00",
         "2024-11-03T23:59:59-05:00"},
        {"America/Sao_Paulo", "2018-11-03T15:00:00-03:00", "2018-11-03T00:00:00-03:00",
         "2018-11-03T23:59:59-03:00"},
        // The start is at one o'clock, and the end is that of every day.
        {"America/Sao_Paulo", "2018-11-04T15:00:00-02:00", "2018-11-04T01:00:00-02:00",
         "2018-11-04T23:59:59-02:00"},
    };
    for (const DayRow& row : rows) {
        const InZone zone(row.zone);
        EXPECT_EQ(zone.text(Extended::startOfDay(instant(row.date))), row.start);
        EXPECT_EQ(zone.text(Extended::endOfDay(instant(row.date))), row.end);
    }
}

TEST(NSDateExtended, daysBetweenTwoDatesAreDaysOfTheCalendar) {
    const InZone zone("America/New_York");
    const NSDate late = instant("2024-03-09T23:59:59-05:00");
    const NSDate early = instant("2024-03-10T00:00:01-05:00");
    EXPECT_EQ(Extended::daysBetweenDate(late, early), 1);
    EXPECT_EQ(Extended::daysBetweenDate(early, late), -1);
    EXPECT_EQ(Extended::daysBetweenDate(early, early), 0);
    EXPECT_EQ(Extended::daysBetweenDate(early, instant("2024-03-10T23:59:59-04:00")), 0);
    EXPECT_EQ(Extended::daysBetweenDate(instant("2023-12-31T12:00:00-05:00"),
                                        instant("2024-12-31T01:00:00-05:00")),
              366);
}

TEST(NSDateExtended, aDayWithoutMidnightIsNotCountedFromItsStart) {
    const InZone zone("America/Sao_Paulo");
    const NSDate noMidnight = instant("2018-11-04T12:00:00-02:00");
    const NSDate next = instant("2018-11-05T12:00:00-02:00");
    EXPECT_EQ(Extended::daysBetweenDate(noMidnight, next), 0);
    EXPECT_EQ(Extended::daysBetweenDate(noMidnight, instant("2018-11-06T12:00:00-02:00")), 1);
    EXPECT_EQ(Extended::daysBetweenDate(instant("2018-11-03T12:00:00-03:00"), noMidnight), 1);
    EXPECT_EQ(Extended::daysBetweenDate(next, noMidnight), -1);
}

class DaysOfZones : public testing::TestWithParam<DayZone> {
  protected:
    Regional region{GetParam().timeZone(), "en_US"};
    Port<Regional>::Plug plug{region};
};

INSTANTIATE_TEST_SUITE_P(NSDateExtended, DaysOfZones, testing::ValuesIn(dayZones), nameOfDayZone);

TEST_P(DaysOfZones, everyDayGoesFromItsFirstInstantToItsLastWholeSecond) {
    for (const WalkedDay& day : GetParam().days(40, 40)) {
        for (const NSDate date : {day.first, day.after(1), day.noon(), day.last, day.after(0.5),
                                  day.last.dateByAddingTimeInterval(0.5)}) {
            ASSERT_EQ(Extended::startOfDay(date), day.first) << day.day.number;
            ASSERT_EQ(Extended::endOfDay(date), day.last) << day.day.number;
        }
    }
}

}  // namespace
}  // namespace tavrion
