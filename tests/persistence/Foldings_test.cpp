// Plays that are added to a record at the moment when it is folded into its twin.

#include "persistence/Foldings.h"

#include <gtest/gtest.h>

#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

class FoldingsTest : public testing::Test {
  protected:
    static NSDate at(double seconds) { return RecordingEnvironment::at(seconds); }
    FoldingsTest() {
        PlaybackHistory history = environment.makeHistory("Song", 180, "old", "L1");
        history.setPlayCount(10);
        history.setLastEventDate(at(100));
        environment.makePlay(history, 90);
        environment.saveMain();
        old = history.objectID();
    }
    /// A scan that found the record of the song and recorded two plays, but has not saved yet.
    std::shared_ptr<NSManagedObjectContext> scanUnderWay() const {
        const auto context = environment.data->privateContext();
        context->performBlockAndWait([&] {
            PlaybackHistory history(*context->existingObjectWithID(old));
            for (const double instant : {150.0, 200.0}) {
                PlayEvent event = PlayEvent::insert(*context);
                event.setEventDate(at(instant));
                history.addPlaysObject(event);
            }
            history.setPlayCount(12);
            history.setLastEventDate(at(200));
        });
        return context;
    }
    void save(const std::shared_ptr<NSManagedObjectContext>& context) {
        context->performBlockAndWait([&] { EXPECT_TRUE(context->save()); });
        environment.runUntilIdle();
    }
    /// Another record of the song; the clean-up folds the old one into it.
    void makeTwin(const std::string& storeID) {
        const auto context = environment.data->privateContext();
        context->performBlockAndWait([&] {
            PlaybackHistory twin = PlaybackHistory::insert(*context);
            twin.setTitle("Song");
            twin.setDuration(180);
            twin.setStoreID(storeID);
            twin.setPlayCount(3);
        });
        save(context);
    }
    void expectOneRecordWithAllPlays() {
        ASSERT_EQ(environment.histories().size(), 1U);
        const PlaybackHistory survivor = environment.histories()[0];
        EXPECT_NE(survivor.objectID(), old);
        EXPECT_EQ(survivor.plays().size(), 3U);
        EXPECT_EQ(survivor.playCount(), 12) << "else the next scan records the plays again";
        EXPECT_EQ(survivor.lastEventDate(), at(200));
        EXPECT_EQ(environment.plays(),
                  (std::vector<RecordedPlay>{
                      {90, false, "Song"}, {150, false, "Song"}, {200, false, "Song"}}));
        environment.saveMain();
        EXPECT_FALSE(environment.main().hasChanges());
    }

    RecordingEnvironment environment;
    NSManagedObjectID old;
};

TEST_F(FoldingsTest, playsSavedAfterTheirRecordWasFoldedFollowIt) {
    const auto scan = scanUnderWay();
    makeTwin("new");
    ASSERT_EQ(environment.histories().size(), 1U);
    save(scan);
    expectOneRecordWithAllPlays();
}

TEST_F(FoldingsTest, playsSavedBeforeAFoldThatDidNotSeeThemFollowToo) {
    const auto folding = environment.data->privateContext();
    folding->performBlockAndWait([&] {
        PlaybackHistory twin = PlaybackHistory::insert(*folding);
        twin.setTitle("Song");
        twin.setDuration(180);
        RVCoreDataManager::consolidateHistory(twin, *folding);
    });
    save(scanUnderWay());
    save(folding);
    expectOneRecordWithAllPlays();
}

TEST_F(FoldingsTest, theyFollowAlongAChainOfFolds) {
    const auto scan = scanUnderWay();
    makeTwin("new");
    makeTwin("newer");
    save(scan);
    expectOneRecordWithAllPlays();
    EXPECT_EQ(environment.histories()[0].storeID(), "newer");
}

