// The clean-up after a save, and the folding of the records of one song.

#include <gtest/gtest.h>

#include <thread>

#include "persistence/RVCoreDataManager.h"
#include "platform/foundation/NSUUID.h"
#include "recording/RVPlaybackHistoryManager.h"
#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

class DuplicatesTest : public testing::Test {
  protected:
    static NSDate at(double seconds) { return RecordingEnvironment::at(seconds); }
    void consolidate(PlaybackHistory survivor) {
        RVCoreDataManager::consolidateHistory(survivor, environment.main());
    }
    std::size_t awardsNamed(const std::string& identifier) {
        std::size_t count = 0;
        for (const NSManagedObject& object :
             environment.main().executeFetchRequest(Achievement::fetchRequest()).value()) {
            count += Achievement(object).identifier() == identifier ? 1 : 0;
        }
        return count;
    }
    RecordingEnvironment environment;
};

TEST_F(DuplicatesTest, aRecordThatFindsOnlyItselfStaysAsItIs) {
    PlaybackHistory history = environment.makeHistory("Song", 180, "S1", "L1");
    environment.makeHistory("Other", 180, "S2", "L2");
    environment.saveMain();
    EXPECT_EQ(environment.histories().size(), 2U);
    EXPECT_EQ(history.storeID(), "S1");
}

TEST_F(DuplicatesTest, aNewRecordForAChangedStoreIdentifierTakesOverTheOldOne) {
    PlaybackHistory old = environment.makeHistory("Song", 180, "old", "L1");
    old.setPlayCount(10);
    old.setSkipCount(1);
    old.setLastEventDate(at(100));
    environment.makePlay(old, 90);
    environment.saveMain();
    environment.library.publish({{.title = "Song",
                                  .playCount = 11,
                                  .skipCount = 0,
                                  .lastPlayed = at(200),
                                  .storeID = "new",
                                  .libraryID = "L1"}});
    ASSERT_TRUE(environment.scan());
    ASSERT_EQ(environment.histories().size(), 1U);
    const PlaybackHistory survivor = environment.histories()[0];
    EXPECT_NE(survivor.objectID(), old.objectID()) << "the inserted record survives";
    EXPECT_EQ(survivor.storeID(), "new");
    EXPECT_EQ(survivor.plays().size(), 2U);
    EXPECT_EQ(survivor.playCount(), 11);
    EXPECT_EQ(survivor.skipCount(), 1) << "the counts are the larger of the two";
}

TEST_F(DuplicatesTest, twoSongsWithTheSameTitleAndDurationAreFoldedWhenOneGetsANewRecord) {
    PlaybackHistory first = environment.makeHistory("Song", 180, "S1", "L1");
    environment.makePlay(first, 1);
    environment.saveMain();
    PlaybackHistory second = environment.makeHistory("Song", 180, "S2", "L2");
    environment.makePlay(second, 2);
    environment.saveMain();
    ASSERT_EQ(environment.histories().size(), 1U);
    EXPECT_EQ(environment.histories()[0].storeID(), "S2");
    EXPECT_EQ(environment.histories()[0].plays().size(), 2U);
}

TEST_F(DuplicatesTest, anEventWithTheDateOfAnotherSongsEventGoes) {
    PlaybackHistory first = environment.makeHistory("First", 1);
    environment.makePlay(first, 100);
    environment.saveMain();
    PlaybackHistory second = environment.makeHistory("Second", 2);
    environment.makePlay(second, 100);
    environment.saveMain();
    EXPECT_EQ(environment.plays(), (std::vector<RecordedPlay>{{100, false, "First"}}));
    EXPECT_TRUE(second.plays().empty());
    EXPECT_EQ(environment.log.count("deleted duplicate play event: " + isoTextOfDate(at(100))), 1U);
}

TEST_F(DuplicatesTest, ofAPairInOneSaveTheFirstGoesAndTheSecondStays) {
    PlaybackHistory history = environment.makeHistory("Song", 1);
    environment.makePlay(history, 100);
    const PlayEvent second = environment.makePlay(history, 100);
    environment.makePlay(history, 100.0000001);
    environment.saveMain();
    ASSERT_EQ(history.plays().size(), 2U);
    EXPECT_EQ(history.plays()[0].objectID(), second.objectID());
}

TEST_F(DuplicatesTest, anAwardThatIsThereTwiceLosesOne) {
    Achievement::insert(environment.main()).setIdentifier("rv_award.one");
    environment.saveMain();
    Achievement::insert(environment.main()).setIdentifier("rv_award.one");
    Achievement::insert(environment.main()).setIdentifier("rv_award.two");
    environment.saveMain();
    EXPECT_EQ(awardsNamed("rv_award.one"), 1U);
    EXPECT_EQ(awardsNamed("rv_award.two"), 1U);
}

