// Operations that run on a bounded number of workers, and a count of those that have not ended.
//
// Queue: any. Who owns: the queue keeps its operations until they have run; the caller may keep
// them too, and a weak reference tells whether an operation still exists. Operations begin in the
// order in which they were added. They run also when the queue object is gone by then.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "platform/foundation/Executor.h"

namespace tavrion {

class NSBlockOperation {
  public:
    NSBlockOperation() = default;
    /// Adds a block to run. Not after the operation was handed to a queue.
    void addExecutionBlock(Work block) { blocks_.push_back(std::move(block)); }
    /// Asks the operation to stop. One that has not begun runs nothing; a running block looks at
    /// isCancelled() itself.
    void cancel() { cancelled_ = true; }
    bool isCancelled() const { return cancelled_; }

  private:
    friend class NSOperationQueue;
    void main();
    std::vector<Work> blocks_;
    std::atomic<bool> cancelled_{false};
};

class NSOperationQueue {
  public:
    NSOperationQueue();
    /// Runs the operations on that queue instead of on workers of its own. The executor outlives
    /// the operation queue.
    explicit NSOperationQueue(Executor& underlyingQueue);

    /// At least 1; without a call there is no bound.
    void setMaxConcurrentOperationCount(std::size_t count);
    void addOperation(std::shared_ptr<NSBlockOperation> operation);
    /// How many operations wait or run.
    std::size_t operationCount() const;

  private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace tavrion
