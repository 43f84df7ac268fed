// The rule of life of screens and their controllers.

#include "kit/ScreenController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace tavrion {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct PageState {
    std::string text;
    int number = 0;
};

class PageController final : public ScreenController<PageController, PageState> {
  public:
    void show(const std::string& text, StateChange how = StateChange::immediate) {
        change([&](PageState& state) { state.text = text; }, how);
    }
    /// Goes on with the controller after each call of the screen.
    void showTwice(const std::string& first, const std::string& second) {
        show(first);
        shown_ = first;
        show(second);
        shown_ = second;
        emit(ScreenSignal::scrollToTop);
    }
    void lead(Route route) { emit(std::move(route)); }
    auto whenAlive() {
        return ifAlive([](PageController& self, const std::string& text) { self.show(text); });
    }
    auto later() {
        return [weak = weak_from_this()] {
            toMain(weak, [](PageController& self) { self.show("later"); });
        };
    }
    template <class Work>
    ScreenRequest loadText(Work work, std::function<void(std::string)> done) {
        return load(*queue_, std::move(work), std::move(done));
    }

  private:
    const std::shared_ptr<DispatchQueue> queue_ = DispatchQueue::serial("rows");
    std::string shown_;
};

class PageScreen final : public ScreenPort<PageState> {
  public:
    PageScreen()
        : controller(std::make_shared<PageController>()), attachment(controller->attach(*this)) {}
    void stateDidChange(std::shared_ptr<const PageState> state, StateChange how) override {
        told.push_back(state->text + (how == StateChange::animated ? ", animated" : ""));
        if (whenTold) {
            whenTold();
        }
        ended.push_back(state->text);
    }
    void emit(ScreenEvent event) override { events.push_back(std::move(event)); }

    std::vector<std::string> told;
    std::vector<std::string> ended;
    std::vector<ScreenEvent> events;
    std::function<void()> whenTold;
    std::shared_ptr<PageController> controller;
    ScreenAttachment attachment;
};

class ScreenControllerTest : public testing::Test {
  protected:
    void run() { mainQueue->runUntilIdle(); }
    std::shared_ptr<MainQueue> mainQueue = MainQueue::make();
    Port<MainQueue>::Plug plug{*mainQueue};
    std::optional<PageScreen> screen{std::in_place};
};

TEST_F(ScreenControllerTest, aStateIsHandedOverAndKept) {
    EXPECT_EQ(screen->controller->state()->text, "") << "there is one from the beginning";
    const auto before = screen->controller->state();
    screen->controller->show("one");
    screen->controller->show("two", StateChange::animated);
    EXPECT_THAT(screen->told, ElementsAre("one", "two, animated"));
    EXPECT_EQ(screen->controller->state()->text, "two");
    EXPECT_EQ(before->text, "") << "a state never changes";
}

TEST_F(ScreenControllerTest, valuesAreEmitted) {
    screen->controller->lead(DateRangeRoute{"HistoryDateRangeObject"});
    ASSERT_EQ(screen->events.size(), 1U);
    const Route* route = std::get_if<Route>(screen->events.data());
    ASSERT_NE(route, nullptr);
    EXPECT_EQ(std::get<DateRangeRoute>(*route), DateRangeRoute{"HistoryDateRangeObject"});
}

TEST_F(ScreenControllerTest, aScreenThatHasGoneIsToldNothingAndTheStateGoesOn) {
    screen->attachment.detach();
    screen->controller->showTwice("one", "two");
    EXPECT_THAT(screen->told, IsEmpty());
    EXPECT_THAT(screen->events, IsEmpty());
    EXPECT_EQ(screen->controller->state()->text, "two");
}

TEST_F(ScreenControllerTest, anotherScreenMayComeAfterTheFirst) {
    const auto controller = screen->controller;
    screen.reset();
    screen.emplace();
    screen->attachment = controller->attach(*screen);
    controller->show("one");
    EXPECT_THAT(screen->told, ElementsAre("one"));
}

TEST_F(ScreenControllerTest, goingAwayInsideACallEndsTheCalls) {
    screen->whenTold = [&] { screen->attachment.detach(); };
    screen->controller->showTwice("one", "two");
    EXPECT_THAT(screen->told, ElementsAre("one"));
    EXPECT_THAT(screen->events, IsEmpty());
}