TEST_F(DuplicatesTest, ofTwoAwardsInOneSaveTheFirstGoesWithWhatItHeld) {
    Achievement first = Achievement::insert(environment.main());
    first.setIdentifier("rv_award.one");
    first.setTier(3);
    Achievement second = Achievement::insert(environment.main());
    second.setIdentifier("rv_award.one");
    second.setTier(1);
    environment.saveMain();
    EXPECT_TRUE(first.isDeleted());
    EXPECT_EQ(second.tier(), 1) << "nothing is merged";
    Achievement third = Achievement::insert(environment.main());
    third.setIdentifier("rv_award.one");
    third.setTier(2);
    environment.saveMain();
    EXPECT_TRUE(third.isDeleted()) << "the award that was there before stays";
    EXPECT_EQ(second.tier(), 1);
}

TEST_F(DuplicatesTest, eventsWithoutADateAreEqualToEachOther) {
    PlaybackHistory history = environment.makeHistory("Song", 1);
    environment.makePlay(history, 100);
    const auto addUndated = [&] {
        PlayEvent event = PlayEvent::insert(environment.main());
        history.addPlaysObject(event);
        return event;
    };
    const PlayEvent first = addUndated();
    environment.saveMain();
    EXPECT_FALSE(first.isDeleted()) << "it equals no other";
    const PlayEvent second = addUndated();
    const PlayEvent third = addUndated();
    environment.saveMain();
    EXPECT_FALSE(first.isDeleted());
    EXPECT_TRUE(second.isDeleted());
    EXPECT_TRUE(third.isDeleted());
    EXPECT_EQ(history.plays().size(), 2U);
    EXPECT_EQ(environment.log.count("deleted duplicate play event: (null)"), 2U);
}

TEST_F(DuplicatesTest, ofUndatedEventsInOneSaveTheLastStays) {
    PlayEvent::insert(environment.main());
    PlayEvent::insert(environment.main());
    const PlayEvent last = PlayEvent::insert(environment.main());
    environment.saveMain();
    EXPECT_FALSE(last.isDeleted());
    EXPECT_EQ(environment.main().countForFetchRequest(PlayEvent::fetchRequest()).value(), 1U);
}

TEST_F(DuplicatesTest, awardsWithoutAnIdentifierAreEqualToEachOtherAndToNoOther) {
    const Achievement first = Achievement::insert(environment.main());
    Achievement::insert(environment.main()).setIdentifier("");
    Achievement::insert(environment.main()).setIdentifier("rv_award.one");
    environment.saveMain();
    EXPECT_FALSE(first.isDeleted());
    const Achievement second = Achievement::insert(environment.main());
    environment.saveMain();
    EXPECT_FALSE(first.isDeleted());
    EXPECT_TRUE(second.isDeleted());
    EXPECT_EQ(awardsNamed(""), 1U);
}

TEST_F(DuplicatesTest, objectsThatAreGoneWhenTheCleanUpRunsAreSkipped) {
    PlaybackHistory gone = environment.makeHistory("Song", 1);
    const PlayEvent event = environment.makePlay(gone, 100);
    Achievement award = Achievement::insert(environment.main());
    award.setIdentifier("rv_award.one");
    // What a record that is gone would be taken for: it reads as never set.
    PlaybackHistory::insert(environment.main()).setStoreID("S1");
    const auto inserted = std::make_shared<const std::vector<NSManagedObjectID>>(
        std::vector{gone.objectID(), event.objectID(), award.objectID()});
    environment.saveMain();
    for (const NSManagedObject& object : std::vector<NSManagedObject>{event, gone, award}) {
        environment.main().deleteObject(object);
    }
    environment.saveMain();
    const auto before = environment.main().snapshot();
    environment.data->handle_Duplication({NSManagedObjectContextDidSaveObjectIDsNotification,
                                          nullptr,
                                          {{NSInsertedObjectIDsKey, SavedObjectIDs(inserted)}}});
    environment.runUntilIdle();
    EXPECT_EQ(environment.main().snapshot(), before);
    EXPECT_EQ(environment.histories().size(), 1U);
}

