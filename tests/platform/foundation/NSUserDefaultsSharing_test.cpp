#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>
#include <vector>

#include "platform/foundation/NSUserDefaults.h"
#include "platform/foundation/PropertyList.h"
#include "tests/platform/foundation/DefaultsTestFolder.h"

namespace tavrion {
namespace {

std::string keyOf(int writer, int number) {
    return "key " + std::to_string(writer) + "." + std::to_string(number);
}

class NSUserDefaultsSharing : public test::DefaultsTest {
  protected:
    /// Runs `body` in a process of its own; it succeeds by returning true.
    template <class Body>
    pid_t startProcess(Body body) {
        const pid_t process = ::fork();
        if (process == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // A test that ends early leaves no writer behind.
            ::_exit(body() ? 0 : 1);
        }
        EXPECT_GT(process, 0);
        return process;
    }
    void expectSuccess(pid_t process) {
        int outcome = 0;
        ASSERT_EQ(::waitpid(process, &outcome, 0), process);
        EXPECT_TRUE(WIFEXITED(outcome) && WEXITSTATUS(outcome) == 0);
    }
    void expectAllKeys(int writers, int numbers) {
        const auto values = opened()->dictionaryRepresentation();
        EXPECT_EQ(values.size(), static_cast<std::size_t>(writers * numbers));
        for (int writer = 0; writer < writers; ++writer) {
            for (int number = 0; number < numbers; ++number) {
                EXPECT_EQ(values.count(keyOf(writer, number)), 1u) << keyOf(writer, number);
            }
        }
    }
};

TEST_F(NSUserDefaultsSharing, aReaderNoticesTheWriteOfAnotherObject) {
    const auto reader = opened();
    const auto writer = opened();
    EXPECT_TRUE(reader->objectForKey("key").isAbsent());
    writer->setObject("key", "one");
    EXPECT_EQ(reader->stringForKey("key"), "one");
    reader->setObject("key", "two");
    EXPECT_EQ(writer->stringForKey("key"), "two");
    writer->removeObject("key");
    EXPECT_TRUE(reader->objectForKey("key").isAbsent());
}

TEST_F(NSUserDefaultsSharing, aReaderNoticesEveryOneOfManyQuickWritesOfTheSameSize) {
    const auto reader = opened();
    const auto first = opened();
    const auto second = opened();
    for (int i = 0; i < 50; ++i) {
        first->setObject("key", i % 10);
        second->setObject("key", (i + 5) % 10);
        ASSERT_EQ(reader->integerForKey("key"), (i + 5) % 10) << i;
    }
}

// Writes may follow each other faster than the clock of the file system ticks, and an inode number
// that became free is given away at once.
TEST_F(NSUserDefaultsSharing, aReaderNoticesAFileOfTheSameSizeAndTime) {
    opened()->setObject("key", 1);
    const auto reader = opened();
    const timespec times[2] = {status().st_atim, status().st_mtim};
    for (int value = 2; value < 6; ++value) {
        const auto other = folder / "other.plist";
        std::ofstream(other, std::ios::binary) << PropertyList::binaryOf({{"key", Value(value)}});
        ASSERT_EQ(::utimensat(AT_FDCWD, other.c_str(), times, 0), 0);
        std::filesystem::rename(other, file);
    }
    EXPECT_EQ(reader->integerForKey("key"), 5);
}

TEST_F(NSUserDefaultsSharing, writersWhoNeverReadKeepEachOthersKeys) {
    const auto first = opened();
    const auto second = opened();
    for (int number = 0; number < 5; ++number) {
        first->setObject(keyOf(0, number), number);
        second->setObject(keyOf(1, number), number);
    }
    expectAllKeys(2, 5);
}

TEST_F(NSUserDefaultsSharing, aGatheringKeepsWhatOthersWriteMeanwhile) {
    const auto gatherer = opened();
    gatherer->setObject(keyOf(0, 0), 0);
    {
        const GatheredDefaultsWrites gathered(*gatherer);
        gatherer->setObject(keyOf(0, 1), 1);
        const auto other = opened();
        other->setObject(keyOf(1, 0), 0);
        other->setObject(keyOf(1, 1), 1);
    }
    expectAllKeys(2, 2);
}

TEST_F(NSUserDefaultsSharing, severalProcessesLoseNothing) {
    constexpr int writers = 5;
    constexpr int numbers = 20;
    std::vector<pid_t> processes;
    processes.reserve(writers);
    for (int writer = 0; writer < writers; ++writer) {
        processes.push_back(startProcess([this, writer] {
            const auto defaults = NSUserDefaults::open(file);
            for (int number = 0; defaults.ok() && number < numbers; ++number) {
                defaults.value()->setObject(keyOf(writer, number), number);
            }
            return defaults.ok() && defaults.value()->synchronize().ok();
        }));
    }
    for (const pid_t process : processes) {
        expectSuccess(process);
    }
    expectAllKeys(writers, numbers);
}

TEST_F(NSUserDefaultsSharing, severalThreadsOnSeveralObjectsLoseNothing) {
    constexpr int writers = 4;
    constexpr int numbers = 20;
    const auto first = opened();
    const auto second = opened();
    std::atomic<bool> done{false};
    std::atomic<int> told{0};
    const auto observation =
        first->addObserver(keyOf(0, 0), nullptr, [&](const std::string&, const Value&) { ++told; });
    std::thread reader([&] {
        while (!done.load()) {
            first->dictionaryRepresentation();
            second->objectForKey(keyOf(0, 0));
        }
    });
    std::vector<std::thread> threads;
    threads.reserve(writers);
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([&, writer] {
            NSUserDefaults& defaults = writer % 2 == 0 ? *first : *second;
            const GatheredDefaultsWrites gathered(defaults);
            for (int number = 0; number < numbers; ++number) {
                defaults.setObject(keyOf(writer, number), number);
                if (number % 5 == 0) {
                    EXPECT_TRUE(defaults.synchronize().ok());
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    done = true;
    reader.join();
    EXPECT_EQ(told.load(), 1);
    expectAllKeys(writers, numbers);
}

TEST_F(NSUserDefaultsSharing, aProcessKilledWhileItWritesLeavesAWholeFile) {
    opened()->setObject("before", std::string(20000, 'x'));
    const pid_t process = startProcess([this] {
        const auto defaults = NSUserDefaults::open(file);
        for (int number = 0; defaults.ok(); ++number) {
            defaults.value()->setObject("key", number);
        }
        return false;
    });
    // Killed in the middle of its writes.
    while (opened()->integerForKey("key") < 3) {
        std::this_thread::yield();
    }
    ASSERT_EQ(::kill(process, SIGKILL), 0);
    int outcome = 0;
    ASSERT_EQ(::waitpid(process, &outcome, 0), process);
    const auto defaults = opened();
    EXPECT_EQ(defaults->stringForKey("before"), std::string(20000, 'x'));
    defaults->setObject("after", 1);
    EXPECT_TRUE(defaults->synchronize().ok());
    EXPECT_EQ(opened()->integerForKey("after"), 1);
}

}  // namespace
}  // namespace tavrion
