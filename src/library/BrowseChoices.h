// What the list of the library is grouped and sorted by.
//
// Queue: any; a value. Absent: a choice that was never stored reads as songs, alphabetical, not
// reversed.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "library/RVSortType.h"
#include "platform/mediaplayer/MPMediaItemCollection.h"

namespace tavrion {

struct BrowseChoices {
    MPMediaGrouping groupType = MPMediaGrouping::title;
    RVSortType sortType = RVSortTypeAlphabetical;
    bool reverse = false;

    static constexpr const char* groupTypeKey = "browse.groupType";
    static constexpr const char* sortTypeKey = "browse.sortType";
    static constexpr const char* reverseKey = "browse.reverse";

    /// What the user chose last. A grouping that is not offered is kept as it is.
    static BrowseChoices stored();

    /// Of the two menus, in their order.
    static std::vector<std::string> groupTitles();
    static std::vector<std::string> sortTitles();
    /// Between the place in the menu and what is stored. What is not offered reads as songs.
    static MPMediaGrouping groupingForIndex(std::size_t index);
    static std::size_t indexForGrouping(MPMediaGrouping grouping);

    bool operator==(const BrowseChoices&) const = default;
};

}  // namespace tavrion