TEST_F(DuplicatesTest, whatIsDoubledNeverReachesTheDisk) {
    PlaybackHistory history = environment.makeHistory("Song", 1);
    environment.makePlay(history, 100);
    environment.saveMain();
    const auto context = environment.data->privateContext();
    context->performBlockAndWait([&] {
        PlayEvent::insert(*context).setEventDate(at(100));
        PlaybackHistory twin = PlaybackHistory::insert(*context);
        twin.setTitle("Song");
        twin.setDuration(1);
        EXPECT_TRUE(context->save());
    });
    std::size_t whenSaved = 0;
    environment.data->saveMainContext([&] {
        const auto database =
            SQLiteDatabase::open(environment.storeFile(), SQLiteDatabase::Mode::readOnly);
        auto rows = database.value()->prepare(
            "SELECT (SELECT count(*) FROM PlayEvent) + (SELECT count(*) FROM PlaybackHistory)");
        ASSERT_TRUE(rows.value().step().value());
        whenSaved = static_cast<std::size_t>(rows.value().integer(0));
    });
    environment.runUntilIdle();
    EXPECT_EQ(whenSaved, 2U) << "a process may end between the save and a later clean-up";
}

TEST_F(DuplicatesTest, aNotificationWithoutInsertsStartsNoCleanUp) {
    PlaybackHistory history = environment.makeHistory("Song", 1);
    environment.makePlay(history, 100);
    environment.saveMain();
    const auto before = environment.main().snapshot();
    environment.data->handle_Duplication(
        {NSManagedObjectContextDidSaveObjectIDsNotification, nullptr, {}});
    environment.runUntilIdle();
    EXPECT_EQ(environment.main().snapshot(), before);
}

TEST_F(DuplicatesTest, whenAllIdentifiersAreGeneratedOnlyTitleAndDurationFindTwins) {
    const std::string generated = NSUUID::UUIDString();
    PlaybackHistory survivor = environment.makeHistory("Song", 180, generated, generated);
    environment.makeHistory("Other", 180, generated, generated);
    environment.makeHistory("Song", 181, generated, generated);
    environment.makeHistory("Song", 180);
    consolidate(survivor);
    EXPECT_EQ(environment.histories().size(), 3U);
}

TEST_F(DuplicatesTest, aRealIdentifierReplacesAGeneratedOneAndIsNeverReplaced) {
    PlaybackHistory survivor = environment.makeHistory("Song", 180, "", "L1");
    environment.makeHistory("Song", 180, "S2", "L2");
    environment.makeHistory("Song", 180, "S3", "L3");
    consolidate(survivor);
    EXPECT_EQ(survivor.storeID(), "S2");
    EXPECT_EQ(survivor.libraryID(), "L1");
}

TEST_F(DuplicatesTest, twinsAreFoundByARealLibraryIdentifierAlone) {
    PlaybackHistory survivor = environment.makeHistory("Song", 180, "", "L1");
    PlaybackHistory renamed = environment.makeHistory("Renamed", 99, "", "L1");
    environment.makePlay(renamed, 5);
    renamed.setLastEventDate(at(7));
    consolidate(survivor);
    EXPECT_EQ(environment.histories().size(), 1U);
    EXPECT_EQ(survivor.title(), "Song");
    EXPECT_EQ(survivor.lastEventDate(), at(7));
    EXPECT_EQ(survivor.plays().size(), 1U);
}

TEST_F(DuplicatesTest, twinsAreFoundByARealStoreIdentifierAlone) {
    PlaybackHistory survivor = environment.makeHistory("Song", 180, "S1");
    PlaybackHistory renamed = environment.makeHistory("Renamed", 99, "S1");
    PlaybackHistory other = environment.makeHistory("Renamed", 99, "S2");
    environment.makePlay(renamed, 5);
    consolidate(survivor);
    EXPECT_EQ(environment.histories().size(), 2U);
    EXPECT_FALSE(other.isDeleted());
    EXPECT_EQ(survivor.plays().size(), 1U);
}

TEST_F(DuplicatesTest, theLaterOfTheTwoLastDatesStaysWhoseverItIs) {
    const auto lastDateOf = [&](std::optional<NSDate> survivors, std::optional<NSDate> twins) {
        PlaybackHistory survivor = environment.makeHistory("Song", 180);
        survivor.setLastEventDate(survivors);
        environment.makeHistory("Song", 180).setLastEventDate(twins);
        consolidate(survivor);
        const std::optional<NSDate> date = survivor.lastEventDate();
        environment.main().deleteObject(survivor);
        return date;
    };
    EXPECT_EQ(lastDateOf(at(5), at(7)), at(7));
    EXPECT_EQ(lastDateOf(at(7), at(5)), at(7));
    EXPECT_EQ(lastDateOf(std::nullopt, at(5)), at(5));
    EXPECT_EQ(lastDateOf(at(5), std::nullopt), at(5));
    EXPECT_EQ(lastDateOf(std::nullopt, std::nullopt), std::nullopt);
}

