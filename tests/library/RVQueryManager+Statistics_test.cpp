#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "library/RVQueryManager+Results.h"
#include "library/RVQueryManager+Statistics.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaItemCollection.h"
#include "platform/testing/ManualClock.h"
#include "platform/testing/MediaLibraryFixture.h"
#include "recording/RVPlaybackHistoryManager.h"

namespace tavrion {
namespace {

using Tiles = std::vector<RVStatisticReference>;
using Lines = std::vector<std::string>;

/// 2026-03-31 12:00 UTC.
const NSDate present = NSDate::dateWithTimeIntervalSinceReferenceDate(796651200);

NSDate daysAgo(double days) {
    return present.dateByAddingTimeInterval(-days * 86400);
}

class Statistics : public testing::Test {
  protected:
    Statistics() { installedOn(daysAgo(400)); }

    void installedOn(NSDate date) {
        defaults_->setObject(ScanDefaults::installationDate, Value(date));
    }
    static Lines captions(const std::optional<Tiles>& tiles) {
        Lines found;
        for (const RVStatisticReference& tile : tiles.value_or(Tiles())) {
            found.push_back(tile->caption());
        }
        return found;
    }
    static Lines icons(const Tiles& tiles) {
        Lines found;
        for (const RVStatisticReference& tile : tiles) {
            found.push_back(tile->icon()->name());
        }
        return found;
    }
    static Lines values(const Tiles& tiles) {
        Lines found;
        for (const RVStatisticReference& tile : tiles) {
            found.push_back(tile->value());
        }
        return found;
    }
    static std::string valueOf(const std::optional<Tiles>& tiles, const std::string& caption) {
        for (const RVStatisticReference& tile : tiles.value_or(Tiles())) {
            if (tile->caption() == caption) {
                return tile->value();
            }
        }
        return "(none)";
    }
    static std::optional<Tiles> statsOfFirst(MPMediaGrouping grouping) {
        const auto found = RVQueryManager::resultsForQuery(nullptr, grouping, 0, false);
        return found.empty() ? std::nullopt : RVQueryManager::statsForMediaEntity(found.front());
    }
    std::optional<Tiles> statsOfSong(const std::string& title) const {
        return RVQueryManager::statsForMediaEntity(library_.song(title));
    }

