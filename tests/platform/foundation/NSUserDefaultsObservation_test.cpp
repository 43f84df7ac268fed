#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "platform/foundation/NSUserDefaults.h"
#include "tests/platform/foundation/DefaultsTestFolder.h"
#include "tests/platform/foundation/ManualExecutor.h"

namespace tavrion {
namespace {

using Told = std::vector<std::pair<std::string, Value>>;

NSUserDefaults::Observer into(Told& told) {
    return [&told](const std::string& key, const Value& value) { told.emplace_back(key, value); };
}

class NSUserDefaultsObservation : public test::DefaultsTest {};

TEST_F(NSUserDefaultsObservation, tellsEachNewValueOfItsKeyAndNothingElse) {
    const auto defaults = opened();
    Told told;
    const auto observation = defaults->addObserver("key", nullptr, into(told));
    defaults->setObject("key", 1);
    defaults->setObject("key", 1);
    defaults->setObject("other", 5);
    defaults->setObject("key", "text");
    defaults->removeObject("key");
    defaults->removeObject("key");
    EXPECT_EQ(told, (Told{{"key", Value(1)}, {"key", Value("text")}, {"key", Value()}}));
}

TEST_F(NSUserDefaultsObservation, worksInMemoryToo) {
    const auto defaults = NSUserDefaults::inMemory();
    Told told;
    const auto observation = defaults->addObserver("key", nullptr, into(told));
    defaults->setObject("key", 1);
    defaults->setObject("key", 1);
    EXPECT_EQ(told, (Told{{"key", Value(1)}}));
}

TEST_F(NSUserDefaultsObservation, tellsAtOnceWhatIsStillGathered) {
    const auto defaults = opened();
    Told told;
    const auto observation = defaults->addObserver("key", nullptr, into(told));
    {
        const GatheredDefaultsWrites gathered(*defaults);
        defaults->setObject("key", 1);
        EXPECT_EQ(told.size(), 1u);
    }
    EXPECT_EQ(told, (Told{{"key", Value(1)}}));
}

TEST_F(NSUserDefaultsObservation, tellsWhatCouldNotBeWritten) {
    const auto defaults = opened();
    Told told;
    const auto observation = defaults->addObserver("key", nullptr, into(told));
    std::filesystem::create_directory(folder / "defaults.plist.new");
    defaults->setObject("key", 1);
    std::filesystem::remove(folder / "defaults.plist.new");
    EXPECT_TRUE(defaults->synchronize().ok());
    EXPECT_EQ(told, (Told{{"key", Value(1)}}));
}

TEST_F(NSUserDefaultsObservation, tellsWhatAnotherWriterChangedAtTheNextRead) {
    const auto mine = opened();
    const auto theirs = opened();
    theirs->setObject("gone", 1);
    EXPECT_EQ(mine->integerForKey("gone"), 1);
    Told told;
    const auto a = mine->addObserver("key", nullptr, into(told));
    const auto b = mine->addObserver("gone", nullptr, into(told));
    const auto c = mine->addObserver("same", nullptr, into(told));
    theirs->setObject("key", 1);
    theirs->removeObject("gone");
    EXPECT_TRUE(told.empty());
    EXPECT_EQ(mine->integerForKey("anything"), 0);
    EXPECT_EQ(told, (Told{{"gone", Value()}, {"key", Value(1)}}));
    EXPECT_EQ(mine->integerForKey("key"), 1);
    EXPECT_EQ(told.size(), 2u);
}

TEST_F(NSUserDefaultsObservation, tellsWhatAWriteFindsInTheFile) {
    const auto mine = opened();
    Told told;
    const auto observation = mine->addObserver("key", nullptr, into(told));
    opened()->setObject("key", 1);
    mine->setObject("other", 2);
    EXPECT_EQ(told, (Told{{"key", Value(1)}}));
}

TEST_F(NSUserDefaultsObservation, anOwnValueThatWaitsHidesAnotherWritersValue) {
    const auto mine = opened();
    Told told;
    mine->beginGathering();
    mine->setObject("key", 1);
    const auto observation = mine->addObserver("key", nullptr, into(told));
    opened()->setObject("key", 2);
    EXPECT_EQ(mine->integerForKey("key"), 1);
    mine->endGathering();
    EXPECT_TRUE(told.empty());
    EXPECT_EQ(opened()->integerForKey("key"), 1);
}

TEST_F(NSUserDefaultsObservation, endsWithItsObject) {
    const auto defaults = NSUserDefaults::inMemory();
    Told told;
    {
        auto observation = defaults->addObserver("key", nullptr, into(told));
        auto moved = std::move(observation);
        defaults->setObject("key", 1);
    }
    defaults->setObject("key", 2);
    EXPECT_EQ(told.size(), 1u);
}

TEST_F(NSUserDefaultsObservation, assigningAnotherOneEndsTheFirst) {
    const auto defaults = NSUserDefaults::inMemory();
    Told first;
    Told second;
    auto observation = defaults->addObserver("key", nullptr, into(first));
    observation = defaults->addObserver("key", nullptr, into(second));
    defaults->setObject("key", 1);
    EXPECT_TRUE(first.empty());
    EXPECT_EQ(second.size(), 1u);
    observation = {};
    defaults->setObject("key", 2);
    EXPECT_EQ(second.size(), 1u);
}

TEST_F(NSUserDefaultsObservation, mayOutliveTheDefaults) {
    Told told;
    auto defaults = NSUserDefaults::inMemory();
    const auto observation = defaults->addObserver("key", nullptr, into(told));
    defaults.reset();
    EXPECT_TRUE(told.empty());
}

TEST_F(NSUserDefaultsObservation, runsOnItsQueueAndIsDroppedThereWhenItIsGone) {
    const auto defaults = NSUserDefaults::inMemory();
    test::ManualExecutor queue;
    Told told;
    std::optional<NSUserDefaults::Observation> observation(
        defaults->addObserver("key", &queue, into(told)));
    defaults->setObject("key", 1);
    EXPECT_TRUE(told.empty());
    queue.runAll();
    EXPECT_EQ(told, (Told{{"key", Value(1)}}));
    defaults->setObject("key", 2);
    observation.reset();
    queue.runAll();
    EXPECT_EQ(told.size(), 1u);
}

TEST_F(NSUserDefaultsObservation, mayReadWriteAndEndItselfInsideTheCall) {
    const auto defaults = opened();
    std::optional<NSUserDefaults::Observation> observation;
    int calls = 0;
    observation = defaults->addObserver("key", nullptr, [&](const std::string&, const Value&) {
        ++calls;
        EXPECT_EQ(defaults->integerForKey("key"), 1);
        observation.reset();
        defaults->setObject("key", 2);
        EXPECT_TRUE(defaults->synchronize().ok());
    });
    defaults->setObject("key", 1);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(opened()->integerForKey("key"), 2);
}

TEST_F(NSUserDefaultsObservation, itsDestructorWaitsForTheCallThatIsRunning) {
    const auto defaults = NSUserDefaults::inMemory();
    std::atomic<bool> isInside{false};
    std::atomic<bool> isEnding{false};
    std::atomic<bool> hasReturned{false};
    std::optional<NSUserDefaults::Observation> observation(
        defaults->addObserver("key", nullptr, [&](const std::string&, const Value&) {
            isInside = true;
            while (!isEnding) {
                std::this_thread::yield();
            }
            for (int i = 0; i < 1000; ++i) {
                std::this_thread::yield();
            }
            hasReturned = true;
        }));
    std::thread writer([&] { defaults->setObject("key", 1); });
    while (!isInside) {
        std::this_thread::yield();
    }
    isEnding = true;
    observation.reset();
    EXPECT_TRUE(hasReturned);
    writer.join();
}

TEST_F(NSUserDefaultsObservation, isNeverCalledAfterItsDestructorHasReturned) {
    const auto defaults = NSUserDefaults::inMemory();
    std::atomic<bool> isDone{false};
    std::thread writer([&] {
        for (int i = 0; !isDone; ++i) {
            defaults->setObject("key", i);
        }
    });
    for (int round = 0; round < 200; ++round) {
        // Neither atomic nor there in the next round: the sanitizers see a late call too.
        auto counter = std::make_unique<int>(0);
        {
            const auto observation = defaults->addObserver(
                "key", nullptr,
                [&counted = *counter](const std::string&, const Value&) { ++counted; });
            std::this_thread::yield();
        }
        const int atTheEnd = *counter;
        std::this_thread::yield();
        EXPECT_EQ(*counter, atTheEnd);
    }
    isDone = true;
    writer.join();
}

}  // namespace
}  // namespace tavrion
