#include "persistence/RVCoreDataManager.h"

#include <gtest/gtest.h>

#include <fstream>

#include "recording/DataProcess.h"
#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

class DataManagerTest : public testing::Test {
  protected:
    std::size_t rowsOnDisk(const std::string& table) const {
        const auto database =
            SQLiteDatabase::open(environment.storeFile(), SQLiteDatabase::Mode::readOnly);
        auto count = database.value()->prepare("SELECT count(*) FROM " + table);
        EXPECT_TRUE(count.value().step().value());
        return static_cast<std::size_t>(count.value().integer(0));
    }
    std::string log() const {
        std::ifstream stream(environment.storeFile().string() + "-wal", std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    RecordingEnvironment environment;
};

TEST_F(DataManagerTest, whatIsOpenForReadingMakesNoStoreAndCannotSave) {
    environment.data->setAccess(StoreAccess::reading);
    environment.makeHistory("Song", 1);
    EXPECT_FALSE(std::filesystem::exists(environment.storeFile()));
    environment.saveMain();
    EXPECT_FALSE(std::filesystem::exists(environment.storeFile()));
    ASSERT_EQ(environment.failures.endings.size(), 1U);
    EXPECT_NE(environment.failures.endings[0].localizedDescription.find("for reading alone"),
              std::string::npos);
}

TEST_F(DataManagerTest, whatIsOpenForWritingStaysSo) {
    environment.main();
    EXPECT_DEATH(environment.data->setAccess(StoreAccess::reading), "stays open for");
}

TEST_F(DataManagerTest, withoutTheSettingTheStoreIsLocalWithHistoryTracking) {
    const auto container = environment.data->persistentContainer();
    ASSERT_NE(container, nullptr);
    EXPECT_EQ(container->cloudKitContainerOptions(), std::nullopt);
    EXPECT_TRUE(container->persistentStoreDescription().option(NSPersistentHistoryTrackingKey));
}

TEST_F(DataManagerTest, withTheSettingTheContainerIsMirroredAndTracksHistoryToo) {
    environment.defaults->setObject("CloudSyncEnabled", true);
    const auto container = environment.data->persistentContainer();
    EXPECT_TRUE(container->cloudKitContainerOptions().has_value());
    EXPECT_TRUE(container->persistentStoreDescription().option(NSPersistentHistoryTrackingKey));
}

TEST_F(DataManagerTest, changingTheSettingLoadsASecondContainerAndKeepsTheMainContext) {
    const auto first = environment.data->persistentContainer();
    const auto context = environment.data->mainContext();
    environment.defaults->setObject("CloudSyncEnabled", true);
    const auto second = environment.data->persistentContainer();
    EXPECT_NE(second, first);
    EXPECT_EQ(environment.data->mainContext(), context);
    PlaybackHistory history = environment.makeHistory("Song", 1);
    environment.makePlay(history, 5);
    environment.saveMain();
    EXPECT_EQ(environment.plays().size(), 1U);
    environment.data->deleteAllData();
    environment.runUntilIdle();
    EXPECT_TRUE(environment.plays().empty()) << "both containers stand on the same store";
    environment.defaults->setObject("CloudSyncEnabled", false);
    EXPECT_NE(environment.data->persistentContainer(), second);
}

TEST_F(DataManagerTest, eachReloadLeavesExactlyOneCleanUpObservation) {
    environment.data->persistentContainer();
    EXPECT_EQ(environment.centre.observerCount(NSManagedObjectContextDidSaveObjectIDsNotification),
              1U);
    environment.defaults->setObject("CloudSyncEnabled", true);
    environment.defaults->setObject("CloudSyncEnabled", false);
    EXPECT_EQ(environment.centre.observerCount(NSManagedObjectContextDidSaveObjectIDsNotification),
              1U);
}

TEST_F(DataManagerTest, savingTheMainContextWithNothingToSaveLogsSuccessAndWritesNothing) {
    environment.makeHistory("Song", 1);
    environment.saveMain();
    // What a save writes goes to the log first.
    const std::string before = log();
    ASSERT_FALSE(before.empty());
    environment.saveMain();
    EXPECT_EQ(environment.log.count("successfully saved Nerinda core data store."), 2U);
    EXPECT_EQ(log(), before);
}

TEST_F(DataManagerTest, aPrivateSaveReachesTheDiskOnlyAfterTheMainSave) {
    const auto context = environment.data->privateContext();
    context->performBlockAndWait([&] {
        PlaybackHistory::insert(*context).setTitle("Song");
        EXPECT_TRUE(context->save());
    });
    EXPECT_EQ(rowsOnDisk("PlaybackHistory"), 0U);
    environment.saveMain();
    EXPECT_EQ(rowsOnDisk("PlaybackHistory"), 1U);
}

TEST_F(DataManagerTest, aPrivateContextThatIsNeverSavedVanishes) {
    {
        const auto context = environment.data->privateContext();
        context->performBlockAndWait(
            [&] { Achievement::insert(*context).setIdentifier("rv_award.none"); });
    }
    environment.saveMain();
    EXPECT_EQ(rowsOnDisk("Achievement"), 0U);
}

TEST_F(DataManagerTest, eachPrivateContextIsANewOneBelowTheMainContext) {
    const auto first = environment.data->privateContext();
    const auto second = environment.data->privateContext();
    EXPECT_NE(first, second);
    EXPECT_EQ(first->parentContext(), environment.data->mainContext());
    EXPECT_NE(&first->queue(), &second->queue());
}

class DeleteAllDataTest : public DataManagerTest {
  protected:
    int finishes = 0;
    int awardChanges = 0;
    NSNotificationCenter::Observation finish =
        environment.centre.addObserver(DataProcess::didFinish, nullptr, environment.mainQueue.get(),
                                       [this](const NSNotification&) { ++finishes; });
    NSNotificationCenter::Observation awards =
        environment.centre.addObserver(AchievementsDidChange, nullptr, environment.mainQueue.get(),
                                       [this](const NSNotification&) { ++awardChanges; });
    void deleteAll() {
        environment.data->deleteAllData();
        environment.runUntilIdle();
    }
};

TEST_F(DeleteAllDataTest, anEmptyStorePostsItsNotificationsFourTimesAllTheSame) {
    deleteAll();
    EXPECT_EQ(finishes, 4);
    EXPECT_EQ(awardChanges, 4);
}

TEST_F(DeleteAllDataTest, everyRecordGoesAndMostDefaultsStay) {
    PlaybackHistory history = environment.makeHistory("Song", 1);
    environment.makePlay(history, 5);
    Achievement::insert(environment.main()).setIdentifier("rv_award.some");
    environment.saveMain();
    environment.defaults->setObject("com.oskelvane.Nerinda.dailyRecordDate", environment.at(1));
    environment.defaults->setObject("com.oskelvane.Nerinda.installationDate", environment.at(2));
    deleteAll();
    for (const char* const table : {"PlaybackHistory", "PlayEvent", "Achievement"}) {
        EXPECT_EQ(rowsOnDisk(table), 0U) << table;
    }
    EXPECT_TRUE(environment.histories().empty());
    EXPECT_EQ(history.title(), "Song") << "a loaded object isn't told";
    EXPECT_EQ(environment.defaults->dateForKey("com.oskelvane.Nerinda.dailyRecordDate"),
              std::nullopt);
    EXPECT_EQ(environment.defaults->dateForKey("com.oskelvane.Nerinda.installationDate"),
              environment.at(2));
}

TEST_F(DeleteAllDataTest, aFailedBatchDeleteIsReportedAndTheOthersGoOn) {
    PlaybackHistory history = environment.makeHistory("Song", 1);
    environment.makePlay(history, 5);
    environment.saveMain();
    {
        const auto saboteur =
            SQLiteDatabase::open(environment.storeFile(), SQLiteDatabase::Mode::readWrite);
        ASSERT_TRUE(saboteur.value()->execute("DROP TABLE PlaybackHistory"));
    }
    deleteAll();
    ASSERT_EQ(environment.failures.dataFailures.size(), 1U);
    EXPECT_NE(environment.failures.dataFailures[0].localizedDescription.find("PlaybackHistory"),
              std::string::npos);
    EXPECT_EQ(rowsOnDisk("PlayEvent"), 0U);
    EXPECT_EQ(finishes, 4);
}

TEST_F(DeleteAllDataTest, aScanThatGoesOnMeanwhileLeavesNoPlayWithoutItsSong) {
    const NSManagedObjectID old = environment.makeHistory("Song", 1).objectID();
    environment.saveMain();
    const auto scan = environment.data->privateContext();
    scan->performBlockAndWait([&] {
        PlaybackHistory found(*scan->existingObjectWithID(old));
        PlayEvent::insert(found, RecordingEnvironment::at(5), false);
        PlaybackHistory made = PlaybackHistory::insert(*scan);
        made.setTitle("New");
        PlayEvent::insert(made, RecordingEnvironment::at(6), false);
    });
    deleteAll();
    scan->performBlockAndWait([&] { EXPECT_TRUE(scan->save()); });
    environment.saveMain();
    EXPECT_EQ(environment.plays(), (std::vector<RecordedPlay>{{6, false, "New"}}));
    EXPECT_EQ(rowsOnDisk("PlayEvent"), 1U);
}

TEST_F(DeleteAllDataTest, aPlayThatWasNotSavedGoesWithItsSong) {
    PlaybackHistory history = environment.makeHistory("Song", 1);
    environment.saveMain();
    environment.makePlay(history, 5);
    const PlayEvent ofNoSong = PlayEvent::insert(environment.main());
    deleteAll();
    EXPECT_EQ(environment.main().countForFetchRequest(PlayEvent::fetchRequest()).value(), 1U);
    EXPECT_FALSE(ofNoSong.isDeleted()) << "what nobody had saved stays, as songs would";
    environment.saveMain();
    EXPECT_EQ(rowsOnDisk("PlayEvent"), 1U);
}

TEST_F(DataManagerTest, aStoreThatCannotBeLoadedEndsTheProcess) {
    std::ofstream(environment.storeFile()) << std::string(5000, 'x');
    EXPECT_EQ(environment.data->persistentContainer(), nullptr);
    ASSERT_EQ(environment.failures.endings.size(), 1U);
    EXPECT_NE(environment.failures.endings[0].localizedDescription.find("is not a store"),
              std::string::npos);
}

TEST_F(DataManagerTest, whoWaitsForTheMainSaveIsCalledOnTheMainQueueOnceItIsOnDisk) {
    environment.makeHistory("Song", 1);
    std::size_t calls = 0;
    environment.data->saveMainContext([&] {
        ++calls;
        environment.mainQueue->assertCurrent();
        EXPECT_EQ(rowsOnDisk("PlaybackHistory"), 1U);
    });
    environment.runUntilIdle();
    EXPECT_EQ(calls, 1U);
    environment.data->saveMainContext([&] { ++calls; });
    environment.runUntilIdle();
    EXPECT_EQ(calls, 2U) << "nothing to save is saved";
}

TEST_F(DataManagerTest, aFailedMainSaveEndsTheProcess) {
    environment.makeHistory("Song", 1);
    {
        const auto saboteur =
            SQLiteDatabase::open(environment.storeFile(), SQLiteDatabase::Mode::readWrite);
        ASSERT_TRUE(saboteur.value()->execute("DROP TABLE PlaybackHistory"));
    }
    environment.saveMain();
    EXPECT_EQ(environment.failures.endings.size(), 1U);
    EXPECT_TRUE(environment.failures.dataFailures.empty());
}

TEST_F(DataManagerTest, anyOtherFailedSaveIsReportedOnTheMainQueue) {
    RVCoreDataManager::handle_CoreDataFailure({"no room", "detail"});
    environment.runUntilIdle();
    ASSERT_EQ(environment.failures.dataFailures.size(), 1U);
    EXPECT_EQ(environment.failures.dataFailures[0].localizedDescription, "no room");
    EXPECT_EQ(environment.log.count("Error saving context: no room\ndetail"), 1U);
}

}  // namespace
}  // namespace tavrion