    ManualClock clock_{present};
    Port<Clock>::Plug clockPlug_{clock_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug defaultsPlug_{*defaults_};
    MediaLibraryFixture library_;
};

TEST_F(Statistics, ofNothingAreNone) {
    EXPECT_EQ(RVQueryManager::statsForMediaEntity(MPMediaEntity()), std::nullopt);
}

TEST_F(Statistics, ofASongAreFiveTilesWithoutAShare) {
    library_.publish({{.title = "Song",
                       .duration = 90,
                       .playCount = 1234,
                       .skipCount = 5,
                       .added = daysAgo(100),
                       .released = daysAgo(1000),
                       .likedState = 2,
                       .trackCount = 12}});
    const auto tiles = statsOfSong("Song");
    ASSERT_TRUE(tiles);
    EXPECT_EQ(captions(tiles),
              (Lines{"Plays", "Minutes Played", "Skips", "Release Date", "Date Added"}));
    EXPECT_EQ(icons(*tiles),
              (Lines{"play.fill", "stopwatch", "forward.fill", "calendar", "calendar"}));
    EXPECT_EQ(values(*tiles), (Lines{"1,234", "1,851", "5", "Jul 5, 2023", "Dec 21, 2025"}));
    EXPECT_TRUE(std::none_of(tiles->begin(), tiles->end(), [](const RVStatisticReference& tile) {
        return tile->value().ends_with('%');
    }));
}

TEST_F(Statistics, ofAnAlbumSayHowMuchOfItIsThere) {
    std::vector<TestSong> songs(3, {.playCount = 1, .added = daysAgo(20), .trackCount = 12});
    library_.publish(songs);
    const auto tiles = statsOfFirst(MPMediaGrouping::album);
    EXPECT_EQ(captions(tiles), (Lines{"Plays", "Minutes Played", "% of All Plays", "Skips", "Year",
                                      "Date Added", "In Library"}));
    EXPECT_EQ(icons(*tiles).back(), "stopwatch");
    EXPECT_EQ(valueOf(tiles, "In Library"), "25%");
}

TEST_F(Statistics, ofAnAlbumWithMoreSongsThanItClaimsSayThatItIsWhole) {
    library_.publish(std::vector<TestSong>(14, {.trackCount = 12}));
    EXPECT_EQ(valueOf(statsOfFirst(MPMediaGrouping::album), "In Library"), "100%");
}

TEST_F(Statistics, ofAnAlbumWithoutATrackCountAreSix) {
    library_.publish(std::vector<TestSong>(3, {.trackCount = 0}));
    EXPECT_EQ(captions(statsOfFirst(MPMediaGrouping::album)),
              (Lines{"Plays", "Minutes Played", "% of All Plays", "Skips", "Year", "Date Added"}));
}

TEST_F(Statistics, ofASongWithoutAReleaseDateGiveItsYear) {
    library_.publish({{.title = "Old", .year = 1999}, {.title = "Unknown", .year = 0}});
    EXPECT_EQ(valueOf(statsOfSong("Old"), "Year"), "1999");
    EXPECT_EQ(valueOf(statsOfSong("Old"), "Release Date"), "(none)");
    EXPECT_EQ(valueOf(statsOfSong("Unknown"), "Year"), "0");
}

TEST_F(Statistics, ofAComposerAreNone) {
    library_.publish({{.title = "1", .composer = "Clara"}});
    MPMediaQuery query = MPMediaQuery::songsQuery();
    query.setGroupingType(MPMediaGrouping::composer);
    ASSERT_EQ(query.collections().size(), 1U);
    EXPECT_EQ(RVQueryManager::statsForMediaEntity(query.collections().front()), std::nullopt);
}

TEST_F(Statistics, ofASongAddedAtTheReferenceDateHaveNoDateAdded) {
    library_.publish(
        {{.title = "Synced", .added = NSDate::dateWithTimeIntervalSinceReferenceDate(0)},
         {.title = "Never"},
         {.title = "Second", .added = NSDate::dateWithTimeIntervalSinceReferenceDate(1)}});
    EXPECT_EQ(valueOf(statsOfSong("Synced"), "Date Added"), "—");
    EXPECT_EQ(valueOf(statsOfSong("Never"), "Date Added"), "—");
    EXPECT_EQ(valueOf(statsOfSong("Second"), "Date Added"), "Jan 1, 2001");
}

TEST_F(Statistics, ofArtistsAndGenresAreEight) {
    library_.publish(
        {{.title = "1",
          .albumTitle = "A",
          .duration = 60,
          .playCount = 3,
          .skipCount = 1,
          .lastPlayed = daysAgo(3),
          .added = daysAgo(50),
          .likedState = 2,
          .explicitContent = true},
         {.title = "2",
          .albumTitle = "B",
          .duration = 60,
          .playCount = 3,
          .skipCount = 1,
          .lastPlayed = daysAgo(31),
          .added = daysAgo(10),
          .likedState = 3},
         {.title = "3", .albumTitle = "B", .added = daysAgo(20)},
         {.title = "4", .artist = "Zoe", .genre = "Zydeco", .playCount = 6, .likedState = 2}});
    const Lines expectedCaptions{"Favorited",       "Plays", "Minutes Played", "% of All Plays",
                                 "Played Recently", "Skips", "Explicit",       "Date Added"};
    const Lines expectedValues{"1", "6", "6", "50%", "33.3%", "2", "33.3%", "Feb 9, 2026"};
    for (const auto grouping :
         {MPMediaGrouping::artist, MPMediaGrouping::albumArtist, MPMediaGrouping::genre}) {
        const auto tiles = statsOfFirst(grouping);
        ASSERT_TRUE(tiles);
        EXPECT_EQ(captions(tiles), expectedCaptions);
        EXPECT_EQ(values(*tiles), expectedValues);
        EXPECT_EQ(icons(*tiles), (Lines{"star.fill", "play.fill", "stopwatch", "play.fill", "timer",
                                        "forward.fill", "e.square.fill", "calendar"}));
    }
}

TEST_F(Statistics, ofAPlaylistCountASongAsOftenAsItIsThere) {
    library_.publish({{.title = "1", .playCount = 2, .explicitContent = true, .trackCount = 9},
                      {.title = "2", .playCount = 4}},
                     {{.name = "Mix", .persistentID = 9, .songs = {1, 1, 2}}});
    const auto tiles = statsOfFirst(MPMediaGrouping::playlist);
    ASSERT_TRUE(tiles);
    EXPECT_EQ(captions(tiles), (Lines{"Plays", "Minutes Played", "% of All Plays",
                                      "Played Recently", "Skips", "Explicit"}));
    EXPECT_EQ(valueOf(tiles, "Plays"), "8");
    EXPECT_EQ(valueOf(tiles, "% of All Plays"), "133.3%");
    EXPECT_EQ(valueOf(tiles, "Explicit"), "66.7%");
}

TEST_F(Statistics, ofALibraryWithoutPlaysShowWhatTheFormatterMakesOfNothing) {
    library_.publish({{.title = "1"}}, {{.name = "Empty", .persistentID = 9}});
    EXPECT_EQ(valueOf(statsOfFirst(MPMediaGrouping::album), "% of All Plays"), "NaN%");
    const auto empty = statsOfFirst(MPMediaGrouping::playlist);
    EXPECT_EQ(valueOf(empty, "Played Recently"), "NaN%");
    EXPECT_EQ(valueOf(empty, "Explicit"), "NaN%");
    EXPECT_EQ(valueOf(empty, "Plays"), "0");
}

TEST_F(Statistics, theShareIsOfAllMedia) {
    library_.publish({{.title = "1", .playCount = 1},
                      {.title = "Talk",
                       .artist = "Host",
                       .genre = "Speech",
                       .playCount = 3,
                       .mediaType = MediaType::podcast}});
    EXPECT_EQ(valueOf(statsOfFirst(MPMediaGrouping::genre), "% of All Plays"), "25%");
}

TEST_F(Statistics, playedRecentlyBeginsThirtyDaysAgoAtTheStartOfTheDay) {
    const NSDate start = Extended::startOfDay(daysAgo(30));
    library_.publish({{.title = "at the start", .lastPlayed = start},
                      {.title = "behind it", .lastPlayed = start.dateByAddingTimeInterval(0.001)},
                      {.title = "never"},
                      {.title = "yesterday", .lastPlayed = daysAgo(1)}});
    EXPECT_EQ(valueOf(statsOfFirst(MPMediaGrouping::genre), "Played Recently"), "50%");
}

TEST_F(Statistics, playedRecentlyMeasuresFromAYoungInstallation) {
    library_.publish({{.title = "before", .lastPlayed = daysAgo(8)},
                      {.title = "at it", .lastPlayed = daysAgo(7)},
                      {.title = "after", .lastPlayed = daysAgo(6)},
                      {.title = "never"}});
    installedOn(daysAgo(7));
    EXPECT_EQ(valueOf(statsOfFirst(MPMediaGrouping::genre), "Played Recently"), "25%");
    installedOn(daysAgo(70));
    EXPECT_EQ(valueOf(statsOfFirst(MPMediaGrouping::genre), "Played Recently"), "75%");
}

TEST_F(Statistics, dateAddedIsTheFirstAndTheReleaseDateTheLast) {
    library_.publish({{.title = "1", .added = daysAgo(40), .released = daysAgo(400)},
                      {.title = "2", .added = daysAgo(60), .released = daysAgo(300), .year = 2030},
                      {.title = "3"}});
    const auto tiles = statsOfFirst(MPMediaGrouping::album);
    EXPECT_EQ(valueOf(tiles, "Date Added"), "Jan 30, 2026");
    EXPECT_EQ(valueOf(tiles, "Release Date"), "Jun 4, 2025");
}

TEST_F(Statistics, minutesKeepTheirCaptionWhenTheyAreAClockTime) {
    library_.publish({{.title = "1", .duration = 100, .playCount = 40}});
    EXPECT_EQ(valueOf(statsOfSong("1"), "Minutes Played"), "66");
    defaults_->setObject("TimeListenedFormatExpanded", true);
    EXPECT_EQ(valueOf(statsOfSong("1"), "Minutes Played"), "1:06:40");
}

TEST_F(Statistics, ofAnArtistOfCompilationsAreThoseOfHisCompilationSongs) {
    library_.publish({{.title = "1", .artist = "Carol", .albumArtist = "Carol", .playCount = 5},
                      {.title = "2",
                       .artist = "Carol",
                       .albumArtist = "Various Artists",
                       .playCount = 3,
                       .likedState = 2,
                       .compilation = true}});
    defaults_->setObject(RVQueryManager::splitCompilationsKey, true);
    const auto found =
        RVQueryManager::resultsForQuery(nullptr, MPMediaGrouping::albumArtist, 0, false);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(valueOf(RVQueryManager::statsForMediaEntity(found[0]), "Plays"), "5");
    EXPECT_EQ(valueOf(RVQueryManager::statsForMediaEntity(found[1]), "Plays"), "3");
    EXPECT_EQ(valueOf(RVQueryManager::statsForMediaEntity(found[0]), "Favorited"), "0");
    EXPECT_EQ(valueOf(RVQueryManager::statsForMediaEntity(found[1]), "Favorited"), "1");
}

TEST_F(Statistics, twoTilesThatSayTheSameAreTwo) {
    library_.publish({{.title = "1"}});
    const auto once = statsOfSong("1");
    const auto again = statsOfSong("1");
    EXPECT_EQ(values(*once), values(*again));
    EXPECT_NE(once->front(), again->front());
}

}  // namespace
}  // namespace tavrion
