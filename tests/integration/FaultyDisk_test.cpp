// A disk that fails under a scan's main save: at each of its writes, syncs and truncations in turn,
// with a full disk and with a broken one, once and for good.

#include "platform/sqlite/testing/FaultyDisk.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <set>

#include "platform/foundation/NSLog.h"
#include "recording/RVPlaybackHistoryManager.h"
#include "tests/support/ProgramRun.h"
#include "tests/support/RecordingEnvironment.h"
#include "tests/support/TestFolder.h"

namespace tavrion {
namespace {

namespace fs = std::filesystem;

struct Disaster {
    DiskError error = DiskError::noSpace;
    bool forGood = false;
};

class FaultyDiskTest : public testing::TestWithParam<Disaster> {
  protected:
    static constexpr double noon = 794059200;
    static constexpr int songCount = 60;

    /// Every song once, and in the second scan some twice more. Each play has an instant of its
    /// own.
    static std::vector<TestSong> library(bool later) {
        std::vector<TestSong> songs;
        for (int i = 0; i < songCount; ++i) {
            const bool played = later && i % 3 == 0;
            songs.push_back({.title = "Song " + std::to_string(i),
                             .duration = 100.0 + i,
                             .playCount = played ? 3U : 1U,
                             .lastPlayed = RecordingEnvironment::at(noon - (later ? 0 : 5000) +
                                                                    (played ? 60 : 0) + i * 1.25)});
        }
        return songs;
    }
    static constexpr std::size_t playsBefore = songCount;
    static constexpr std::size_t playsAfter = songCount + 2 * (songCount / 3);

    void firstScan() {
        environment = std::make_unique<RecordingEnvironment>(RecordingEnvironment::at(noon - 1));
        environment->failures.whenEnding = [this] { keepFiles(); };
        environment->library.publish(library(false));
        ASSERT_TRUE(environment->scan());
        scanDate = storedScanDate();
        ASSERT_TRUE(scanDate.has_value());
        environment->clock.set(RecordingEnvironment::at(noon + 3600));
    }
    std::optional<NSDate> storedScanDate() const {
        return environment->defaults->dateForKey(ScanDefaults::playbackHistoryScanDate);
    }
    fs::path keptStore() const { return kept.path() / "Nerinda.sqlite"; }
    /// What the process leaves behind when it ends now. The index of the log is made again.
    void keepFiles() {
        for (const char* const ending : {"", "-wal"}) {
            const fs::path file = environment->storeFile().string() + ending;
            if (fs::exists(file)) {
                fs::copy_file(file, keptStore().string() + ending,
                              fs::copy_options::overwrite_existing);
            }
        }
    }
    /// Closes the store, which brings the log into the file, as far as the disk lets it.
    void closeStore() { environment->wiring.closeStore(); }
    std::size_t countOfFiles() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(kept.path()), fs::directory_iterator()));
    }
    void dropKeptFiles() const {
        for (const auto& entry : fs::directory_iterator(kept.path())) {
            fs::remove(entry.path());
        }
    }
    void secondScanFailingAfter(std::size_t operations);
    void expectFailureTold();
    void expectKeptFileWhole();
    void expectLaterScanRecordsTheRest();

    TestFolder kept;
    FaultyDisk disk;
    std::unique_ptr<RecordingEnvironment> environment;
    std::optional<NSDate> scanDate;
    bool isSaved = false;
    std::size_t playsKept = 0;
};

void FaultyDiskTest::secondScanFailingAfter(std::size_t operations) {
    environment->library.publish(library(true));
    disk.failAfter(operations, GetParam().error, GetParam().forGood);
    isSaved = environment->scan();
    if (!isSaved) {
        expectFailureTold();
    } else {
        // The plays were reported as saved; now only the log could fail to reach the file.
        closeStore();
        keepFiles();
    }
    disk.repair();
    environment.reset();
}

void FaultyDiskTest::expectFailureTold() {
    ASSERT_GE(environment->failures.endings.size(), 1U);
    const NSError& error = environment->failures.endings.front();
    const std::string& line = error.localizedDescription;
    EXPECT_TRUE(line.starts_with(environment->storeFile().string() + ": ")) << line;
    EXPECT_NE(line.find("; check the disk, its free space"), std::string::npos) << line;
    EXPECT_EQ(line.find('\n'), std::string::npos) << line;
    EXPECT_GE(environment->log.countBeginning("Unresolved error " + line), 1U);
    EXPECT_TRUE(environment->failures.dataFailures.empty());
    EXPECT_EQ(storedScanDate(), scanDate) << "the next scan has the same span to look at";
}

void FaultyDiskTest::expectKeptFileWhole() {
    const auto database = SQLiteDatabase::open(keptStore(), SQLiteDatabase::Mode::readWrite);
    const auto found = database.value()->quickCheck();
    ASSERT_TRUE(found) << found.error().localizedDescription;
    EXPECT_EQ(found.value(), std::nullopt);
    auto plays = database.value()->prepare("SELECT count(*) FROM PlayEvent");
    ASSERT_TRUE(plays.value().step().value());
    playsKept = static_cast<std::size_t>(plays.value().integer(0));
    auto counts = database.value()->prepare("SELECT sum(playCount) FROM PlaybackHistory");
    ASSERT_TRUE(counts.value().step().value());
    EXPECT_EQ(static_cast<std::size_t>(counts.value().integer(0)), playsKept)
        << "all of a save or nothing";
    if (isSaved) {
        EXPECT_EQ(playsKept, playsAfter);
    } else {
        EXPECT_TRUE(playsKept == playsBefore || playsKept == playsAfter) << playsKept;
    }
}

