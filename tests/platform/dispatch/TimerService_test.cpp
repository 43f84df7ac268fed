#include "platform/dispatch/TimerService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/foundation/Mutex.h"
#include "tests/platform/dispatch/DispatchTest.h"

namespace tavrion {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr double hour = 3600;

class StillTimersTest : public test::DispatchTest {
  protected:
    Work note(std::string what) {
        return [this, what = std::move(what)] { order.push_back(what); };
    }

    TimerService timers{true};
    Port<TimerService>::Plug plug{timers};
    std::vector<std::string> order;
};

TEST_F(StillTimersTest, fireByTimeAndThenInTheOrderOfTheCalls) {
    const auto a = timers.schedule(2, *mainQueue, note("two"));
    const auto b = timers.schedule(1, *mainQueue, note("one"));
    const auto c = timers.schedule(2, *mainQueue, note("two again"));
    const auto d = timers.schedule(-5, *mainQueue, note("at once"));
    const auto e = timers.schedule(0, *mainQueue, note("at once too"));
    const auto f = timers.schedule(std::nan(""), *mainQueue, note("no number"));
    mainQueue->runUntilIdle();
    EXPECT_THAT(order,
                ElementsAre("at once", "at once too", "no number", "one", "two", "two again"));
}

TEST_F(StillTimersTest, fireOnlyWhenTheQueuesAreIdle) {
    const auto timer = timers.schedule(0, *mainQueue, note("timer"));
    const auto queue = DispatchQueue::serial("busy");
    mainQueue->async([&] { queue->async([&] { mainQueue->async(note("work")); }); });
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("work", "timer"));
}

TEST_F(StillTimersTest, chainedTimersCountFromTheTimerBefore) {
    DispatchTimer chained;
    const auto first = timers.schedule(10, *mainQueue, [&] {
        order.push_back("ten");
        chained = timers.schedule(5, *mainQueue, note("fifteen"));
    });
    const auto second = timers.schedule(12, *mainQueue, note("twelve"));
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("ten", "twelve", "fifteen"));
}

TEST_F(StillTimersTest, aTimerMayReplaceItselfWhileItRuns) {
    DispatchTimer timer;
    int rounds = 0;
    std::function<void()> again = [&] {
        if (++rounds < 5) {
            timer = timers.schedule(hour, *mainQueue, again);
        }
    };
    timer = timers.schedule(hour, *mainQueue, again);
    mainQueue->runUntilIdle();
    EXPECT_EQ(rounds, 5);
}

TEST_F(StillTimersTest, runUntilFiresOnlyWhatItsConditionWaitsFor) {
    const auto queue = DispatchQueue::serial("elsewhere");
    const auto first = timers.schedule(1, *queue, note("first"));
    const auto second = timers.schedule(2, *queue, [&] { mainQueue->async(note("second")); });
    const auto third = timers.schedule(3, *mainQueue, note("third"));
    queue->async(note("work"));
    mainQueue->runUntil([&] {
        bool fired = false;
        queue->sync([&] { fired = order == std::vector<std::string>{"work", "first"}; });
        return fired;
    });
    EXPECT_THAT(order, ElementsAre("work", "first"));
    mainQueue->runUntil([&] { return order.back() == "second"; });
    EXPECT_THAT(order, ElementsAre("work", "first", "second"));
    EXPECT_TRUE(timers.isAwaiting());
    mainQueue->runUntil([&] { return order.back() == "third"; });
    EXPECT_FALSE(timers.isAwaiting());
}

TEST_F(StillTimersTest, fireOnTheQueueTheyWereGiven) {
    const auto queue = DispatchQueue::serial("given");
    bool asQueue = false;
    const auto timer = timers.schedule(1, *queue, [&] { asQueue = queue->isCurrent(); });
    mainQueue->runUntilIdle();
    EXPECT_TRUE(asQueue);
}

TEST_F(StillTimersTest, cancelledOnesDoNotFire) {
    auto cancelled = timers.schedule(1, *mainQueue, note("cancelled"));
    { const auto dropped = timers.schedule(1, *mainQueue, note("dropped")); }
    auto replaced = timers.schedule(1, *mainQueue, note("replaced"));
    cancelled.cancel();
    replaced = timers.schedule(2, *mainQueue, note("replacement"));
    auto moved = timers.schedule(3, *mainQueue, note("moved"));
    const auto kept = std::move(moved);
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("replacement", "moved"));
}

TEST_F(StillTimersTest, cancellingDropsWorkThatIsWithItsQueueAlready) {
    auto timer = timers.schedule(1, *mainQueue, note("late"));
    EXPECT_TRUE(timers.fireNext(false));
    timer.cancel();
    EXPECT_EQ(mainQueue->runPending(), 1U);
    EXPECT_THAT(order, IsEmpty());
}

TEST_F(StillTimersTest, cancellingLetsGoOfWhatTheWorkOwns) {
    auto owned = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = owned;
    auto timer = timers.schedule(hour, *mainQueue, [owned = std::move(owned)] {});
    EXPECT_FALSE(watched.expired());
    timer.cancel();
    EXPECT_TRUE(watched.expired());
}

TEST_F(StillTimersTest, ownedThingsMayUseTheServiceWhenTheyGo) {
    std::vector<DispatchTimer> later;
    std::shared_ptr<int> owned(new int(1), [&](const int* value) {
        later.push_back(timers.schedule(1, *mainQueue, note("from the end")));
        delete value;
    });
    auto timer = timers.schedule(hour, *mainQueue, [owned = std::move(owned)] {});
    timer.cancel();
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("from the end"));
}

