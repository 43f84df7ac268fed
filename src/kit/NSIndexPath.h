// Where a row stands in a list of sections.
//
// Queue: any; a value. Both count from 0.
#pragma once

#include <compare>
#include <cstddef>

namespace tavrion {

struct NSIndexPath {
    std::size_t section = 0;
    std::size_t row = 0;
    auto operator<=>(const NSIndexPath&) const = default;
};

}  // namespace tavrion