void FaultyDiskTest::expectLaterScanRecordsTheRest() {
    environment = std::make_unique<RecordingEnvironment>(RecordingEnvironment::at(noon + 7200));
    for (const auto& entry : fs::directory_iterator(kept.path())) {
        fs::copy_file(entry.path(), environment->directory_ / entry.path().filename());
    }
    environment->defaults->setObject(ScanDefaults::playbackHistoryScanDate, *scanDate);
    environment->library.publish(library(true));
    ASSERT_TRUE(environment->scan());
    std::map<std::string, std::size_t> playsOf;
    std::set<double> instants;
    for (const RecordedPlay& play : environment->plays()) {
        ++playsOf[play.title];
        EXPECT_TRUE(instants.insert(play.seconds).second) << play.title << " has a play twice";
    }
    EXPECT_EQ(instants.size(), playsAfter);
    for (const TestSong& song : library(true)) {
        EXPECT_EQ(playsOf[song.title], song.playCount) << song.title;
    }
    environment.reset();
}

TEST_P(FaultyDiskTest, aScanIsSavedWholeOrReportedAndMadeUpForLater) {
    std::size_t failures = 0;
    std::set<std::string> places;
    for (std::size_t operations = 0;; ++operations) {
        SCOPED_TRACE(std::to_string(operations) + " changes of the disk succeed");
        dropKeptFiles();
        ASSERT_NO_FATAL_FAILURE(firstScan());
        ASSERT_NO_FATAL_FAILURE(secondScanFailingAfter(operations));
        ASSERT_NO_FATAL_FAILURE(expectKeptFileWhole());
        if (!disk.hasFailed()) {
            EXPECT_TRUE(isSaved);
            std::printf("%zu places: %zu saves failed\n", operations, failures);
            break;
        }
        places.insert(disk.failedOperation());
        failures += isSaved ? 0 : 1;
        ASSERT_NO_FATAL_FAILURE(expectLaterScanRecordsTheRest());
    }
    EXPECT_GT(failures, 0U);
    for (const char* const place : {"write Nerinda.sqlite-wal", "sync Nerinda.sqlite-wal",
                                    "write Nerinda.sqlite", "sync Nerinda.sqlite"}) {
        EXPECT_TRUE(places.contains(place)) << place << " never failed";
    }
}

TEST_P(FaultyDiskTest, aNewStoreIsMadeWholeOrNotAtAll) {
    std::size_t failures = 0;
    for (std::size_t operations = 0;; ++operations) {
        SCOPED_TRACE(std::to_string(operations) + " changes of the disk succeed");
        dropKeptFiles();
        disk.failAfter(operations, GetParam().error, GetParam().forGood);
        std::string told;
        {
            const auto made =
                NSPersistentStore::open(keptStore(), nerindaModel(), nerindaStoreFormat());
            told = made ? "" : made.error().localizedDescription;
        }
        disk.repair();
        if (!disk.hasFailed()) {
            EXPECT_EQ(told, "");
            constexpr std::size_t writeVersion = 18;
            EXPECT_EQ(contentOfFile(keptStore())[writeVersion], '\2') << "it keeps a log";
            break;
        }
        if (!told.empty()) {
            ++failures;
            EXPECT_TRUE(told.starts_with(keptStore().string() + ": the store can't be")) << told;
            EXPECT_NE(told.find("; check the d"), std::string::npos) << told;
            EXPECT_EQ(told.find('\n'), std::string::npos) << told;
        }
        const auto again =
            NSPersistentStore::open(keptStore(), nerindaModel(), nerindaStoreFormat());
        ASSERT_TRUE(again) << disk.failedOperation() << ": " << again.error().localizedDescription;
    }
    EXPECT_GT(failures, 0U);
}

TEST_P(FaultyDiskTest, aSafetyCopyIsWholeOrNotThere) {
    ASSERT_NO_FATAL_FAILURE(firstScan());
    const auto store = environment->data->persistentContainer()->persistentStore();
    const std::size_t filesBefore = countOfFiles();
    std::size_t failures = 0;
    for (std::size_t operations = 0;; ++operations) {
        SCOPED_TRACE(std::to_string(operations) + " changes of the disk succeed");
        dropKeptFiles();
        disk.failAfter(operations, GetParam().error, GetParam().forGood);
        const Result<void> copied = store->copyTo(keptStore());
        disk.repair();
        EXPECT_EQ(copied.ok(), fs::exists(keptStore()));
        EXPECT_EQ(countOfFiles(), filesBefore + (copied ? 1 : 0)) << "a draft was left";
        if (copied) {
            isSaved = false;
            ASSERT_NO_FATAL_FAILURE(expectKeptFileWhole());
            EXPECT_EQ(playsKept, playsBefore);
        }
        if (!disk.hasFailed()) {
            break;
        }
        failures += copied ? 0 : 1;
    }
    EXPECT_GT(failures, 0U);
    environment.reset();
}

INSTANTIATE_TEST_SUITE_P(Disasters, FaultyDiskTest,
                         testing::Values(Disaster{DiskError::noSpace, false},
                                         Disaster{DiskError::noSpace, true},
                                         Disaster{DiskError::inputOutput, false},
                                         Disaster{DiskError::inputOutput, true}),
                         [](const auto& parameter) {
                             return std::string(parameter.param.error == DiskError::noSpace
                                                    ? "noSpace"
                                                    : "inputOutput") +
                                    (parameter.param.forGood ? "ForGood" : "Once");
                         });

}  // namespace
}  // namespace tavrion