TEST_F(ScreenControllerTest, aScreenMayEndItselfAndItsControllerInsideACall) {
    auto* page = new PageScreen();
    std::weak_ptr<PageController> watched = page->controller;
    page->whenTold = [&, page] {
        page->attachment.detach();
        page->controller.reset();
    };
    page->controller->showTwice("one", "two");
    EXPECT_THAT(page->told, ElementsAre("one"));
    EXPECT_FALSE(watched.expired()) << "its function ran to the end";
    run();
    EXPECT_TRUE(watched.expired());
    delete page;
}

TEST_F(ScreenControllerTest, whatAScreenCausesInsideACallComesAfterIt) {
    screen->whenTold = [&, first = true]() mutable {
        if (std::exchange(first, false)) {
            screen->controller->showTwice("two", "three");
            EXPECT_EQ(screen->controller->state()->text, "three") << "the state is there at once";
            EXPECT_THAT(screen->ended, IsEmpty());
        }
    };
    screen->controller->show("one");
    EXPECT_THAT(screen->told, ElementsAre("one", "two", "three"));
    EXPECT_THAT(screen->ended, ElementsAre("one", "two", "three"));
    EXPECT_EQ(screen->events.size(), 1U);
}

TEST_F(ScreenControllerTest, functionsForLaterDoNothingAfterTheController) {
    const auto act = screen->controller->whenAlive();
    const auto later = screen->controller->later();
    auto spoken = act;
    spoken("one");
    later();
    run();
    EXPECT_THAT(screen->told, ElementsAre("one", "later"));
    later();
    screen->controller.reset();
    spoken("two");
    run();
    EXPECT_THAT(screen->told, ElementsAre("one", "later"));
}

// What is asked for

TEST_F(ScreenControllerTest, anAnswerComesOnTheMainQueue) {
    std::string answer;
    const ScreenRequest request = screen->controller->loadText(
        [this] { return std::string(mainQueue->isCurrent() ? "main" : "elsewhere"); },
        [&](const std::string& text) {
            mainQueue->assertCurrent();
            answer = text;
        });
    EXPECT_TRUE(request.isPending());
    run();
    EXPECT_EQ(answer, "elsewhere");
    EXPECT_FALSE(request.isPending());
}

/// A request whose work waits until it is let go on.
class HeldRequest : public ScreenControllerTest {
  protected:
    HeldRequest() {
        request = screen->controller->loadText(
            [this] {
                begun.set_value();
                goOn.get_future().wait();
                return std::string("late");
            },
            [this, kept = std::shared_ptr<int>(kept)](const std::string&) { ++answers; });
        begun.get_future().wait();
    }
    void letGoOn() {
        goOn.set_value();
        run();
    }
    std::promise<void> begun;
    std::promise<void> goOn;
    int answers = 0;
    std::shared_ptr<int> kept = std::make_shared<int>();
    ScreenRequest request;
};

TEST_F(HeldRequest, theEndOfARequestCancelsIt) {
    EXPECT_EQ(kept.use_count(), 2);
    request = {};
    EXPECT_EQ(kept.use_count(), 1) << "the answer's function is dropped at once";
    letGoOn();
    EXPECT_EQ(answers, 0);
}

TEST_F(HeldRequest, anAnswerThatIsAlreadyOnItsWayIsCancelledToo) {
    goOn.set_value();
    while (DispatchActivity::count() != 0) {
        std::this_thread::yield();
    }
    request.cancel();
    run();
    EXPECT_EQ(answers, 0);
}

TEST_F(HeldRequest, theEndOfTheScreenCancelsWhatItAskedFor) {
    screen->attachment.detach();
    EXPECT_FALSE(request.isPending());
    letGoOn();
    EXPECT_EQ(answers, 0);
}

TEST_F(HeldRequest, theEndOfTheControllerWaitsForNothingAndCancelsToo) {
    screen->controller.reset();
    EXPECT_FALSE(request.isPending());
    letGoOn();
    EXPECT_EQ(answers, 0);
}

TEST_F(HeldRequest, workThatHasNotBegunIsNotDoneForNobody) {
    int worked = 0;
    const auto count = [&worked] {
        ++worked;
        return std::string();
    };
    ScreenRequest second = screen->controller->loadText(count, [](const std::string&) {});
    const ScreenRequest third = screen->controller->loadText(count, [](const std::string&) {});
    second.cancel();
    letGoOn();
    EXPECT_EQ(worked, 1);
    EXPECT_EQ(answers, 1);
}

}  // namespace
}  // namespace tavrion
