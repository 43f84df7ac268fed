// What users read of days, in zones with odd days.

#include <gtest/gtest.h>

#include "library/RVMetadataManager.h"
#include "library/RVQueryManager+Results.h"
#include "library/RVQueryManager+Statistics.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/testing/ManualClock.h"
#include "platform/testing/MediaLibraryFixture.h"
#include "recording/RVPlaybackHistoryManager.h"
#include "tests/support/DayZones.h"

namespace tavrion {
namespace {

class LibraryDays : public testing::TestWithParam<DayZone> {
  protected:
    static std::string textOf(NSDate date) { return RVMetadataManager::formattedDate(date, false); }
    static bool isWeekday(const std::string& text) { return text.ends_with("day"); }

    ManualClock clock{NSDate()};
    Port<Clock>::Plug clockPlug{clock};
    Regional region{GetParam().timeZone(), "en_US"};
    Port<Regional>::Plug regionPlug{region};
    std::unique_ptr<NSUserDefaults> defaults = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug defaultsPlug{*defaults};
    MediaLibraryFixture library;
};

INSTANTIATE_TEST_SUITE_P(Zones, LibraryDays, testing::ValuesIn(dayZones), nameOfDayZone);

TEST_P(LibraryDays, everyDayIsTodayOnceAndYesterdayOnce) {
    const std::vector<WalkedDay> days = GetParam().days(12, 12);
    for (std::size_t i = 1; i < days.size(); ++i) {
        for (const NSDate now : {days[i].first, days[i].noon(), days[i].last}) {
            clock.set(now);
            for (const NSDate date : {days[i].first, days[i].last}) {
                EXPECT_EQ(textOf(date), "Today");
                EXPECT_TRUE(RVMetadataManager::formattedEventDate(date).starts_with("Today at "));
            }
            // There is no yesterday on the day after one that was left out.
            const bool isNext = days[i].day.number == days[i - 1].day.number + 1;
            for (const NSDate date : {days[i - 1].first, days[i - 1].last}) {
                EXPECT_EQ(textOf(date) == "Yesterday", isNext);
                EXPECT_EQ(RVMetadataManager::formattedEventDate(date).starts_with("Yesterday at "),
                          isNext);
            }
        }
    }
}

TEST_P(LibraryDays, weekdaysAreReportedForAWeekAndDatesBeyond) {
    const std::vector<WalkedDay> days = GetParam().days(24, 12);
    for (const WalkedDay& today : days) {
        clock.set(today.noon());
        for (const WalkedDay& day : days) {
            const std::int64_t daysAgo = today.day.number - day.day.number;
            // Eight days from a day without a midnight are not whole ones.
            if (daysAgo >= 2 && daysAgo <= 7) {
                EXPECT_TRUE(isWeekday(textOf(day.noon()))) << daysAgo;
            } else if (daysAgo > 8) {
                EXPECT_FALSE(isWeekday(textOf(day.noon()))) << daysAgo;
            }
        }
    }
}

TEST_P(LibraryDays, playedRecentlyBeginsWithTheFirstInstantOfADay) {
    const WalkedDay begin = GetParam().lived();
    clock.set(GetParam().livedDay(30).noon());
    defaults->setObject(ScanDefaults::installationDate, NSDate::distantPast());
    library.publish({{.title = "at the start", .lastPlayed = begin.first},
                     {.title = "behind it", .lastPlayed = begin.after(0.5)}});
    const auto found = RVQueryManager::resultsForQuery(nullptr, MPMediaGrouping::genre, 0, false);
    ASSERT_FALSE(found.empty());
    const auto tiles = RVQueryManager::statsForMediaEntity(found.front());
    ASSERT_TRUE(tiles);
    const auto tile = std::find_if(tiles->begin(), tiles->end(), [](const auto& each) {
        return each->caption() == "Played Recently";
    });
    ASSERT_NE(tile, tiles->end());
    EXPECT_EQ((*tile)->value(), "50%");
}

}  // namespace
}  // namespace tavrion