TEST_F(StillTimersTest, fireNextTellsWhetherThereWasOne) {
    EXPECT_FALSE(timers.fireNext(false));
    EXPECT_FALSE(timers.isAwaiting());
    const auto timer = timers.schedule(1, *mainQueue, note("only"));
    EXPECT_TRUE(timers.isAwaiting());
    EXPECT_TRUE(timers.fireNext(true));
    EXPECT_FALSE(timers.isAwaiting());
    EXPECT_FALSE(timers.fireNext(true));
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, ElementsAre("only"));
}

TEST_F(StillTimersTest, runUntilFiresNoTimerWhileAQueueIsBusy) {
    const auto queue = DispatchQueue::serial("busy");
    std::latch go(1);
    queue->async([&] {
        go.wait();
        mainQueue->async(note("work"));
    });
    const auto timer = timers.schedule(1, *mainQueue, note("timer"));
    mainQueue->async([&] { go.count_down(); });
    mainQueue->runUntil([&] { return !order.empty(); });
    EXPECT_THAT(order, ElementsAre("work"));
}

TEST_F(StillTimersTest, aHandleMayOutliveTheService) {
    DispatchTimer timer;
    {
        TimerService shortLived(true);
        timer = shortLived.schedule(1, *mainQueue, note("never"));
    }
    timer.cancel();
    mainQueue->runUntilIdle();
    EXPECT_THAT(order, IsEmpty());
}

class RunningTimersTest : public test::DispatchTest {
  protected:
    TimerService timers{false};
    Port<TimerService>::Plug plug{timers};
};

TEST_F(RunningTimersTest, fireByThemselves) {
    bool fired = false;
    bool firedLater = false;
    const auto later = timers.schedule(hour, *mainQueue, [&] { firedLater = true; });
    const auto timer = timers.schedule(0.001, *mainQueue, [&] { fired = true; });
    mainQueue->runUntil([&] { return fired; });
    EXPECT_FALSE(firedLater);
}

TEST_F(RunningTimersTest, runUntilIdleWaitsForChainedTimersWhenReported) {
    const auto queue = DispatchQueue::serial("elsewhere");
    DispatchTimer second;
    DispatchTimer third;
    bool fired = false;
    const auto first = timers.schedule(0.001, *queue, [&] {
        second = timers.schedule(
            0.001, *mainQueue, [&] { third = timers.schedule(0, *queue, [&] { fired = true; }); });
    });
    mainQueue->runUntilIdle(true);
    EXPECT_TRUE(fired);
}

TEST_F(RunningTimersTest, runUntilIdleNeverLosesATimerThatIsJustFiring) {
    const auto queue = DispatchQueue::serial("elsewhere");
    for (int i = 0; i < 200; ++i) {
        bool fired = false;
        const auto timer = timers.schedule(0, *queue, [&] { fired = true; });
        mainQueue->runUntilIdle(true);
        ASSERT_TRUE(fired);
    }
}

TEST_F(RunningTimersTest, runUntilIdleDoesNotWaitUnasked) {
    bool fired = false;
    const auto timer = timers.schedule(hour, *mainQueue, [&] { fired = true; });
    mainQueue->runUntilIdle();
    EXPECT_FALSE(fired);
    EXPECT_TRUE(timers.isAwaiting());
    EXPECT_FALSE(timers.fireNext(false));
}

TEST_F(RunningTimersTest, waitingEndsWhenTheLastTimerIsCancelled) {
    auto timer = timers.schedule(hour, *mainQueue, [] { FAIL() << "a cancelled timer fired"; });
    std::thread canceller([&] { timer.cancel(); });
    mainQueue->runUntilIdle(true);
    canceller.join();
    auto another = timers.schedule(hour, *mainQueue, [] { FAIL() << "a cancelled timer fired"; });
    std::thread secondCanceller([&] { another.cancel(); });
    EXPECT_FALSE(timers.fireNext(true));
    secondCanceller.join();
}

TEST_F(RunningTimersTest, fireNextWaitsUntilTheWorkIsWithItsQueue) {
    bool fired = false;
    const auto timer = timers.schedule(0.02, *mainQueue, [&] { fired = true; });
    if (timers.fireNext(true)) {
        EXPECT_EQ(mainQueue->runPending(), 1U);
    }
    mainQueue->runUntilIdle(true);
    EXPECT_TRUE(fired);
    EXPECT_FALSE(timers.fireNext(true));
}

/// Remembers its work and whether anybody calls it after its end.
class MortalExecutor final : public Executor {
  public:
    ~MortalExecutor() override {
        MutexLock lock(mutex_);
        work_.clear();
    }
    void async(Work work) override {
        MutexLock lock(mutex_);
        work_.push_back(std::move(work));
    }
    bool isCurrent() const override { return false; }

  private:
    Mutex mutex_;
    std::vector<Work> work_ TAVRION_GUARDED_BY(mutex_);
};

TEST_F(RunningTimersTest, theQueueMayEndOnceTheTimerIsCancelled) {
    // A call of the executor after its end is found by the sanitizers.
    for (int i = 0; i < 300; ++i) {
        auto executor = std::make_unique<MortalExecutor>();
        auto timer = timers.schedule(0, *executor, [] {});
        timer.cancel();
        executor.reset();
    }
    // The service may still be turning away from the last one.
    mainQueue->runUntilIdle(true);
    EXPECT_FALSE(timers.isAwaiting());
}

TEST_F(RunningTimersTest, theServiceMayEndBeforeItsTimers) {
    auto service = std::make_unique<TimerService>(false);
    const auto timer =
        service->schedule(hour, *mainQueue, [] { FAIL() << "a timer fired without its service"; });
    service.reset();
    mainQueue->runUntilIdle();
}

}  // namespace
}  // namespace tavrion
