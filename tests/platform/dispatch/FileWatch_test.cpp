#include "platform/dispatch/FileWatch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <future>
#include <memory>
#include <optional>
#include <thread>

#include "platform/foundation/FileReplacement.h"
#include "platform/foundation/Mutex.h"
#include "tests/support/TestFolder.h"

namespace tavrion {
namespace {

constexpr double settle = 0.05;

/// Counts calls, and waits for them.
class Calls {
  public:
    void note() {
        const MutexLock lock(mutex_);
        ++count_;
        changed_.notifyAll();
    }
    /// The count when it has come to `wanted`, or what it is after ten seconds.
    int waitFor(int wanted) {
        const MutexLock lock(mutex_);
        for (int round = 0; count_ < wanted && round < 100; ++round) {
            changed_.waitFor(mutex_, 0.1);
        }
        return count_;
    }
    /// The count after long enough for a call that should not come.
    int afterAWhile() {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        const MutexLock lock(mutex_);
        return count_;
    }

  private:
    Mutex mutex_;
    ConditionVariable changed_;
    int count_ TAVRION_GUARDED_BY(mutex_) = 0;
};

class FileWatchTest : public ::testing::Test {
  protected:
    std::filesystem::path file() const { return folder_.path() / "Library.xml"; }
    Observation watch(const std::filesystem::path& path) {
        auto watching = watchFile(
            path, [this] { calls.note(); }, settle);
        EXPECT_TRUE(watching.ok());
        return std::move(watching).value();
    }
    static void replace(const std::filesystem::path& path) {
        ASSERT_FALSE(FileReplacement::replace(path, "content"));
    }

    Calls calls;
    const TestFolder folder_;
};

TEST_F(FileWatchTest, noticesAFileThatIsReplacedMadeAndRemoved) {
    const Observation watching = watch(file());
    replace(file());
    EXPECT_EQ(calls.waitFor(1), 1);
    replace(file());
    EXPECT_EQ(calls.waitFor(2), 2);
    std::filesystem::remove(file());
    EXPECT_EQ(calls.waitFor(3), 3);
}

TEST_F(FileWatchTest, aFileIsReportedOnceItIsWrittenToItsEnd) {
    const Observation watching = watch(file());
    {
        std::ofstream stream(file());
        stream << "half" << std::flush;
        EXPECT_EQ(calls.afterAWhile(), 0) << "still open";
    }
    EXPECT_EQ(calls.waitFor(1), 1);
}

TEST_F(FileWatchTest, changesThatFollowEachOtherAreOne) {
    auto watching = watchFile(
        file(), [this] { calls.note(); }, 0.3);
    for (int i = 0; i < 5; ++i) {
        replace(file());
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_EQ(calls.waitFor(1), 1);
    EXPECT_EQ(calls.afterAWhile(), 1);
}

TEST_F(FileWatchTest, otherFilesAreNoneOfItsBusiness) {
    const Observation watching = watch(file());
    replace(folder_.path() / "Other.xml");
    EXPECT_EQ(calls.afterAWhile(), 0);
}

TEST_F(FileWatchTest, aLinkIsFollowedToItsFile) {
    const auto target = folder_.path() / "elsewhere" / "Real.xml";
    std::filesystem::create_directory(target.parent_path());
    replace(target);
    std::filesystem::create_symlink(target, file());
    const Observation watching = watch(file());
    replace(target);
    EXPECT_EQ(calls.waitFor(1), 1);
}

TEST_F(FileWatchTest, aFolderThatComesBackIsWatchedAgain) {
    const auto folder = folder_.path() / "disk";
    std::filesystem::create_directory(folder);
    const Observation watching = watch(folder / "Library.xml");
    std::filesystem::rename(folder, folder_.path() / "away");
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    replace(folder_.path() / "away" / "Library.xml");
    EXPECT_EQ(calls.afterAWhile(), 0) << "another folder now";
    std::filesystem::rename(folder_.path() / "away", folder);
    EXPECT_EQ(calls.waitFor(1), 1);
    replace(folder / "Library.xml");
    EXPECT_EQ(calls.waitFor(2), 2);
}

TEST_F(FileWatchTest, aFolderThatIsNotThereYetIsWaitedFor) {
    const auto folder = folder_.path() / "later";
    const Observation watching = watch(folder / "Library.xml");
    std::filesystem::create_directory(folder);
    replace(folder / "Library.xml");
    EXPECT_GE(calls.waitFor(1), 1);
}

TEST_F(FileWatchTest, nothingIsCalledAfterItsEnd) {
    Observation watching = watch(file());
    replace(file());
    watching.end();
    EXPECT_EQ(calls.afterAWhile(), 0);
}

TEST_F(FileWatchTest, itsEndWaitsForTheRunningCall) {
    std::promise<void> started;
    std::atomic<bool> hasEnded{false};
    auto watching = watchFile(
        file(),
        [&] {
            started.set_value();
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            hasEnded = true;
        },
        settle);
    replace(file());
    started.get_future().wait();
    watching.value().end();
    EXPECT_TRUE(hasEnded);
}

TEST_F(FileWatchTest, mayBeEndedFromInside) {
    // The watching thread lets go of it when this test may be over already.
    const auto mutex = std::make_shared<Mutex>();
    Observation watching;
    {
        // The call takes the lock too: it comes after the observation is here.
        const MutexLock lock(*mutex);
        watching = std::move(watchFile(
                                 file(),
                                 [&, mutex] {
                                     const MutexLock held(*mutex);
                                     watching.end();
                                     calls.note();
                                 },
                                 settle))
                       .value();
        replace(file());
    }
    EXPECT_EQ(calls.waitFor(1), 1);
    replace(file());
    EXPECT_EQ(calls.afterAWhile(), 1);
}

}  // namespace
}  // namespace tavrion
