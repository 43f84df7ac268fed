#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "library/RVMetadataManager.h"
#include "library/RVQueryManager+Results.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/testing/MediaLibraryFixture.h"
#include "recording/MPMediaItem+Nerinda.h"

namespace tavrion {
namespace {

using Names = std::vector<std::string>;

NSDate at(double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

constexpr MPMediaGrouping songs = MPMediaGrouping::title;
constexpr MPMediaGrouping albums = MPMediaGrouping::album;
constexpr MPMediaGrouping artists = MPMediaGrouping::artist;
constexpr MPMediaGrouping albumArtists = MPMediaGrouping::albumArtist;
constexpr MPMediaGrouping composers = MPMediaGrouping::composer;
constexpr MPMediaGrouping genres = MPMediaGrouping::genre;
constexpr MPMediaGrouping playlists = MPMediaGrouping::playlist;

class RVQueryManagerResults : public testing::Test {
  protected:
    static std::string name(const MPMediaEntity& entity) {
        const MPMediaItem song = entity.representativeItem().value();
        switch (entity.groupingType()) {
            case MPMediaGrouping::title:
                return std::string(song.title().value_or(""));
            case MPMediaGrouping::composer:
                return std::string(song.composer().value_or(""));
            default:
                return RVMetadataManager::titleForMediaEntity(entity, std::nullopt)
                    ->textWithoutAttachments();
        }
    }
    static Names names(const std::vector<MPMediaEntity>& entities) {
        Names found;
        for (const MPMediaEntity& entity : entities) {
            const auto playlist = entity.playlist();
            found.push_back(playlist ? std::string(playlist->name()) : name(entity));
        }
        return found;
    }
    static Names list(MPMediaGrouping group, RVSortType sort, bool reverse = false) {
        return names(RVQueryManager::resultsForQuery(nullptr, group, sort, reverse));
    }
    void splitCompilations() { defaults_->setObject("BrowseShouldSplitCompilations", true); }

    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug plug_{*defaults_};
    MediaLibraryFixture library_;
};

TEST_F(RVQueryManagerResults, songsAreSortedBySixThings) {
    library_.publish({{.title = "a",
                       .duration = 10,
                       .playCount = 5,
                       .lastPlayed = at(1),
                       .added = at(30),
                       .released = at(300)},
                      {.title = "b",
                       .duration = 100,
                       .playCount = 4,
                       .lastPlayed = at(3),
                       .added = at(10),
                       .year = 2020},
                      {.title = "c",
                       .duration = 1,
                       .playCount = 9,
                       .lastPlayed = at(2),
                       .added = at(20),
                       .released = at(200)}});
    EXPECT_EQ(list(songs, RVSortTypeAlphabetical), (Names{"a", "b", "c"}));
    EXPECT_EQ(list(songs, RVSortTypePlayCount), (Names{"c", "a", "b"}));
    EXPECT_EQ(list(songs, RVSortTypeLastPlayed), (Names{"b", "c", "a"}));
    EXPECT_EQ(list(songs, RVSortTypeTimeListened), (Names{"b", "a", "c"}));
    EXPECT_EQ(list(songs, RVSortTypeDateAdded), (Names{"a", "c", "b"}));
    // A year counts as its first day.
    EXPECT_EQ(list(songs, RVSortTypeReleaseDate), (Names{"b", "a", "c"}));
}

TEST_F(RVQueryManagerResults, reverseTurnsEachSortRound) {
    library_.publish({{.title = "a",
                       .duration = 10,
                       .playCount = 5,
                       .lastPlayed = at(1),
                       .added = at(30),
                       .released = at(300)},
                      {.title = "b",
                       .duration = 100,
                       .playCount = 4,
                       .lastPlayed = at(3),
                       .added = at(10),
                       .released = at(100)},
                      {.title = "c",
                       .duration = 1,
                       .playCount = 9,
                       .lastPlayed = at(2),
                       .added = at(20),
                       .released = at(200)}});
    EXPECT_EQ(list(songs, RVSortTypeAlphabetical, true), (Names{"c", "b", "a"}));
    EXPECT_EQ(list(songs, RVSortTypePlayCount, true), (Names{"b", "a", "c"}));
    EXPECT_EQ(list(songs, RVSortTypeLastPlayed, true), (Names{"a", "c", "b"}));
    EXPECT_EQ(list(songs, RVSortTypeTimeListened, true), (Names{"c", "a", "b"}));
    EXPECT_EQ(list(songs, RVSortTypeDateAdded, true), (Names{"b", "c", "a"}));
    EXPECT_EQ(list(songs, RVSortTypeReleaseDate, true), (Names{"b", "c", "a"}));
}

TEST_F(RVQueryManagerResults, whatHasNoValueIsSmallerThanAnyValue) {
    library_.publish(
        {{.title = "a", .albumTitle = "A"},
         {.title = "b",
          .albumTitle = "B",
          .lastPlayed = at(-1e9),
          .added = at(-2e9),
          .released = at(-3e9)},
         {.title = "c", .albumTitle = "C", .lastPlayed = at(5), .added = at(5), .released = at(5)},
         {.title = "d",
          .albumTitle = "D",
          .lastPlayed = at(0),
          .added = at(0),
          .released = at(0)}});
    for (const RVSortType sort :
         {RVSortTypeLastPlayed, RVSortTypeDateAdded, RVSortTypeReleaseDate}) {
        EXPECT_EQ(list(songs, sort), (Names{"c", "d", "b", "a"})) << sort;
        EXPECT_EQ(list(songs, sort, true), (Names{"a", "b", "d", "c"})) << sort;
        EXPECT_EQ(list(albums, sort), (Names{"C", "D", "B", "A"})) << sort;
        EXPECT_EQ(list(albums, sort, true), (Names{"A", "B", "D", "C"})) << sort;
    }
}

TEST_F(RVQueryManagerResults, collectionsAreSortedByWhatTheirSongsComeToTogether) {
    library_.publish(
        {{.title = "1",
          .albumTitle = "A",
          .duration = 10,
          .playCount = 6,
          .lastPlayed = at(9),
          .added = at(1),
          .released = at(50)},
         {.title = "2", .albumTitle = "A", .duration = 10, .playCount = 6, .added = at(2)},
         {.title = "3",
          .albumTitle = "B",
          .duration = 100,
          .playCount = 10,
          .lastPlayed = at(8),
          .added = at(3),
          .released = at(60)},
         {.title = "4",
          .albumTitle = "C",
          .duration = 5,
          .playCount = 11,
          .lastPlayed = at(7),
          .added = at(0.5),
          .year = 2001}});
    EXPECT_EQ(list(albums, RVSortTypePlayCount), (Names{"A", "C", "B"}));
    EXPECT_EQ(list(albums, RVSortTypeLastPlayed), (Names{"A", "B", "C"}));
    EXPECT_EQ(list(albums, RVSortTypeTimeListened), (Names{"B", "A", "C"}));
    EXPECT_EQ(list(albums, RVSortTypeDateAdded), (Names{"B", "A", "C"}));
    EXPECT_EQ(list(albums, RVSortTypeReleaseDate), (Names{"B", "A", "C"}));
    EXPECT_EQ(list(albums, RVSortTypePlayCount, true), (Names{"B", "C", "A"}));
    EXPECT_EQ(list(albums, RVSortTypeReleaseDate, true), (Names{"C", "A", "B"}));
}

TEST_F(RVQueryManagerResults, eachGroupingHasItsCollections) {
    library_.publish({{.title = "1",
                       .artist = "S2",
                       .albumArtist = "B2",
                       .albumTitle = "A2",
                       .genre = "G2",
                       .composer = "W2"},
                      {.title = "2",
                       .artist = "S1",
                       .albumArtist = "B1",
                       .albumTitle = "A1",
                       .genre = "G1",
                       .composer = "W1"}},
                     {{.name = "P2", .persistentID = 10, .songs = {1}},
                      {.name = "P1", .persistentID = 11, .songs = {2}}});
    EXPECT_EQ(list(songs, 0), (Names{"1", "2"}));
    EXPECT_EQ(list(albums, 0), (Names{"A1", "A2"}));
    EXPECT_EQ(list(artists, 0), (Names{"S1", "S2"}));
    EXPECT_EQ(list(albumArtists, 0), (Names{"B1", "B2"}));
    EXPECT_EQ(list(composers, 0), (Names{"W1", "W2"}));
    EXPECT_EQ(list(genres, 0), (Names{"G1", "G2"}));
    EXPECT_EQ(list(playlists, 0), (Names{"P1", "P2"}));
    for (const MPMediaGrouping group :
         {songs, albums, artists, albumArtists, composers, genres, playlists}) {
        const Names forward = list(group, 0);
        EXPECT_EQ(list(group, 0, true), Names(forward.rbegin(), forward.rend()));
    }
}

TEST_F(RVQueryManagerResults, playlistsAreSortedByNameAsAPersonWould) {
    library_.publish({}, {{.name = "99 Luftballons", .persistentID = 1},
                          {.name = "zebra", .persistentID = 2},
                          {.name = "\"Apples\"", .persistentID = 3},
                          {.name = "!!!", .persistentID = 4},
                          {.name = "Banana", .persistentID = 5}});
    const auto sorted = [](bool reverse) {
        Names found;
        for (const MPMediaEntity& entity :
             RVQueryManager::resultsForQuery(nullptr, playlists, 0, reverse)) {
            found.emplace_back(entity.playlist()->name());
        }
        return found;
    };
    EXPECT_EQ(sorted(false), (Names{"\"Apples\"", "Banana", "zebra", "!!!", "99 Luftballons"}));
    EXPECT_EQ(sorted(true), (Names{"99 Luftballons", "!!!", "zebra", "Banana", "\"Apples\""}));
}

TEST_F(RVQueryManagerResults, namesThatReadAlikeStayInTheirOrder) {
    library_.publish({}, {{.name = "Mix", .persistentID = 1},
                          {.name = "\"Mix\"", .persistentID = 2},
                          {.name = "Mix!", .persistentID = 3}});
    for (const bool reverse : {false, true}) {
        const auto found = RVQueryManager::resultsForQuery(nullptr, playlists, 0, reverse);
        ASSERT_EQ(found.size(), 3U);
        EXPECT_EQ(found[0].persistentID(), 1U) << reverse;
        EXPECT_EQ(found[1].persistentID(), 2U) << reverse;
        EXPECT_EQ(found[2].persistentID(), 3U) << reverse;
    }
}

TEST_F(RVQueryManagerResults, hiddenPlaylistsAndFoldersNeverAppear) {
    library_.publish(
        {{.title = "a"}},
        {{.name = "Shown", .persistentID = 10, .songs = {1}},
         {.name = "Hidden", .persistentID = 11, .songs = {1}, .hidden = true},
         {.name = "Folder", .persistentID = 12, .songs = {1}, .folder = true},
         {.name = "Both", .persistentID = 13, .songs = {1}, .folder = true, .hidden = true}});
    for (const RVSortType sort : {0U, 1U, 2U, 3U, 4U, 5U, 6U}) {
        EXPECT_EQ(list(playlists, sort), (Names{"Shown"})) << sort;
    }
}

TEST_F(RVQueryManagerResults, albumArtistsAreSortedByTheirSortNames) {
    library_.publish({{.title = "1", .albumArtist = "The Zebras", .sortAlbumArtist = "Zebras"},
                      {.title = "2", .albumArtist = "Adele"},
                      {.title = "3", .albumArtist = "The Beat", .sortAlbumArtist = "Beat"},
                      {.title = "4", .albumArtist = "10cc"}});
    EXPECT_EQ(list(albumArtists, 0), (Names{"Adele", "The Beat", "The Zebras", "10cc"}));
    EXPECT_EQ(list(albumArtists, 0, true), (Names{"10cc", "The Zebras", "The Beat", "Adele"}));
}

TEST_F(RVQueryManagerResults, anUnknownSortLeavesTheQuerysOrderWhateverTheDirection) {
    library_.publish({{.title = "b", .albumTitle = "B", .playCount = 1},
                      {.title = "a", .albumTitle = "A", .playCount = 2}},
                     {{.name = "P2", .persistentID = 10, .songs = {1}},
                      {.name = "P1", .persistentID = 11, .songs = {1}}});
    for (const RVSortType sort : {RVSortType{6}, ~RVSortType{0}}) {
        for (const bool reverse : {false, true}) {
            EXPECT_EQ(list(songs, sort, reverse), (Names{"a", "b"}));
            EXPECT_EQ(list(albums, sort, reverse), (Names{"A", "B"}));
            EXPECT_EQ(list(playlists, sort, reverse), (Names{"P2", "P1"}));
        }
    }
}

TEST_F(RVQueryManagerResults, withoutAQueryTheUsersMusicIsTaken) {
    library_.publish({{.title = "song", .albumTitle = "A"},
                      {.title = "talk", .albumTitle = "B", .mediaType = MediaType::podcast},
                      {.title = "heard", .albumTitle = "C", .inLibrary = false}});
    EXPECT_EQ(list(songs, 0), (Names{"song"}));
    EXPECT_EQ(list(albums, 1), (Names{"A"}));
    MPMediaQuery everything = MPMediaQuery::songsQuery();
    EXPECT_EQ(names(RVQueryManager::resultsForQuery(&everything, songs, 0, false)),
              (Names{"song", "talk"}));
}

TEST_F(RVQueryManagerResults, theQueryKeepsTheGroupingAndTheFilters) {
    library_.publish({{.title = "a"}}, {{.name = "P", .persistentID = 10}});
    MPMediaQuery query = MPMediaQuery::songsQuery();
    RVQueryManager::resultsForQuery(&query, songs, 0, false);
    EXPECT_EQ(query.groupingType(), songs);
    EXPECT_TRUE(query.filterPredicates().empty());
    RVQueryManager::resultsForQuery(&query, genres, 1, false);
    EXPECT_EQ(query.groupingType(), genres);
    RVQueryManager::resultsForQuery(&query, playlists, 0, false);
    RVQueryManager::resultsForQuery(&query, playlists, 0, false);
    EXPECT_EQ(query.groupingType(), playlists);
    const auto without = [](std::string_view property) {
        return MPMediaPropertyPredicate::predicateWithValue(Value(false), property);
    };
    EXPECT_EQ(query.filterPredicates(), (std::vector{without("isHidden"), without("isFolder")}));
    MPMediaQuery split = MPMediaQuery::songsQuery();
    splitCompilations();
    RVQueryManager::resultsForQuery(&split, albums, 0, false);
    EXPECT_TRUE(split.filterPredicates().empty());
    RVQueryManager::resultsForQuery(&split, albumArtists, 0, false);
    EXPECT_EQ(split.filterPredicates(), (std::vector{without("isCompilation")}));
}

TEST_F(RVQueryManagerResults, aSongThatAPlaylistHoldsTwiceKeepsItsFirstPlace) {
    library_.publish({{.title = "a", .playCount = 1, .persistentID = 1},
                      {.title = "b", .playCount = 1, .persistentID = 2}},
                     {{.name = "P", .persistentID = 10, .songs = {2, 1, 2, 1}}});
    MPMediaQuery query = MPMediaQuery::playlistsQuery();
    EXPECT_EQ(names(RVQueryManager::resultsForQuery(&query, songs, 0, false)), (Names{"b", "a"}));
    EXPECT_EQ(names(RVQueryManager::resultsForQuery(&query, songs, 1, false)), (Names{"b", "a"}));
}

TEST_F(RVQueryManagerResults, aSongThatAPlaylistHoldsTwiceKeepsItsFirstPlaceBackwardsToo) {
    library_.publish({{.title = "a", .persistentID = 1},
                      {.title = "b", .persistentID = 2},
                      {.title = "c", .persistentID = 3}},
                     {{.name = "P", .persistentID = 10, .songs = {1, 2, 3, 1}}});
    MPMediaQuery query = MPMediaQuery::playlistsQuery();
    // The list is read backwards first: a, c, b, a.
    EXPECT_EQ(names(RVQueryManager::resultsForQuery(&query, songs, 0, true)),
              (Names{"a", "c", "b"}));
}

TEST_F(RVQueryManagerResults, anAlbumsSongsKeepTheAlbumsOrderForTiesInEverySort) {
    library_.publish({{.title = "a", .track = 3, .disc = 1},
                      {.title = "b", .track = 1, .disc = 2},
                      {.title = "c", .track = 1, .disc = 1},
                      {.title = "d", .playCount = 1, .track = 2, .disc = 1}});
    MPMediaQuery query = MPMediaQuery::albumsQuery().collections().at(0).itemsQuery();
    const auto ordered = [&](RVSortType sortType, bool reverse) {
        return names(RVQueryManager::resultsForQuery(&query, songs, sortType, reverse));
    };
    EXPECT_EQ(ordered(0, false), (Names{"c", "d", "a", "b"}));
    EXPECT_EQ(ordered(0, true), (Names{"b", "a", "d", "c"}));
    EXPECT_EQ(ordered(1, false), (Names{"d", "c", "a", "b"}));
    EXPECT_EQ(ordered(1, true), (Names{"c", "a", "b", "d"}));
    EXPECT_EQ(ordered(2, false), (Names{"c", "d", "a", "b"}));
    EXPECT_EQ(ordered(99, true), (Names{"c", "d", "a", "b"}));
}

TEST_F(RVQueryManagerResults, anEmptyLibraryGivesAnEmptyList) {
    for (std::int64_t group = 0; group <= 6; ++group) {
        for (RVSortType sort = 0; sort <= 6; ++sort) {
            EXPECT_TRUE(RVQueryManager::resultsForQuery(nullptr, MPMediaGrouping{group}, sort, true)
                            .empty());
        }
    }
}

TEST_F(RVQueryManagerResults, theSecondQueryOfASplitIsForMusicAlone) {
    library_.publish(
        {{.title = "1", .albumArtist = "Band"},
         {.title = "2", .artist = "Guest", .albumArtist = "Various", .compilation = true},
         {.title = "3",
          .artist = "Speaker",
          .albumArtist = "Talks",
          .mediaType = MediaType::podcast,
          .compilation = true},
         {.title = "4", .albumArtist = "Host", .mediaType = MediaType::podcast}});
    splitCompilations();
    MPMediaQuery everything = MPMediaQuery::songsQuery();
    EXPECT_EQ(names(RVQueryManager::resultsForQuery(&everything, albumArtists, 0, false)),
              (Names{"Band", "Guest", "Host"}));
}

/// Random songs with few different values, so that there are many ties and gaps.
std::vector<TestSong> randomSongs(std::size_t count) {
    std::mt19937 generator(20240315);
    const auto random = [&](unsigned most) { return static_cast<unsigned>(generator() % most); };
    const auto date = [&]() -> std::optional<NSDate> {
        return random(3) == 0 ? std::nullopt : std::optional(at(random(4) * 1000.0));
    };
    std::vector<TestSong> made;
    for (std::size_t i = 0; i < count; ++i) {
        const auto name = [&](const char* kind, unsigned most) {
            return kind + std::to_string(random(most));
        };
        TestSong song;
        song.title = name("song ", 40);
        song.artist = name("artist ", 9);
        song.albumArtist = name("band ", 7);
        song.albumTitle = name("album ", 12);
        song.genre = name("genre ", 5);
        song.composer = name("composer ", 6);
        song.duration = 100.0 * (1 + random(3));
        song.playCount = random(4);
        song.lastPlayed = date();
        song.added = date();
        song.released = date();
        song.year = random(2) == 0 ? 0 : 2000 + random(3);
        song.compilation = random(4) == 0;
        made.push_back(song);
    }
    return made;
}

/// What a sort looks at, told a second time and slowly.
std::optional<double> value(const MPMediaEntity& entity, RVSortType sort) {
    const std::vector<MPMediaItem> items = entity.item() != nullptr
                                               ? std::vector<MPMediaItem>{*entity.item()}
                                               : entity.collection()->items();
    std::optional<double> found;
    for (const MPMediaItem& item : items) {
        const auto latest = [&](const std::optional<NSDate>& date) {
            if (date) {
                found = std::max(found.value_or(-1e300), date->timeIntervalSinceReferenceDate());
            }
        };
        const auto plays = static_cast<double>(item.playCount());
        switch (sort) {
            case RVSortTypePlayCount:
                found = found.value_or(0) + plays;
                break;
            case RVSortTypeTimeListened:
                found = found.value_or(0) + plays * item.playbackDuration();
                break;
            case RVSortTypeLastPlayed:
                latest(item.lastPlayedDate());
                break;
            case RVSortTypeDateAdded:
                latest(item.dateAdded());
                break;
            default:
                latest(Nerinda::sortReleaseKey(item));
        }
    }
    return found;
}

TEST_F(RVQueryManagerResults, allSortsOfAllGroupingsAreStable) {
    std::vector<TestPlaylist> lists;
    for (std::uint64_t i = 0; i < 12; ++i) {
        lists.push_back({.name = "list", .persistentID = 1000 + i, .songs = {1 + i, 20 + i % 3}});
    }
    library_.publish(randomSongs(300), lists);
    for (const bool isSplit : {false, true}) {
        defaults_->setObject("BrowseShouldSplitCompilations", isSplit);
        for (std::int64_t number = 0; number <= 6; ++number) {
            const MPMediaGrouping group{number};
            const auto unsorted = RVQueryManager::resultsForQuery(nullptr, group, 99, false);
            for (RVSortType sort = 1; sort <= 5; ++sort) {
                for (const bool reverse : {false, true}) {
                    auto expected = unsorted;
                    std::stable_sort(expected.begin(), expected.end(),
                                     [&](const MPMediaEntity& a, const MPMediaEntity& b) {
                                         // An absent optional is smaller than any value.
                                         return reverse ? value(a, sort) < value(b, sort)
                                                        : value(a, sort) > value(b, sort);
                                     });
                    EXPECT_EQ(RVQueryManager::resultsForQuery(nullptr, group, sort, reverse),
                              expected)
                        << number << " " << sort << " " << reverse << " " << isSplit;
                }
            }
        }
    }
}

}  // namespace
}  // namespace tavrion
