// What every controller of a screen is: its state, and the one rule of its life.
//
// Queue: main, but where a function says so. The rule:
// - The screen owns its controller by shared pointer, and nobody else does. Work on other queues
//   holds it weakly (ifAlive(), toMain()) and holds values besides, never the controller.
// - The controller knows its screen as a ScreenPort, which the screen attaches. The end of the
//   Attachment, or of the controller, is the end of the screen: from then on the port is not called
//   any more, and nothing that was asked for is answered.
// - Either may end at any moment on the main queue, also inside a call of the port: a controller
//   that has just published lives to the end of its turn.
// - Nothing waits when a page ends: work under way ends unheard.
// Absent: without a screen everything is kept as state, and nothing is emitted.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include "kit/ScreenPort.h"
#include "kit/ScreenRequest.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/Precondition.h"

namespace tavrion {

/// The way to one screen. Calls go one after the other, also when one causes the next.
template <class State>
class ScreenLink final : public ScreenLife {
  public:
    using Call = std::function<void(ScreenPort<State>&)>;

    explicit ScreenLink(ScreenPort<State>* screen) : screen_(screen) {}
    bool hasScreen() const { return screen_ != nullptr; }
    void cut() {
        isOver = true;
        screen_ = nullptr;
    }
    void deliver(Call call) {
        if (screen_ == nullptr) {
            return;
        }
        waiting_.push_back(std::move(call));
        if (std::exchange(isDelivering_, true)) {
            return;
        }
        while (screen_ != nullptr && !waiting_.empty()) {
            const Call next = std::move(waiting_.front());
            waiting_.pop_front();
            next(*screen_);
        }
        waiting_.clear();
        isDelivering_ = false;
    }

  private:
    /// Null once it has gone, or where there is none.
    ScreenPort<State>* screen_;
    std::deque<Call> waiting_;
    bool isDelivering_ = false;
};

/// A screen at its controller; its end is the end of the screen. An empty one is none.
class ScreenAttachment {
  public:
    ScreenAttachment() = default;
    explicit ScreenAttachment(std::function<void()> cut) : cut_(std::move(cut)) {}
    ~ScreenAttachment() { detach(); }
    ScreenAttachment(ScreenAttachment&& other) noexcept
        : cut_(std::exchange(other.cut_, nullptr)) {}
    ScreenAttachment& operator=(ScreenAttachment&& other) noexcept {
        if (this != &other) {
            detach();
            cut_ = std::exchange(other.cut_, nullptr);
        }
        return *this;
    }
    void detach() {
        if (const auto cut = std::exchange(cut_, nullptr)) {
            cut();
        }
    }

  private:
    std::function<void()> cut_;
};

/// `Self` is the controller's own class; it is made by std::shared_ptr.
template <class Self, class State>
class ScreenController : public std::enable_shared_from_this<Self> {
  public:
    ScreenController(const ScreenController&) = delete;
    ScreenController& operator=(const ScreenController&) = delete;

    /// What the page shows; never null. The screen reads it when it attaches, and is handed the
    /// later ones.
    const std::shared_ptr<const State>& state() const { return state_; }
    /// One screen at a time.
    [[nodiscard]] ScreenAttachment attach(ScreenPort<State>& screen) {
        Port<MainQueue>::current().assertCurrent();
        precondition(!link_->hasScreen(), "a controller has one screen at a time");
        link_ = std::make_shared<ScreenLink<State>>(&screen);
        return ScreenAttachment([link = link_] { link->cut(); });
    }

  protected:
    ScreenController() = default;
    ~ScreenController() { link_->cut(); }

    void publish(std::shared_ptr<const State> state, StateChange how = StateChange::immediate) {
        state_ = std::move(state);
        deliver([state = state_, how](ScreenPort<State>& screen) {
            screen.stateDidChange(state, how);
        });
    }
    /// The present state but for what `edit(state)` changes in it.
    template <class Edit>
    void change(Edit edit, StateChange how = StateChange::immediate) {
        auto next = std::make_shared<State>(*state_);
        edit(*next);
        publish(std::move(next), how);
    }
    void emit(ScreenEvent event) {
        deliver([event = std::move(event)](ScreenPort<State>& screen) { screen.emit(event); });
    }
    /// Whether a screen is attached. Only for what a page without one decides otherwise.
    bool hasScreen() const { return link_->hasScreen(); }

    /// A function for the main queue that calls `act(controller, ...)`, and does nothing when the
    /// controller has gone. Made on any queue.
    template <class Act>
    auto ifAlive(Act act) {
        return [weak = this->weak_from_this(), act = std::move(act)](auto&&... values) mutable {
            if (const auto self = weak.lock()) {
                act(*self, std::forward<decltype(values)>(values)...);
            }
        };
    }
    /// Any queue. Calls `act(controller)` later on the main queue, if it is still there by then.
    template <class Act>
    static void toMain(std::weak_ptr<Self> weak, Act act) {
        Port<MainQueue>::current().async([weak = std::move(weak), act = std::move(act)]() mutable {
            if (const auto self = weak.lock()) {
                act(*self);
            }
        });
    }

    /// Calls `work()` on the queue, and `done` with what it gives on the main queue. `work` holds
    /// values; it is not called when nobody wants the answer any more.
    template <class Work, class Done>
    [[nodiscard]] ScreenRequest load(DispatchQueue& queue, Work work, Done done) {
        using Answer = std::invoke_result_t<Work&>;
        const auto pending =
            std::make_shared<ScreenRequest::PendingAnswer<Answer>>(link_, std::move(done));
        queue.async([pending, work = std::move(work)]() mutable {
            if (pending->isWanted()) {
                Port<MainQueue>::current().async(
                    [pending, answer = work()]() mutable { pending->answer(std::move(answer)); });
            }
        });
        return ScreenRequest(pending);
    }

  private:
    void deliver(typename ScreenLink<State>::Call call) {
        MainQueue& mainQueue = Port<MainQueue>::current();
        mainQueue.assertCurrent();
        std::shared_ptr<Self> self = this->weak_from_this().lock();
        const auto link = link_;
        link->deliver(std::move(call));
        if (self.use_count() == 1) {
            // The screen has gone meanwhile; whoever called this goes on with the controller.
            mainQueue.async([self = std::move(self)] {});
        }
    }

    std::shared_ptr<const State> state_ = std::make_shared<const State>();
    std::shared_ptr<ScreenLink<State>> link_ = std::make_shared<ScreenLink<State>>(nullptr);
};

}  // namespace tavrion
