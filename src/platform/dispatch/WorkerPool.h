// The threads behind all queues.
//
// Queue: any. A worker is started when work comes and none is idle, so that work which waits for
// other work cannot starve it; idle workers stay for the next. Nobody waits for the workers when
// the process ends, so that a process can end from any of them and while others wait: who wants
// work finished runs the main queue until it is idle before.
#pragma once

#include <cstddef>
#include <deque>

#include "platform/foundation/Executor.h"
#include "platform/foundation/Mutex.h"

namespace tavrion {

class WorkerPool {
  public:
    static WorkerPool& shared();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// Runs `work` soon on some worker.
    void run(Work work);

  private:
    WorkerPool() = default;
    ~WorkerPool() = default;
    void startWorker() TAVRION_REQUIRES(mutex_);
    [[noreturn]] void workerMain();

    Mutex mutex_;
    ConditionVariable wake_;
    std::deque<Work> waiting_ TAVRION_GUARDED_BY(mutex_);
    std::size_t workers_ TAVRION_GUARDED_BY(mutex_) = 0;
    std::size_t idle_ TAVRION_GUARDED_BY(mutex_) = 0;
};

}  // namespace tavrion
