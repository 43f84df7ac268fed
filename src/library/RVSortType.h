// What a list of the library is sorted by. The number is the index in the sort menu, and what is
// stored; any other number is no sort.
//
// Queue: any.
#pragma once

#include <cstdint>

namespace tavrion {

using RVSortType = std::uint64_t;
inline constexpr RVSortType RVSortTypeAlphabetical = 0;
inline constexpr RVSortType RVSortTypePlayCount = 1;
inline constexpr RVSortType RVSortTypeLastPlayed = 2;
inline constexpr RVSortType RVSortTypeTimeListened = 3;
inline constexpr RVSortType RVSortTypeDateAdded = 4;
inline constexpr RVSortType RVSortTypeReleaseDate = 5;

}  // namespace tavrion
