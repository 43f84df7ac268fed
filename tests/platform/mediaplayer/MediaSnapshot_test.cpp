#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using testing::ElementsAre;

class MediaSnapshotTest : public testing::Test {
  protected:
    static std::vector<std::string> titles(const MediaSnapshot& snapshot) {
        std::vector<std::string> titles;
        for (std::uint32_t i = 0; i < snapshot.songs().size(); ++i) {
            titles.emplace_back(snapshot.text(i, SongText::title).value_or("(none)"));
        }
        return titles;
    }
    static MPMediaItem item(const std::shared_ptr<const MediaSnapshot>& snapshot,
                            std::uint64_t persistentID) {
        return {snapshot, snapshot->positionOfPersistentID(persistentID).value()};
    }

    MediaLibraryFixture fixture_;
};

TEST_F(MediaSnapshotTest, standsInTheOrderOfSortTitles) {
    const auto snapshot = snapshotOf({{.title = "The Wall", .sortTitle = "Wall"},
                                      {.title = "zebra"},
                                      {.title = "Track 10"},
                                      {.title = "Track 9"},
                                      {.title = "Élan"}});
    EXPECT_THAT(titles(*snapshot), ElementsAre("Élan", "Track 9", "Track 10", "The Wall", "zebra"));
}

TEST_F(MediaSnapshotTest, breaksTiesByTextThenByPersistentID) {
    const auto snapshot = snapshotOf({{.title = "a", .persistentID = 9},
                                      {.title = "A", .persistentID = 8},
                                      {.title = "a", .persistentID = 7}});
    EXPECT_EQ(snapshot->songs()[0].persistentID, 8U);
    EXPECT_EQ(snapshot->songs()[1].persistentID, 7U);
    EXPECT_EQ(snapshot->songs()[2].persistentID, 9U);
}

TEST_F(MediaSnapshotTest, ordersLongCommonBeginnings) {
    const auto snapshot = snapshotOf({{.title = "Symphony No. 5 in C minor: IV"},
                                      {.title = "Symphony No. 5 in C minor: II"},
                                      {.title = "Symphony No. 5 in C minor: I"}});
    EXPECT_THAT(titles(*snapshot),
                ElementsAre("Symphony No. 5 in C minor: I", "Symphony No. 5 in C minor: II",
                            "Symphony No. 5 in C minor: IV"));
}

TEST_F(MediaSnapshotTest, keepsTheFirstOfOnePersistentIDAndCountsTheOthers) {
    const auto snapshot = snapshotOf({{.title = "first", .persistentID = 5},
                                      {.title = "second", .persistentID = 5},
                                      {.title = "third", .persistentID = 6}});
    EXPECT_THAT(titles(*snapshot), ElementsAre("first", "third"));
    EXPECT_EQ(snapshot->droppedSongCount(), 1U);
}

/// A song of one identifier, told apart by where it is.
SongDescription songAt(const char* title, std::uint64_t persistentID, const char* location) {
    SongDescription song{.persistentID = persistentID, .title = title, .libraryID = "00AA"};
    if (*location != '\0') {
        song.location = location;
    }
    return song;
}

TEST_F(MediaSnapshotTest, songsOfOneIdentifierAtTwoPlacesAreBothThere) {
    MediaSnapshotBuilder builder;
    EXPECT_EQ(builder.addSong(songAt("first", 5, "file:///a")), 5U);
    const std::uint64_t own = builder.addSong(songAt("second", 5, "file:///b"));
    const std::uint64_t third = builder.addSong(songAt("third", 5, "file:///c"));
    builder.addPlaylist({.name = "Both", .songs = std::array<std::uint64_t, 2>{own, 5}});
    const auto snapshot = builder.finish();
    EXPECT_THAT(titles(*snapshot), ElementsAre("first", "second", "third"));
    EXPECT_EQ(snapshot->droppedSongCount(), 0U);
    EXPECT_NE(own, 5U);
    EXPECT_NE(third, own);
    EXPECT_EQ(snapshot->songs()[1].persistentID, own);
    EXPECT_EQ(*snapshot->positionOfPersistentID(own), 1U);
    EXPECT_THAT(snapshot->songsOfPlaylist(snapshot->playlists()[0]), ElementsAre(1U, 0U));
    EXPECT_EQ(snapshot->text(0, SongText::libraryID), "00AA");
    EXPECT_NE(snapshot->text(1, SongText::libraryID), "00AA") << "or their records would be one";
    ASSERT_EQ(snapshot->duplicates().size(), 2U);
    EXPECT_EQ(snapshot->duplicates()[0].persistentID, 5U);
    EXPECT_EQ(snapshot->duplicates()[0].ownPersistentID, own);
    EXPECT_EQ(snapshot->text(snapshot->duplicates()[1].title), "third");
}

