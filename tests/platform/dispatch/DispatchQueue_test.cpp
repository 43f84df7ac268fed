#include "platform/dispatch/DispatchQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <latch>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/dispatch/DispatchTest.h"

namespace tavrion {
namespace {

using ::testing::ElementsAre;

class DispatchQueueTest : public test::DispatchTest {
  protected:
    std::shared_ptr<DispatchQueue> queue = DispatchQueue::serial("first");
    std::shared_ptr<DispatchQueue> other = DispatchQueue::serial("second");

    /// Called as the first queue: whether work queued there now waits for the caller.
    bool laterWorkWaits() {
        const auto laterRan = std::make_shared<std::atomic<bool>>(false);
        queue->async([laterRan] { *laterRan = true; });
        // Workers take work in the order of the calls: once this has run, the later work would
        // have begun.
        std::latch reached(1);
        other->async([&] { reached.count_down(); });
        reached.wait();
        other->sync([] {});
        return !*laterRan;
    }
};

TEST_F(DispatchQueueTest, serialRunsInTheOrderOfTheCalls) {
    std::vector<int> order;
    for (int i = 0; i < 1000; ++i) {
        queue->async([&order, i] { order.push_back(i); });
    }
    std::vector<int> expected(1000);
    std::iota(expected.begin(), expected.end(), 0);
    std::vector<int> seen;
    queue->sync([&] { seen = order; });
    EXPECT_EQ(seen, expected);
}

TEST_F(DispatchQueueTest, serialRunsOnePieceAtATime) {
    constexpr int callers = 6;
    constexpr int pieces = 300;
    std::atomic<int> inside{0};
    std::atomic<bool> overlapped{false};
    int total = 0;
    const Work piece = [&] {
        overlapped = overlapped || ++inside != 1;
        ++total;
        --inside;
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < callers; ++i) {
        threads.emplace_back([&, i] {
            for (int j = 0; j < pieces; ++j) {
                (i + j) % 2 == 0 ? queue->async(piece) : queue->sync(piece);
            }
        });
    }
    std::for_each(threads.begin(), threads.end(), [](std::thread& thread) { thread.join(); });
    mainQueue->runUntilIdle();
    EXPECT_FALSE(overlapped);
    EXPECT_EQ(total, callers * pieces);
}

TEST_F(DispatchQueueTest, syncRunsOnTheCallersThread) {
    std::thread::id ranOn;
    queue->async([] {});
    queue->sync([&] { ranOn = std::this_thread::get_id(); });
    EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST_F(DispatchQueueTest, syncRunsAfterWhatWasQueuedBefore) {
    std::vector<std::string> order;
    std::latch go(1);
    queue->async([&] {
        go.wait();
        order.push_back("first");
    });
    queue->async([&] { order.push_back("second"); });
    go.count_down();
    queue->sync([&] {
        order.push_back("sync");
        queue->async([&] { order.push_back("later"); });
    });
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("first", "second", "sync", "later"));
}

TEST_F(DispatchQueueTest, syncHasTheIdleQueueForItself) {
    bool alone = false;
    queue->sync([&] { alone = laterWorkWaits(); });
    EXPECT_TRUE(alone);
}

TEST_F(DispatchQueueTest, syncThatWasLetInHasTheQueueForItself) {
    for (int i = 0; i < 20; ++i) {
        std::latch go(1);
        queue->async([&] { go.wait(); });
        // Late, so that the caller mostly waits to be let in.
        std::thread opener([&] {
            for (int j = 0; j < 200; ++j) {
                std::this_thread::yield();
            }
            go.count_down();
        });
        bool alone = false;
        queue->sync([&] { alone = laterWorkWaits(); });
        opener.join();
        ASSERT_TRUE(alone);
    }
}

TEST_F(DispatchQueueTest, syncGetsItsTurnBeforeWorkQueuedLater) {
    // The work queues itself again until the caller has been let in, which never happens when
    // later work goes first.
    std::atomic<bool> letIn{false};
    std::function<void()> repeat = [&] {
        if (!letIn) {
            queue->async(repeat);
        }
    };
    queue->async(repeat);
    queue->sync([&] { letIn = true; });
    mainQueue->runUntilIdle();
    EXPECT_TRUE(letIn);
}

TEST_F(DispatchQueueTest, syncAsTheQueueItselfRunsAtOnce) {
    std::vector<std::string> order;
    queue->sync([&] {
        queue->async([&] { order.push_back("queued"); });
        queue->sync([&] { order.push_back("inner"); });
        order.push_back("outer");
    });
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("inner", "outer", "queued"));
}

TEST_F(DispatchQueueTest, syncBackToAnOuterQueueRunsAtOnce) {
    bool ran = false;
    queue->async([&] { other->sync([&] { queue->sync([&] { ran = true; }); }); });
    mainQueue->runUntilIdle();
    EXPECT_TRUE(ran);
}

TEST_F(DispatchQueueTest, isCurrentSeesAllQueuesTheCallerRunsAs) {
    EXPECT_FALSE(queue->isCurrent());
    queue->sync([&] {
        EXPECT_TRUE(queue->isCurrent());
        EXPECT_FALSE(other->isCurrent());
        other->sync([&] {
            EXPECT_TRUE(queue->isCurrent());
            EXPECT_TRUE(other->isCurrent());
        });
        EXPECT_TRUE(queue->isCurrent());
        EXPECT_FALSE(other->isCurrent());
    });
    EXPECT_FALSE(queue->isCurrent());
}

TEST_F(DispatchQueueTest, isCurrentHoldsInQueuedWorkOnly) {
    bool asQueue = false;
    bool asOther = true;
    queue->async([&] {
        asQueue = queue->isCurrent();
        asOther = other->isCurrent();
    });
    mainQueue->runUntilIdle();
    EXPECT_TRUE(asQueue);
    EXPECT_FALSE(asOther);
}

TEST_F(DispatchQueueTest, asyncFromInsideRunsAfterwards) {
    std::vector<std::string> order;
    queue->async([&] {
        queue->async([&] { order.push_back("inner"); });
        order.push_back("outer");
    });
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("outer", "inner"));
}

