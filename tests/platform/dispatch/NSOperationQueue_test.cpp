#include "platform/dispatch/NSOperationQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <latch>
#include <memory>
#include <numeric>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/dispatch/DispatchQueue.h"
#include "tests/platform/dispatch/DispatchTest.h"

namespace tavrion {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::shared_ptr<NSBlockOperation> operationOf(Work block) {
    auto operation = std::make_shared<NSBlockOperation>();
    operation->addExecutionBlock(std::move(block));
    return operation;
}

class NSOperationQueueTest : public test::DispatchTest {
  protected:
    NSOperationQueue operations;
};

TEST_F(NSOperationQueueTest, oneAtATimeKeepsTheOrder) {
    operations.setMaxConcurrentOperationCount(1);
    std::vector<int> order;
    for (int i = 0; i < 500; ++i) {
        operations.addOperation(operationOf([&order, i] { order.push_back(i); }));
    }
    mainQueue->runUntilIdle();
    std::vector<int> expected(500);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(order, expected);
}

TEST_F(NSOperationQueueTest, withoutABoundOperationsRunInParallel) {
    std::latch together(6);
    for (int i = 0; i < 6; ++i) {
        operations.addOperation(operationOf([&] { together.arrive_and_wait(); }));
    }
    mainQueue->runUntilIdle();
    EXPECT_TRUE(together.try_wait());
}

TEST_F(NSOperationQueueTest, runsNoMoreThanItsBoundAndNoFewer) {
    operations.setMaxConcurrentOperationCount(2);
    std::latch pair(2);
    std::atomic<int> inside{0};
    std::atomic<bool> exceeded{false};
    std::atomic<int> ran{0};
    for (int i = 0; i < 50; ++i) {
        operations.addOperation(operationOf([&, i] {
            exceeded = exceeded || ++inside > 2;
            if (i < 2) {
                pair.arrive_and_wait();
            }
            ++ran;
            --inside;
        }));
    }
    mainQueue->runUntilIdle();
    EXPECT_FALSE(exceeded);
    EXPECT_EQ(ran, 50);
}

TEST_F(NSOperationQueueTest, aRaisedBoundStartsWaitingOperations) {
    operations.setMaxConcurrentOperationCount(1);
    std::latch together(2);
    operations.addOperation(operationOf([&] { together.arrive_and_wait(); }));
    operations.addOperation(operationOf([&] { together.arrive_and_wait(); }));
    operations.setMaxConcurrentOperationCount(2);
    mainQueue->runUntilIdle();
    EXPECT_TRUE(together.try_wait());
}

TEST_F(NSOperationQueueTest, countsOperationsThatWaitOrRun) {
    operations.setMaxConcurrentOperationCount(1);
    EXPECT_EQ(operations.operationCount(), 0U);
    std::latch began(1);
    std::latch go(1);
    std::atomic<std::size_t> inTheLast{0};
    operations.addOperation(operationOf([&] {
        began.count_down();
        go.wait();
    }));
    operations.addOperation(operationOf([&] { inTheLast = operations.operationCount(); }));
    began.wait();
    EXPECT_EQ(operations.operationCount(), 2U);
    go.count_down();
    mainQueue->runUntilIdle();
    EXPECT_EQ(inTheLast, 1U);
    EXPECT_EQ(operations.operationCount(), 0U);
}

TEST_F(NSOperationQueueTest, runsTheBlocksOfAnOperationInOrder) {
    std::vector<std::string> order;
    const auto operation = std::make_shared<NSBlockOperation>();
    operation->addExecutionBlock([&] { order.push_back("first"); });
    operation->addExecutionBlock([&] { order.push_back("second"); });
    operations.addOperation(operation);
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("first", "second"));
    EXPECT_FALSE(operation->isCancelled());
}

TEST_F(NSOperationQueueTest, aCancelledOperationRunsNothing) {
    NSOperationQueue onMain(*mainQueue);
    std::vector<std::string> order;
    const auto operation = operationOf([&] { order.push_back("cancelled"); });
    onMain.addOperation(operation);
    onMain.addOperation(operationOf([&] { order.push_back("other"); }));
    operation->cancel();
    EXPECT_TRUE(operation->isCancelled());
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("other"));
    EXPECT_EQ(onMain.operationCount(), 0U);
}

