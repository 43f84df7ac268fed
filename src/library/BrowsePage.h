// What the library tab shows, as a value.
//
// Queue: any; an immutable value once published, cheap to copy. Absent: see each.
#pragma once

#include <optional>
#include <vector>

#include "kit/NSAttributedString.h"
#include "library/BrowseChoices.h"
#include "library/EntityRows.h"
#include "library/RVStatistic.h"
#include "library/search/LibrarySearch.h"

namespace tavrion {

/// How the sections are arranged.
enum class BrowseLayout { library, search };

struct BrowsePage {
    /// Until the first list is there.
    bool isLoading = true;
    /// From the first touch of the search bar until it is cancelled.
    bool isSearchActive = false;
    bool hidesSearchBarWhenScrolling = false;
    BrowseChoices choices;
    /// Eight empty tiles, which only tell the places apart; other ones mean that all are worked out
    /// again. None while the library is searched.
    std::vector<RVStatisticReference> statistics;
    /// Absent while the list has no section of its own: an empty library at the first look, and
    /// while hits are on view.
    std::optional<EntityRows> list;
    /// The hits of a search, in place of everything else.
    SearchSnapshot search;
    BrowseLayout layout = BrowseLayout::library;

    /// Of the button that opens the groupings.
    NSAttributedString groupingButtonTitle() const;
    /// Of the button that opens the sorts.
    NSAttributedString sortButtonTitle() const;
};

/// The library as it is grouped and sorted by the choices. Walks it: not on the main queue.
EntityRows libraryList(const BrowseChoices& choices);

}  // namespace tavrion
