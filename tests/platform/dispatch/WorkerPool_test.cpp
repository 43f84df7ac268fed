#include "platform/dispatch/WorkerPool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <latch>
#include <memory>

namespace tavrion {
namespace {

// The latches are shared with the work: it may still be leaving them when the test ends.

TEST(WorkerPoolTest, runsEveryPieceOnce) {
    constexpr int pieces = 500;
    const auto ran = std::make_shared<std::atomic<int>>(0);
    const auto all = std::make_shared<std::latch>(pieces);
    for (int i = 0; i < pieces; ++i) {
        WorkerPool::shared().run([ran, all] {
            ++*ran;
            all->count_down();
        });
    }
    all->wait();
    EXPECT_EQ(*ran, pieces);
}

TEST(WorkerPoolTest, workThatWaitsForLaterWorkDoesNotStarveIt) {
    constexpr int pieces = 24;
    const auto allBegan = std::make_shared<std::latch>(pieces);
    const auto allEnded = std::make_shared<std::latch>(pieces);
    for (int i = 0; i < pieces; ++i) {
        WorkerPool::shared().run([allBegan, allEnded] {
            allBegan->arrive_and_wait();
            allEnded->count_down();
        });
    }
    allEnded->wait();
    EXPECT_TRUE(allBegan->try_wait());
}

TEST(WorkerPoolDeathTest, theProcessMayEndFromAWorkerWhileAnotherWaits) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::latch began(1);
            std::latch never(1);
            WorkerPool::shared().run([&] {
                began.count_down();
                never.wait();
            });
            began.wait();
            WorkerPool::shared().run([] { std::exit(3); });
            never.wait();
        },
        ::testing::ExitedWithCode(3), "");
}

}  // namespace
}  // namespace tavrion
