// A queue that a test runs by hand.
//
// Queue: async() from any; runAll() by the test.
#pragma once

#include <utility>
#include <vector>

#include "platform/foundation/Executor.h"
#include "platform/foundation/Mutex.h"

namespace tavrion::test {

class ManualExecutor final : public Executor {
  public:
    void async(Work work) override {
        const MutexLock lock(mutex_);
        waiting_.push_back(std::move(work));
    }
    bool isCurrent() const override { return false; }
    std::size_t waitingCount() {
        const MutexLock lock(mutex_);
        return waiting_.size();
    }
    void runAll() {
        std::vector<Work> due;
        {
            const MutexLock lock(mutex_);
            due.swap(waiting_);
        }
        for (const Work& work : due) {
            work();
        }
    }

  private:
    Mutex mutex_;
    std::vector<Work> waiting_ TAVRION_GUARDED_BY(mutex_);
};

}  // namespace tavrion::test
