#include "platform/dispatch/NSOperationQueue.h"

#include <deque>
#include <limits>
#include <utility>

#include "platform/dispatch/DispatchQueue.h"
#include "platform/foundation/Mutex.h"
#include "platform/foundation/Precondition.h"

namespace tavrion {

struct NSOperationQueue::State : std::enable_shared_from_this<State> {
    Executor* underlying = nullptr;
    std::shared_ptr<DispatchQueue> workers = DispatchQueue::concurrent("operations");
    mutable Mutex mutex;
    std::deque<std::shared_ptr<NSBlockOperation>> waiting TAVRION_GUARDED_BY(mutex);
    std::size_t running TAVRION_GUARDED_BY(mutex) = 0;
    std::size_t bound TAVRION_GUARDED_BY(mutex) = std::numeric_limits<std::size_t>::max();

    /// One thread hands over at a time, so that a serial executor gets the operations in order.
    bool handingOver TAVRION_GUARDED_BY(mutex) = false;

    /// Starts waiting operations as far as the bound allows.
    void start() {
        {
            MutexLock lock(mutex);
            if (handingOver) {
                return;
            }
            handingOver = true;
        }
        Executor& executor = underlying != nullptr ? *underlying : *workers;
        while (auto operation = takeNext()) {
            executor.async([self = shared_from_this(), operation = std::move(operation)]() mutable {
                operation->main();
                operation.reset();
                self->ended();
            });
        }
    }

    /// The next operation that may start. Null when there is none, and then nobody hands over.
    std::shared_ptr<NSBlockOperation> takeNext() {
        MutexLock lock(mutex);
        if (waiting.empty() || running >= bound) {
            handingOver = false;
            return nullptr;
        }
        auto operation = std::move(waiting.front());
        waiting.pop_front();
        ++running;
        return operation;
    }

    void ended() {
        {
            MutexLock lock(mutex);
            --running;
        }
        start();
    }
};

void NSBlockOperation::main() {
    for (const Work& block : blocks_) {
        if (!isCancelled()) {
            block();
        }
    }
    blocks_.clear();
}

NSOperationQueue::NSOperationQueue() : state_(std::make_shared<State>()) {}

NSOperationQueue::NSOperationQueue(Executor& underlyingQueue) : state_(std::make_shared<State>()) {
    state_->underlying = &underlyingQueue;
}

void NSOperationQueue::setMaxConcurrentOperationCount(std::size_t count) {
    precondition(count > 0, "an operation queue may run at least one operation");
    {
        MutexLock lock(state_->mutex);
        state_->bound = count;
    }
    state_->start();
}

void NSOperationQueue::addOperation(std::shared_ptr<NSBlockOperation> operation) {
    precondition(operation != nullptr, "an operation queue is given an operation");
    {
        MutexLock lock(state_->mutex);
        state_->waiting.push_back(std::move(operation));
    }
    state_->start();
}

std::size_t NSOperationQueue::operationCount() const {
    MutexLock lock(state_->mutex);
    return state_->waiting.size() + state_->running;
}

}  // namespace tavrion
