// The search bar of the library page: what typing into it does to the page.
//
// Queue: the functions on the main queue. Hits are found on a queue of the search's own, one term
// at a time; the next keystroke cancels what waits and keeps what runs from being shown, though it
// runs to its end. Who owns: the page, which outlives its search; work that comes late finds no
// page and shows nothing. Absent: an empty term changes nothing, so that emptying the bar leaves
// the last hits on view.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "library/search/LibrarySearch.h"
#include "platform/dispatch/DispatchQueue.h"

namespace tavrion {

class BrowseSearch {
  public:
    /// The page that is searched.
    class Page {
      public:
        Page() = default;
        virtual ~Page() = default;
        Page(const Page&) = delete;
        Page& operator=(const Page&) = delete;

        /// On the queue of the page's lists. Makes ready, and what it gives then runs on the main
        /// queue: takes the statistics, and the controls with them, off the view.
        virtual Work withoutStatistics() = 0;
        /// The same for the whole library again: fresh statistics, and the list as it was. Also an
        /// empty list has its section.
        virtual Work libraryAgain() = 0;
        /// On the main queue. Shows the sections in place of everything else, in the layout of a
        /// search, which is set anew each time.
        virtual void showSearch(const SearchSnapshot& sections) = 0;
    };
    /// Where "See All" leads.
    struct AllResults {
        /// The search bar's text as typed.
        std::string title;
        FoundEntities entities;
    };
    enum class State { idle, editing, searching };

    BrowseSearch(Page& page, std::shared_ptr<DispatchQueue> dataSourceTaskQueue);
    ~BrowseSearch();
    BrowseSearch(const BrowseSearch&) = delete;
    BrowseSearch& operator=(const BrowseSearch&) = delete;

    void searchBarTextDidBeginEditing();
    /// With the text of the bar, at each change.
    void updateSearchResultsForSearchController(std::string_view searchBarText);
    void searchBarCancelButtonClicked();
    /// Absent for a tag that belongs to no list.
    std::optional<AllResults> showAllResults(std::uint64_t actionButtonTag) const;

    State state() const;
    /// All hits of the term that was looked for last; empty lists before and after a search.
    std::shared_ptr<const SearchResults> results() const;

  private:
    struct Shared;
    std::shared_ptr<Shared> shared_;
};

}  // namespace tavrion
