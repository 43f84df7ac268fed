#include "platform/foundation/NSDateComponentsFormatter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/platform/foundation/ZoneText.h"

namespace tavrion {
namespace {

using test::instant;
using test::zoneNamed;
using Style = NSDateComponentsFormatterUnitsStyle;
using Zeros = NSDateComponentsFormatterZeroBehavior;

constexpr std::uint64_t hms =
    NSCalendarUnit::hour | NSCalendarUnit::minute | NSCalendarUnit::second;
constexpr std::uint64_t dates =
    NSCalendarUnit::year | NSCalendarUnit::month | NSCalendarUnit::weekOfYear | NSCalendarUnit::day;

class InZone {
  public:
    explicit InZone(const char* zone, const char* locale = "en_US")
        : region_(zoneNamed(zone), locale), plug_(region_) {}

  private:
    Regional region_;
    Port<Regional>::Plug plug_;
};

NSDateComponentsFormatter formatterFor(Style style, std::uint64_t units, std::size_t most = 0,
                                       Zeros zeros = Zeros::standard) {
    NSDateComponentsFormatter formatter;
    formatter.setUnitsStyle(style);
    formatter.setAllowedUnits(units);
    formatter.setMaximumUnitCount(most);
    formatter.setZeroFormattingBehavior(zeros);
    return formatter;
}

std::string abbreviated(std::uint64_t units, double seconds, std::size_t most = 0) {
    return formatterFor(Style::abbreviated, units, most).stringFromTimeInterval(seconds);
}

/// As the age of something in a library is shown.
std::string age(double days) {
    NSDateComponentsFormatter formatter = formatterFor(Style::shortStyle, dates, 1);
    formatter.setCollapsesLargestUnit(true);
    return formatter.stringFromTimeInterval(days * 86400);
}

TEST(NSDateComponentsFormatter, theMaskIsThePlatforms) {
    EXPECT_EQ(dates, 8220U);
}

TEST(NSDateComponentsFormatter, theStylesOfOneLength) {
    const InZone zone("UTC");
    const double length = 9 * 3600 + 41 * 60 + 30;
    EXPECT_EQ(formatterFor(Style::shortStyle, hms).stringFromTimeInterval(length),
              "9 hr, 41 min, 30 sec");
    EXPECT_EQ(abbreviated(hms, length), "9h 41m 30s");
    EXPECT_EQ(formatterFor(Style::positional, hms).stringFromTimeInterval(length), "9:41:30");
}

TEST(NSDateComponentsFormatter, whatIsSmallerThanTheSmallestUnitIsCutOff) {
    const InZone zone("UTC");
    EXPECT_EQ(abbreviated(NSCalendarUnit::hour, 1.5 * 3600), "1h");
    EXPECT_EQ(abbreviated(NSCalendarUnit::minute, 59), "0m");
    EXPECT_EQ(abbreviated(NSCalendarUnit::hour, 3599), "0h");
}

TEST(NSDateComponentsFormatter, aBoundRoundsHalvesToTheEvenNumberAndCarries) {
    const InZone zone("UTC");
    EXPECT_EQ(abbreviated(hms, 4230, 2), "1h 10m");
    EXPECT_EQ(abbreviated(hms, 630, 2), "10m 30s");
    EXPECT_EQ(abbreviated(hms, 23.5 * 3600, 1), "24h");
    EXPECT_EQ(abbreviated(hms, 22.5 * 3600, 1), "22h");
    EXPECT_EQ(abbreviated(hms, 22.5 * 3600 + 60, 1), "23h");
    EXPECT_EQ(abbreviated(hms, 7199, 2), "2h");
    EXPECT_EQ(abbreviated(hms | NSCalendarUnit::day, 86399, 2), "1d");
    EXPECT_EQ(abbreviated(hms | NSCalendarUnit::day, 86400 + 31 * 60, 1), "1d");
    // Only units that are not zero count.
    EXPECT_EQ(abbreviated(hms, 360001, 2), "100h 1s");
}

TEST(NSDateComponentsFormatter, zerosAreDroppedAsAsked) {
    const InZone zone("UTC");
    const auto text = [](Zeros zeros, double seconds) {
        return formatterFor(Style::abbreviated, hms, 0, zeros).stringFromTimeInterval(seconds);
    };
    EXPECT_EQ(text(Zeros::none, 3610), "1h 0m 10s");
    EXPECT_EQ(text(Zeros::standard, 3610), "1h 10s");
    EXPECT_EQ(text(Zeros::dropAll, 3610), "1h 10s");
    EXPECT_EQ(text(Zeros::dropLeading, 600), "10m 0s");
    EXPECT_EQ(text(Zeros::dropLeading, 0), "0s");
    EXPECT_EQ(text(Zeros::dropAll, 0), "0s");
    const auto positional = [](Zeros zeros, double seconds) {
        return formatterFor(Style::positional, hms, 0, zeros).stringFromTimeInterval(seconds);
    };
    EXPECT_EQ(positional(Zeros::standard, 3600), "1:00:00");
    EXPECT_EQ(positional(Zeros::standard, 605), "10:05");
    EXPECT_EQ(positional(Zeros::standard, 59), "59");
    EXPECT_EQ(positional(Zeros::none, 59), "0:00:59");
}

TEST(NSDateComponentsFormatter, aBareOneIsToldInTheNextSmallerUnit) {
    const InZone zone("UTC");
    const auto text = [](std::uint64_t units, double seconds) {
        NSDateComponentsFormatter formatter = formatterFor(Style::abbreviated, units);
        formatter.setCollapsesLargestUnit(true);
        return formatter.stringFromTimeInterval(seconds);
    };
    EXPECT_EQ(text(hms, 63), "63s");
    EXPECT_EQ(text(hms, 74), "74s");
    EXPECT_EQ(text(hms, 75), "1m 15s");
    EXPECT_EQ(text(hms, 60), "1m");
    EXPECT_EQ(text(hms, 123), "2m 3s");
    EXPECT_EQ(text(hms, 3600 + 14 * 60 + 5), "74m 5s");
}

TEST(NSDateComponentsFormatter, anAgeIsOneUnit) {
    const InZone zone("UTC");
    EXPECT_EQ(age(7), "1 wk");
    EXPECT_EQ(age(8.9), "8 days");
    EXPECT_EQ(age(9), "1 wk");
    EXPECT_EQ(age(11), "2 wks");
    // A month and a week: told in weeks.
    EXPECT_EQ(age(38), "5 wks");
    EXPECT_EQ(age(60), "2 mths");
    // A year and a month: told in months.
    EXPECT_EQ(age(365 + 31), "13 mths");
    EXPECT_EQ(age(3650), "10 yrs");
}

TEST(NSDateComponentsFormatter, daysAreThoseOfTheCalendarFromTheFirstDayOf2001) {
    const std::uint64_t daysAndHours = NSCalendarUnit::day | NSCalendarUnit::hour;
    {
        const InZone paris("Europe/Paris");
        EXPECT_EQ(abbreviated(daysAndHours, 83 * 86400.0), "83d");
        EXPECT_EQ(abbreviated(daysAndHours, 84 * 86400.0), "84d 1h");
        EXPECT_EQ(abbreviated(daysAndHours, 213 * 86400.0), "213d 1h");
        EXPECT_EQ(abbreviated(daysAndHours, 301 * 86400.0), "301d");
        EXPECT_EQ(abbreviated(dates | hms, 200'000'000.0), "6y 4mo 3d 20h 33m 20s");
        EXPECT_EQ(formatterFor(Style::shortStyle, dates | hms).stringFromTimeInterval(2e8),
                  "6 yrs, 4 mths, 3 days, 20 hr, 33 min, 20 sec");
    }
    const InZone kolkata("Asia/Kolkata");
    EXPECT_EQ(abbreviated(daysAndHours, 213 * 86400.0), "213d");
    EXPECT_EQ(abbreviated(NSCalendarUnit::weekOfYear | NSCalendarUnit::month, 30 * 86400.0), "4w");
    EXPECT_EQ(abbreviated(NSCalendarUnit::weekOfYear | NSCalendarUnit::month, 31 * 86400.0), "1mo");
}

TEST(NSDateComponentsFormatter, betweenTwoDatesTheDaysAreThoseFromTheEarlierOne) {
    const InZone newYork("America/New_York");
    NSDateComponentsFormatter formatter =
        formatterFor(Style::abbreviated, NSCalendarUnit::day | NSCalendarUnit::hour);
    const NSDate noon = instant("2024-03-09T12:00:00-05:00");
    const NSDate nextNoon = instant("2024-03-10T12:00:00-04:00");
    EXPECT_EQ(formatter.stringFromDate(noon, nextNoon), "1d");
    EXPECT_EQ(formatter.stringFromDate(nextNoon, noon), "1d");
    EXPECT_EQ(formatter.stringFromDate(noon, nextNoon.dateByAddingTimeInterval(-60)), "22h");
    EXPECT_EQ(formatter.stringFromDate(instant("2024-11-02T12:00:00-04:00"),
                                       instant("2024-11-03T12:00:00-05:00")),
              "1d");
}

TEST(NSDateComponentsFormatter, betweenDatesAroundADayWithoutAMidnight) {
    const InZone saoPaulo("America/Sao_Paulo");
    const NSDateComponentsFormatter formatter =
        formatterFor(Style::abbreviated, NSCalendarUnit::day | NSCalendarUnit::hour);
    const NSDate start = instant("2018-11-03T00:00:00-03:00");
    // A day from midnight leads to one o'clock, the day's first hour.
    EXPECT_EQ(formatter.stringFromDate(start, instant("2018-11-04T01:00:00-02:00")), "1d");
    EXPECT_EQ(formatter.stringFromDate(start, instant("2018-11-05T00:00:00-02:00")), "2d");
}

TEST(NSDateComponentsFormatter, lengthsWithoutAnEndHaveNoText) {
    const InZone zone("UTC");
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double seconds : {std::nan(""), infinity, -infinity}) {
        EXPECT_EQ(abbreviated(hms, seconds, 2), "") << seconds;
        EXPECT_EQ(formatterFor(Style::positional, hms).stringFromTimeInterval(seconds), "");
        EXPECT_EQ(age(seconds), "");
    }
}

TEST(NSDateComponentsFormatter, greatLengthsAreToldInFull) {
    const InZone zone("UTC");
    EXPECT_EQ(abbreviated(hms, 2147483648.0), "596,523h 14m 8s");
    EXPECT_EQ(abbreviated(NSCalendarUnit::second, 1e15), "1,000,000,000,000,000s");
    EXPECT_EQ(abbreviated(hms, 1e300, 1), abbreviated(hms, 9e18, 1));
    for (const double days : {1e7, 1e9, 1e12, 1e300}) {
        EXPECT_NE(age(days), "") << days;
        EXPECT_NE(abbreviated(NSCalendarUnit::day | NSCalendarUnit::hour, days * 86400, 1), "")
            << days;
    }
}

TEST(NSDateComponentsFormatter, aGapInAPositionalTextIsABrokenPromise) {
    const InZone zone("UTC");
    EXPECT_DEATH(formatterFor(Style::positional, NSCalendarUnit::hour | NSCalendarUnit::second)
                     .stringFromTimeInterval(1),
                 "without a gap");
    EXPECT_DEATH(formatterFor(Style::positional, dates).stringFromTimeInterval(1), "without a gap");
    EXPECT_DEATH(abbreviated(0, 1), "some unit");
}

}  // namespace
}  // namespace tavrion
