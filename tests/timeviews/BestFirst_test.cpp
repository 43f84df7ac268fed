// The best of many, handed out one after the other.

#include "timeviews/BestFirst.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <random>

namespace tavrion {
namespace {

std::vector<int> shuffled(int count) {
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937(3));
    return numbers;
}

TEST(BestElements, theBestAreKeptInOrder) {
    BestElements<int, std::less<int>> best(3, {});
    EXPECT_FALSE(best.isFull());
    for (const int number : shuffled(100)) {
        best.offer(number);
    }
    EXPECT_TRUE(best.isFull());
    EXPECT_EQ(best.worst(), 97);
    EXPECT_EQ(best.take(), (std::vector<int>{99, 98, 97}));
}

TEST(BestElements, fewerThanAskedForAreAllKept) {
    BestElements<int, std::less<int>> best(5, {});
    best.offer(1);
    best.offer(2);
    EXPECT_FALSE(best.isFull());
    EXPECT_EQ(best.take(), (std::vector<int>{2, 1}));
}

class BestFirstTest : public testing::TestWithParam<int> {};

/// Also where the number of elements is just that of a batch, or of several.
TEST_P(BestFirstTest, allComeInOrderAndTheBestCostOneLook) {
    const std::vector<int> numbers = shuffled(GetParam());
    int looks = 0;
    auto best = bestFirst<int>(4, [&](std::size_t most, const int* after) {
        ++looks;
        BestElements<int, std::less<int>> picked(most, {});
        for (const int number : numbers) {
            if (after == nullptr || number < *after) {
                picked.offer(number);
            }
        }
        return picked.take();
    });
    for (int expected = GetParam() - 1; expected >= 0; --expected) {
        const int* next = best.next();
        ASSERT_NE(next, nullptr);
        EXPECT_EQ(*next, expected);
        if (expected == GetParam() - 4) {
            EXPECT_EQ(looks, 1);
        }
    }
    EXPECT_EQ(best.next(), nullptr);
    EXPECT_EQ(best.next(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Sizes, BestFirstTest, testing::Values(0, 1, 3, 4, 5, 19, 20, 21, 84, 100));

}  // namespace
}  // namespace tavrion