TEST_F(NSOperationQueueTest, cancelledWhileItRunsItBeginsNoFurtherBlock) {
    std::vector<std::string> order;
    const auto operation = std::make_shared<NSBlockOperation>();
    operation->addExecutionBlock([&, running = operation.get()] {
        running->cancel();
        order.push_back("first");
    });
    operation->addExecutionBlock([&] { order.push_back("second"); });
    operations.addOperation(operation);
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("first"));
}

TEST_F(NSOperationQueueTest, anOperationIsGoneOnceItRan) {
    NSOperationQueue onMain(*mainQueue);
    auto operation = operationOf([] {});
    const std::weak_ptr<NSBlockOperation> watched = operation;
    onMain.addOperation(std::move(operation));
    EXPECT_FALSE(watched.expired());
    mainQueue->runUntilIdle();
    EXPECT_TRUE(watched.expired());
}

TEST_F(NSOperationQueueTest, anOperationThatIsNotCountedIsGone) {
    for (int i = 0; i < 200; ++i) {
        auto operation = operationOf([] {});
        const std::weak_ptr<NSBlockOperation> watched = operation;
        operations.addOperation(std::move(operation));
        while (operations.operationCount() != 0) {
            std::this_thread::yield();
        }
        ASSERT_TRUE(watched.expired());
    }
}

TEST_F(NSOperationQueueTest, anOperationThatItsBlockOwnsIsGoneOnceItRan) {
    auto operation = std::make_shared<NSBlockOperation>();
    const std::weak_ptr<NSBlockOperation> watched = operation;
    operation->addExecutionBlock([operation] { EXPECT_FALSE(operation->isCancelled()); });
    operations.addOperation(std::move(operation));
    mainQueue->runUntilIdle();
    EXPECT_TRUE(watched.expired());
}

TEST_F(NSOperationQueueTest, runsOnTheUnderlyingQueueInOrder) {
    const auto queue = DispatchQueue::serial("underlying");
    NSOperationQueue onQueue(*queue);
    onQueue.setMaxConcurrentOperationCount(3);
    std::vector<int> order;
    bool asQueue = true;
    for (int i = 0; i < 300; ++i) {
        onQueue.addOperation(operationOf([&, i] {
            asQueue = asQueue && queue->isCurrent();
            order.push_back(i);
        }));
    }
    mainQueue->runUntilIdle();
    std::vector<int> expected(300);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(order, expected);
    EXPECT_TRUE(asQueue);
}

/// Lets another thread act while the first work is on its way in.
class HookedExecutor final : public Executor {
  public:
    void async(Work work) override {
        if (const auto hook = std::exchange(onFirst, {})) {
            std::thread(hook).join();
        }
        taken.push_back(std::move(work));
    }
    bool isCurrent() const override { return false; }

    std::function<void()> onFirst;
    std::vector<Work> taken;
};

TEST_F(NSOperationQueueTest, anOperationAddedMeanwhileDoesNotOvertake) {
    HookedExecutor executor;
    NSOperationQueue onExecutor(executor);
    std::vector<std::string> order;
    executor.onFirst = [&] {
        onExecutor.addOperation(operationOf([&] { order.push_back("second"); }));
    };
    onExecutor.addOperation(operationOf([&] { order.push_back("first"); }));
    ASSERT_EQ(executor.taken.size(), 2U);
    executor.taken[0]();
    executor.taken[1]();
    EXPECT_THAT(order, ElementsAre("first", "second"));
}

TEST_F(NSOperationQueueTest, operationsRunWhenTheQueueObjectIsGone) {
    std::vector<int> order;
    {
        NSOperationQueue shortLived(*mainQueue);
        shortLived.setMaxConcurrentOperationCount(1);
        for (int i = 0; i < 3; ++i) {
            shortLived.addOperation(operationOf([&order, i] { order.push_back(i); }));
        }
        EXPECT_THAT(order, IsEmpty());
    }
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre(0, 1, 2));
}

TEST(NSOperationQueueDeathTest, aBoundOfZeroIsAMistake) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    NSOperationQueue operations;
    EXPECT_DEATH(operations.setMaxConcurrentOperationCount(0), "at least one operation");
}

}  // namespace
}  // namespace tavrion
