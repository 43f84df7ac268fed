#include "platform/foundation/NSNotificationCenter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <optional>
#include <thread>
#include <vector>

#include "tests/platform/foundation/ManualExecutor.h"

namespace tavrion {
namespace {

using Observation = NSNotificationCenter::Observation;

TEST(NSNotificationCenter, tellsBlocksOfThatNameInTheOrderOfRegistration) {
    NSNotificationCenter centre;
    std::vector<int> told;
    const auto first = centre.addObserver("saved", nullptr, nullptr,
                                          [&](const NSNotification&) { told.push_back(1); });
    const auto other = centre.addObserver("other", nullptr, nullptr,
                                          [&](const NSNotification&) { told.push_back(9); });
    const auto second = centre.addObserver("saved", nullptr, nullptr,
                                           [&](const NSNotification&) { told.push_back(2); });
    centre.postNotificationName("saved");
    EXPECT_EQ(told, (std::vector<int>{1, 2}));
    EXPECT_EQ(centre.observerCount("saved"), 2U);
    EXPECT_EQ(centre.observerCount("other"), 1U);
    EXPECT_EQ(centre.observerCount("nothing"), 0U);
}

TEST(NSNotificationCenter, aBlockForOneObjectHearsOfThatObjectOnly) {
    NSNotificationCenter centre;
    const int here = 0;
    const int there = 0;
    int count = 0;
    int countOfAll = 0;
    const auto one =
        centre.addObserver("saved", &here, nullptr, [&](const NSNotification&) { count += 1; });
    const auto all = centre.addObserver("saved", nullptr, nullptr,
                                        [&](const NSNotification&) { countOfAll += 1; });
    centre.postNotification({"saved", &here, {}});
    centre.postNotification({"saved", &there, {}});
    centre.postNotificationName("saved");
    EXPECT_EQ(count, 1);
    EXPECT_EQ(countOfAll, 3);
}

TEST(NSNotificationCenter, carriesValuesOfAnyType) {
    const NSNotification notification{"progress", nullptr, {{"done", 0.5}}};
    ASSERT_NE(notification.info<double>("done"), nullptr);
    EXPECT_EQ(*notification.info<double>("done"), 0.5);
    EXPECT_EQ(notification.info<int>("done"), nullptr);
    EXPECT_EQ(notification.info<double>("missing"), nullptr);
}

TEST(NSNotificationCenter, anObservationEndsWithItsLife) {
    NSNotificationCenter centre;
    int count = 0;
    const auto block = [&](const NSNotification&) { count += 1; };
    {
        Observation observation = centre.addObserver("saved", nullptr, nullptr, block);
        const Observation moved = std::move(observation);
        centre.postNotificationName("saved");
    }
    centre.postNotificationName("saved");
    EXPECT_EQ(count, 1);
    EXPECT_EQ(centre.observerCount("saved"), 0U);
}

TEST(NSNotificationCenter, assigningEndsTheFormerObservation) {
    NSNotificationCenter centre;
    Observation observation =
        centre.addObserver("first", nullptr, nullptr, [](const NSNotification&) {});
    observation = centre.addObserver("second", nullptr, nullptr, [](const NSNotification&) {});
    EXPECT_EQ(centre.observerCount("first"), 0U);
    EXPECT_EQ(centre.observerCount("second"), 1U);
    observation = Observation();
    EXPECT_EQ(centre.observerCount("second"), 0U);
}

TEST(NSNotificationCenter, anObservationMayOutliveTheCentre) {
    Observation observation;
    {
        NSNotificationCenter centre;
        observation = centre.addObserver("saved", nullptr, nullptr, [](const NSNotification&) {});
    }
    observation = Observation();
}

TEST(NSNotificationCenter, aNamedQueueRunsTheBlockLater) {
    NSNotificationCenter centre;
    test::ManualExecutor queue;
    double heard = 0;
    const auto observation = centre.addObserver(
        "progress", nullptr, &queue,
        [&](const NSNotification& notification) { heard = *notification.info<double>("done"); });
    centre.postNotification({"progress", nullptr, {{"done", 0.25}}});
    EXPECT_EQ(heard, 0);
    queue.runAll();
    EXPECT_EQ(heard, 0.25);
}

TEST(NSNotificationCenter, workThatWaitsOnAQueueIsDroppedWithItsObservation) {
    NSNotificationCenter centre;
    test::ManualExecutor queue;
    const auto held = std::make_shared<int>(0);
    {
        const auto observation = centre.addObserver("saved", nullptr, &queue,
                                                    [held](const NSNotification&) { *held += 1; });
        centre.postNotificationName("saved");
    }
    EXPECT_EQ(held.use_count(), 1) << "what the block held is let go at once";
    ASSERT_EQ(queue.waitingCount(), 1U);
    queue.runAll();
    EXPECT_EQ(*held, 0);
}

TEST(NSNotificationCenter, aBlockMayPostAndObserve) {
    NSNotificationCenter centre;
    std::vector<std::string> told;
    Observation late;
    const auto inner = centre.addObserver("inner", nullptr, nullptr,
                                          [&](const NSNotification&) { told.push_back("inner"); });
    const auto outer = centre.addObserver("outer", nullptr, nullptr, [&](const NSNotification&) {
        late = centre.addObserver("outer", nullptr, nullptr,
                                  [&](const NSNotification&) { told.push_back("late"); });
        centre.postNotificationName("inner");
    });
    centre.postNotificationName("outer");
    EXPECT_EQ(told, std::vector<std::string>{"inner"});
}

TEST(NSNotificationCenter, aBlockMayEndItsOwnAndALaterObservation) {
    NSNotificationCenter centre;
    int ownCount = 0;
    int laterCount = 0;
    std::optional<Observation> own;
    std::optional<Observation> later;
    own = centre.addObserver("saved", nullptr, nullptr, [&](const NSNotification&) {
        ownCount += 1;
        later.reset();
        own.reset();
    });
    later = centre.addObserver("saved", nullptr, nullptr,
                               [&](const NSNotification&) { laterCount += 1; });
    centre.postNotificationName("saved");
    centre.postNotificationName("saved");
    EXPECT_EQ(ownCount, 1);
    EXPECT_EQ(laterCount, 0);
}

TEST(NSNotificationCenter, theEndOfAnObservationWaitsForItsRunningBlock) {
    NSNotificationCenter centre;
    std::promise<void> started;
    std::promise<void> mayEnd;
    std::atomic<bool> ended = false;
    std::optional<Observation> observation =
        centre.addObserver("saved", nullptr, nullptr, [&](const NSNotification&) {
            started.set_value();
            mayEnd.get_future().wait();
            ended = true;
        });
    std::thread poster([&] { centre.postNotificationName("saved"); });
    started.get_future().wait();
    std::atomic<bool> endedBefore = false;
    std::thread remover([&] {
        observation.reset();
        endedBefore = ended.load();
    });
    while (centre.observerCount("saved") != 0) {
        std::this_thread::yield();  // the remover has begun; it must now wait for the block
    }
    mayEnd.set_value();
    remover.join();
    poster.join();
    EXPECT_TRUE(endedBefore);
}

/// Blocks write what their Observation guards without a lock of their own: a block that ran on
/// would be a data race.
TEST(NSNotificationCenter, noBlockRunsOnAfterItsObservationWhileOthersPost) {
    NSNotificationCenter centre;
    std::atomic<bool> isOver = false;
    std::vector<std::thread> posters;
    for (int i = 0; i < 2; ++i) {
        posters.emplace_back([&] {
            while (!isOver) {
                centre.postNotificationName("saved");
                std::this_thread::yield();
            }
        });
    }
    for (int round = 0; round < 300; ++round) {
        Mutex mutex;
        auto guarded = std::make_unique<int>(0);
        {
            const auto observation =
                centre.addObserver("saved", nullptr, nullptr, [&](const NSNotification&) {
                    const MutexLock lock(mutex);
                    *guarded += 1;
                });
            for (bool isHeard = false; !isHeard;) {
                std::this_thread::yield();
                const MutexLock lock(mutex);
                isHeard = *guarded > 0;
            }
        }
        guarded.reset();
    }
    isOver = true;
    for (std::thread& poster : posters) {
        poster.join();
    }
}

TEST(NSNotificationCenter, workOfANamedQueueEndsWithItsObservationWhileTheQueueRuns) {
    NSNotificationCenter centre;
    test::ManualExecutor queue;
    std::atomic<bool> isOver = false;
    std::thread poster([&] {
        while (!isOver) {
            centre.postNotificationName("saved");
            std::this_thread::yield();
        }
    });
    std::thread runner([&] {
        while (!isOver) {
            queue.runAll();
            std::this_thread::yield();
        }
    });
    for (int round = 0; round < 300; ++round) {
        std::atomic<bool> isHeard = false;
        int guarded = 0;
        {
            const auto observation =
                centre.addObserver("saved", nullptr, &queue, [&](const NSNotification&) {
                    guarded += 1;
                    isHeard = true;
                });
            while (!isHeard) {
                std::this_thread::yield();
            }
        }
        guarded = 0;
    }
    isOver = true;
    poster.join();
    runner.join();
    EXPECT_EQ(centre.observerCount("saved"), 0U);
}

TEST(NSNotificationCenter, theDefaultCentreIsThePluggedOne) {
    NSNotificationCenter centre;
    const Port<NSNotificationCenter>::Plug plug(centre);
    EXPECT_EQ(&NSNotificationCenter::defaultCenter(), &centre);
}

}  // namespace
}  // namespace tavrion
