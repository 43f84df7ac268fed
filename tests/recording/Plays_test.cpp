// Plays by their dates, beside a plain walk over the same plays.

#include "recording/Plays.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "tests/support/DayZones.h"
#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

NSDate at(double seconds) {
    return RecordingEnvironment::at(seconds);
}

/// What a walk by date calls.
using Dated = std::vector<std::pair<double, RecordCounter>>;

Dated byDate(const Plays& plays) {
    Dated found;
    plays.forEachByDate([&](PlayDate date, RecordCounter play) {
        EXPECT_EQ(date.date(), at(date.seconds()));
        found.emplace_back(date.seconds(), play);
    });
    return found;
}

std::map<RecordCounter, int> bySong(const Plays& plays) {
    std::map<RecordCounter, int> found;
    plays.forEachSong([&](RecordCounter song) { ++found[song]; });
    return found;
}

class PlaysTest : public testing::Test {
  protected:
    RecordCounter play(PlaybackHistory& song, double date) {
        return environment.makePlay(song, date).objectID().counter;
    }
    RecordCounter undated(PlaybackHistory& song) {
        PlayEvent event = PlayEvent::insert(environment.main());
        song.addPlaysObject(event);
        return event.objectID().counter;
    }
    const StoreVersion& records() {
        version = environment.main().snapshot();
        return *version;
    }

    RecordingEnvironment environment;
    std::shared_ptr<const StoreVersion> version;
};

TEST_F(PlaysTest, anEmptyStoreHasNone) {
    const Plays all(records());
    EXPECT_EQ(all.count(), 0U);
    EXPECT_THAT(byDate(all), IsEmpty());
    EXPECT_THAT(bySong(all), IsEmpty());
    const Plays span(*version, at(0), at(10));
    EXPECT_EQ(span.count(), 0U);
    EXPECT_THAT(byDate(span), IsEmpty());
    EXPECT_THAT(Plays::withoutDate(*version), IsEmpty());
    EXPECT_EQ(Plays::countOfSong(*version, 1), 0U);
}

TEST_F(PlaysTest, comeByDateAndEqualDatesByTheirRecords) {
    PlaybackHistory song = environment.makeHistory("Song", 100);
    const RecordCounter late = play(song, 20);
    const RecordCounter first = play(song, 10);
    const RecordCounter second = play(song, 10);
    const RecordCounter before = play(song, -5.5);
    const RecordCounter stray = undated(song);
    EXPECT_EQ(byDate(Plays(records())),
              (Dated{{-5.5, before}, {10, first}, {10, second}, {20, late}}));
    EXPECT_EQ(Plays(*version).count(), 4U);
    EXPECT_THAT(Plays::withoutDate(*version), ElementsAre(stray));
    EXPECT_EQ(Plays::countOfSong(*version, song.objectID().counter), 5U);
}

TEST_F(PlaysTest, bothEndsAreOutsideOnEveryWay) {
    PlaybackHistory song = environment.makeHistory("Song", 100);
    PlaybackHistory other = environment.makeHistory("Other", 100);
    const RecordCounter start = play(other, 10);
    const RecordCounter within = play(song, 15);
    play(other, 20);
    const RecordCounter counter = song.objectID().counter;
    // With few plays all are walked, with many beside the span they are found by the index.
    for (const int others : {0, 200}) {
        for (int i = 0; i < others; ++i) {
            play(other, 100 + i);
        }
        const Plays plays(records(), at(10), at(20));
        EXPECT_EQ(plays.count(), 1U);
        EXPECT_EQ(byDate(plays), (Dated{{15, within}}));
        EXPECT_EQ(bySong(plays), (std::map<RecordCounter, int>{{counter, 1}}));
        std::vector<double> dates;
        plays.forEachOfSong(other.objectID().counter, [&](double date) { dates.push_back(date); });
        EXPECT_THAT(dates, IsEmpty());
        plays.forEachOfSong(counter, [&](double date) { dates.push_back(date); });
        EXPECT_THAT(dates, ElementsAre(15));
        EXPECT_EQ(byDate(Plays(*version, at(9.5), at(10.5))), (Dated{{10, start}}));
        EXPECT_EQ(Plays(*version, at(10), at(10)).count(), 0U);
        EXPECT_THAT(byDate(Plays(*version, at(10), at(10))), IsEmpty());
    }
}

TEST_F(PlaysTest, aPlayWithoutASongIsOfSongZeroAndLastsNoTime) {
    PlaybackHistory song = environment.makeHistory("Song", 100);
    PlaybackHistory gone = environment.makeHistory("Gone", 60);
    const RecordCounter kept = play(song, 10);
    const RecordCounter left = play(gone, 20);
    environment.main().deleteObject(gone);
    const Plays plays(records());
    EXPECT_EQ(plays.songOf(left), 0U);
    const PlayDurations durations(*version, plays);
    EXPECT_EQ(durations.of(kept), 100);
    EXPECT_EQ(durations.of(left), 0);
    const SongDurations songs(*version);
    EXPECT_TRUE(songs.has(song.objectID().counter));
    EXPECT_FALSE(songs.has(0));
    EXPECT_FALSE(songs.has(static_cast<RecordCounter>(songs.end())));
    EXPECT_EQ(songs.of(song.objectID().counter), 100);
    EXPECT_EQ(songs.of(static_cast<RecordCounter>(songs.end())), 0);
}

