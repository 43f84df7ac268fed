// Records, their identity, and the way from a song to its record.

#include <gtest/gtest.h>

#include "platform/foundation/NSUUID.h"
#include "platform/mediaplayer/MPMediaQuery.h"
#include "recording/MPMediaItem+Nerinda.h"
#include "recording/RecordPredicates.h"
#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

class ListeningRecordsTest : public testing::Test {
  protected:
    static NSDate at(double seconds) { return RecordingEnvironment::at(seconds); }
    RecordingEnvironment environment;
};

TEST_F(ListeningRecordsTest, theModelHasItsFourEntities) {
    std::vector<std::string> names;
    for (const NSEntityDescription& entity : nerindaModel()->entities()) {
        names.push_back(entity.name);
    }
    EXPECT_EQ(nerindaModel()->name(), "Nerinda");
    EXPECT_EQ(names, (std::vector<std::string>{"PlaybackHistory", "PlaybackHistoryEvent",
                                               "PlayEvent", "Achievement"}));
}

TEST_F(ListeningRecordsTest, aNewRecordIsNeitherInterpolatedNorExcluded) {
    PlaybackHistory history = PlaybackHistory::insert(environment.main());
    const PlayEvent event = PlayEvent::insert(environment.main());
    EXPECT_FALSE(history.excludeFromTrends());
    EXPECT_FALSE(event.isInterpolated());
    EXPECT_EQ(event.parentHistory(), std::nullopt);
}

TEST_F(ListeningRecordsTest, theBaseEntityGivesPlaysByTheirParent) {
    PlaybackHistory history = environment.makeHistory("Song", 180);
    PlaybackHistory other = environment.makeHistory("Other", 180);
    const PlayEvent event = environment.makePlay(history, 10);
    environment.makePlay(other, 20);
    const auto found =
        environment.main().executeFetchRequest(PlaybackHistoryEvent::fetchRequest().where(
            RecordPredicates::parentHistory(history.objectID())));
    ASSERT_EQ(found.value().size(), 1U);
    EXPECT_EQ(found.value()[0].objectID(), event.objectID());
}

TEST_F(ListeningRecordsTest, theStandardConditionsSelectByExactDatesAndFlags) {
    PlaybackHistory history = environment.makeHistory("Song", 180);
    environment.makePlay(history, 10, true);
    environment.makePlay(history, 20);
    environment.makePlay(history, 30);
    const auto count = [&](NSPredicate predicate) {
        return environment.main()
            .countForFetchRequest(PlayEvent::fetchRequest().where(std::move(predicate)))
            .value();
    };
    EXPECT_EQ(count(RecordPredicates::eventDateBetween(at(10), at(30))), 1U);
    EXPECT_EQ(count(RecordPredicates::eventDateBetween(at(9), at(31))), 3U);
    EXPECT_EQ(count(NSPredicate::andPredicateWithSubpredicates(
                  {RecordPredicates::eventDateBetween(at(9), at(31)),
                   RecordPredicates::isInterpolated(false)})),
              2U);
    EXPECT_EQ(count(RecordPredicates::isInterpolated(true)), 1U);
    EXPECT_EQ(count(RecordPredicates::eventDateEquals(at(20))), 1U);
    history.setExcludeFromTrends(true);
    environment.makeHistory("Other", 1);
    EXPECT_EQ(environment.main()
                  .countForFetchRequest(PlaybackHistory::fetchRequest().where(
                      RecordPredicates::notExcludedFromTrends()))
                  .value(),
              1U);
}

TEST_F(ListeningRecordsTest,
       aSongWithoutAStoreIdentifierIsFoundByTitleDurationAndLibraryIdentifier) {
    environment.library.publish(
        {{.title = "Song", .playCount = 1, .lastPlayed = at(794059000), .libraryID = "LIB1"}});
    const MPMediaItem song = environment.library.song("Song");
    const std::string reading = Nerinda::storeID(song);
    EXPECT_TRUE(NSUUID::stringIsValidUUID(reading));
    EXPECT_NE(Nerinda::storeID(song), reading) << "each reading generates another one";
    ASSERT_TRUE(environment.scan());
    const PlaybackHistory record = environment.history("Song");
    const auto kept = record.storeID();
    EXPECT_TRUE(NSUUID::stringIsValidUUID(*kept));
    EXPECT_EQ(record.libraryID(), "LIB1");
    const auto found = Nerinda::playbackHistoryInContext(song, environment.main());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->objectID(), record.objectID());
    EXPECT_EQ(found->storeID(), kept) << "the record keeps the first one";
}

