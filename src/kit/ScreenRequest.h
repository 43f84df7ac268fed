// Something that a screen asked for and that comes later: a row, a picture, a statistic.
//
// Queue: main. Who owns: the screen keeps the request for as long as it wants the answer, for a row
// as long as the row is in view; the end of the request cancels it, and so does the end of the
// screen. Work that has not begun is then not done at all, work that has begun ends unheard, and
// nobody waits for it. The answer's function is dropped on the main queue. Absent: an empty request
// asks for nothing.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

namespace tavrion {

/// Whether somebody still looks: ends with the screen or with its controller.
struct ScreenLife {
    std::atomic<bool> isOver{false};
};

class ScreenRequest {
  public:
    /// What the request and the work for it share.
    class Pending {
      public:
        explicit Pending(std::shared_ptr<const ScreenLife> life) : life_(std::move(life)) {}
        virtual ~Pending() = default;
        Pending(const Pending&) = delete;
        Pending& operator=(const Pending&) = delete;
        /// Any queue.
        bool isWanted() const { return !isCancelled_ && !life_->isOver; }

      private:
        friend class ScreenRequest;
        /// Drops the answer's function.
        virtual void forget() = 0;
        virtual bool isAnswered() const = 0;
        const std::shared_ptr<const ScreenLife> life_;
        std::atomic<bool> isCancelled_{false};
    };

    template <class Answer>
    class PendingAnswer final : public Pending {
      public:
        PendingAnswer(std::shared_ptr<const ScreenLife> life, std::function<void(Answer)> done)
            : Pending(std::move(life)), done_(std::move(done)) {}
        void answer(Answer answer) {
            const std::function<void(Answer)> done = std::exchange(done_, nullptr);
            if (isWanted() && done) {
                done(std::move(answer));
            }
        }

      private:
        void forget() override { done_ = nullptr; }
        bool isAnswered() const override { return done_ == nullptr; }
        std::function<void(Answer)> done_;
    };

    ScreenRequest() = default;
    explicit ScreenRequest(std::shared_ptr<Pending> pending) : pending_(std::move(pending)) {}
    ~ScreenRequest() { cancel(); }
    ScreenRequest(ScreenRequest&& other) noexcept = default;
    ScreenRequest& operator=(ScreenRequest&& other) noexcept {
        if (this != &other) {
            cancel();
            pending_ = std::move(other.pending_);
        }
        return *this;
    }

    void cancel() {
        if (const auto pending = std::exchange(pending_, nullptr)) {
            pending->isCancelled_ = true;
            pending->forget();
        }
    }
    /// Whether the answer is still to come.
    bool isPending() const {
        return pending_ != nullptr && pending_->isWanted() && !pending_->isAnswered();
    }

  private:
    std::shared_ptr<Pending> pending_;
};

}  // namespace tavrion
