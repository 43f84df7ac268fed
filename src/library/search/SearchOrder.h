// The order of the hits of a search: what it promises, and how it is come to.
//
// Queue: any. Stateless.
//
// A hit has a flag for each way in which its name matches the term. Of two hits the one with a flag
// that the other lacks goes first; where both have such a flag, the one that the sort hands in as
// the left; where neither has, the alphabet decides. Pairs of the middle kind have no agreed order,
// so the comparison contradicts itself, and the result is defined as what mergeSorted() makes of
// the hits in the order in which they were found: the same list comes out the same everywhere.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/foundation/NSString+Entended.h"

namespace tavrion {

/// How well a text matches a term. Exact is without regard to case, the others with it. An empty
/// text has none.
inline constexpr std::uint8_t exactFlag = 1U;
inline constexpr std::uint8_t prefixFlag = 2U;
inline constexpr std::uint8_t containsFlag = 4U;
std::uint8_t searchFlags(std::string_view text, std::string_view term);
/// The last two of them.
std::uint8_t caseSensitiveFlags(std::string_view text, std::string_view term);

/// The one comparison. `alphabet()` compares the names.
template <class Alphabet>
NSComparisonResult compareHits(unsigned leftFlags, unsigned rightFlags, const Alphabet& alphabet) {
    if ((leftFlags & ~rightFlags) != 0) {
        return NSComparisonResult::ascending;
    }
    return (rightFlags & ~leftFlags) != 0 ? NSComparisonResult::descending : alphabet();
}

/// A hit whose name was turned into a number.
struct RankedHit {
    /// Of the entity in its list.
    std::uint32_t place = 0;
    /// Of its name in the alphabet; the same for names that compare as the same.
    std::uint32_t alphabetRank = 0;
    /// See searchFlags().
    std::uint8_t flags = 0;
    bool operator==(const RankedHit&) const = default;
};

/// The order of such hits, sooner than by the merge sort: wherever all hits that a merge has met so
/// far agree on an order, it can only have come to that one, as any stable sort does; only the
/// other merges are made.
std::vector<RankedHit> inSearchOrder(std::vector<RankedHit> hits);

}  // namespace tavrion
