#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <latch>
#include <thread>
#include <utility>

#include "platform/dispatch/TimerService.h"
#include "tests/platform/dispatch/DispatchTest.h"

namespace tavrion {
namespace {

/// Lets the test act in the middle of the handing over, and drops the work.
class HookedExecutor final : public Executor {
  public:
    explicit HookedExecutor(std::function<void()> hook) : hook_(std::move(hook)) {}
    void async(Work /*work*/) override { hook_(); }
    bool isCurrent() const override { return false; }

  private:
    std::function<void()> hook_;
};

/// Gives other threads the chance to go wrong. A correct program passes with any number.
void letOthersRun() {
    for (int i = 0; i < 200; ++i) {
        std::this_thread::yield();
    }
}

/// A timer that stays with its queue's async() until the test lets it go on.
class HandingOverTest : public test::DispatchTest {
  protected:
    ~HandingOverTest() override { mainQueue->runUntilIdle(true); }

    std::latch began{1};
    std::latch go{1};
    std::atomic<bool> ended{false};
    HookedExecutor executor{[this] {
        began.count_down();
        go.wait();
        letOthersRun();
        ended = true;
    }};
    TimerService timers{false};
    Port<TimerService>::Plug plug{timers};
    DispatchTimer timer = timers.schedule(0, executor, [] {});
};

TEST_F(HandingOverTest, cancellingWaitsForItsEnd) {
    began.wait();
    go.count_down();
    timer.cancel();
    EXPECT_TRUE(ended);
}

TEST_F(HandingOverTest, theServiceStillAwaitsTheTimer) {
    began.wait();
    EXPECT_TRUE(timers.isAwaiting());
    go.count_down();
    mainQueue->runUntilIdle(true);
    EXPECT_FALSE(timers.isAwaiting());
    EXPECT_TRUE(ended);
}

TEST_F(HandingOverTest, fireNextWaitsForItsEnd) {
    began.wait();
    go.count_down();
    timers.fireNext(true);
    EXPECT_TRUE(ended);
}

TEST(DispatchTimerTest, theQueueMayCancelTheTimerThatItIsHanded) {
    TimerService timers(true);
    DispatchTimer timer;
    HookedExecutor executor([&] { timer.cancel(); });
    timer = timers.schedule(0, executor, [] {});
    EXPECT_TRUE(timers.fireNext(false));
    EXPECT_FALSE(timers.isAwaiting());
}

TEST(DispatchTimerTest, movingLeavesAnEmptyOneBehind) {
    TimerService timers(true);
    HookedExecutor executor([] {});
    auto first = timers.schedule(0, executor, [] {});
    {
        const DispatchTimer second = std::move(first);
        first.cancel();
        EXPECT_TRUE(timers.isAwaiting());
    }
    EXPECT_FALSE(timers.isAwaiting());
}

}  // namespace
}  // namespace tavrion
