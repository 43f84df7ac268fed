// The way back from a record to a live song, and what a song tells of itself.

#include <gtest/gtest.h>

#include "platform/foundation/NSUUID.h"
#include "platform/mediaplayer/MPMediaQuery.h"
#include "recording/MPMediaItem+Nerinda.h"
#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

class MediaItemBridgeTest : public testing::Test {
  protected:
    static NSDate at(double seconds) { return RecordingEnvironment::at(seconds); }
    std::optional<std::uint64_t> songOf(PlaybackHistory history) {
        const auto song = Nerinda::mediaItemForHistory(history);
        return song ? std::optional(song->persistentID()) : std::nullopt;
    }
    RecordingEnvironment environment;
};

TEST_F(MediaItemBridgeTest, aRecordWithoutTitleAndIdentifiersFindsNothingAmongTwoSongs) {
    const PlaybackHistory history = environment.makeHistory("", 180);
    environment.library.publish(
        {{.title = "One", .persistentID = 1}, {.title = "Two", .persistentID = 2}});
    EXPECT_EQ(songOf(history), std::nullopt);
    environment.library.publish({{.title = "One", .persistentID = 1}});
    EXPECT_EQ(songOf(history), 1U) << "a lone song counts as the song";
}

TEST_F(MediaItemBridgeTest, aSongFindsItsRecordOnlyWhereEveryRealIdentifierAgrees) {
    const PlaybackHistory history = environment.makeHistory("Song", 180, "S1", "L1");
    const auto recordOf = [&](const std::string& storeID, const std::string& libraryID) {
        environment.library.publish(
            {{.title = "Song", .duration = 180, .storeID = storeID, .libraryID = libraryID}});
        const auto found = Nerinda::playbackHistoryInContext(
            MPMediaQuery::songsQuery().items().at(0), environment.main());
        return found ? std::optional(found->objectID()) : std::nullopt;
    };
    EXPECT_EQ(recordOf("S1", "L1"), history.objectID());
    EXPECT_EQ(recordOf("S1", "L2"), std::nullopt);
    EXPECT_EQ(recordOf("S2", "L1"), std::nullopt);
    EXPECT_EQ(recordOf("S1", ""), history.objectID()) << "what the song lacks is not compared";
    EXPECT_EQ(recordOf("", ""), history.objectID());
}

TEST_F(MediaItemBridgeTest, aSmallChangeOfTheTitleIsFoundByARealIdentifierAndTakenOver) {
    environment.library.publish(
        {{.title = "Song (Remastered)", .persistentID = 1, .libraryID = "LIB"},
         {.title = "Other", .persistentID = 2}});
    const PlaybackHistory byLibrary = environment.makeHistory("Song", 180, "", "LIB");
    EXPECT_EQ(songOf(byLibrary), 1U);
    EXPECT_EQ(byLibrary.title(), "Song (Remastered)");
    EXPECT_TRUE(environment.main().hasChanges()) << "the change stays unsaved";
    const PlaybackHistory without = environment.makeHistory("Song", 180);
    EXPECT_EQ(songOf(without), std::nullopt);
    EXPECT_EQ(without.title(), "Song");
}

TEST_F(MediaItemBridgeTest, ofTwoSongsOfTheTitleTheOneWithTheStoreIdentifierIsTaken) {
    environment.library.publish(
        {{.title = "Song", .duration = 100, .persistentID = 1, .storeID = "A1"},
         {.title = "Song", .duration = 200, .persistentID = 2, .storeID = "B2"}});
    EXPECT_EQ(songOf(environment.makeHistory("Song", 300, "B2")), 2U);
    EXPECT_EQ(songOf(environment.makeHistory("Song", 300, "C3")), std::nullopt);
}

TEST_F(MediaItemBridgeTest, aLoneSongOfTheTitleIsTakenWhateverItsStoreIdentifier) {
    environment.library.publish(
        {{.title = "Song", .duration = 100, .persistentID = 1, .storeID = "A1"},
         {.title = "Other", .persistentID = 2}});
    EXPECT_EQ(songOf(environment.makeHistory("Song", 300, "B2")), 1U);
}

