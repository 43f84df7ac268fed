// How many plays of how many songs are between two dates, and how long they lasted.

#include "recording/PlayTotals.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

class PlayTotalsTest : public testing::Test {
  protected:
    PlayTotals between(double start, double end) {
        return playTotalsBetween(*environment.main().snapshot(), RecordingEnvironment::at(start),
                                 RecordingEnvironment::at(end));
    }
    RecordingEnvironment environment;
};

TEST_F(PlayTotalsTest, anEmptyStoreHasNone) {
    const PlayTotals totals = between(0, 100);
    EXPECT_EQ(totals.plays, 0U);
    EXPECT_EQ(totals.songs, 0U);
    EXPECT_EQ(totals.seconds, 0);
}

TEST_F(PlayTotalsTest, songsCountOnceAndTheirDurationsOnceAPlay) {
    PlaybackHistory first = environment.makeHistory("First", 180);
    PlaybackHistory second = environment.makeHistory("Second", 60.5);
    environment.makeHistory("Never played", 1000);
    environment.makePlay(first, 10);
    environment.makePlay(first, 20);
    environment.makePlay(second, 30);
    const PlayTotals totals = between(0, 100);
    EXPECT_EQ(totals.plays, 3U);
    EXPECT_EQ(totals.songs, 2U);
    EXPECT_EQ(totals.seconds, 420.5);
}

TEST_F(PlayTotalsTest, bothEndsAreOutside) {
    PlaybackHistory song = environment.makeHistory("Song", 180);
    environment.makePlay(song, 10);
    environment.makePlay(song, 20);
    environment.makePlay(song, 30);
    EXPECT_EQ(between(10, 30).plays, 1U);
}

TEST_F(PlayTotalsTest, playsWithoutADateAreInNoSpan) {
    PlaybackHistory song = environment.makeHistory("Song", 180);
    environment.makePlay(song, 10);
    PlayEvent undated = PlayEvent::insert(environment.main());
    song.addPlaysObject(undated);
    EXPECT_EQ(between(-1e12, 1e12).plays, 1U);
}

TEST_F(PlayTotalsTest, aPlayWithoutASongAddsNoSongAndNoTime) {
    PlaybackHistory song = environment.makeHistory("Song", 180);
    environment.makePlay(song, 10);
    PlaybackHistory gone = environment.makeHistory("Gone", 60);
    environment.makePlay(gone, 20);
    environment.main().deleteObject(gone);
    const PlayTotals totals = between(0, 100);
    EXPECT_EQ(totals.plays, 2U);
    EXPECT_EQ(totals.songs, 1U);
    EXPECT_EQ(totals.seconds, 180);
}

TEST_F(PlayTotalsTest, shortAndLongSpansAgreeWithAPlainRecount) {
    std::mt19937 random(9);
    std::vector<PlaybackHistory> songs;
    for (int i = 0; i < 20; ++i) {
        songs.push_back(environment.makeHistory("Song " + std::to_string(i), 100 + i));
    }
    std::vector<std::pair<double, std::size_t>> plays;
    for (int i = 0; i < 600; ++i) {
        plays.emplace_back(static_cast<double>(random() % 1000), random() % songs.size());
        environment.makePlay(songs[plays.back().second], plays.back().first);
    }
    for (int i = 0; i < 60; ++i) {
        const double start = static_cast<double>(random() % 1000);
        const double end = start + static_cast<double>(random() % (i % 2 == 0 ? 20 : 1000));
        std::set<std::size_t> distinct;
        std::size_t count = 0;
        double seconds = 0;
        for (const auto& [date, song] : plays) {
            if (date > start && date < end) {
                distinct.insert(song);
                ++count;
                seconds += 100 + static_cast<double>(song);
            }
        }
        const PlayTotals totals = between(start, end);
        EXPECT_EQ(totals.plays, count);
        EXPECT_EQ(totals.songs, distinct.size());
        EXPECT_EQ(totals.seconds, seconds);
    }
}

}  // namespace
}  // namespace tavrion
