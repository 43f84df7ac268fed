// Looks for the terms that are typed into the search bar of the library page.
//
// Queue: the functions on the main queue. Hits are found on a queue of the search's own, one term
// at a time; the next term cancels what waits and keeps what runs from being shown, though it runs
// to its end. Who owns: the page's controller; when that goes, nobody waits, and what is found then
// reaches nobody. Absent: results without a search are empty lists.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "library/search/LibrarySearch.h"
#include "platform/dispatch/NSOperationQueue.h"

namespace tavrion {

class BrowseSearch {
  public:
    using Found = std::function<void(const SearchSnapshot&)>;

    BrowseSearch();
    ~BrowseSearch() { cancel(); }
    BrowseSearch(const BrowseSearch&) = delete;
    BrowseSearch& operator=(const BrowseSearch&) = delete;

    /// Makes ready for the first term while the user reaches for the first key. A term that is
    /// looked for meanwhile goes on.
    void prepare();
    /// The term is not empty. `found` is called later on the main queue, unless another term came
    /// by then, the search was cancelled or it has gone.
    void look(std::string term, Found found);
    /// Hits that come late are not shown.
    void cancel();

    /// All hits of the term that was looked for last, also of one that was cancelled while it ran.
    std::shared_ptr<const SearchResults> results() const;
    void forgetResults();

  private:
    struct Shared;
    const std::shared_ptr<Shared> shared_;
    NSOperationQueue searchQueue_;
    std::shared_ptr<NSBlockOperation> lastOperation_;
};

}  // namespace tavrion
