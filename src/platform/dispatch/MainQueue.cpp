#include "platform/dispatch/MainQueue.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <utility>

#include "platform/dispatch/TimerService.h"

namespace tavrion {
namespace {

/// How long the run loop sleeps at most before it looks whether its last timer was cancelled, in
/// seconds of real time.
constexpr double timerLookInterval = 0.05;

/// Only a clock that stands still leaves the firing to the run loop. False when there was none.
bool fireStillTimer() {
    return Port<TimerService>::isPlugged() && Port<TimerService>::current().fireNext(false);
}

bool awaitsTimer() {
    return Port<TimerService>::isPlugged() && Port<TimerService>::current().isAwaiting();
}

}  // namespace

/// Lets the run loop look up after every piece of other queues for the life of the scope.
class MainQueue::EachEndWatch {
  public:
    explicit EachEndWatch(MainQueue& queue) : queue_(queue) {
        MutexLock lock(queue_.mutex_);
        ++queue_.eachEndWatches_;
    }
    ~EachEndWatch() {
        MutexLock lock(queue_.mutex_);
        --queue_.eachEndWatches_;
    }
    EachEndWatch(const EachEndWatch&) = delete;
    EachEndWatch& operator=(const EachEndWatch&) = delete;

  private:
    MainQueue& queue_;
};

std::shared_ptr<MainQueue> MainQueue::make() {
    return std::shared_ptr<MainQueue>(new MainQueue());
}

MainQueue::MainQueue()
    : DispatchQueue("main"),
      mainThread_(std::this_thread::get_id()),
      endListener_([this](std::size_t left) { workEnded(left); }) {}

MainQueue::~MainQueue() {
    // What dropped work owns may queue more work here when it goes.
    std::deque<Work> dropped;
    do {
        dropped.clear();
        MutexLock lock(mutex_);
        dropped.swap(queued_);
    } while (!dropped.empty());
}

void MainQueue::workEnded(std::size_t left) {
    MutexLock lock(mutex_);
    if (left == 0 || eachEndWatches_ != 0) {
        workEnded_ = true;
        wake_.notifyAll();
    }
}

void MainQueue::async(Work work) {
    const auto wakeFunction = wakeFunction_;
    bool wasAwake = false;
    {
        // Notified under the lock: afterwards the work may have run and the queue may be gone.
        MutexLock lock(mutex_);
        queued_.push_back(std::move(work));
        wasAwake = std::exchange(isAwake_, true);
        wake_.notifyAll();
    }
    if (!wasAwake && wakeFunction && *wakeFunction) {
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
            isAwake_ = false;
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

bool MainQueue::runPending(double budget) {
    assertCurrent();
    const auto start = std::chrono::steady_clock::now();
    while (runOne()) {
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        if (spent.count() >= budget) {
            return endTurn();
        }
    }
    return false;
}

bool MainQueue::endTurn() {
    MutexLock lock(mutex_);
    isAwake_ = !queued_.empty();
    return isAwake_;
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
        if (fireStillTimer()) {
            continue;
        }
        if (waitForTimers && awaitsTimer()) {
            waitForTimer();
            continue;
        }
        // A timer of the running clock may have fired since the queues were counted.
        if (begun == DispatchActivity::begun() && isEmpty()) {
            return;
        }
    }
}

void MainQueue::runUntil(const std::function<bool()>& done) {
    assertCurrent();
    const EachEndWatch watch(*this);
    for (;;) {
        // Counted before the question, so that a timer fires only when idle queues left `done`
        // unfulfilled.
        const bool othersIdle = DispatchActivity::count() == 0;
        if (done()) {
            if (endTurn() && wakeFunction_ && *wakeFunction_) {
                (*wakeFunction_)();
            }
            return;
        }
        if (!runOne() && !(othersIdle && fireStillTimer())) {
            waitForSomething();
        }
    }
}

double MainQueue::longestTurn() const {
    MutexLock lock(mutex_);
    return longestTurn_;
}

}  // namespace tavrion
