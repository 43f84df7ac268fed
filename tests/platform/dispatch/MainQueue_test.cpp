#include "platform/dispatch/MainQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <latch>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/dispatch/DispatchQueue.h"
#include "tests/platform/dispatch/DispatchTest.h"

namespace tavrion {
namespace {

using ::testing::ElementsAre;

class MainQueueTest : public test::DispatchTest {};

TEST_F(MainQueueTest, runsQueuedWorkInOrderOnItsThread) {
    std::vector<int> order;
    std::vector<bool> onMainThread;
    for (int i = 0; i < 3; ++i) {
        mainQueue->async([&, i, mainThread = std::this_thread::get_id()] {
            order.push_back(i);
            onMainThread.push_back(std::this_thread::get_id() == mainThread);
        });
    }
    EXPECT_THAT(order, ElementsAre());
    EXPECT_EQ(mainQueue->runPending(), 3U);
    EXPECT_THAT(order, ElementsAre(0, 1, 2));
    EXPECT_THAT(onMainThread, ElementsAre(true, true, true));
}

TEST_F(MainQueueTest, runPendingRunsWhatTheWorkQueues) {
    int ran = 0;
    mainQueue->async([&] {
        ++ran;
        mainQueue->async([&] { ++ran; });
    });
    EXPECT_EQ(mainQueue->runPending(), 2U);
    EXPECT_EQ(ran, 2);
    EXPECT_EQ(mainQueue->runPending(), 0U);
}

TEST_F(MainQueueTest, runUntilIdleFollowsWorkThatHopsBetweenQueues) {
    const auto serial = DispatchQueue::serial("serial");
    const auto concurrent = DispatchQueue::concurrent("concurrent");
    int rounds = 0;
    std::function<void()> hop = [&] {
        if (++rounds == 200) {
            return;
        }
        serial->async([&] { concurrent->async([&] { mainQueue->async(hop); }); });
    };
    mainQueue->async(hop);
    mainQueue->runUntilIdle();
    EXPECT_EQ(rounds, 200);
}

TEST_F(MainQueueTest, runUntilIdleWaitsForOtherQueuesThatNeverComeBack) {
    const auto serial = DispatchQueue::serial("serial");
    std::atomic<int> ran{0};
    for (int i = 0; i < 100; ++i) {
        serial->async([&] { ++ran; });
    }
    mainQueue->runUntilIdle();
    EXPECT_EQ(ran, 100);
}

TEST_F(MainQueueTest, syncFromAnotherThreadWaitsForTheRunLoop) {
    std::thread::id ranOn;
    std::atomic<bool> returned{false};
    std::thread caller([&] {
        mainQueue->sync([&] { ranOn = std::this_thread::get_id(); });
        returned = true;
        mainQueue->async([] {});
    });
    mainQueue->runUntil([&] { return returned.load(); });
    caller.join();
    EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST_F(MainQueueTest, syncFromAQueueWaitsForTheRunLoop) {
    std::vector<std::string> order;
    const auto queue = DispatchQueue::serial("caller");
    queue->async([&] {
        mainQueue->sync([&] { order.push_back("main"); });
        order.push_back("queue");
    });
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("main", "queue"));
}

TEST_F(MainQueueTest, syncFromTheMainThreadRunsAtOnce) {
    bool ran = false;
    mainQueue->sync([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST_F(MainQueueTest, whatSyncWorkThrowsReachesTheCaller) {
    std::string caught;
    DispatchQueue::serial("caller")->async([&] {
        try {
            mainQueue->sync([] { throw std::runtime_error("refused"); });
        } catch (const std::runtime_error& error) {
            caught = error.what();
        }
    });
    mainQueue->runUntilIdle();
    EXPECT_EQ(caught, "refused");
}

TEST_F(MainQueueTest, runUntilStopsAtTheConditionAndLeavesTheRest) {
    int ran = 0;
    for (int i = 0; i < 5; ++i) {
        mainQueue->async([&] { ++ran; });
    }
    mainQueue->runUntil([&] { return ran == 2; });
    EXPECT_EQ(ran, 2);
    EXPECT_EQ(mainQueue->runPending(), 3U);
}

TEST_F(MainQueueTest, runUntilSeesWorkOfAnotherQueueWhileMoreIsRunning) {
    const auto busy = DispatchQueue::serial("busy");
    const auto quick = DispatchQueue::serial("quick");
    std::latch stop(1);
    std::atomic<bool> done{false};
    busy->async([&] { stop.wait(); });
    quick->async([&] { done = true; });
    mainQueue->runUntil([&] { return done.load(); });
    stop.count_down();
    mainQueue->runUntilIdle();
}

TEST_F(MainQueueTest, callsTheWakeFunctionOnTheCallersThread) {
    std::vector<std::thread::id> wokenOn;
    mainQueue->setWakeFunction([&] { wokenOn.push_back(std::this_thread::get_id()); });
    mainQueue->async([] {});
    EXPECT_EQ(mainQueue->runPending(), 1U);
    std::thread::id callerThread;
    std::thread caller([&] {
        callerThread = std::this_thread::get_id();
        mainQueue->async([] {});
    });
    caller.join();
    EXPECT_THAT(wokenOn, ElementsAre(std::this_thread::get_id(), callerThread));
    EXPECT_EQ(mainQueue->runPending(), 1U);
}

TEST_F(MainQueueTest, onlyTheMainThreadIsCurrent) {
    EXPECT_TRUE(mainQueue->isCurrent());
    bool onWorker = true;
    DispatchQueue::serial("elsewhere")->async([&] { onWorker = mainQueue->isCurrent(); });
    mainQueue->runUntilIdle();
    EXPECT_FALSE(onWorker);
}

TEST_F(MainQueueTest, keepsTheLongestTurn) {
    mainQueue->async([] {
        const auto start = std::chrono::steady_clock::now();
        while (std::chrono::steady_clock::now() - start < std::chrono::milliseconds(2)) {
        }
    });
    mainQueue->async([] {});
    mainQueue->runPending();
    EXPECT_GE(mainQueue->longestTurn(), 0.002);
}

TEST_F(MainQueueTest, mayEndAsSoonAsItsWorkHasRun) {
    for (int i = 0; i < 200; ++i) {
        mainQueue = nullptr;
        mainQueue = MainQueue::make();
        bool ran = false;
        std::thread caller([&ran, queue = mainQueue.get()] { queue->async([&] { ran = true; }); });
        mainQueue->runUntil([&] { return ran; });
        mainQueue = nullptr;
        caller.join();
        ASSERT_TRUE(ran);
    }
    mainQueue = MainQueue::make();
}

TEST_F(MainQueueTest, hearsOfOtherQueuesAlsoWhenAnotherMainQueueHasGone) {
    MainQueue::make().reset();
    const auto queue = DispatchQueue::serial("elsewhere");
    for (int i = 0; i < 100; ++i) {
        std::latch go(1);
        std::atomic<bool> ran{false};
        queue->async([&] {
            go.wait();
            ran = true;
        });
        mainQueue->async([&] { go.count_down(); });
        mainQueue->runUntilIdle();
        ASSERT_TRUE(ran);
    }
}

TEST_F(MainQueueTest, runUntilGoesOnWatchingWhenAnInnerOneHasEnded) {
    const auto busy = DispatchQueue::serial("busy");
    const auto quick = DispatchQueue::serial("quick");
    std::latch stop(1);
    std::latch go(1);
    std::atomic<bool> done{false};
    busy->async([&] { stop.wait(); });
    quick->async([&] {
        go.wait();
        done = true;
    });
    mainQueue->async([&] {
        mainQueue->runUntil([] { return true; });
        go.count_down();
    });
    mainQueue->runUntil([&] { return done.load(); });
    stop.count_down();
    mainQueue->runUntilIdle();
    EXPECT_TRUE(done);
}

TEST_F(MainQueueTest, droppedWorkMayQueueMoreAsItGoes) {
    int left = 4;
    std::function<std::shared_ptr<int>()> makeOwned = [&, queue = mainQueue.get()] {
        return std::shared_ptr<int>(new int(left), [&, queue](const int* value) {
            delete value;
            if (--left > 0) {
                queue->async([owned = makeOwned()] {});
            }
        });
    };
    mainQueue->async([owned = makeOwned()] {});
    mainQueue = nullptr;
    EXPECT_EQ(left, 0);
    mainQueue = MainQueue::make();
}

TEST_F(MainQueueTest, dropsWorkThatNeverRan) {
    auto owned = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = owned;
    mainQueue->async([owned = std::move(owned)] {});
    mainQueue = nullptr;
    EXPECT_TRUE(watched.expired());
    mainQueue = MainQueue::make();
}

TEST(MainQueueDeathTest, runsOnItsThreadOnly) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto mainQueue = MainQueue::make();
    EXPECT_DEATH(std::thread([&] { mainQueue->runPending(); }).join(),
                 "runs as the queue that it belongs to");
}

}  // namespace
}  // namespace tavrion
