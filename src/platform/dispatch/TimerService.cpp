#include "platform/dispatch/TimerService.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/dispatch/DispatchActivity.h"

namespace tavrion {
namespace {

/// How long the thread sleeps at most, in seconds: its waits are reckoned on a clock that may be
/// set.
constexpr double longestWait = 60;
/// How often a waiting caller looks whether the awaited timer was cancelled, in seconds.
constexpr double lookInterval = 0.05;

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

}  // namespace

struct DispatchTimer::Entry {
    Entry(Executor& executor, Work toDo) : queue(executor), work(std::move(toDo)) {}

    void cancel() {
        // Destroyed after the lock is given up, because it may own anything.
        Work dropped;
        MutexLock lock(mutex);
        cancelled = true;
        dropped.swap(work);
        while (handingThread != std::thread::id() && handingThread != std::this_thread::get_id()) {
            handed.wait(mutex);
        }
    }

    bool isCancelled() {
        MutexLock lock(mutex);
        return cancelled;
    }

    /// Hands the work to the queue. A canceller waits for the end of this, so that it may end the
    /// queue afterwards.
    static void fire(const std::shared_ptr<Entry>& entry) {
        {
            MutexLock lock(entry->mutex);
            if (entry->cancelled) {
                return;
            }
            entry->handingThread = std::this_thread::get_id();
        }
        entry->queue.async([entry] { entry->run(); });
        MutexLock lock(entry->mutex);
        entry->handingThread = std::thread::id();
        entry->handed.notifyAll();
    }

    void run() {
        Work taken;
        {
            MutexLock lock(mutex);
            taken.swap(work);
        }
        if (taken) {
            taken();
        }
    }

    double time = 0;
    std::uint64_t sequence = 0;
    Executor& queue;

  private:
    Mutex mutex;
    ConditionVariable handed;
    /// Empty once it has begun or was cancelled.
    Work work TAVRION_GUARDED_BY(mutex);
    bool cancelled TAVRION_GUARDED_BY(mutex) = false;
    /// The thread that hands the work to the queue just now.
    std::thread::id handingThread TAVRION_GUARDED_BY(mutex);
};

DispatchTimer& DispatchTimer::operator=(DispatchTimer&& other) noexcept {
    if (this != &other) {
        cancel();
        entry_ = std::move(other.entry_);
    }
    return *this;
}

void DispatchTimer::cancel() {
    if (const auto entry = std::exchange(entry_, nullptr)) {
        entry->cancel();
    }
}

TimerService::TimerService(bool standsStill) : standsStill_(standsStill) {
    if (!standsStill_) {
        thread_ = std::thread([this] { threadMain(); });
    }
}

TimerService::~TimerService() {
    {
        MutexLock lock(mutex_);
        ending_ = true;
        changed_.notifyAll();
    }
    if (thread_.joinable()) {
        thread_.join();
    }
}

DispatchTimer TimerService::schedule(NSTimeInterval delay, Executor& queue, Work work) {
    DispatchTimer timer;
    timer.entry_ = std::make_shared<DispatchTimer::Entry>(queue, std::move(work));
    MutexLock lock(mutex_);
    timer.entry_->sequence = sequence_++;
    // In this order of its arguments max() takes a delay that is no number for 0.
    timer.entry_->time = (standsStill_ ? elapsed_ : steadySeconds()) + std::max(0.0, delay);
    entries_.push_back(timer.entry_);
    changed_.notifyAll();
    return timer;
}

std::shared_ptr<DispatchTimer::Entry> TimerService::peekNext() {
    std::erase_if(entries_, [](const auto& entry) { return entry->isCancelled(); });
    const auto earliest =
        std::min_element(entries_.begin(), entries_.end(), [](const auto& a, const auto& b) {
            return std::pair(a->time, a->sequence) < std::pair(b->time, b->sequence);
        });
    return earliest == entries_.end() ? nullptr : *earliest;
}

std::shared_ptr<DispatchTimer::Entry> TimerService::takeNext() {
    auto next = peekNext();
    std::erase(entries_, next);
    return next;
}

bool TimerService::fireNext(bool wait) {
    if (standsStill_) {
        return fireNextStill();
    }
    return wait && awaitNextRunning();
}

bool TimerService::fireNextStill() {
    std::shared_ptr<DispatchTimer::Entry> next;
    {
        MutexLock lock(mutex_);
        next = takeNext();
        if (!next) {
            return false;
        }
        elapsed_ = next->time;
    }
    DispatchTimer::Entry::fire(next);
    return true;
}

bool TimerService::awaitNextRunning() {
    MutexLock lock(mutex_);
    const std::uint64_t before = fired_;
    while (fired_ == before && (handingOver_ || peekNext())) {
        changed_.waitFor(mutex_, lookInterval);
    }
    return fired_ != before;
}

bool TimerService::isAwaiting() {
    MutexLock lock(mutex_);
    return handingOver_ || peekNext() != nullptr;
}

std::shared_ptr<DispatchTimer::Entry> TimerService::awaitDue() {
    MutexLock lock(mutex_);
    while (!ending_) {
        auto next = peekNext();
        if (!next) {
            changed_.wait(mutex_);
            continue;
        }
        const double remaining = next->time - steadySeconds();
        if (remaining > 0) {
            changed_.waitFor(mutex_, std::min(remaining, longestWait));
            continue;
        }
        std::erase(entries_, next);
        handingOver_ = true;
        // A due timer is activity, so that the run loop hears when it is with its queue.
        DispatchActivity::begin();
        return next;
    }
    return nullptr;
}

void TimerService::noteFired() {
    MutexLock lock(mutex_);
    handingOver_ = false;
    ++fired_;
    changed_.notifyAll();
}

void TimerService::threadMain() {
    while (const auto due = awaitDue()) {
        DispatchTimer::Entry::fire(due);
        noteFired();
        DispatchActivity::end();
    }
}

}  // namespace tavrion