TEST_F(FoldingsTest, aFoldThatIsNeverSavedTakesNothing) {
    {
        const auto dropped = environment.data->privateContext();
        dropped->performBlockAndWait([&] {
            PlaybackHistory twin = PlaybackHistory::insert(*dropped);
            twin.setTitle("Song");
            twin.setDuration(180);
            RVCoreDataManager::consolidateHistory(twin, *dropped);
        });
    }
    save(scanUnderWay());
    ASSERT_EQ(environment.histories().size(), 1U);
    EXPECT_EQ(environment.histories()[0].objectID(), old);
    EXPECT_EQ(environment.histories()[0].plays().size(), 3U);
}

TEST_F(FoldingsTest, playsOfASongThatTheUserDeletedStayWithoutOne) {
    const auto scan = scanUnderWay();
    makeTwin("new");
    environment.main().deleteObject(environment.histories()[0]);
    environment.saveMain();
    save(scan);
    EXPECT_TRUE(environment.histories().empty());
}

class LostPlayTest : public FoldingsTest {
  protected:
    /// Another song was played at the instant of one of the scan's plays, which goes as its double.
    void makeRival() {
        PlaybackHistory rival = environment.makeHistory("Rival", 99);
        environment.makePlay(rival, 150);
        environment.saveMain();
    }
    void expectTheCountOfTheLibrary() {
        ASSERT_EQ(environment.histories().size(), 2U);
        EXPECT_EQ(environment.plays(),
                  (std::vector<RecordedPlay>{
                      {90, false, "Song"}, {150, false, "Rival"}, {200, false, "Song"}}));
        EXPECT_EQ(environment.history("Song").playCount(), 12)
            << "else the next scan records the lost play once more, or misses one";
    }
};

TEST_F(LostPlayTest, aPlayThatWentAsADoubleAfterTheFoldStillCounts) {
    makeRival();
    const auto scan = scanUnderWay();
    makeTwin("new");
    save(scan);
    expectTheCountOfTheLibrary();
}

TEST_F(LostPlayTest, aPlayThatWentAsADoubleBeforeTheFoldWasSavedStillCounts) {
    makeRival();
    const auto folding = environment.data->privateContext();
    folding->performBlockAndWait([&] {
        PlaybackHistory twin = PlaybackHistory::insert(*folding);
        twin.setTitle("Song");
        twin.setDuration(180);
        RVCoreDataManager::consolidateHistory(twin, *folding);
    });
    save(scanUnderWay());
    save(folding);
    expectTheCountOfTheLibrary();
}

class FoldWithoutInsertTest : public FoldingsTest {
  protected:
    /// Another record of another song, which becomes one of the same song by a change: no insert,
    /// so that nobody folds them yet.
    PlaybackHistory makeLaterTwin(std::int64_t playCount) {
        PlaybackHistory twin = environment.makeHistory("Other", 180);
        twin.setPlayCount(playCount);
        environment.saveMain();
        twin.setTitle("Song");
        environment.saveMain();
        return twin;
    }
    /// Folds the old record while a scan records plays for it, and saves after the scan.
    void foldBesideAScan(const PlaybackHistory& survivor) {
        const auto folding = environment.data->privateContext();
        folding->performBlockAndWait([&] {
            PlaybackHistory twin(*folding->existingObjectWithID(survivor.objectID()));
            RVCoreDataManager::consolidateHistory(twin, *folding);
        });
        save(scanUnderWay());
        save(folding);
    }
};

TEST_F(FoldWithoutInsertTest, deletionsAloneBringThePlaysToTheSurvivor) {
    foldBesideAScan(makeLaterTwin(3));
    expectOneRecordWithAllPlays();
}

TEST_F(FoldWithoutInsertTest, aHigherCountOfTheSurvivorIsNeverLowered) {
    foldBesideAScan(makeLaterTwin(50));
    ASSERT_EQ(environment.histories().size(), 1U);
    EXPECT_EQ(environment.histories()[0].plays().size(), 3U);
    EXPECT_EQ(environment.histories()[0].playCount(), 50);
}

}  // namespace
}  // namespace tavrion
