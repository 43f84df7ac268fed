// A sort for comparisons that contradict themselves.
//
// Queue: any. Stateless. The sorts of the standard library demand a strict weak order and may do
// anything at all, reading outside of the range included, without one; so do the stable ones. This
// one asks for nothing: it looks at every pair once, always hands in the earlier value as the left
// one, and gives each value back exactly once. For a consistent comparison it is a stable sort; for
// another the result follows from the values and their places alone, so that the same list comes
// out the same everywhere.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "platform/foundation/NSString+Entended.h"

namespace tavrion {

/// One merge of two neighbours, each in order, into `merged`, which has room for both.
/// `compare(left, right)` gives an NSComparisonResult; `right` goes first where it says descending.
template <class T, class Compare>
void mergeNeighbours(std::span<T> values, std::size_t middle, std::span<T> merged,
                     const Compare& compare) {
    std::size_t left = 0;
    std::size_t right = middle;
    for (std::size_t out = 0; out < values.size(); ++out) {
        const bool takesRight =
            left == middle || (right < values.size() && compare(values[left], values[right]) ==
                                                            NSComparisonResult::descending);
        merged[out] = std::move(takesRight ? values[right++] : values[left++]);
    }
}

/// Neighbours of one value, then of two, of four and so on are merged.
template <class T, class Compare>
std::vector<T> mergeSorted(std::vector<T> values, const Compare& compare) {
    std::vector<T> merged(values.size());
    for (std::size_t width = 1; width < values.size(); width *= 2) {
        for (std::size_t start = 0; start < values.size(); start += 2 * width) {
            const std::size_t count = std::min(2 * width, values.size() - start);
            mergeNeighbours(std::span(values).subspan(start, count), std::min(width, count),
                            std::span(merged).subspan(start, count), compare);
        }
        std::swap(values, merged);
    }
    return values;
}

}  // namespace tavrion
