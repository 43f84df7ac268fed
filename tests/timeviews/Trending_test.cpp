// The ranking of songs and collections within a span of time.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "tests/timeviews/TrendingFixture.h"

namespace tavrion {
namespace {

using testing::ElementsAre;
using testing::FloatNear;
using testing::IsEmpty;

class TrendingTest : public TrendingFixture {};

TEST_F(TrendingTest, withoutPlaysThereIsOnlyTheDateAndTwoNotifications) {
    song("Never", 0);
    EXPECT_THAT(update().sectionIdentifiers(), ElementsAre(0));
    EXPECT_TRUE(screen->state()->showsBackgroundView);
    EXPECT_THAT(told, ElementsAre("RVTrendingUpdateDidBegin", "RVTrendingUpdateDidEnd"));
    EXPECT_THAT(noted, IsEmpty());
}

TEST_F(TrendingTest, songsAndArtistsByTheirPlays) {
    song("One", 2, "A");
    song("Two", 3, "B");
    song("Three", 2, "A");
    EXPECT_THAT(texts(update().songs), ElementsAre("Two 3 0", "One 2 0", "Three 2 0"));
    EXPECT_THAT(texts(screen->snapshot().collections), ElementsAre("A 4 0", "B 3 0"));
    EXPECT_THAT(screen->snapshot().sectionIdentifiers(), ElementsAre(0, 1, 2));
    EXPECT_FALSE(screen->state()->showsBackgroundView);
}

TEST_F(TrendingTest, byTimeEveryPlayCountsTheWholeDuration) {
    rankByTime();
    song("Short", 3, "A", "Album", "Genre", 100);
    song("Long", 1, "B", "Album", "Genre", 1000);
    EXPECT_THAT(texts(update().songs), ElementsAre("Long 0 1000", "Short 0 300"))
        << "in time mode no row has a count";
    EXPECT_THAT(texts(screen->snapshot().collections), ElementsAre("B 0 1000", "A 0 300"));
}

TEST_F(TrendingTest, estimatesCountAndPlaysOnTheEdgesDoNot) {
    PlaybackHistory history = song("Song", 0);
    environment.makePlay(history, 0);
    environment.makePlay(history, 1000);
    environment.makePlay(history, 500, true);
    EXPECT_THAT(texts(update().songs), ElementsAre("Song 1 0"));
}

TEST_F(TrendingTest, theLastSecondOfTheLastDayIsOutsideOfEveryPreset) {
    PlaybackHistory history = song("Song", 0);
    const NSDateInterval today = DateRange(DateRangePreset::today).interval();
    const double start = today.startDate().timeIntervalSinceReferenceDate();
    const double end = today.endDate().timeIntervalSinceReferenceDate();
    for (const double outside : {start, end, end + 0.5}) {
        environment.makePlay(history, outside);
    }
    environment.defaults->setObject(DateRangeKey::trending, 0);
    EXPECT_THAT(update().songs, IsEmpty());
    environment.makePlay(history, start + 0.5);
    environment.makePlay(history, end - 0.5);
    EXPECT_THAT(texts(update().songs), ElementsAre("Song 2 0"));
}

TEST_F(TrendingTest, atMostAHundredSongsAndAllOfThemAddToTheirGroups) {
    for (int i = 0; i < 250; ++i) {
        song("Song " + std::to_string(i), 1);
    }
    EXPECT_EQ(update().songs.size(), 100U);
    EXPECT_THAT(texts(screen->snapshot().collections), ElementsAre("Artist 250 0"));
}

TEST_F(TrendingTest, atMostFifteenCollections) {
    for (int i = 0; i < 20; ++i) {
        song("Song " + std::to_string(i), 1 + i, "Artist " + std::to_string(i));
    }
    EXPECT_EQ(update().collections.size(), 15U);
    EXPECT_EQ(rowText(*screen->snapshot().collections.front()), "Artist 19 20 0");
}

TEST_F(TrendingTest, equalSongsAreOrderedByTheirLastEventOfAll) {
    song("Early", 2).setLastEventDate(RecordingEnvironment::at(5000));
    song("None", 2).setLastEventDate(std::nullopt);
    song("Late", 2).setLastEventDate(RecordingEnvironment::at(9000));
    EXPECT_THAT(texts(update().songs), ElementsAre("Late 2 0", "Early 2 0", "None 2 0"));
}

/// "Song 007".
std::string numbered(const char* name, int number) {
    const std::string digits = std::to_string(number);
    return std::string(name) + " " + std::string(3 - digits.size(), '0') + digits;
}

TEST_F(TrendingTest, theHundredPlacesOfATieGoToTheLatestSongs) {
    std::vector<std::string> expected;
    for (int i = 0; i < 150; ++i) {
        song(numbered("Song", i), 1).setLastEventDate(RecordingEnvironment::at(5000 + i));
        expected.insert(expected.begin(), numbered("Song", i) + " 1 0");
    }
    expected.resize(100);
    EXPECT_EQ(texts(update().songs), expected);
}

TEST_F(TrendingTest, theHundredthPlaceGoesToTheLaterOfTwoEqualSongs) {
    for (int i = 0; i < 99; ++i) {
        song(numbered("Song", i), 2);
    }
    song("Early", 1).setLastEventDate(RecordingEnvironment::at(5000));
    song("Late", 1).setLastEventDate(RecordingEnvironment::at(5001));
    song("Middle", 1).setLastEventDate(RecordingEnvironment::at(5000.5));
    ASSERT_EQ(update().songs.size(), 100U);
    EXPECT_EQ(rowText(*screen->snapshot().songs.back()), "Late 1 0");
}

TEST_F(TrendingTest, equalSongsOfEqualDatesKeepTheirOrderBeyondTheFirstHundred) {
    std::vector<std::string> expected;
    for (int i = 0; i < 250; ++i) {
        song(numbered("Song", i), 1).setLastEventDate(RecordingEnvironment::at(5000));
        if (i >= 120 && i < 220) {
            expected.push_back(numbered("Song", i) + " 1 0");
        }
    }
    songs.erase(songs.begin(), songs.begin() + 120);
    EXPECT_EQ(texts(update().songs), expected);
}

TEST_F(TrendingTest, everyGroupOfATieIsLookedUpOnce) {
    // Each artist has the key of an album beside, so that the ties go on beyond hundreds of keys.
    // The later ones are the better ones.
    for (int i = 299; i >= 0; --i) {
        song(numbered("Song", i), 1, numbered("Artist", i));
    }
    std::erase_if(songs, [](const TestSong& each) {
        return each.artist != numbered("Artist", 59) && each.artist != numbered("Artist", 60) &&
               each.artist != numbered("Artist", 150) && each.artist != numbered("Artist", 299);
    });
    EXPECT_THAT(texts(update().collections), ElementsAre("Artist 059 1 0", "Artist 060 1 0",
                                                         "Artist 150 1 0", "Artist 299 1 0"));
}

TEST_F(TrendingTest, theFifteenPlacesOfATieGoByName) {
    std::vector<std::string> expected;
    for (int i = 199; i >= 0; --i) {
        song(numbered("Song", i), 1, numbered("Artist", i));
    }
    for (int i = 0; i < 15; ++i) {
        expected.push_back(numbered("Artist", i) + " 1 0");
    }
    EXPECT_EQ(texts(update().collections), expected);
}

TEST_F(TrendingTest, excludedSongsAreInNoListAndInNoSum) {
    song("Shown", 1);
    song("Hidden", 5).setExcludeFromTrends(true);
    EXPECT_THAT(texts(update().songs), ElementsAre("Shown 1 0"));
    EXPECT_THAT(texts(screen->snapshot().collections), ElementsAre("Artist 1 0"));
}

TEST_F(TrendingTest, theLimitIsFixedBeforeSongsAreLookedUp) {
    for (int i = 0; i < 60; ++i) {
        song("Song " + std::to_string(i), 1 + i % 7);
    }
    songs.erase(songs.begin(), songs.begin() + 10);
    EXPECT_EQ(update().songs.size(), 50U);
}

TEST_F(TrendingTest, theNextSongMovesUpAndProgressPassesOne) {
    for (int i = 0; i < 150; ++i) {
        song("Song " + std::to_string(i), i < 100 ? 2 : 1);
    }
    songs.erase(songs.begin(), songs.begin() + 60);
    EXPECT_EQ(update().songs.size(), 90U);
    EXPECT_GT(noted.back(), 1.0F);
    EXPECT_EQ(noted.size(), 300U);
}

TEST_F(TrendingTest, progressOfBothPasses) {
    song("One", 3);
    song("Two", 2);
    update();
    EXPECT_THAT(noted, ElementsAre(FloatNear(0, 1e-6F), FloatNear(0.3F, 1e-6F),
                                   FloatNear(0.6F, 1e-6F), FloatNear(0.8F, 1e-6F)));
}

TEST_F(TrendingTest, whereNobodyListensNothingIsReported) {
    for (int i = 0; i < 200; ++i) {
        song("Song " + std::to_string(i), 1);
    }
    environment.library.publish(songs);
    int calls = 0;
    int questions = 0;
    const auto rank = [&](bool isHeard) {
        calls = questions = 0;
        TrendingRanking::rank(environment.main(),
                              {{RecordingEnvironment::at(0), RecordingEnvironment::at(1000)},
                               false,
                               [] { return TrendingGrouping::artists; },
                               [&](float) { ++calls; },
                               [&questions, isHeard] {
                                   ++questions;
                                   return isHeard;
                               }});
    };
    rank(true);
    EXPECT_EQ(calls, 300) << "once for each song, and once for each row";
    rank(false);
    EXPECT_EQ(calls, 0);
    EXPECT_LT(questions, 200) << "not for every song";
}

TEST_F(TrendingTest, whoBeginsToListenWhenTheUpdateBeginsIsToldOfEverySong) {
    for (int i = 0; i < 200; ++i) {
        song("Song " + std::to_string(i), 1);
    }
    observations.clear();
    NSNotificationCenter::Observation late;
    const auto begin = environment.centre.addObserver(
        TrendingNotification::didBegin, nullptr, nullptr, [&](const NSNotification&) {
            late = environment.centre.addObserver(
                TrendingNotification::didChange, nullptr, nullptr,
                [&](const NSNotification& notification) {
                    noted.push_back(*notification.info<float>("progress"));
                });
        });
    update();
    EXPECT_EQ(noted.size(), 300U);
}

TEST_F(TrendingTest, sumsFollowSongsThatChangeBetweenUpdates) {
    PlaybackHistory one = song("One", 2, "A");
    song("Two", 3, "B");
    EXPECT_THAT(texts(update().collections), ElementsAre("B 3 0", "A 2 0"));
    one.setArtist("B");
    EXPECT_THAT(texts(update().collections), ElementsAre("B 5 0"));
    one.setExcludeFromTrends(true);
    EXPECT_THAT(texts(update().collections), ElementsAre("B 3 0"));
    song("Three", 9, "C");
    EXPECT_THAT(texts(update().collections), ElementsAre("C 9 0", "B 3 0"));
}

TEST_F(TrendingTest, manyKeysOfOtherKindsBeforeTheArtistsCostNoRow) {
    for (int i = 0; i < 300; ++i) {
        song("Song " + std::to_string(i), i < 200 ? 2 : 1,
             i < 200 ? "Gone " + std::to_string(i) : "Artist", "Album",
             "Genre " + std::to_string(i));
    }
    songs.erase(songs.begin(), songs.begin() + 200);
    EXPECT_THAT(texts(update().collections), ElementsAre("Artist 100 0"));
    song("Last", 1, "Last Artist");
    EXPECT_THAT(texts(update().collections), ElementsAre("Artist 100 0", "Last Artist 1 0"))
        << "the last of hundreds of keys";
}

TEST_F(TrendingTest, aSongWithoutADurationIsRankedByTimeWithItsGroups) {
    rankByTime();
    song("One", 2, "A", "Album", "Genre", 0);
    EXPECT_THAT(texts(update().songs), ElementsAre("One 0 0"));
    EXPECT_THAT(texts(screen->snapshot().collections), ElementsAre("A 0 0"));
}

TEST_F(TrendingTest, playsWithoutASongCountAsOneThatIsNotShown) {
    song("One", 3);
    PlaybackHistory gone = song("Gone", 2);
    environment.main().deleteObject(gone);
    EXPECT_THAT(texts(update().songs), ElementsAre("One 3 0"));
    EXPECT_THAT(noted, ElementsAre(FloatNear(0, 1e-6F), FloatNear(0.6F, 1e-6F)));
}

TEST_F(TrendingTest, albumsAndGenres) {
    song("One", 2, "A", "First", "Rock");
    song("Two", 3, "B", "Second", "Jazz");
    song("Three", 2, "A", "First", "Jazz");
    group(1);
    EXPECT_THAT(texts(update().collections), ElementsAre("First 4 0", "Second 3 0"));
    group(2);
    EXPECT_THAT(texts(update().collections), ElementsAre("Jazz 5 0", "Rock 2 0"));
}

TEST_F(TrendingTest, anUnknownGroupingHasNoCollections) {
    song("One", 2);
    group(3);
    EXPECT_THAT(update().sectionIdentifiers(), ElementsAre(0, 2));
}

TEST_F(TrendingTest, aGenreOfAnArtistsNameSharesItsAccumulator) {
    song("One", 2, "Rock", "First", "Pop");
    song("Two", 3, "Other", "Second", "Rock");
    EXPECT_THAT(texts(update().collections), ElementsAre("Rock 5 0", "Other 3 0"));
    group(2);
    EXPECT_THAT(texts(update().collections), ElementsAre("Rock 3 0", "Pop 2 0"))
        << "a level adds only to itself and those below";
}

TEST_F(TrendingTest, anAlbumKeyWithAThirdPartIsSkipped) {
    song("One", 5, "A——B", "First");
    song("Two", 2, "C", "Second");
    // What the key would lead to if it were cut at either place.
    song("Three", 0, "A", "B——First");
    group(1);
    EXPECT_THAT(texts(update().collections), ElementsAre("Second 2 0"));
}

TEST_F(TrendingTest, aSongWithoutAnArtistStillAddsToItsAlbumAndItsGenre) {
    PlaybackHistory nameless = song("One", 2, "A", "First", "A");
    nameless.setArtist(std::nullopt);
    EXPECT_THAT(texts(update().collections), ElementsAre("A 2 0"))
        << "by the genre of the name of the artist, and not by the artist";
    song("Two", 1, "A", "First", "Pop");
    EXPECT_THAT(texts(update().collections), ElementsAre("A 3 0"));
}

TEST_F(TrendingTest, aGroupThatTheLibraryDoesNotHaveUsesNoPlace) {
    for (int i = 0; i < 16; ++i) {
        song("Song " + std::to_string(i), 20 - i, "Artist " + std::to_string(i));
    }
    songs.erase(songs.begin());
    EXPECT_EQ(update().collections.size(), 15U);
    EXPECT_EQ(rowText(*screen->snapshot().collections.back()), "Artist 15 5 0");
}

TEST_F(TrendingTest, theGroupingIsReadAgainBetweenThePasses) {
    song("One", 2, "A", "First", "Rock");
    song("Two", 3, "B", "Second", "Jazz");
    whenProgressing = [this] {
        whenProgressing = nullptr;
        group(2);
    };
    EXPECT_THAT(texts(update().collections), ElementsAre("Jazz 3 0", "Rock 2 0"))
        << "keys of all levels from the first song, queries for genres";
    EXPECT_THAT(texts(update().collections), ElementsAre("Jazz 3 0", "Rock 2 0"));
}

TEST_F(TrendingTest, aShortSpanAndALongOneAgreeWithAPlainRecount) {
    std::mt19937 random(11);
    std::vector<PlaybackHistory> histories;
    for (int i = 0; i < 30; ++i) {
        histories.push_back(song("Song " + std::to_string(i), 0,
                                 "Artist " + std::to_string(random() % 7), "Album", "Genre",
                                 100 + i));
        histories.back().setLastEventDate(RecordingEnvironment::at(i));
        histories.back().setExcludeFromTrends(i % 10 == 9);
    }
    std::vector<std::pair<double, std::size_t>> plays;
    for (int i = 0; i < 800; ++i) {
        plays.emplace_back(static_cast<double>(random() % 1000), random() % histories.size());
        environment.makePlay(histories[plays.back().second], plays.back().first);
    }
    for (int round = 0; round < 40; ++round) {
        const bool byTime = round % 2 == 1;
        environment.defaults->setObject(TrendingDefaults::weightedRankFormat, byTime ? 2 : 0);
        const double start = static_cast<double>(random() % 900);
        const double end = start + 1 + static_cast<double>(random() % (round % 4 < 2 ? 20 : 900));
        store(start, end);
        std::map<std::size_t, int> counts;
        for (const auto& [date, index] : plays) {
            if (date > start && date < end && index % 10 != 9) {
                ++counts[index];
            }
        }
        std::vector<std::tuple<double, std::size_t, std::string>> expected;
        std::map<std::string, double> artists;
        for (const auto& [index, count] : counts) {
            const double value = byTime ? count * (100.0 + static_cast<double>(index)) : count;
            expected.emplace_back(value, index,
                                  "Song " + std::to_string(index) + " " +
                                      std::to_string(byTime ? 0 : count) + " " +
                                      std::to_string(byTime ? static_cast<int>(value) : 0));
            artists[songs[index].artist] += value;
        }
        std::sort(expected.rbegin(), expected.rend());
        std::vector<std::string> expectedTexts;
        for (const auto& [value, index, text] : expected) {
            expectedTexts.push_back(text);
        }
        EXPECT_EQ(texts(update().songs), expectedTexts);
        ASSERT_EQ(screen->snapshot().collections.size(), artists.size());
        double before = 1e300;
        for (const TrendingRow& row : screen->snapshot().collections) {
            const std::string artist(
                *row->entity.collection()->representativeItem()->albumArtist());
            const double value = byTime ? row->playDuration : static_cast<double>(row->playCount);
            EXPECT_EQ(value, artists[artist]) << artist;
            EXPECT_LE(value, before);
            before = value;
        }
    }
}

}  // namespace
}  // namespace tavrion
