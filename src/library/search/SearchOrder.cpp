#include "library/search/SearchOrder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <span>

#include "library/search/MergeSort.h"

namespace tavrion {

namespace {

using Hits = std::span<RankedHit>;

constexpr unsigned flagSetCount = 8;
/// Shorter lists are sorted by comparing.
constexpr std::size_t fewHits = 512;
constexpr unsigned digitBits = 11;

bool contradict(unsigned flags, unsigned others) {
    return (flags & ~others) != 0 && (others & ~flags) != 0;
}

/// Whether the comparison of these hits is a true order.
bool agree(Hits hits) {
    std::array<bool, flagSetCount> occurs{};
    for (const RankedHit& hit : hits) {
        occurs[hit.flags] = true;
    }
    for (unsigned flags = 0; flags < flagSetCount; ++flags) {
        for (unsigned others = 0; others < flags; ++others) {
            if (occurs[flags] && occurs[others] && contradict(flags, others)) {
                return false;
            }
        }
    }
    return true;
}

/// A number in the order of the hits, as long as these agree: of two that do, the one with more
/// flags has all of the other's.
std::uint64_t orderOf(const RankedHit& hit) {
    const auto missing = static_cast<std::uint64_t>(3 - std::popcount(unsigned{hit.flags}));
    return missing << 32U | hit.alphabetRank;
}

/// Sorts by one digit of the order, stably, from one place to another.
void sortByDigit(Hits from, Hits to, unsigned shift) {
    constexpr std::uint64_t mask = (1U << digitBits) - 1;
    std::array<std::size_t, mask + 2> starts{};
    for (const RankedHit& hit : from) {
        ++starts[(orderOf(hit) >> shift & mask) + 1];
    }
    for (std::size_t digit = 1; digit < starts.size(); ++digit) {
        starts[digit] += starts[digit - 1];
    }
    for (const RankedHit& hit : from) {
        to[starts[orderOf(hit) >> shift & mask]++] = hit;
    }
}

void sortAgreed(Hits hits, Hits scratch) {
    if (hits.size() < fewHits) {
        std::stable_sort(hits.begin(), hits.end(), [](const RankedHit& a, const RankedHit& b) {
            return orderOf(a) < orderOf(b);
        });
        return;
    }
    std::uint64_t differing = 0;
    for (const RankedHit& hit : hits) {
        differing |= orderOf(hit) ^ orderOf(hits.front());
    }
    const auto bits = static_cast<unsigned>(std::bit_width(differing));
    const Hits whole = hits;
    for (unsigned shift = 0; shift < bits; shift += digitBits) {
        if ((differing >> shift & ((1U << digitBits) - 1)) != 0) {
            sortByDigit(hits, scratch, shift);
            std::swap(hits, scratch);
        }
    }
    if (hits.data() != whole.data()) {
        std::copy(hits.begin(), hits.end(), whole.begin());
    }
}

NSComparisonResult compare(const RankedHit& left, const RankedHit& right) {
    return compareHits(left.flags, right.flags, [&] {
        if (left.alphabetRank == right.alphabetRank) {
            return NSComparisonResult::same;
        }
        return left.alphabetRank < right.alphabetRank ? NSComparisonResult::ascending
                                                      : NSComparisonResult::descending;
    });
}

/// The merges of mergeSorted() as a tree: its last one is of the greatest power of two that leaves
/// something to its right, and so on in both halves.
// NOLINTNEXTLINE(misc-no-recursion): as deep as the logarithm of the count
void sortAsMerged(Hits hits, Hits scratch) {
    if (hits.size() < 2) {
        return;
    }
    if (agree(hits)) {
        sortAgreed(hits, scratch);
        return;
    }
    const std::size_t middle = std::bit_floor(hits.size() - 1);
    sortAsMerged(hits.first(middle), scratch.first(middle));
    sortAsMerged(hits.subspan(middle), scratch.subspan(middle));
    mergeNeighbours(hits, middle, scratch, compare);
    std::copy(scratch.begin(), scratch.end(), hits.begin());
}

}  // namespace

std::uint8_t caseSensitiveFlags(std::string_view text, std::string_view term) {
    if (text.empty()) {
        return 0;
    }
    const bool isPrefix = text.starts_with(term);
    const bool contains = isPrefix || text.find(term) != std::string_view::npos;
    return static_cast<std::uint8_t>((isPrefix ? prefixFlag : 0) | (contains ? containsFlag : 0));
}

std::uint8_t searchFlags(std::string_view text, std::string_view term) {
    if (text.empty()) {
        return 0;
    }
    const bool isExact = localizedCaseInsensitiveCompare(text, term) == NSComparisonResult::same;
    return static_cast<std::uint8_t>((isExact ? exactFlag : 0) | caseSensitiveFlags(text, term));
}

std::vector<RankedHit> inSearchOrder(std::vector<RankedHit> hits) {
    std::vector<RankedHit> scratch(hits.size());
    sortAsMerged(hits, scratch);
    return hits;
}

}  // namespace tavrion