TEST_F(MediaSnapshotTest, theOwnIdentifierFollowsFromThePlace) {
    const auto ownOf = [](const char* first, const char* location) {
        MediaSnapshotBuilder builder;
        builder.addSong(songAt(first, 5, "file:///a"));
        return builder.addSong(songAt("b", 5, location));
    };
    EXPECT_EQ(ownOf("x", "file:///b"), ownOf("y", "file:///b"));
    EXPECT_NE(ownOf("x", "file:///b"), ownOf("x", "file:///c"));
}

TEST_F(MediaSnapshotTest, theSameSongTwiceIsThereOnce) {
    MediaSnapshotBuilder builder;
    builder.addSong(songAt("first", 5, "file:///a"));
    EXPECT_EQ(builder.addSong(songAt("again", 5, "file:///a")), 5U);
    const std::uint64_t own = builder.addSong(songAt("other", 5, "file:///b"));
    EXPECT_EQ(builder.addSong(songAt("other again", 5, "file:///b")), 5U);
    builder.addSong(songAt("nowhere", 6, ""));
    builder.addSong(songAt("nowhere either", 6, ""));
    const auto snapshot = builder.finish();
    EXPECT_THAT(titles(*snapshot), ElementsAre("first", "nowhere", "other"));
    EXPECT_EQ(snapshot->droppedSongCount(), 3U);
    std::vector<std::uint64_t> owns;
    for (const DuplicateSongRecord& duplicate : snapshot->duplicates()) {
        owns.push_back(duplicate.ownPersistentID);
    }
    EXPECT_THAT(owns, ElementsAre(0U, own, 0U, 0U));
}

TEST_F(MediaSnapshotTest, anIdentifierThatWasGivenAwayGoesToNobodyElse) {
    MediaSnapshotBuilder first;
    first.addSong(songAt("a", 5, "file:///a"));
    const std::uint64_t own = first.addSong(songAt("b", 5, "file:///b"));
    MediaSnapshotBuilder builder;
    builder.addSong(songAt("a", 5, "file:///a"));
    builder.addSong(songAt("b", 5, "file:///b"));
    EXPECT_NE(builder.addSong(songAt("its rightful owner", own, "file:///c")), own);
    EXPECT_EQ(builder.finish()->songs().size(), 3U);
}

TEST_F(MediaSnapshotTest, takesAStoreIdentifierFromAllSongsThatShareIt) {
    const auto snapshot = snapshotOf({{.title = "a", .persistentID = 1, .storeID = "900"},
                                      {.title = "b", .persistentID = 2, .storeID = "901"},
                                      {.title = "c", .persistentID = 3, .storeID = "900"},
                                      {.title = "d", .persistentID = 4, .storeID = "900"}});
    EXPECT_EQ(item(snapshot, 1).playbackStoreID(), "");
    EXPECT_EQ(item(snapshot, 2).playbackStoreID(), "901");
    EXPECT_EQ(item(snapshot, 3).playbackStoreID(), "");
    EXPECT_EQ(item(snapshot, 4).playbackStoreID(), "");
}

TEST_F(MediaSnapshotTest, fallsBackToTheArtistOutsideOfCompilationsOnly) {
    const auto snapshot =
        snapshotOf({{.title = "own", .artist = "A", .persistentID = 1},
                    {.title = "tagged", .artist = "A", .albumArtist = "B", .persistentID = 2},
                    {.title = "mixed", .artist = "A", .persistentID = 3, .compilation = true}});
    EXPECT_EQ(item(snapshot, 1).albumArtist(), "A");
    EXPECT_EQ(item(snapshot, 2).albumArtist(), "B");
    EXPECT_EQ(item(snapshot, 3).albumArtist(), std::nullopt);
}