TEST_F(MediaItemBridgeTest, theFirstMatchInLibraryOrderWinsWithoutPreference) {
    environment.library.publish({{.title = "Song",
                                  .duration = 180,
                                  .persistentID = 1,
                                  .storeID = "other",
                                  .sortTitle = "A"},
                                 {.title = "Song",
                                  .duration = 200,
                                  .persistentID = 2,
                                  .storeID = "store",
                                  .sortTitle = "B"}});
    EXPECT_EQ(songOf(environment.makeHistory("Song", 180, "store")), 1U)
        << "title and duration earlier in the list beat an identifier later on";
}

TEST_F(MediaItemBridgeTest, ofSeveralSongsWithAnIdentifierTheFirstInLibraryOrderIsTaken) {
    environment.library.publish({{.title = "C", .persistentID = 1, .storeID = "store"},
                                 {.title = "B", .persistentID = 2, .libraryID = "library"},
                                 {.title = "A", .persistentID = 3, .libraryID = "library"},
                                 {.title = "Z", .persistentID = 4}});
    EXPECT_EQ(songOf(environment.makeHistory("Gone", 1, "store", "library")), 3U);
    EXPECT_EQ(songOf(environment.makeHistory("Gone", 1, "store", "else")), 1U);
    EXPECT_EQ(songOf(environment.makeHistory("", 1, "", "library")), 3U) << "without a title, too";
    EXPECT_EQ(songOf(environment.makeHistory("Gone", 1, "else", "else")), std::nullopt);
}

TEST_F(MediaItemBridgeTest, aStoreIdentifierOfOneSignIsNone) {
    environment.library.publish(
        {{.title = "One", .persistentID = 1, .storeID = "0"}, {.title = "Two", .persistentID = 2}});
    EXPECT_EQ(songOf(environment.makeHistory("Gone", 1, "0")), std::nullopt);
}

TEST_F(MediaItemBridgeTest, onlyMusicIsSearchedAndALoneSongAmongOtherThingsCounts) {
    environment.library.publish(
        {{.title = "Talk", .persistentID = 1, .libraryID = "L1", .mediaType = MediaType::podcast},
         {.title = "Song", .persistentID = 2}});
    EXPECT_EQ(songOf(environment.makeHistory("Gone", 1)), 2U);
    environment.library.publish(
        {{.title = "Talk", .persistentID = 1, .libraryID = "L1", .mediaType = MediaType::podcast},
         {.title = "Song", .persistentID = 2},
         {.title = "Next", .persistentID = 3}});
    EXPECT_EQ(songOf(environment.makeHistory("Gone", 1, "", "L1")), std::nullopt);
}

TEST_F(MediaItemBridgeTest, songsOutsideTheLibraryAreSearchedToo) {
    environment.library.publish({{.title = "Song", .persistentID = 1, .inLibrary = false},
                                 {.title = "Other", .persistentID = 2}});
    EXPECT_EQ(songOf(environment.makeHistory("Song", 180)), 1U);
}

TEST_F(MediaItemBridgeTest, anEventLeadsToItsSong) {
    environment.library.publish({{.title = "Song", .persistentID = 7}});
    PlaybackHistory history = environment.makeHistory("Song", 180);
    const PlayEvent event = environment.makePlay(history, 1);
    EXPECT_EQ(Nerinda::mediaItemForEvent(event)->persistentID(), 7U);
    EXPECT_EQ(Nerinda::mediaItemForEvent(PlayEvent::insert(environment.main())), std::nullopt);
}

TEST_F(MediaItemBridgeTest, songsWithoutIdentifiersAreEqualByTheirPersistentIdentifierOnly) {
    environment.library.publish(
        {{.title = "Song", .persistentID = 1}, {.title = "Song", .persistentID = 2}});
    const std::vector<MPMediaItem> songs = MPMediaQuery::songsQuery().items();
    EXPECT_TRUE(Nerinda::isEqualToMediaItem(songs[0], songs[0]));
    EXPECT_FALSE(Nerinda::isEqualToMediaItem(songs[0], songs[1]));
}

