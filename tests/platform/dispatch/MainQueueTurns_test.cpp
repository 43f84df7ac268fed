// How the main queue lets a toolkit's loop drive it: the budget of a turn, and when it wakes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "platform/dispatch/MainQueue.h"
#include "tests/platform/dispatch/DispatchTest.h"

namespace tavrion {
namespace {

using ::testing::ElementsAre;

class MainQueueTurnsTest : public test::DispatchTest {
  protected:
    MainQueueTurnsTest() {
        mainQueue->setWakeFunction([this] { ++wakes; });
    }
    ~MainQueueTurnsTest() override {
        // What a test leaves queued still uses the members.
        mainQueue->runUntilIdle();
    }
    void spend(std::chrono::milliseconds time) {
        mainQueue->async([time] { std::this_thread::sleep_for(time); });
    }
    void queueNumber(int number) {
        mainQueue->async([this, number] { ran.push_back(number); });
    }

    std::atomic<int> wakes{0};
    std::vector<int> ran;
};

TEST_F(MainQueueTurnsTest, aTurnEndsWhenItsBudgetIsSpent) {
    queueNumber(1);
    spend(std::chrono::milliseconds(20));
    queueNumber(2);
    queueNumber(3);
    EXPECT_TRUE(mainQueue->runPending(0.01));
    EXPECT_THAT(ran, ElementsAre(1));
    EXPECT_FALSE(mainQueue->runPending(10)) << "what was left";
    EXPECT_THAT(ran, ElementsAre(1, 2, 3));
}

TEST_F(MainQueueTurnsTest, aTurnWithoutBudgetRunsOnePiece) {
    queueNumber(1);
    queueNumber(2);
    EXPECT_TRUE(mainQueue->runPending(0.0));
    EXPECT_THAT(ran, ElementsAre(1));
    EXPECT_FALSE(mainQueue->runPending(0.0)) << "nothing is left after the last piece";
    EXPECT_THAT(ran, ElementsAre(1, 2));
    EXPECT_FALSE(mainQueue->runPending(0.0));
}

TEST_F(MainQueueTurnsTest, workThatQueuesItselfAgainEndsATurn) {
    int rounds = 0;
    std::function<void()> again = [&] {
        if (++rounds < 1000000) {
            mainQueue->async(again);
        }
    };
    mainQueue->async(again);
    EXPECT_TRUE(mainQueue->runPending(0.005));
    EXPECT_LT(rounds, 1000000);
    rounds = 1000000;
    EXPECT_FALSE(mainQueue->runPending(1));
}

TEST_F(MainQueueTurnsTest, theFirstWorkWakesAndTheNextDoesNot) {
    queueNumber(1);
    queueNumber(2);
    EXPECT_EQ(wakes, 1);
    EXPECT_EQ(mainQueue->runPending(), 2U);
    queueNumber(3);
    EXPECT_EQ(wakes, 2) << "the queue was empty";
    EXPECT_FALSE(mainQueue->runPending(1));
    queueNumber(4);
    EXPECT_EQ(wakes, 3);
}

TEST_F(MainQueueTurnsTest, whatWorkQueuesWhileTheLoopIsHereWakesNobody) {
    mainQueue->async([this] { queueNumber(1); });
    EXPECT_FALSE(mainQueue->runPending(1));
    EXPECT_THAT(ran, ElementsAre(1));
    EXPECT_EQ(wakes, 1);
}

TEST_F(MainQueueTurnsTest, aCallerWithMoreToRunComesAgainByItself) {
    queueNumber(1);
    queueNumber(2);
    EXPECT_TRUE(mainQueue->runPending(0.0));
    queueNumber(3);
    EXPECT_EQ(wakes, 1);
    EXPECT_FALSE(mainQueue->runPending(1));
    EXPECT_THAT(ran, ElementsAre(1, 2, 3));
    queueNumber(4);
    EXPECT_EQ(wakes, 2);
}

TEST_F(MainQueueTurnsTest, theLastPieceOfASpentTurnLetsTheNextWorkWake) {
    queueNumber(1);
    EXPECT_FALSE(mainQueue->runPending(0.0));
    queueNumber(2);
    EXPECT_EQ(wakes, 2);
}

TEST_F(MainQueueTurnsTest, aLoopThatLeavesWorkBehindWakesForIt) {
    queueNumber(1);
    queueNumber(2);
    mainQueue->runUntil([this] { return !ran.empty(); });
    EXPECT_EQ(wakes, 2) << "nobody else would come for the second";
    mainQueue->runUntilIdle();
    mainQueue->runUntil([] { return true; });
    EXPECT_EQ(wakes, 2);
}

TEST_F(MainQueueTurnsTest, noWorkIsForgottenHoweverTurnsAndCallsMeet) {
    // A loop that comes only when it is woken, or when a turn left something.
    constexpr int pieces = 20000;
    constexpr int callers = 3;
    std::atomic<int> done{0};
    std::vector<std::thread> threads;
    threads.reserve(callers);
    for (int caller = 0; caller < callers; ++caller) {
        threads.emplace_back([&] {
            for (int piece = 0; piece < pieces; ++piece) {
                mainQueue->async([&] { ++done; });
            }
        });
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    int seen = 0;
    while (done < callers * pieces && std::chrono::steady_clock::now() < deadline) {
        if (const int woken = wakes; woken != seen) {
            seen = woken;
            while (mainQueue->runPending(0.00001)) {
            }
        }
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(done, callers * pieces);
    EXPECT_LE(wakes, callers * pieces);
}

}  // namespace
}  // namespace tavrion