TEST_F(MediaSnapshotTest, givesCollectionsIdentifiersThatOutliveTheSnapshot) {
    const auto one = snapshotOf({{.title = "x", .artist = "A", .albumTitle = "L"}});
    const auto other = snapshotOf({{.title = "before", .artist = "B", .albumTitle = "L"},
                                   {.title = "y", .artist = "A", .albumTitle = "L"}});
    EXPECT_EQ(item(one, 1).albumPersistentID(), item(other, 2).albumPersistentID());
    EXPECT_EQ(item(one, 1).artistPersistentID(), item(other, 2).artistPersistentID());
    EXPECT_EQ(item(one, 1).albumArtistPersistentID(), item(other, 2).albumArtistPersistentID());
    EXPECT_EQ(item(one, 1).genrePersistentID(), item(other, 2).genrePersistentID());
    EXPECT_NE(item(other, 1).albumPersistentID(), item(other, 2).albumPersistentID());
    EXPECT_NE(item(other, 1).artistPersistentID(), item(other, 2).artistPersistentID());
}

TEST_F(MediaSnapshotTest, hashesNamesTheSameEverywhere) {
    EXPECT_EQ(mediaTextHash("Artist"), mediaTextHash(std::string("Art") + "ist"));
    EXPECT_NE(mediaTextHash(""), 0U);
    EXPECT_EQ(mediaTextHash("Nerinda"), 0xf79ab87abb671c30U);
}

TEST_F(MediaSnapshotTest, leavesPlaylistEntriesOutThatNameNoSong) {
    const auto snapshot =
        snapshotOf({{.title = "b", .persistentID = 20}, {.title = "a", .persistentID = 10}},
                   {{.name = "P", .persistentID = 1, .songs = {20, 99, 10, 20}},
                    {.name = "Q", .persistentID = 2, .songs = {10}}});
    ASSERT_EQ(snapshot->playlists().size(), 2U);
    EXPECT_THAT(snapshot->songsOfPlaylist(snapshot->playlists()[0]), ElementsAre(1, 0, 1));
    EXPECT_THAT(snapshot->songsOfPlaylist(snapshot->playlists()[1]), ElementsAre(0));
}

TEST_F(MediaSnapshotTest, keepsAbsentTextsAndDatesApartFromPlainOnes) {
    const NSDate epoch;
    const auto snapshot = snapshotOf({{.title = "dated", .lastPlayed = epoch, .persistentID = 1},
                                      {.title = "", .artist = "", .persistentID = 2}});
    EXPECT_EQ(item(snapshot, 1).lastPlayedDate(), epoch);
    EXPECT_EQ(item(snapshot, 1).dateAdded(), std::nullopt);
    EXPECT_EQ(item(snapshot, 2).title(), std::nullopt);
    EXPECT_EQ(item(snapshot, 2).artist(), std::nullopt);
    EXPECT_EQ(item(snapshot, 2).artistPersistentID(), 0U);
}

TEST_F(MediaSnapshotTest, anEmptySnapshotAnswers) {
    const auto snapshot = snapshotOf({});
    EXPECT_TRUE(snapshot->songs().empty());
    EXPECT_EQ(snapshot->positionOfPersistentID(1), std::nullopt);
    EXPECT_EQ(MediaSnapshot::empty()->positionOfPersistentID(1), std::nullopt);
}

TEST_F(MediaSnapshotTest, aBuilderIsEmptyAfterwards) {
    MediaSnapshotBuilder builder;
    builder.addSong({.persistentID = 1, .title = "a"});
    EXPECT_EQ(builder.finish()->songs().size(), 1U);
    builder.addSong({.persistentID = 1, .title = "b"});
    const auto second = builder.finish();
    EXPECT_THAT(titles(*second), ElementsAre("b"));
    EXPECT_EQ(second->droppedSongCount(), 0U);
}

TEST_F(MediaSnapshotTest, findsEverySongOfALargeLibrary) {
    std::vector<TestSong> songs;
    for (std::uint64_t i = 1; i <= 3000; ++i) {
        songs.push_back({.title = "Song " + std::to_string(i % 700), .persistentID = i * 7919});
    }
    const auto snapshot = snapshotOf(songs);
    for (const TestSong& song : songs) {
        EXPECT_EQ(item(snapshot, song.persistentID).title(), song.title);
    }
    EXPECT_EQ(snapshot->positionOfPersistentID(3), std::nullopt);
}

}  // namespace
}  // namespace tavrion
