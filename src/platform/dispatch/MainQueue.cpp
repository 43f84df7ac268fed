#include "platform/dispatch/MainQueue.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <utility>

#include "platform/dispatch/DispatchActivity.h"
#include "platform/dispatch/TimerService.h"

namespace tavrion {
namespace {

/// How long the run loop sleeps at most before it looks whether its last timer was cancelled, in
/// seconds of real time.
constexpr double timerLookInterval = 0.05;

}  // namespace

std::shared_ptr<MainQueue> MainQueue::make() {
    return std::shared_ptr<MainQueue>(new MainQueue());
}

MainQueue::MainQueue() : DispatchQueue("main"), mainThread_(std::this_thread::get_id()) {
    DispatchActivity::setEndListener([this](std::size_t left) { workEnded(left); });
}

MainQueue::~MainQueue() {
    DispatchActivity::setEndListener({});
}

void MainQueue::workEnded(std::size_t left) {
    MutexLock lock(mutex_);
    if (left == 0 || watchesEachEnd_) {
        workEnded_ = true;
        wake_.notifyAll();
    }
}

void MainQueue::async(Work work) {
    const auto wakeFunction = wakeFunction_;
    {
        // Notified under the lock: afterwards the work may have run and the queue may be gone.
        MutexLock lock(mutex_);
        queued_.push_back(std::move(work));
        wake_.notifyAll();
    }
    if (wakeFunction && *wakeFunction) {
        (*wakeFunction)();
    }
}

void MainQueue::sync(const Work& work) {
    if (isCurrent()) {
        work();
        return;
    }
    Mutex doneMutex;
    ConditionVariable doneChanged;
    bool done = false;
    std::exception_ptr thrown;
    async([&] {
        try {
            work();
        } catch (...) {
            thrown = std::current_exception();
        }
        MutexLock lock(doneMutex);
        done = true;
        doneChanged.notifyAll();
    });
    {
        MutexLock lock(doneMutex);
        while (!done) {
            doneChanged.wait(doneMutex);
        }
    }
    if (thrown) {
        std::rethrow_exception(thrown);
    }
}

bool MainQueue::isCurrent() const {
    return std::this_thread::get_id() == mainThread_ || DispatchQueue::isCurrent();
}

bool MainQueue::runOne() {
    Work work;
    {
        MutexLock lock(mutex_);
        if (queued_.empty()) {
            return false;
        }
        work = std::move(queued_.front());
        queued_.pop_front();
    }
    const auto start = std::chrono::steady_clock::now();
    {
        const Running running(*this);
        work();
        work = nullptr;
    }
    const std::chrono::duration<double> turn = std::chrono::steady_clock::now() - start;
    MutexLock lock(mutex_);
    longestTurn_ = std::max(longestTurn_, turn.count());
    return true;
}

std::size_t MainQueue::runPending() {
    assertCurrent();
    std::size_t ran = 0;
    while (runOne()) {
        ++ran;
    }
    return ran;
}

bool MainQueue::isEmpty() const {
    MutexLock lock(mutex_);
    return queued_.empty();
}

void MainQueue::waitForSomething() {
    MutexLock lock(mutex_);
    while (queued_.empty() && !workEnded_) {
        wake_.wait(mutex_);
    }
    workEnded_ = false;
}

void MainQueue::waitForTimer() {
    MutexLock lock(mutex_);
    if (queued_.empty() && !workEnded_) {
        wake_.waitFor(mutex_, timerLookInterval);
    }
    workEnded_ = false;
}

void MainQueue::runUntilIdle(bool waitForTimers) {
    assertCurrent();
    for (;;) {
        runPending();
        const std::uint64_t begun = DispatchActivity::begun();
        if (DispatchActivity::count() != 0) {
            waitForSomething();
            continue;
        }
        // Work that ran while the queues were counted may have queued more here.
        if (!isEmpty()) {
            continue;
        }
        if (Port<TimerService>::isPlugged()) {
            TimerService& timers = Port<TimerService>::current();
            if (timers.fireNext(false)) {
                continue;
            }
            if (waitForTimers && timers.isAwaiting()) {
                waitForTimer();
                continue;
            }
        }
        // A timer of the running clock may have fired since the queues were counted.
        if (begun == DispatchActivity::begun() && isEmpty()) {
            return;
        }
    }
}

void MainQueue::setWatchesEachEnd(bool watches) {
    MutexLock lock(mutex_);
    watchesEachEnd_ = watches;
}

void MainQueue::runUntil(const std::function<bool()>& done) {
    assertCurrent();
    setWatchesEachEnd(true);
    while (!done()) {
        if (!runOne()) {
            waitForSomething();
        }
    }
    setWatchesEachEnd(false);
}

double MainQueue::longestTurn() const {
    MutexLock lock(mutex_);
    return longestTurn_;
}

}  // namespace tavrion
