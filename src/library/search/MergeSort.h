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
#include <utility>
#include <vector>

#include "platform/foundation/NSString+Entended.h"

namespace tavrion {

/// `compare(left, right)` gives an NSComparisonResult; `right` goes first where it says descending.
template <class T, class Compare>
std::vector<T> mergeSorted(std::vector<T> values, const Compare& compare) {
    std::vector<T> merged(values.size());
    for (std::size_t width = 1; width < values.size(); width *= 2) {
        for (std::size_t start = 0; start < values.size(); start += 2 * width) {
            const std::size_t middle = std::min(start + width, values.size());
            const std::size_t end = std::min(middle + width, values.size());
            std::size_t left = start;
            std::size_t right = middle;
            for (std::size_t out = start; out < end; ++out) {
                const bool takesRight =
                    left == middle || (right < end && compare(values[left], values[right]) ==
                                                          NSComparisonResult::descending);
                merged[out] = std::move(takesRight ? values[right++] : values[left++]);
            }
        }
        std::swap(values, merged);
    }
    return values;
}

}  // namespace tavrion
