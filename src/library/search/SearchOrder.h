// The order of hits whose names were turned into numbers: what a merge sort makes of them, sooner.
//
// Queue: any. Stateless. The comparison of hits contradicts itself where one hit has a flag that
// the other lacks and the other way round, so the result depends on how a merge sort happens to
// meet them. Wherever no such pair is among the hits that a merge has met so far, it can only have
// come to the one sorted order, and any stable sort comes to the same; only the other merges are
// made.
#pragma once

#include <cstdint>
#include <vector>

namespace tavrion {

struct RankedHit {
    /// Of the entity in its list.
    std::uint32_t place = 0;
    /// Of its name in the alphabet; the same for names that compare as the same.
    std::uint32_t alphabetRank = 0;
    /// See searchFlags().
    std::uint8_t flags = 0;
    bool operator==(const RankedHit&) const = default;
};

/// As mergeSorted() with searchComparison() orders them.
std::vector<RankedHit> inSearchOrder(std::vector<RankedHit> hits);

}  // namespace tavrion
