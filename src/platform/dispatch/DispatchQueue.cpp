#include "platform/dispatch/DispatchQueue.h"

#include <cstddef>
#include <deque>
#include <utility>

#include "platform/dispatch/DispatchActivity.h"
#include "platform/dispatch/WorkerPool.h"
#include "platform/foundation/Mutex.h"
#include "platform/foundation/Precondition.h"

namespace tavrion {
namespace {

thread_local const void* innermostRunning = nullptr;

/// One piece of queued work: either something to run on a worker, or a waiting caller to let in.
struct Turn {
    Work work;
    bool* granted = nullptr;
};

class SerialQueue final : public DispatchQueue {
  public:
    explicit SerialQueue(std::string label) : DispatchQueue(std::move(label)) {}

    void async(Work work) override {
        DispatchActivity::begin();
        bool start = false;
        {
            MutexLock lock(mutex_);
            turns_.push_back({std::move(work), nullptr});
            start = !std::exchange(busy_, true);
        }
        if (start) {
            startWorker();
        }
    }

    void sync(const Work& work) override {
        if (isCurrent()) {
            work();
            return;
        }
        // The work may drop the caller's last handle of the queue.
        const auto alive = shared_from_this();
        DispatchActivity::begin();
        takeTurnInline();
        const InlineTurn turn(*this);
        const Running running(*this);
        work();
    }

  private:
    /// A caller's own turn, which passes on also when the work throws.
    class InlineTurn {
      public:
        explicit InlineTurn(SerialQueue& queue) : queue_(queue) {}
        ~InlineTurn() {
            queue_.passOn();
            DispatchActivity::end();
        }
        InlineTurn(const InlineTurn&) = delete;
        InlineTurn& operator=(const InlineTurn&) = delete;

      private:
        SerialQueue& queue_;
    };

    /// Returns when the caller's turn has come.
    void takeTurnInline() {
        MutexLock lock(mutex_);
        if (std::exchange(busy_, true)) {
            bool granted = false;
            turns_.push_back({{}, &granted});
            while (!granted) {
                letIn_.wait(mutex_);
            }
        }
    }

    void startWorker() {
        WorkerPool::shared().run(
            [self = std::static_pointer_cast<SerialQueue>(shared_from_this())] { self->drain(); });
    }

    /// Runs queued work until the queue is empty or a waiting caller has been let in.
    void drain() {
        for (;;) {
            Turn turn;
            {
                MutexLock lock(mutex_);
                if (!takeTurn(turn)) {
                    return;
                }
            }
            {
                const Running running(*this);
                turn.work();
                turn.work = nullptr;
            }
            DispatchActivity::end();
        }
    }

    /// The next work into `turn`; false when the queue went idle or its turn passed to a waiting
    /// caller.
    bool takeTurn(Turn& turn) TAVRION_REQUIRES(mutex_) {
        if (turns_.empty()) {
            busy_ = false;
            return false;
        }
        turn = std::move(turns_.front());
        turns_.pop_front();
        if (turn.granted != nullptr) {
            *turn.granted = true;
            letIn_.notifyAll();
            return false;
        }
        return true;
    }

    /// After an inline run: the next turn goes to a waiting caller, to a worker, or nobody.
    void passOn() {
        bool start = false;
        {
            MutexLock lock(mutex_);
            if (turns_.empty()) {
                busy_ = false;
            } else if (turns_.front().granted != nullptr) {
                *turns_.front().granted = true;
                turns_.pop_front();
                letIn_.notifyAll();
            } else {
                start = true;
            }
        }
        if (start) {
            startWorker();
        }
    }

    Mutex mutex_;
    ConditionVariable letIn_;
    std::deque<Turn> turns_ TAVRION_GUARDED_BY(mutex_);
    bool busy_ TAVRION_GUARDED_BY(mutex_) = false;
};

class ConcurrentQueue final : public DispatchQueue {
  public:
    explicit ConcurrentQueue(std::string label) : DispatchQueue(std::move(label)) {}

    void async(Work work) override {
        DispatchActivity::begin();
        {
            MutexLock lock(mutex_);
            waiting_.push_back(std::move(work));
            if (workers_ == maxConcurrentWorkCount) {
                return;
            }
            ++workers_;
        }
        WorkerPool::shared().run([self = std::static_pointer_cast<ConcurrentQueue>(
                                      shared_from_this())] { self->drain(); });
    }

    void sync(const Work& work) override {
        const auto alive = shared_from_this();
        const Counted counted;
        const Running running(*this);
        work();
    }

  private:
    /// Counts as activity for the life of the scope.
    struct Counted {
        Counted() { DispatchActivity::begin(); }
        ~Counted() { DispatchActivity::end(); }
        Counted(const Counted&) = delete;
        Counted& operator=(const Counted&) = delete;
    };

    void drain() {
        for (;;) {
            Work work;
            {
                MutexLock lock(mutex_);
                if (waiting_.empty()) {
                    --workers_;
                    return;
                }
                work = std::move(waiting_.front());
                waiting_.pop_front();
            }
            {
                const Running running(*this);
                work();
                work = nullptr;
            }
            DispatchActivity::end();
        }
    }

    Mutex mutex_;
    std::deque<Work> waiting_ TAVRION_GUARDED_BY(mutex_);
    std::size_t workers_ TAVRION_GUARDED_BY(mutex_) = 0;
};

}  // namespace

std::shared_ptr<DispatchQueue> DispatchQueue::serial(std::string label) {
    return std::make_shared<SerialQueue>(std::move(label));
}

std::shared_ptr<DispatchQueue> DispatchQueue::concurrent(std::string label) {
    return std::make_shared<ConcurrentQueue>(std::move(label));
}

DispatchQueue::Running::Running(const DispatchQueue& queue)
    : queue_(queue), outer_(static_cast<const Running*>(innermostRunning)) {
    innermostRunning = this;
}

DispatchQueue::Running::~Running() {
    innermostRunning = outer_;
}

bool DispatchQueue::isCurrent() const {
    for (const auto* running = static_cast<const Running*>(innermostRunning); running != nullptr;
         running = running->outer_) {
        if (&running->queue_ == this) {
            return true;
        }
    }
    return false;
}

void DispatchQueue::assertCurrent() const {
    precondition(isCurrent(), "an operation runs as the queue that it belongs to");
}

}  // namespace tavrion