TEST_F(DispatchQueueTest, queuesThatWaitForOthersDoNotStarveThem) {
    constexpr std::size_t count = 40;
    std::vector<std::shared_ptr<DispatchQueue>> queues;
    for (std::size_t i = 0; i <= count; ++i) {
        queues.push_back(DispatchQueue::serial("link"));
    }
    // All queues are busy before any looks at its neighbour; the last neighbour is free.
    std::latch allBegan(count);
    std::atomic<std::size_t> served{0};
    for (std::size_t i = 0; i < count; ++i) {
        queues[i]->async([&, next = queues[i + 1]] {
            allBegan.arrive_and_wait();
            next->sync([&] { ++served; });
        });
    }
    mainQueue->runUntilIdle();
    EXPECT_EQ(served, count);
}

TEST_F(DispatchQueueTest, workKeepsItsQueueAlive) {
    std::latch go(1);
    std::vector<int> order;
    queue->async([&] { go.wait(); });
    for (int i = 0; i < 3; ++i) {
        queue->async([&order, i] { order.push_back(i); });
    }
    queue.reset();
    go.count_down();
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre(0, 1, 2));
}

TEST_F(DispatchQueueTest, syncWorkMayDropTheLastHandle) {
    bool ran = false;
    queue->sync([&] {
        queue.reset();
        ran = true;
    });
    auto concurrent = DispatchQueue::concurrent("dropped");
    concurrent->sync([&] { concurrent.reset(); });
    EXPECT_TRUE(ran);
}

