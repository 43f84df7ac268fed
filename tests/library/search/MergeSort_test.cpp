#include "library/search/MergeSort.h"

#include <gtest/gtest.h>

#include <random>

namespace tavrion {
namespace {

constexpr auto before = NSComparisonResult::ascending;
constexpr auto after = NSComparisonResult::descending;

TEST(MergeSort, aConsistentComparisonGivesAStableSort) {
    std::mt19937 random(5);
    for (std::size_t size = 0; size < 70; ++size) {
        std::vector<std::pair<unsigned, std::size_t>> values;
        for (std::size_t i = 0; i < size; ++i) {
            values.emplace_back(random() % 7, i);
        }
        auto expected = values;
        std::stable_sort(expected.begin(), expected.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        EXPECT_EQ(mergeSorted(values,
                              [](const auto& a, const auto& b) {
                                  if (a.first == b.first) {
                                      return NSComparisonResult::same;
                                  }
                                  return a.first < b.first ? before : after;
                              }),
                  expected);
    }
}

TEST(MergeSort, aComparisonThatContradictsItselfLosesNothing) {
    std::mt19937 random(6);
    for (std::size_t size = 0; size < 200; ++size) {
        std::vector<std::size_t> values(size);
        for (std::size_t i = 0; i < size; ++i) {
            values[i] = i;
        }
        auto sorted = mergeSorted(
            values, [&](std::size_t, std::size_t) { return random() % 2 == 0 ? before : after; });
        std::sort(sorted.begin(), sorted.end());
        EXPECT_EQ(sorted, values);
    }
}

TEST(MergeSort, whereTheLeftAlwaysWinsTheOrderStays) {
    const std::vector<int> values{3, 1, 2, 5, 4};
    EXPECT_EQ(mergeSorted(values, [](int, int) { return before; }), values);
}

TEST(MergeSort, theLeftValueIsTheEarlierOne) {
    std::vector<int> values{0, 1, 2, 3, 4, 5, 6};
    mergeSorted(values, [](int left, int right) {
        EXPECT_LT(left, right);
        return before;
    });
}

}  // namespace
}  // namespace tavrion
