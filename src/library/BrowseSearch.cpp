#include "library/BrowseSearch.h"

#include <utility>

#include "library/search/SearchTerm.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/dispatch/NSOperationQueue.h"
#include "platform/foundation/Mutex.h"

namespace tavrion {

struct BrowseSearch::Shared {
    Shared(Page& searched, std::shared_ptr<DispatchQueue> lists)
        : page(&searched), dataSourceTaskQueue(std::move(lists)) {
        searchQueue.setMaxConcurrentOperationCount(1);
    }

    void setResults(std::shared_ptr<const SearchResults> found) {
        MutexLock lock(mutex);
        results = std::move(found);
    }

    /// Null once the page has gone. Main queue.
    Page* page;
    /// Main queue.
    State state = State::idle;
    std::string typed;
    std::shared_ptr<NSBlockOperation> lastOperation;

    const std::shared_ptr<DispatchQueue> dataSourceTaskQueue;
    NSOperationQueue searchQueue;
    /// Used by one operation at a time.
    LibrarySearch search;

    Mutex mutex;
    std::shared_ptr<const SearchResults> results TAVRION_GUARDED_BY(mutex) =
        std::make_shared<const SearchResults>();
};

namespace {

/// Makes ready on one queue and shows on the main queue; `then` runs after that.
template <class Shared>
void prepareAndShow(const std::shared_ptr<Shared>& shared, Work (BrowseSearch::Page::*prepare)(),
                    Work then) {
    // The page stays until the main queue has seen its end, and its lists' queue runs no more work
    // of its search from then on: see ~BrowseSearch.
    shared->dataSourceTaskQueue->async([shared, prepare, then = std::move(then)] {
        if (BrowseSearch::Page* page = shared->page; page != nullptr) {
            Work show = (page->*prepare)();
            Port<MainQueue>::current().async([shared, show = std::move(show), then] {
                if (shared->page != nullptr) {
                    show();
                    then();
                }
            });
        }
    });
}

}  // namespace

BrowseSearch::BrowseSearch(Page& page, std::shared_ptr<DispatchQueue> dataSourceTaskQueue)
    : shared_(std::make_shared<Shared>(page, std::move(dataSourceTaskQueue))) {}

BrowseSearch::~BrowseSearch() {
    if (shared_->lastOperation) {
        shared_->lastOperation->cancel();
    }
    shared_->dataSourceTaskQueue->sync([this] { shared_->page = nullptr; });
}

void BrowseSearch::searchBarTextDidBeginEditing() {
    Port<MainQueue>::current().assertCurrent();
    shared_->state = State::editing;
    // While the user reaches for the first key.
    auto preparation = std::make_shared<NSBlockOperation>();
    preparation->addExecutionBlock([shared = shared_] { shared->search.prepare(); });
    shared_->searchQueue.addOperation(std::move(preparation));
    prepareAndShow(shared_, &Page::withoutStatistics, [] {});
}

void BrowseSearch::updateSearchResultsForSearchController(std::string_view searchBarText) {
    Port<MainQueue>::current().assertCurrent();
    shared_->typed = searchBarText;
    const std::string term(trimmedTerm(searchBarText));
    if (term.empty()) {
        return;
    }
    // The one before is the only one that is not cancelled yet.
    if (shared_->lastOperation) {
        shared_->lastOperation->cancel();
    }
    shared_->state = State::searching;
    auto operation = std::make_shared<NSBlockOperation>();
    shared_->lastOperation = operation;
    const auto snapshot = std::make_shared<SearchSnapshot>();
    operation->addExecutionBlock([shared = shared_, snapshot, term] {
        auto found = std::make_shared<const SearchResults>(shared->search.results(term));
        *snapshot = searchSnapshotOf(*found);
        shared->setResults(std::move(found));
    });
    operation->addExecutionBlock([shared = shared_, snapshot, weak = std::weak_ptr(operation)] {
        Port<MainQueue>::current().async([shared, snapshot, operation = weak.lock()] {
            // Asked here, since the next key may have been typed on the way.
            if (shared->page != nullptr && operation && !operation->isCancelled()) {
                shared->page->showSearch(*snapshot);
            }
        });
    });
    shared_->searchQueue.addOperation(std::move(operation));
}

void BrowseSearch::searchBarCancelButtonClicked() {
    Port<MainQueue>::current().assertCurrent();
    // Hits that come late must not cover the library.
    if (shared_->lastOperation) {
        shared_->lastOperation->cancel();
    }
    shared_->state = State::idle;
    shared_->typed.clear();
    prepareAndShow(shared_, &Page::libraryAgain, [shared = std::weak_ptr(shared_)] {
        if (const auto living = shared.lock()) {
            living->setResults(std::make_shared<const SearchResults>());
        }
    });
}

std::optional<BrowseSearch::AllResults> BrowseSearch::showAllResults(
    std::uint64_t actionButtonTag) const {
    Port<MainQueue>::current().assertCurrent();
    const std::shared_ptr<const SearchResults> found = results();
    const FoundEntities* list = resultsForTag(*found, actionButtonTag);
    return list == nullptr ? std::nullopt : std::optional(AllResults{shared_->typed, *list});
}

BrowseSearch::State BrowseSearch::state() const {
    Port<MainQueue>::current().assertCurrent();
    return shared_->state;
}

std::shared_ptr<const SearchResults> BrowseSearch::results() const {
    MutexLock lock(shared_->mutex);
    return shared_->results;
}

}  // namespace tavrion
