// Puts the entities of a list in order by a key that is worked out once for each.
//
// Queue: any. Stateless. All sorts are stable in both directions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/NSDate.h"

namespace tavrion::SortedEntities {

/// A number that is ordered as the value it was made from.
using Key = std::uint64_t;
constexpr Key keyOf(std::uint64_t count) {
    return count;
}
Key keyOf(double number);
/// Absent is smaller than every date.
Key keyOf(const std::optional<NSDate>& date);

/// The places of the keys in ascending or descending order.
std::vector<std::uint32_t> order(const std::vector<Key>& keys, bool ascending);
/// The places of the names in the order of smartAlphabeticalCompare.
std::vector<std::uint32_t> alphabeticalOrder(const std::vector<std::optional<std::string>>& names,
                                             bool ascending);

}  // namespace tavrion::SortedEntities
