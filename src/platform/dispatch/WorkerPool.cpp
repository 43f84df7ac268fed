#include "platform/dispatch/WorkerPool.h"

#include <system_error>
#include <thread>
#include <utility>

#include "platform/foundation/Precondition.h"

namespace tavrion {

WorkerPool& WorkerPool::shared() {
    // Never destroyed: idle workers sleep in it until the process is gone.
    static WorkerPool& pool = *new WorkerPool;
    return pool;
}

void WorkerPool::run(Work work) {
    MutexLock lock(mutex_);
    waiting_.push_back(std::move(work));
    // A worker that was woken but has not come round yet counts as idle and its work as waiting,
    // so every waiting piece has a worker of its own.
    if (idle_ >= waiting_.size()) {
        wake_.notifyOne();
    } else {
        startWorker();
    }
}

void WorkerPool::startWorker() {
    try {
        std::thread([this] { workerMain(); }).detach();
        ++workers_;
    } catch (const std::system_error&) {
        // The system gives no more threads: the work waits for one of those that there are.
        precondition(workers_ != 0, "the system gives a thread for queued work");
    }
}

void WorkerPool::workerMain() {
    for (;;) {
        Work work;
        {
            MutexLock lock(mutex_);
            ++idle_;
            while (waiting_.empty()) {
                wake_.wait(mutex_);
            }
            --idle_;
            work = std::move(waiting_.front());
            waiting_.pop_front();
        }
        work();
    }
}

}  // namespace tavrion
