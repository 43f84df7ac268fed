#include "platform/foundation/NSTimeZone.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "tests/platform/foundation/ZoneText.h"

namespace tavrion {
namespace {

using test::instant;
using test::textInZone;
using test::zoneNamed;

TEST(NSTimeZone, unknownNamesAreAbsent) {
    for (const char* name : {"", "Europe/Nowhere", "Europe", "/usr/share/zoneinfo/Europe/Berlin",
                             "../zoneinfo/Europe/Berlin", "libc:localtime", ":Europe/Berlin"}) {
        EXPECT_FALSE(NSTimeZone::timeZoneWithName(name).has_value()) << name;
    }
    EXPECT_EQ(zoneNamed("Europe/Berlin").name(), "Europe/Berlin");
    EXPECT_EQ(zoneNamed("UTC").secondsFromGMTForDate(NSDate()), 0);
    EXPECT_EQ(NSTimeZone().name(), "UTC");
}

TEST(NSTimeZone, offsetsComeFromTheSystemsRules) {
    const NSTimeZone cairo = zoneNamed("Africa/Cairo");
    EXPECT_EQ(cairo.secondsFromGMTForDate(instant("2023-06-01T00:00:00Z")), 3 * 3600);
    EXPECT_EQ(cairo.secondsFromGMTForDate(instant("2023-01-01T00:00:00Z")), 2 * 3600);
    const NSTimeZone kolkata = zoneNamed("Asia/Kolkata");
    EXPECT_EQ(kolkata.secondsFromGMTForDate(instant("2024-01-01T00:00:00Z")), 19800);
}

TEST(NSTimeZone, aFractionBeforeAChangeIsStillBefore) {
    const NSTimeZone zone = zoneNamed("Europe/Berlin");
    const NSDate change = instant("2024-03-31T01:00:00Z");
    EXPECT_EQ(textInZone(zone, change), "2024-03-31T03:00:00+02:00");
    EXPECT_EQ(textInZone(zone, change.dateByAddingTimeInterval(-0.001)),
              "2024-03-31T01:59:59+01:00");
    const NSDate justBefore1970 = NSDate::dateWithTimeIntervalSince1970(-0.5);
    EXPECT_EQ(textInZone(NSTimeZone(), justBefore1970), "1969-12-31T23:59:59+00:00");
    EXPECT_EQ(textInZone(NSTimeZone(), NSDate::dateWithTimeIntervalSinceReferenceDate(-0.25)),
              "2000-12-31T23:59:59+00:00");
}

TEST(NSTimeZone, daysAreCountedFrom1970) {
    EXPECT_EQ(CivilDay::fromDate(1970, 1, 1).number, 0);
    EXPECT_EQ(CivilDay::fromDate(1969, 12, 31).number, -1);
    EXPECT_EQ(CivilDay::fromDate(2000, 3, 1).number, 11017);
    const NSTimeZone zone = zoneNamed("America/New_York");
    EXPECT_EQ(zone.civilDay(instant("1970-01-01T04:59:59Z")).number, -1);
    EXPECT_EQ(zone.civilDay(instant("1970-01-01T05:00:00Z")).number, 0);
}

struct StartRow {
    const char* zone;
    int year, month, day;
    const char* start;
    /// Of the next day; null where the table says nothing.
    const char* next;
};

TEST(NSTimeZone, aDayStartsAtItsFirstExistingInstant) {
    const std::vector<StartRow> rows{
        {"America/New_York", 2024, 3, 10, "2024-03-10T00:00:00-05:00", "2024-03-11T00:00:00-04:00"},
        {"America/New_York", 2024, 11, 3, "2024-11-03T00:00:00-04:00", "2024-11-04T00:00:00-05:00"},
        {"Europe/Berlin", 2024, 3, 31, "2024-03-31T00:00:00+01:00", "2024-04-01T00:00:00+02:00"},
        {"Europe/Berlin", 2024, 10, 27, "2024-10-27T00:00:00+02:00", "2024-10-28T00:00:00+01:00"},
        {"Asia/Kolkata", 2024, 6, 1, "2024-06-01T00:00:00+05:30", "2024-06-02T00:00:00+05:30"},
        {"America/Sao_Paulo", 2018, 11, 4, "2018-11-04T01:00:00-02:00",
         "2018-11-05T00:00:00-02:00"},
        {"America/Sao_Paulo", 2018, 2, 17, "2018-02-17T00:00:00-02:00",
         "2018-02-18T00:00:00-03:00"},
        {"Africa/Cairo", 2010, 4, 30, "2010-04-30T01:00:00+03:00", "2010-05-01T00:00:00+03:00"},
        {"Africa/Cairo", 2014, 5, 16, "2014-05-16T01:00:00+03:00", "2014-05-17T00:00:00+03:00"},
        {"Africa/Cairo", 2010, 9, 30, "2010-09-30T00:00:00+03:00", "2010-10-01T00:00:00+02:00"},
        {"America/Havana", 2024, 3, 10, "2024-03-10T01:00:00-04:00", "2024-03-11T00:00:00-04:00"},
        {"America/Havana", 2024, 11, 3, "2024-11-03T00:00:00-04:00", "2024-11-04T00:00:00-05:00"},
        {"Pacific/Apia", 2011, 12, 29, "2011-12-29T00:00:00-10:00", "2011-12-31T00:00:00+14:00"},
        {"Pacific/Apia", 2011, 12, 30, "2011-12-31T00:00:00+14:00", "2011-12-31T00:00:00+14:00"},
        {"America/Asuncion", 2023, 10, 1, "2023-10-01T01:00:00-03:00", "2023-10-02T00:00:00-03:00"},
    };
    for (const StartRow& row : rows) {
        const NSTimeZone zone = zoneNamed(row.zone);
        const CivilDay day = CivilDay::fromDate(row.year, row.month, row.day);
        EXPECT_EQ(textInZone(zone, zone.startOfDay(day)), row.start) << row.zone;
        EXPECT_EQ(textInZone(zone, zone.startOfDay({day.number + 1})), row.next) << row.zone;
    }
}

struct ReadingRow {
    const char* zone;
    CivilTime time;
    const char* first;
    const char* last;
};

TEST(NSTimeZone, wallClockReadingsInGapsMoveOnAndRepeatedOnesAreChosen) {
    const std::vector<ReadingRow> rows{
        {"America/New_York", {2024, 1, 5, 15, 4, 5}, "2024-01-05T15:04:05-05:00", nullptr},
        {"America/New_York", {2024, 3, 10, 2, 30, 0}, "2024-03-10T03:30:00-04:00", nullptr},
        {"America/New_York",
         {2024, 11, 3, 1, 30, 0},
         "2024-11-03T01:30:00-04:00",
         "2024-11-03T01:30:00-05:00"},
        {"America/Sao_Paulo", {2018, 11, 4, 0, 30, 0}, "2018-11-04T01:30:00-02:00", nullptr},
        {"Pacific/Apia", {2011, 12, 30, 12, 0, 0}, "2011-12-31T12:00:00+14:00", nullptr},
    };
    for (const ReadingRow& row : rows) {
        const NSTimeZone zone = zoneNamed(row.zone);
        EXPECT_EQ(textInZone(zone, zone.dateOfCivilTime(row.time)), row.first);
        EXPECT_EQ(textInZone(zone, zone.lastDateOfCivilTime(row.time)),
                  row.last == nullptr ? row.first : row.last);
    }
}

TEST(NSTimeZone, hugeInstantsAreHeldInsideTheRules) {
    const double infinity = std::numeric_limits<double>::infinity();
    const NSTimeZone zone = zoneNamed("Europe/Berlin");
    const auto at = NSDate::dateWithTimeIntervalSinceReferenceDate;
    EXPECT_EQ(zone.civilTime(at(infinity)).year, zone.civilTime(at(1e300)).year);
    EXPECT_GT(zone.civilTime(at(infinity)).year, 30'000'000);
    EXPECT_LT(zone.civilTime(at(-infinity)).year, -30'000'000);
    EXPECT_EQ(zone.civilTime(at(std::nan(""))).year, 2001);
    EXPECT_EQ(zone.secondsFromGMTForDate(NSDate::distantFuture()), 3600);
    EXPECT_EQ(zone.civilDay(NSDate::distantPast()), CivilDay::fromDate(0, 12, 30));
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    EXPECT_TRUE(std::isfinite(zone.startOfDay({most}).timeIntervalSinceReferenceDate()));
    EXPECT_TRUE(std::isfinite(
        zone.startOfDay(CivilDay::fromDate(-most, 1, 1)).timeIntervalSinceReferenceDate()));
    const CivilTime farYear{most, 12, 31, 23, 59, 59};
    EXPECT_TRUE(std::isfinite(zone.dateOfCivilTime(farYear).timeIntervalSinceReferenceDate()));
}

}  // namespace
}  // namespace tavrion
