#include "platform/foundation/NSDateFormatter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "platform/foundation/NSCalendar.h"
#include "tests/platform/foundation/ZoneText.h"

namespace tavrion {
namespace {

using test::instant;
using test::textInZone;
using test::zoneNamed;

/// Plugs a region and keeps it for the life of the scope.
class InRegion {
  public:
    explicit InRegion(const char* zone, const char* locale = "en_US")
        : region_(zoneNamed(zone), locale), plug_(region_) {}

  private:
    Regional region_;
    Port<Regional>::Plug plug_;
};

NSDateFormatter machineFormatter(const char* format) {
    NSDateFormatter formatter;
    formatter.setLocale("en_US_POSIX");
    formatter.setDateFormat(format);
    return formatter;
}

constexpr const char* withOffset = "yyyy-MM-dd'T'HH:mm:ssZ";
constexpr const char* local = "yyyy-MM-dd HH:mm";

TEST(NSDateFormatter, readsADateWithItsOffset) {
    const InRegion region("Asia/Kolkata");
    const NSDateFormatter formatter = machineFormatter(withOffset);
    const NSDate expected = instant("2024-01-05T15:04:05-05:00");
    for (const char* text :
         {"2024-01-05T15:04:05-0500", "2024-01-05T15:04:05-05:00", "2024-01-05T20:04:05Z",
          "2024-01-05T20:04:05+0000", "2024-01-05T20:04:05 +0000", "2024-01-05T20:04:05GMT",
          "  2024-01-05T15:04:05-0500", "2024-01-05T15:04:05-0500 \n",
          "2024-01-06T01:34:05+0530"}) {
        EXPECT_EQ(formatter.dateFromString(text), expected) << text;
    }
}

TEST(NSDateFormatter, refusesWhatIsNoDateOfTheFormat) {
    const InRegion region("UTC");
    const NSDateFormatter formatter = machineFormatter(withOffset);
    for (const char* text :
         {"", " ", "2024-01-05 20:04:05+0000", "2024-1-5T20:04:05+0000", "2024-02-30T20:04:05+0000",
          "2024-01-05T24:04:05+0000", "2024-01-05T20:04:05", "2024-01-05T20:04:05.123+0000",
          "2024-01-05T20:04:05+0000xyz", "24-01-05T20:04:05+0000", "0999-12-31T23:59:59+0000",
          "nonsense"}) {
        EXPECT_EQ(formatter.dateFromString(text), std::nullopt) << text;
    }
    EXPECT_EQ(formatter.dateFromString("1000-01-02T00:00:00+0000"),
              NSDate::dateWithTimeIntervalSince1970(-30610137600.0));
}

struct LocalRow {
    const char* zone;
    const char* text;
    /// Null where the zone's clock never showed that.
    const char* read;
};

TEST(NSDateFormatter, readsTheWallClockOfTheZone) {
    const LocalRow rows[] = {
        {"America/New_York", "2024-03-10 01:30", "2024-03-10T01:30:00-05:00"},
        {"America/New_York", "2024-03-10 02:30", nullptr},
        {"America/New_York", "2024-03-10 03:00", "2024-03-10T03:00:00-04:00"},
        {"America/New_York", "2024-11-03 00:59", "2024-11-03T00:59:00-04:00"},
        {"America/New_York", "2024-11-03 01:30", "2024-11-03T01:30:00-05:00"},
        {"Europe/Berlin", "2024-03-31 02:30", nullptr},
        {"Europe/Berlin", "2024-10-27 02:30", "2024-10-27T02:30:00+01:00"},
        {"America/Sao_Paulo", "2018-11-04 00:00", nullptr},
        {"America/Sao_Paulo", "2018-11-04 00:30", nullptr},
        {"America/Sao_Paulo", "2018-11-04 01:00", "2018-11-04T01:00:00-02:00"},
        {"Africa/Cairo", "2010-04-30 00:15", nullptr},
        {"Africa/Cairo", "2023-06-01 12:00", "2023-06-01T12:00:00+03:00"},
        {"Asia/Kolkata", "2024-03-10 02:30", "2024-03-10T02:30:00+05:30"},
        {"Pacific/Apia", "2011-12-30 12:00", nullptr},
    };
    for (const LocalRow& row : rows) {
        const InRegion region(row.zone);
        const auto read = machineFormatter(local).dateFromString(row.text);
        EXPECT_EQ(read, row.read == nullptr ? std::nullopt : std::optional(instant(row.read)))
            << row.zone << " " << row.text;
    }
}

TEST(NSDateFormatter, readsBackWhatItWroteInEveryLocale) {
    for (const char* locale : {"en_US", "en_GB", "de_DE", "fr_FR", "ja_JP", "ar_EG"}) {
        const InRegion region("Europe/Berlin", locale);
        NSDateFormatter formatter;
        formatter.setDateStyle(NSDateFormatterStyle::mediumStyle);
        formatter.setTimeStyle(NSDateFormatterStyle::shortStyle);
        const NSDate date = instant("2024-09-07T15:04:00+02:00");
        const std::string text = formatter.stringFromDate(date);
        EXPECT_EQ(formatter.dateFromString(text), date) << locale << ": " << text;
    }
}

TEST(NSDateFormatter, takesAnyBlankBeforeTheHalfOfTheDay) {
    const InRegion region("UTC");
    NSDateFormatter formatter;
    formatter.setDateStyle(NSDateFormatterStyle::shortStyle);
    formatter.setTimeStyle(NSDateFormatterStyle::shortStyle);
    const NSDate date = instant("2024-01-05T15:04:00Z");
    for (const char* text : {"1/5/24, 3:04 PM", "1/5/24, 3:04\u202FPM", "1/5/24, 3:04\u00A0PM"}) {
        EXPECT_EQ(formatter.dateFromString(text), date) << text;
    }
}

TEST(NSDateFormatter, whatIsSetOnItWinsOverTheRegion) {
    const InRegion region("America/New_York", "ja_JP");
    NSDateFormatter formatter;
    formatter.setLocale("de_DE");
    formatter.setTimeZone(zoneNamed("Europe/Berlin"));
    formatter.setDateStyle(NSDateFormatterStyle::longStyle);
    EXPECT_EQ(formatter.stringFromDate(instant("2024-01-05T23:30:00Z")), "6. Januar 2024");
    formatter.setDateFormat("HH");
    EXPECT_EQ(formatter.stringFromDate(instant("2024-01-05T23:30:00Z")), "00");
    formatter.setLocalizedDateFormatFromTemplate("MMMM");
    EXPECT_EQ(formatter.stringFromDate(instant("2024-01-05T23:30:00Z")), "Januar");
}

TEST(NSDateFormatter, withoutADateAndATimeThereIsNoText) {
    const InRegion region("UTC");
    EXPECT_EQ(NSDateFormatter().stringFromDate(NSDate()), "");
}

TEST(NSDateFormatter, aFractionOfASecondBelongsToItsSecond) {
    const InRegion region("UTC");
    const NSDateFormatter formatter = machineFormatter("yyyy-MM-dd HH:mm:ss");
    EXPECT_EQ(formatter.stringFromDate(instant("2024-01-05T23:59:59.999Z")), "2024-01-05 23:59:59");
    const NSDate before = NSDate::dateWithTimeIntervalSinceReferenceDate(-0.25);
    EXPECT_EQ(formatter.stringFromDate(before), "2000-12-31 23:59:59");
}

TEST(NSDateFormatter, oneCalendarHoldsForAllYears) {
    const InRegion region("UTC");
    const NSDate date = NSTimeZone().dateOfCivilTime({1492, 10, 12, 6, 0, 0});
    EXPECT_EQ(machineFormatter(local).stringFromDate(date), "1492-10-12 06:00");
    EXPECT_EQ(machineFormatter(local).dateFromString("1492-10-12 06:00"), date);
}

TEST(NSDateFormatter, datesBeyondAllReckoningHaveATextToo) {
    const InRegion region("Europe/Berlin");
    NSDateFormatter formatter;
    formatter.setDateStyle(NSDateFormatterStyle::mediumStyle);
    formatter.setTimeStyle(NSDateFormatterStyle::shortStyle);
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double seconds : {1e300, -1e300, infinity, -infinity, std::nan("")}) {
        const auto date = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
        EXPECT_NE(formatter.stringFromDate(date), "") << seconds;
    }
    EXPECT_EQ(
        formatter.stringFromDate(NSDate::dateWithTimeIntervalSinceReferenceDate(std::nan(""))),
        formatter.stringFromDate(NSDate()));
}

TEST(NSDateFormatter, anUnknownLocaleStillWrites) {
    const InRegion region("UTC", "xx_XX");
    EXPECT_EQ(machineFormatter(local).stringFromDate(NSDate()), "2001-01-01 00:00");
    NSDateFormatter formatter;
    formatter.setDateStyle(NSDateFormatterStyle::mediumStyle);
    EXPECT_NE(formatter.stringFromDate(NSDate()), "");
}

TEST(NSDateFormatter, manyThreadsWriteAtOnce) {
    const InRegion region("Europe/Berlin", "de_DE");
    std::vector<std::string> texts(4);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        threads.emplace_back([&texts, i] {
            NSDateFormatter formatter;
            formatter.setDateFormat("HH:mm");
            for (int hour = 0; hour < 2000; ++hour) {
                // In winter and in summer by turns, so that the offset changes at each call.
                const NSDate date =
                    instant(hour % 2 == 0 ? "2024-01-05T12:00:00Z" : "2024-07-05T12:00:00Z");
                texts[i] = formatter.stringFromDate(date);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(texts, std::vector<std::string>(4, "14:00"));
}

}  // namespace
}  // namespace tavrion