TEST_F(DuplicatesTest, whatTheFoldedRecordHeldBesidesIsLost) {
    PlaybackHistory survivor = environment.makeHistory("Song", 180, "S1");
    survivor.setArtist("Band");
    PlaybackHistory twin = environment.makeHistory("Renamed", 99, "S1");
    twin.setExcludeFromTrends(true);
    twin.setArtist("Other band");
    twin.setAlbumID("Album");
    twin.setGenre("Jazz");
    consolidate(survivor);
    ASSERT_TRUE(twin.isDeleted());
    EXPECT_FALSE(survivor.excludeFromTrends());
    EXPECT_EQ(survivor.artist(), "Band");
    EXPECT_EQ(survivor.albumID(), std::nullopt);
    EXPECT_EQ(survivor.genre(), std::nullopt);
    EXPECT_EQ(survivor.title(), "Song");
    EXPECT_EQ(survivor.duration(), 180);
}

TEST_F(DuplicatesTest, stringIsValidUUIDTakesWellFormedIdentifiersOnly) {
    EXPECT_TRUE(RVCoreDataManager::stringIsValidUUID("68753A44-4d6f-1226-9C60-0050E4C00067"));
    EXPECT_FALSE(RVCoreDataManager::stringIsValidUUID("{68753A44-4D6F-1226-9C60-0050E4C00067}"));
    EXPECT_FALSE(RVCoreDataManager::stringIsValidUUID("C5A2F0B1D3E49F60"));
    EXPECT_FALSE(RVCoreDataManager::stringIsValidUUID(""));
}

TEST_F(DuplicatesTest, twoScansAtOnceLeaveNoSurplus) {
    const auto songs = [&](std::uint64_t count, double lastPlayed) {
        std::vector<TestSong> list;
        for (int i = 0; i < 60; ++i) {
            list.push_back({.title = "Song " + std::to_string(i),
                            .duration = 100.0 + i,
                            .playCount = count,
                            .lastPlayed = at(lastPlayed + i * 1.25)});
        }
        environment.library.publish(list);
    };
    for (int round = 0; round < 15; ++round) {
        const double base = 794059200 + round * 10000;
        environment.clock.set(at(base + 5000));
        songs(static_cast<std::uint64_t>(round) * 3 + 1, base);
        // Handed over one after the other, so that both reach their queues and run at the same
        // time.
        RVPlaybackHistoryManager::recordPlaybackHistorySinceDate(NSDate::distantPast(), false, {});
        while (environment.data->operationQueue().operationCount() != 0) {
            std::this_thread::yield();
        }
        RVPlaybackHistoryManager::recordPlaybackHistorySinceDate(NSDate::distantPast(), false, {});
        environment.runUntilIdle();
        ASSERT_EQ(environment.histories().size(), 60U) << "round " << round;
        const std::vector<RecordedPlay> plays = environment.plays();
        ASSERT_EQ(plays.size(), 60U * (static_cast<std::size_t>(round) * 3 + 1))
            << "round " << round;
    }
}

TEST_F(DuplicatesTest, theMainSaveLooksAgainWhenAnotherRecordHasChangedSince) {
    PlaybackHistory song = environment.makeHistory("Song", 180);
    PlayEvent early = environment.makePlay(song, 100);
    environment.saveMain();
    const auto context = environment.data->privateContext();
    context->performBlockAndWait([&] {
        PlayEvent::insert(*context).setEventDate(at(200));
        ASSERT_TRUE(context->save());
    });
    environment.runUntilIdle();
    ASSERT_EQ(environment.plays().size(), 2U);
    // The change of a date alone is no insert; the play that was inserted is reported again with
    // the main save.
    early.setEventDate(at(200));
    environment.saveMain();
    EXPECT_EQ(environment.plays().size(), 1U);
}

TEST_F(DuplicatesTest, theMainSaveLooksAtWhatNoChildHasReported) {
    PlaybackHistory song = environment.makeHistory("Song", 180);
    environment.saveMain();
    const auto context = environment.data->privateContext();
    context->performBlockAndWait([&] {
        PlayEvent::insert(*context).setEventDate(at(200));
        ASSERT_TRUE(context->save());
    });
    environment.runUntilIdle();
    environment.makePlay(song, 200);
    environment.saveMain();
    EXPECT_EQ(environment.plays().size(), 1U);
}

}  // namespace
}  // namespace tavrion