TEST_F(PlaysTest, durationsOfFewAndOfManyPlaysAreTheSame) {
    std::vector<PlaybackHistory> songs;
    for (int i = 0; i < 10; ++i) {
        songs.push_back(environment.makeHistory("Song " + std::to_string(i), 100.5 + i));
    }
    std::map<RecordCounter, double> expected;
    std::vector<PlayEvent> made;
    for (int i = 0; i < 400; ++i) {
        PlaybackHistory& song = songs[static_cast<std::size_t>(i % 10)];
        made.push_back(environment.makePlay(song, i));
        expected[made.back().objectID().counter] = song.duration();
    }
    // Holes between the records of the plays.
    for (std::size_t i = 50; i < 300; i += 7) {
        expected.erase(made[i].objectID().counter);
        environment.main().deleteObject(made[i]);
    }
    for (const double end : {10.0, 400.0}) {
        const Plays plays(records(), at(-1), at(end));
        const PlayDurations durations(*version, plays);
        std::size_t seen = 0;
        plays.forEachByDate([&](PlayDate, RecordCounter play) {
            EXPECT_EQ(durations.of(play), expected.at(play));
            ++seen;
        });
        EXPECT_EQ(seen, plays.count());
    }
}

TEST_F(PlaysTest, everyWayAgreesWithAPlainWalk) {
    std::mt19937 random(13);
    std::vector<PlaybackHistory> songs;
    for (int i = 0; i < 15; ++i) {
        songs.push_back(environment.makeHistory("Song " + std::to_string(i), 100 + i));
    }
    std::vector<std::tuple<double, RecordCounter, RecordCounter>> made;
    for (int i = 0; i < 700; ++i) {
        PlaybackHistory& song = songs[random() % songs.size()];
        const double date = static_cast<double>(random() % 1000) - 500;
        made.emplace_back(date, play(song, date), song.objectID().counter);
    }
    std::sort(made.begin(), made.end());
    records();
    for (int round = 0; round < 60; ++round) {
        const double start = static_cast<double>(random() % 1000) - 500;
        const double end = start + static_cast<double>(random() % (round % 2 == 0 ? 20 : 1000));
        const Plays plays(*version, at(start), at(end));
        Dated dated;
        std::map<RecordCounter, int> counts;
        for (const auto& [date, play, song] : made) {
            if (date > start && date < end) {
                dated.emplace_back(date, play);
                ++counts[song];
            }
        }
        EXPECT_EQ(plays.count(), dated.size());
        EXPECT_EQ(byDate(plays), dated);
        EXPECT_EQ(bySong(plays), counts);
        for (const PlaybackHistory& song : songs) {
            int count = 0;
            plays.forEachOfSong(song.objectID().counter, [&](double date) {
                EXPECT_TRUE(date > start && date < end);
                ++count;
            });
            EXPECT_EQ(count, counts[song.objectID().counter]);
        }
    }
}

class PlaysOfZones : public testing::TestWithParam<DayZone> {};

INSTANTIATE_TEST_SUITE_P(Plays, PlaysOfZones, testing::ValuesIn(dayZones), nameOfDayZone);

TEST_P(PlaysOfZones, dayAfterDayAtItsFirstInstantAndItsLastSecond) {
    RecordingEnvironment environment(NSDate(), GetParam().zone);
    PlaybackHistory song = environment.makeHistory("Song", 100);
    const std::vector<WalkedDay> days = GetParam().days(5, 5);
    for (const WalkedDay& day : days) {
        for (const NSDate date :
             {day.first, day.noon(), day.last, day.last.dateByAddingTimeInterval(0.5)}) {
            environment.makePlay(song, date.timeIntervalSinceReferenceDate());
        }
    }
    const auto version = environment.main().snapshot();
    std::vector<CivilDay> begun;
    std::vector<int> counts;
    Plays(*version).forEachByDay(
        GetParam().timeZone(),
        [&](CivilDay day) {
            if (begun.empty() || begun.back() != day) {
                begun.push_back(day);
                counts.push_back(0);
            }
        },
        [&](PlayDate, RecordCounter) { ++counts.back(); });
    ASSERT_THAT(begun, SizeIs(days.size()));
    for (std::size_t i = 0; i < days.size(); ++i) {
        EXPECT_EQ(begun[i], days[i].day);
        EXPECT_EQ(counts[i], 4);
    }
}

}  // namespace
}  // namespace tavrion
