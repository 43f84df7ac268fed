#include "sources/sample/SampleListener.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>

#include "sources/sample/SampleCalendar.h"
#include "sources/sample/SampleDay.h"
#include "tests/sources/sample/SampleFixture.h"

namespace tavrion {
namespace {

// West and east of everything, with summer time and without, and places that moved their clocks at
// midnight, by half an hour or for good.
const std::array zones{"UTC",
                       "Europe/Berlin",
                       "America/New_York",
                       "Asia/Kolkata",
                       "Pacific/Kiritimati",
                       "Pacific/Pago_Pago",
                       "Africa/Cairo",
                       "Australia/Lord_Howe",
                       "America/Nuuk",
                       "Antarctica/Troll",
                       "Asia/Pyongyang"};

const SampleCatalogue& smallCatalogue() {
    static const SampleCatalogue catalogue(1, 800);
    return catalogue;
}

TEST(SampleListener, countsRiseByThePlaysInBetween) {
    const SampleCatalogue& catalogue = smallCatalogue();
    for (const char* const zone : zones) {
        const SampleListener listener(catalogue, zoneNamed(zone));
        NSDate before = instant("2016-01-01T00:00:00Z");
        std::vector<SampleCounts> counts = listener.countsAt(before);
        for (const char* const when :
             {"2016-01-02T20:15:00Z", "2016-01-02T20:15:40Z", "2018-05-04T15:00:00Z",
              "2021-03-28T01:30:00Z", "2026-02-27T19:59:00Z", "2026-03-01T12:00:00Z"}) {
            const NSDate now = instant(when);
            for (const SamplePlay& play : listener.playsBetween(before, now)) {
                EXPECT_GT(play.end, before);
                EXPECT_LE(play.end, now);
                counts[play.song].add(play.isWhole, play.end);
            }
            const std::vector<SampleCounts> read = listener.countsAt(now);
            for (std::uint32_t song = 0; song < catalogue.songCount(); ++song) {
                ASSERT_EQ(read[song].plays, counts[song].plays) << zone << " " << when;
                ASSERT_EQ(read[song].skips, counts[song].skips) << zone << " " << when;
                ASSERT_EQ(read[song].lastPlayed, counts[song].lastPlayed) << zone << " " << when;
                ASSERT_EQ(read[song].lastSkipped, counts[song].lastSkipped) << zone << " " << when;
            }
            before = now;
        }
    }
}

TEST(SampleListener, anInstantOfAnEndCountsAsAfterIt) {
    const SampleListener listener(smallCatalogue(), zoneNamed("UTC"));
    const NSDate start = instant("2026-03-01T00:00:00Z");
    const std::vector<SamplePlay> plays =
        listener.playsBetween(start, instant("2026-03-03T00:00:00Z"));
    ASSERT_GT(plays.size(), 2U);
    const NSDate end = plays[1].end;
    EXPECT_EQ(listener.playsBetween(start, end).size(), 2U);
    EXPECT_EQ(listener.playsBetween(end, plays[2].end).size(), 1U);
    EXPECT_EQ(listener.playsBetween(end, end).size(), 0U);
    EXPECT_EQ(
        listener.countsAt(end)[plays[1].song].lastPlayed,
        plays[1].isWhole ? std::optional(end) : listener.countsAt(start)[plays[1].song].lastPlayed);
}

TEST(SampleListener, playsLastAsLongAsTheSongAndNeverOverlap) {
    const SampleCatalogue& catalogue = smallCatalogue();
    for (const char* const zone : zones) {
        const SampleListener listener(catalogue, zoneNamed(zone));
        NSDate free = NSDate::distantPast();
        std::size_t skips = 0;
        const std::vector<SamplePlay> plays =
            listener.playsBetween(instant("2016-01-01T00:00:00Z"), instant("2026-12-31T00:00:00Z"));
        for (const SamplePlay& play : plays) {
            ASSERT_GE(play.start, free) << zone << " " << isoTextOfDate(play.start);
            const double seconds = play.end.timeIntervalSinceDate(play.start);
            const double duration = catalogue.durationOfSong(play.song);
            ASSERT_GT(seconds, 0);
            if (play.isWhole) {
                ASSERT_NEAR(seconds, duration, 1e-6);
            } else {
                ASSERT_LE(seconds, duration / 2 + 1e-6);
                ++skips;
            }
            free = play.end;
        }
        EXPECT_GT(plays.size(), 50'000U) << zone;
        EXPECT_GT(skips, plays.size() / 50) << zone;
        EXPECT_LT(skips, plays.size() / 10) << zone;
    }
}

TEST(SampleListener, onlySongsThatAreThereAreHeard) {
    const SampleCatalogue catalogue(3, 5000);
    for (const char* const zone : zones) {
        const SampleListener listener(catalogue, zoneNamed(zone));
        for (const SamplePlay& play : listener.playsBetween(instant("2016-01-01T00:00:00Z"),
                                                            instant("2035-01-01T00:00:00Z"))) {
            ASSERT_LE(catalogue.dateAddedOfSong(play.song), play.start) << zone;
            ASSERT_TRUE(catalogue.hasSong(play.song, instant("2190-01-01T00:00:00Z"))) << zone;
        }
    }
}

TEST(SampleListener, theSameSongsAreHeardWhereverTheListenerIs) {
    const auto songsOf = [](const char* zone) {
        const SampleListener listener(smallCatalogue(), zoneNamed(zone));
        const NSTimeZone place = zoneNamed(zone);
        std::vector<std::uint32_t> songs;
        for (const SamplePlay& play :
             listener.playsBetween(place.startOfDay(CivilDay::fromDate(2025, 1, 1)),
                                   place.startOfDay(CivilDay::fromDate(2026, 7, 1)))) {
            songs.push_back(play.song);
        }
        return songs;
    };
    const std::vector<std::uint32_t> songs = songsOf("UTC");
    EXPECT_GT(songs.size(), 10'000U);
    for (const char* const zone : {"Europe/Berlin", "Pacific/Kiritimati", "America/New_York"}) {
        EXPECT_EQ(songsOf(zone), songs) << zone;
    }
}

TEST(SampleListener, beforeTheFirstAndAfterTheLastDayThereIsSilence) {
    const SampleListener listener(smallCatalogue(), zoneNamed("UTC"));
    EXPECT_TRUE(
        listener.playsBetween(NSDate::distantPast(), instant("2016-01-01T00:00:00Z")).empty());
    EXPECT_TRUE(
        listener.playsBetween(instant("2200-01-01T00:00:00Z"), NSDate::distantFuture()).empty());
    EXPECT_FALSE(
        listener.playsBetween(instant("2199-12-20T00:00:00Z"), NSDate::distantFuture()).empty());
    for (const SampleCounts& counts : listener.countsAt(instant("2015-12-31T00:00:00Z"))) {
        EXPECT_EQ(counts.plays + counts.skips, 0U);
    }
}

/// The expected seconds of listening on a day of these habits, from their definition.
double expectedMinutes(std::span<const SampleHabit> habits) {
    double minutes = 0;
    for (const SampleHabit& habit : habits) {
        minutes += habit.chance * (habit.shortestMinutes + habit.longestMinutes) / 2;
    }
    return minutes * (1 - quietDayChance);
}

struct Rhythm {
    double workdayMinutes = 0;
    double weekendMinutes = 0;
    double eveningMinutes = 0;
    double smallHoursMinutes = 0;
    double allMinutes = 0;
};

Rhythm rhythmOfYear(const SampleListener& listener, const NSTimeZone& zone) {
    Rhythm rhythm;
    for (const SamplePlay& play :
         listener.playsBetween(zone.startOfDay(CivilDay::fromDate(2025, 1, 1)),
                               zone.startOfDay(CivilDay::fromDate(2026, 1, 1)))) {
        const double minutes = play.end.timeIntervalSinceDate(play.start) / 60;
        const int hour = zone.civilTime(play.start).hour;
        rhythm.allMinutes += minutes;
        rhythm.eveningMinutes += hour >= 19 ? minutes : 0;
        rhythm.smallHoursMinutes += hour >= 4 && hour < 7 ? minutes : 0;
        (isWeekend(zone.civilDay(play.start).number) ? rhythm.weekendMinutes
                                                     : rhythm.workdayMinutes) += minutes;
    }
    return rhythm;
}

TEST(SampleListener, daysAndWeeksHaveTheirRhythmByTheWallClock) {
    // So large that sessions are not shortened.
    const SampleCatalogue catalogue(1, 20'000);
    for (const char* const name : {"UTC", "America/New_York", "Pacific/Kiritimati"}) {
        const NSTimeZone zone = zoneNamed(name);
        const Rhythm rhythm = rhythmOfYear(SampleListener(catalogue, zone), zone);
        constexpr double workdays = 261;
        constexpr double weekendDays = 104;
        // The last song of a session is heard to its end, hence up to a fifth more.
        const double workday =
            rhythm.workdayMinutes / workdays / expectedMinutes(habitsOfWorkdays());
        const double weekend =
            rhythm.weekendMinutes / weekendDays / expectedMinutes(habitsOfWeekends());
        EXPECT_GT(workday, 0.9) << name;
        EXPECT_LT(workday, 1.25) << name;
        EXPECT_GT(weekend, 0.9) << name;
        EXPECT_LT(weekend, 1.25) << name;
        const double evenings = (habitsOfWorkdays().back().chance * 100 * workdays +
                                 habitsOfWeekends().back().chance * 110 * weekendDays) /
                                (expectedMinutes(habitsOfWorkdays()) * workdays +
                                 expectedMinutes(habitsOfWeekends()) * weekendDays);
        EXPECT_NEAR(rhythm.eveningMinutes / rhythm.allMinutes, evenings, 0.08) << name;
        EXPECT_EQ(rhythm.smallHoursMinutes, 0) << name;
    }
}

TEST(SampleListener, favouritesAreHeardFarMoreThanTheRest) {
    const SampleCatalogue catalogue(1, 3000);
    const SampleListener listener(catalogue, zoneNamed("UTC"));
    std::vector<std::uint64_t> plays;
    for (const SampleCounts& counts : listener.countsAt(instant("2026-03-01T00:00:00Z"))) {
        plays.push_back(counts.plays);
    }
    std::sort(plays.rbegin(), plays.rend());
    plays.resize(3000);
    std::uint64_t all = 0;
    std::uint64_t top = 0;
    std::uint64_t unheard = 0;
    for (std::size_t i = 0; i < plays.size(); ++i) {
        all += plays[i];
        top += i < 150 ? plays[i] : 0;
        unheard += plays[i] == 0 ? 1 : 0;
    }
    EXPECT_GT(top, all / 4) << "the first twentieth";
    EXPECT_LT(top, all * 3 / 4);
    EXPECT_GT(unheard, 300U);
    EXPECT_GT(plays.front(), 500U);
    EXPECT_LT(plays.front(), 3000U) << "less than once a day";
}

TEST(SampleListener, discoveriesAreHeardMostInTheWeeksAfterTheyCame) {
    const SampleCatalogue catalogue(1, 3000);
    const SampleListener listener(catalogue, zoneNamed("UTC"));
    constexpr double week = 7 * 86400.0;
    std::array<std::uint64_t, 4> playsByTenWeeks{};
    for (const SamplePlay& play :
         listener.playsBetween(instant("2016-01-01T00:00:00Z"), instant("2027-01-01T00:00:00Z"))) {
        const NSDate added = catalogue.dateAddedOfSong(play.song);
        const double age = play.end.timeIntervalSinceDate(added);
        // Of songs that have been there for forty weeks at the end.
        const bool isOldEnough = added < instant("2026-03-01T00:00:00Z");
        if (play.song >= catalogue.endOfWeek(0) && isOldEnough && age < 40 * week) {
            ++playsByTenWeeks[static_cast<std::size_t>(age / (10 * week))];
        }
    }
    EXPECT_GT(playsByTenWeeks[0], 5 * playsByTenWeeks[2]);
    EXPECT_GT(playsByTenWeeks[0], 5 * playsByTenWeeks[3]);
    EXPECT_GT(playsByTenWeeks[0], 2 * playsByTenWeeks[1]);
    EXPECT_GT(playsByTenWeeks[3], 0U);
}

TEST(SampleListener, aSongIsHeardOnTheDayItCameOut) {
    const SampleCatalogue catalogue(1, 3000);
    const NSTimeZone zone = zoneNamed("America/New_York");
    const SampleListener listener(catalogue, zone);
    std::size_t heard = 0;
    for (const SamplePlay& play :
         listener.playsBetween(instant("2025-11-01T00:00:00Z"), instant("2026-11-01T00:00:00Z"))) {
        const auto released = catalogue.albumOfSong(play.song).releaseDay;
        heard += released && zone.civilDay(play.end).number == *released ? 1 : 0;
    }
    EXPECT_GT(heard, 10U);
}

TEST(SampleListener, moreMusicMeansALittleMoreListening) {
    const auto playsOfYear = [](std::uint32_t songs) {
        const SampleCatalogue catalogue(1, songs);
        return SampleListener(catalogue, zoneNamed("UTC"))
            .playsBetween(instant("2025-01-01T00:00:00Z"), instant("2026-01-01T00:00:00Z"))
            .size();
    };
    const std::size_t few = playsOfYear(200);
    const std::size_t many = playsOfYear(50'000);
    EXPECT_GT(few, 8'000U);
    EXPECT_GT(many, few);
    EXPECT_LT(many, 3 * few);
}

TEST(SampleDay, sessionsFollowOneAnotherAndLeaveAnHourToTheNextDay) {
    constexpr double longestLastSong = 900.0 / 3600;
    for (std::int64_t day = 0; day < 4000; ++day) {
        double free = 0.75;
        for (const SampleSession& session : sessionsOfDay(9, day, 1)) {
            EXPECT_GE(session.startHour, free);
            EXPECT_GT(session.endHour, session.startHour);
            free = session.endHour;
        }
        EXPECT_LE(free + longestLastSong, 24 + 0.75 - 1 + 0.01);
    }
}

TEST(SampleDay, aFewDaysAreQuiet) {
    std::size_t quiet = 0;
    for (std::int64_t day = 0; day < 10'000; ++day) {
        quiet += sessionsOfDay(9, day, 1).empty() ? 1 : 0;
    }
    EXPECT_NEAR(static_cast<double>(quiet) / 10'000, quietDayChance, 0.01);
}

TEST(SampleDay, saturdayAndSundayAreTheWeekend) {
    EXPECT_FALSE(isWeekend(CivilDay::fromDate(2026, 2, 27).number));
    EXPECT_TRUE(isWeekend(CivilDay::fromDate(2026, 2, 28).number));
    EXPECT_TRUE(isWeekend(CivilDay::fromDate(2026, 3, 1).number));
    EXPECT_FALSE(isWeekend(CivilDay::fromDate(2026, 3, 2).number));
    EXPECT_TRUE(isWeekend(CivilDay::fromDate(1965, 5, 1).number));
}

}  // namespace
}  // namespace tavrion
