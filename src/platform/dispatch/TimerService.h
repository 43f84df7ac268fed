// Timers: work to be done on a queue after a while.
//
// Queue: schedule() and cancelling from any queue. Who owns: the composition root makes one for the
// plugged clock and plugs it with Port<TimerService>. Times are seconds. With a clock that stands
// still nothing fires by itself: the run loop fires the next timer when all queues are idle
// (fireNext()), and the clock still shows its instant.
#pragma once

#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

#include "platform/foundation/Executor.h"
#include "platform/foundation/Mutex.h"
#include "platform/foundation/NSDate.h"
#include "platform/foundation/Port.h"

namespace tavrion {

/// Cancels its timer when destroyed; work already handed to its queue is dropped too, unless it has
/// begun. After that the service touches neither the work nor the queue. An empty one holds
/// nothing.
class DispatchTimer {
  public:
    DispatchTimer() = default;
    ~DispatchTimer() { cancel(); }
    DispatchTimer(DispatchTimer&& other) noexcept = default;
    DispatchTimer& operator=(DispatchTimer&& other) noexcept;
    void cancel();

  private:
    friend class TimerService;
    struct Entry;
    std::shared_ptr<Entry> entry_;
};

class TimerService {
  public:
    static constexpr const char* portName = "a timer service is plugged in";
    /// `standsStill`: whether the clock does.
    explicit TimerService(bool standsStill);
    /// Timers that have not fired never will.
    ~TimerService();
    TimerService(const TimerService&) = delete;
    TimerService& operator=(const TimerService&) = delete;

    /// Hands `work` to `queue` after `delay` seconds (at once when it is not positive or no
    /// number). The queue outlives the timer.
    [[nodiscard]] DispatchTimer schedule(NSTimeInterval delay, Executor& queue, Work work);
    /// With a still clock: fires the next timer and tells whether there was one. With a running
    /// clock: with `wait` waits until the next timer has fired and tells whether there was one;
    /// without, does nothing and tells false.
    bool fireNext(bool wait);
    /// Whether some timer has not been handed to its queue yet.
    bool isAwaiting();

  private:
    bool fireNextStill();
    bool awaitNextRunning();
    void threadMain();
    /// Waits for the next due entry and takes it out; null when the service ends.
    std::shared_ptr<DispatchTimer::Entry> awaitDue();
    void noteFired();
    /// Takes out the entry with the earliest time, or null.
    std::shared_ptr<DispatchTimer::Entry> takeNext() TAVRION_REQUIRES(mutex_);
    /// Drops cancelled entries and gives the earliest, which stays; null when there is none.
    std::shared_ptr<DispatchTimer::Entry> peekNext() TAVRION_REQUIRES(mutex_);

    const bool standsStill_;
    Mutex mutex_;
    ConditionVariable changed_;
    std::vector<std::shared_ptr<DispatchTimer::Entry>> entries_ TAVRION_GUARDED_BY(mutex_);
    std::uint64_t sequence_ TAVRION_GUARDED_BY(mutex_) = 0;
    /// How far the still clock's timers have advanced, in seconds.
    double elapsed_ TAVRION_GUARDED_BY(mutex_) = 0;
    /// An entry was taken out and is not with its queue yet.
    bool handingOver_ TAVRION_GUARDED_BY(mutex_) = false;
    std::uint64_t fired_ TAVRION_GUARDED_BY(mutex_) = 0;
    bool ending_ TAVRION_GUARDED_BY(mutex_) = false;
    std::thread thread_;
};

}  // namespace tavrion
