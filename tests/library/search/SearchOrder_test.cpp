#include "library/search/SearchOrder.h"

#include <gtest/gtest.h>

#include <random>

#include "library/search/MergeSort.h"

namespace tavrion {
namespace {

using Hits = std::vector<RankedHit>;

NSComparisonResult compare(const RankedHit& left, const RankedHit& right) {
    if ((left.flags & ~right.flags) != 0) {
        return NSComparisonResult::ascending;
    }
    if ((right.flags & ~left.flags) != 0 || left.alphabetRank > right.alphabetRank) {
        return NSComparisonResult::descending;
    }
    return left.alphabetRank < right.alphabetRank ? NSComparisonResult::ascending
                                                  : NSComparisonResult::same;
}

Hits randomHits(std::mt19937& random, unsigned count, unsigned ranks,
                const std::vector<std::uint8_t>& commonFlags, unsigned rareOneIn) {
    Hits hits;
    for (unsigned place = 0; place < count; ++place) {
        const bool isRare = rareOneIn != 0 && random() % rareOneIn == 0;
        const auto flags = isRare ? static_cast<std::uint8_t>(random() % 8)
                                  : commonFlags[random() % commonFlags.size()];
        hits.push_back({place, static_cast<std::uint32_t>(random() % ranks), flags});
    }
    return hits;
}

TEST(SearchOrder, ofAnyHitsIsThatOfTheMergeSort) {
    std::mt19937 random(3);
    for (const unsigned count : {0U, 1U, 2U, 3U, 5U, 17U, 511U, 512U, 1000U, 4097U, 20000U}) {
        for (const unsigned ranks : {1U, 7U, 3000U, 5'000'000U}) {
            for (const unsigned rareOneIn : {0U, 1U, 50U, 3000U}) {
                const Hits hits = randomHits(random, count, ranks, {0, 4, 6, 7}, rareOneIn);
                ASSERT_EQ(inSearchOrder(hits), mergeSorted(hits, compare))
                    << count << " hits of " << ranks << " names, one in " << rareOneIn;
            }
        }
    }
}

TEST(SearchOrder, hitsThatAreTheSameKeepTheirOrder) {
    Hits hits(3000, RankedHit{0, 5, 4});
    for (std::uint32_t place = 0; place < hits.size(); ++place) {
        hits[place].place = place;
    }
    EXPECT_EQ(inSearchOrder(hits), hits);
}

}  // namespace
}  // namespace tavrion
