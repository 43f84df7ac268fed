// The main queue: a serial queue whose work runs on one thread, in a run loop.
//
// Queue: async() from any queue; run functions on the main thread only (the one that made the
// object). Who owns: the composition root makes one and plugs it with Port<MainQueue>. A program
// with a toolkit sets a wake function and calls runPending(budget) from the toolkit's loop, so that
// a frame is never late for a long queue; a program without one calls runUntilIdle(). Units:
// seconds of real time.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "platform/dispatch/DispatchActivity.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/foundation/Mutex.h"
#include "platform/foundation/Port.h"

namespace tavrion {

class MainQueue final : public DispatchQueue {
  public:
    static constexpr const char* portName = "a main queue is plugged in";
    /// Made on the main thread. A process needs one; a test may make another.
    static std::shared_ptr<MainQueue> make();
    ~MainQueue() override;

    void async(Work work) override;
    /// From the main thread it runs at once; from another it waits until the run loop has run it.
    void sync(const Work& work) override;
    /// The main thread always counts as the main queue.
    bool isCurrent() const override;

    /// Runs what is queued now, and what that queues; returns how many pieces ran.
    std::size_t runPending();
    /// The same for a turn of the toolkit's loop: begins no other piece once `budget` is spent, but
    /// always runs one. True when more is queued; the caller then comes again without being woken.
    [[nodiscard]] bool runPending(double budget);
    /// Runs until nothing is queued here, every other queue is idle, and no timer is due any more.
    /// With a clock that stands still all timers fire, one after the other in the order of their
    /// times; with a running clock this waits for timers only when `waitForTimers` is set.
    void runUntilIdle(bool waitForTimers = false);
    /// Runs until `done` holds, which is asked after each piece of work of any queue; `done` must
    /// come to hold by work of some queue or by a timer. With a clock that stands still the next
    /// timer fires when all queues are idle and `done` does not hold yet.
    void runUntil(const std::function<bool()>& done);

    /// Called from any thread when work comes to an empty queue, once: not again before the queue
    /// has been run empty. Set once, before other threads know the queue.
    void setWakeFunction(std::function<void()> wake) {
        wakeFunction_ = std::make_shared<const std::function<void()>>(std::move(wake));
    }
    /// The longest single piece of work so far, in seconds of real time.
    double longestTurn() const;

  private:
    MainQueue();
    class EachEndWatch;
    bool runOne();
    /// Whether more is queued; if not, the next work wakes again.
    bool endTurn();
    bool isEmpty() const;
    /// Other queues' work ended; `left` is still to be done.
    void workEnded(std::size_t left);
    void waitForSomething();
    void waitForTimer();

    const std::thread::id mainThread_;
    /// Shared, because a caller of async() still calls it when its work may already have run and
    /// ended the queue.
    std::shared_ptr<const std::function<void()>> wakeFunction_;
    mutable Mutex mutex_;
    ConditionVariable wake_;
    std::deque<Work> queued_ TAVRION_GUARDED_BY(mutex_);
    /// The toolkit's loop was woken, or is here: work that comes need not wake it.
    bool isAwake_ TAVRION_GUARDED_BY(mutex_) = false;
    bool workEnded_ TAVRION_GUARDED_BY(mutex_) = false;
    /// While not 0, the run loop looks up after every piece of other queues, not only after the
    /// last.
    std::size_t eachEndWatches_ TAVRION_GUARDED_BY(mutex_) = 0;
    double longestTurn_ TAVRION_GUARDED_BY(mutex_) = 0;
    /// Ends first, so that nothing of the above is touched any more when it goes.
    DispatchActivity::EndListener endListener_;
};

}  // namespace tavrion