TEST_F(ListeningRecordsTest,
       twoSongsWithEqualTitleAndDurationStayTwoForTheStrictRuleAndAreTwinsForTheLenientOne) {
    environment.library.publish({{.title = "Song", .storeID = "store-1", .libraryID = "L1"},
                                 {.title = "Song", .storeID = "store-2", .libraryID = "L2"}});
    PlaybackHistory first = environment.makeHistory("Song", 180, "store-1", "L1");
    const PlaybackHistory second = environment.makeHistory("Song", 180, "store-2", "L2");
    for (const MPMediaItem& song : MPMediaQuery::songsQuery().items()) {
        const auto found = Nerinda::playbackHistoryInContext(song, environment.main());
        ASSERT_TRUE(found);
        EXPECT_EQ(found->storeID(), std::string(song.playbackStoreID()));
    }
    EXPECT_EQ(environment.histories().size(), 2U);
    RVCoreDataManager::consolidateHistory(first, environment.main());
    EXPECT_EQ(environment.histories().size(), 1U);
    EXPECT_TRUE(second.isDeleted());
}

TEST_F(ListeningRecordsTest, aRecordMayHoldMoreOrFewerPlaysThanItsCountSays) {
    environment.library.publish({{.title = "Song", .playCount = 10, .lastPlayed = at(794059000)}});
    ASSERT_TRUE(environment.scan());
    PlaybackHistory record = environment.history("Song");
    EXPECT_EQ(record.playCount(), 10);
    EXPECT_EQ(record.plays().size(), 1U);
    for (int i = 0; i < 20; ++i) {
        environment.makePlay(record, 700000000 + i);
    }
    ASSERT_TRUE(environment.scan());
    EXPECT_EQ(record.playCount(), 10);
    EXPECT_EQ(record.plays().size(), 21U);
}

TEST_F(ListeningRecordsTest, aRecordWithAnOldStoreIdentifierIsNotFoundStrictly) {
    environment.library.publish({{.title = "Song", .storeID = "new-store"}});
    environment.makeHistory("Song", 180, "old-store");
    EXPECT_FALSE(
        Nerinda::playbackHistoryInContext(environment.library.song("Song"), environment.main()));
}

TEST_F(ListeningRecordsTest, durationsAreComparedWithoutATolerance) {
    environment.library.publish({{.title = "Song", .duration = 180.0000001}});
    environment.makeHistory("Song", 180);
    EXPECT_FALSE(
        Nerinda::playbackHistoryInContext(environment.library.song("Song"), environment.main()));
}

TEST_F(ListeningRecordsTest, findingARecordBringsItsTextsUpToDate) {
    environment.library.publish({{.title = "Song",
                                  .artist = "Track Artist",
                                  .albumArtist = "New",
                                  .albumTitle = "Album",
                                  .genre = "Jazz"}});
    environment.makeHistory("Song", 180);
    const auto found =
        Nerinda::playbackHistoryInContext(environment.library.song("Song"), environment.main());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->artist(), "New");
    EXPECT_EQ(found->albumID(), "New\u2014\u2014Album");
    EXPECT_EQ(found->genre(), "Jazz");
}

TEST_F(ListeningRecordsTest, anAbsentPartOfTheAlbumKeyReadsNull) {
    environment.library.publish({{.title = "Song", .artist = "", .albumTitle = ""}});
    EXPECT_EQ(Nerinda::albumKey(environment.library.song("Song")), "(null)\u2014\u2014(null)");
}

TEST_F(ListeningRecordsTest, theFirstOfSeveralRecordsAbsorbsTheOthers) {
    environment.library.publish({{.title = "Song"}});
    const PlaybackHistory first = environment.makeHistory("Song", 180);
    PlaybackHistory second = environment.makeHistory("Song", 180);
    environment.makePlay(second, 5);
    const auto found =
        Nerinda::playbackHistoryInContext(environment.library.song("Song"), environment.main());
    EXPECT_EQ(found->objectID(), first.objectID());
    EXPECT_EQ(environment.histories().size(), 1U);
    EXPECT_EQ(first.plays().size(), 1U);
}

TEST_F(ListeningRecordsTest, aStoreIdentifierOfOneCharacterCountsAsNone) {
    environment.library.publish({{.title = "Song", .storeID = "0"}});
    EXPECT_TRUE(NSUUID::stringIsValidUUID(Nerinda::storeID(environment.library.song("Song"))));
}

}  // namespace
}  // namespace tavrion