TEST_F(DispatchQueueTest, workIsDestroyedAsTheQueueBeforeTheNext) {
    std::vector<std::string> order;
    std::latch go(1);
    queue->async([&] { go.wait(); });
    std::shared_ptr<int> owned(new int(1), [&](const int* value) {
        order.push_back(queue->isCurrent() ? "destroyed as the queue" : "destroyed elsewhere");
        delete value;
    });
    queue->async([owned] {});
    queue->async([&] { order.push_back("next"); });
    owned.reset();
    go.count_down();
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("destroyed as the queue", "next"));
}

TEST_F(DispatchQueueTest, whatSyncWorkThrowsReachesTheCallerAndTheQueueGoesOn) {
    EXPECT_THROW(queue->sync([] { throw std::runtime_error("refused"); }), std::runtime_error);
    bool ran = false;
    queue->async([&] { ran = true; });
    mainQueue->runUntilIdle();
    EXPECT_TRUE(ran);
}

TEST_F(DispatchQueueTest, concurrentRunsInParallel) {
    const auto concurrent = DispatchQueue::concurrent("parallel");
    std::latch together(8);
    std::atomic<int> ran{0};
    for (int i = 0; i < 8; ++i) {
        concurrent->async([&] {
            together.arrive_and_wait();
            ++ran;
        });
    }
    mainQueue->runUntilIdle();
    EXPECT_EQ(ran, 8);
}

TEST_F(DispatchQueueTest, concurrentRunsNoMoreThanItsBound) {
    const auto concurrent = DispatchQueue::concurrent("bounded");
    constexpr int bound = static_cast<int>(DispatchQueue::maxConcurrentWorkCount);
    std::latch full(bound);
    std::latch go(1);
    std::atomic<int> begun{0};
    for (int i = 0; i < 2 * bound; ++i) {
        concurrent->async([&] {
            if (++begun <= bound) {
                full.count_down();
            }
            go.wait();
        });
    }
    full.wait();
    // Workers take work in the order of the calls: once this has run, more would have begun.
    bool laterRan = false;
    queue->async([&] { mainQueue->async([&] { laterRan = true; }); });
    mainQueue->runUntil([&] { return laterRan; });
    EXPECT_EQ(begun, bound);
    go.count_down();
    mainQueue->runUntilIdle();
    EXPECT_EQ(begun, 2 * bound);
}

TEST_F(DispatchQueueTest, concurrentWorkRunsAsItsQueue) {
    const auto concurrent = DispatchQueue::concurrent("current");
    bool queued = false;
    bool inLine = false;
    std::thread::id ranOn;
    concurrent->async([&] { queued = concurrent->isCurrent(); });
    concurrent->sync([&] {
        inLine = concurrent->isCurrent();
        ranOn = std::this_thread::get_id();
    });
    mainQueue->runUntilIdle();
    EXPECT_TRUE(queued);
    EXPECT_TRUE(inLine);
    EXPECT_EQ(ranOn, std::this_thread::get_id());
    EXPECT_FALSE(concurrent->isCurrent());
}

TEST_F(DispatchQueueTest, concurrentWorkKeepsItsQueueAlive) {
    auto concurrent = DispatchQueue::concurrent("dropped");
    std::latch go(1);
    std::atomic<int> ran{0};
    for (int i = 0; i < 4; ++i) {
        concurrent->async([&] {
            go.wait();
            ++ran;
        });
    }
    concurrent.reset();
    go.count_down();
    mainQueue->runUntilIdle();
    EXPECT_EQ(ran, 4);
}

TEST_F(DispatchQueueTest, keepsItsLabel) {
    EXPECT_EQ(queue->label(), "first");
    EXPECT_EQ(DispatchQueue::concurrent("many")->label(), "many");
}

TEST(DispatchQueueDeathTest, assertCurrentEndsTheProcessElsewhere) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto queue = DispatchQueue::serial("asserted");
    queue->sync([&] { queue->assertCurrent(); });
    EXPECT_DEATH(queue->assertCurrent(), "runs as the queue that it belongs to");
}

}  // namespace
}  // namespace tavrion