TEST_F(MediaItemBridgeTest, songsAreEqualByTheirLibraryIdentifier) {
    environment.library.publish({{.title = "A", .persistentID = 1, .libraryID = "same"},
                                 {.title = "B", .persistentID = 2, .libraryID = "same"}});
    const std::vector<MPMediaItem> songs = MPMediaQuery::songsQuery().items();
    EXPECT_TRUE(Nerinda::isEqualToMediaItem(songs[0], songs[1]));
}

TEST_F(MediaItemBridgeTest, theLastEventOfASongThatWasNeverPlayedOrSkippedIsItsAddition) {
    environment.library.publish(
        {{.title = "Never", .added = at(5)},
         {.title = "Played", .lastPlayed = at(7), .added = at(5)},
         {.title = "Skipped", .lastPlayed = at(7), .added = at(5), .lastSkipped = at(9)},
         {.title = "Nothing"}});
    EXPECT_EQ(Nerinda::lastEventDate(environment.library.song("Never")), at(5));
    EXPECT_EQ(Nerinda::lastEventDate(environment.library.song("Played")), at(7));
    EXPECT_EQ(Nerinda::lastEventDate(environment.library.song("Skipped")), at(9));
    EXPECT_EQ(Nerinda::lastEventDate(environment.library.song("Nothing")), std::nullopt);
}

TEST_F(MediaItemBridgeTest, theReleaseKeyIsTheDateOrTheStartOfTheYearOrNothing) {
    environment.library.publish({{.title = "Dated", .released = at(99), .year = 1999},
                                 {.title = "Year", .year = 2001},
                                 {.title = "Neither"}});
    EXPECT_EQ(Nerinda::sortReleaseKey(environment.library.song("Dated")), at(99));
    EXPECT_EQ(Nerinda::sortReleaseKey(environment.library.song("Year")), at(0));
    EXPECT_EQ(Nerinda::sortReleaseKey(environment.library.song("Neither")), std::nullopt);
}

TEST_F(MediaItemBridgeTest, theSortKeyFallsBackToTheTitle) {
    environment.library.publish(
        {{.title = "The Song", .sortTitle = "Song"}, {.title = "Plain"}, {.title = ""}});
    EXPECT_EQ(Nerinda::sortKey(environment.library.song("The Song")), "Song");
    EXPECT_EQ(Nerinda::sortKey(environment.library.song("Plain")), "Plain");
}

TEST_F(MediaItemBridgeTest, theArtistToSearchDependsOnTheSplitOfCompilations) {
    environment.library.publish(
        {{.title = "Song", .artist = "Track", .albumArtist = "Album", .compilation = true},
         {.title = "Plain", .artist = "Track", .albumArtist = "Album"}});
    EXPECT_EQ(Nerinda::artistSearchKey(environment.library.song("Song")), "Album");
    environment.defaults->setObject("BrowseShouldSplitCompilations", true);
    EXPECT_EQ(Nerinda::artistSearchKey(environment.library.song("Song")), "Track");
    EXPECT_EQ(Nerinda::artistSearchKey(environment.library.song("Plain")), "Album");
}

TEST_F(MediaItemBridgeTest, computedKeysAreReachedByName) {
    environment.library.publish(
        {{.title = "Song", .added = at(3), .storeID = "S1", .libraryID = "L1", .year = 2001}});
    const MPMediaItem song = environment.library.song("Song");
    EXPECT_EQ(song.valueForKey("storeID"), Value("S1"));
    EXPECT_EQ(song.valueForKey("libraryID"), Value("L1"));
    EXPECT_EQ(song.valueForKey("sortKey"), Value("Song"));
    EXPECT_EQ(song.valueForKey("sortReleaseKey"), Value(at(0)));
    EXPECT_EQ(song.valueForKey("lastEventDate"), Value(at(3)));
}

TEST_F(MediaItemBridgeTest, likingASongOfALibraryThatCantBeWrittenDoesNothing) {
    environment.library.publish({{.title = "Song", .likedState = 2}});
    const MPMediaItem song = environment.library.song("Song");
    Nerinda::setLikedState(song, 1);
    EXPECT_EQ(Nerinda::likedState(song), 2U);
    EXPECT_TRUE(Nerinda::existsInLibrary(song));
}

}  // namespace
}  // namespace tavrion
