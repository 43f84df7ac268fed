#include "library/BrowseSearch.h"

#include <utility>

#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/Mutex.h"

namespace tavrion {

struct BrowseSearch::Shared {
    void setResults(std::shared_ptr<const SearchResults> found) {
        MutexLock lock(mutex);
        results = std::move(found);
    }

    /// Used by one operation at a time.
    LibrarySearch search;

    Mutex mutex;
    std::shared_ptr<const SearchResults> results TAVRION_GUARDED_BY(mutex) =
        std::make_shared<const SearchResults>();
};

BrowseSearch::BrowseSearch() : shared_(std::make_shared<Shared>()) {
    searchQueue_.setMaxConcurrentOperationCount(1);
}

void BrowseSearch::prepare() {
    Port<MainQueue>::current().assertCurrent();
    auto preparation = std::make_shared<NSBlockOperation>();
    preparation->addExecutionBlock([shared = shared_] { shared->search.prepare(); });
    searchQueue_.addOperation(std::move(preparation));
}

void BrowseSearch::look(std::string term, Found found) {
    Port<MainQueue>::current().assertCurrent();
    // The one before is the only one that is not cancelled yet.
    cancel();
    lastOperation_ = std::make_shared<NSBlockOperation>();
    lastOperation_->addExecutionBlock([shared = shared_, term = std::move(term),
                                       found = std::move(found),
                                       weak = std::weak_ptr(lastOperation_)] {
        auto results = std::make_shared<const SearchResults>(shared->search.results(term));
        SearchSnapshot sections = searchSnapshotOf(*results);
        shared->setResults(std::move(results));
        Port<MainQueue>::current().async(
            [found, sections = std::move(sections), operation = weak.lock()] {
                // Asked here, since the next key may have been typed on the way.
                if (operation && !operation->isCancelled()) {
                    found(sections);
                }
            });
    });
    searchQueue_.addOperation(lastOperation_);
}

void BrowseSearch::cancel() {
    if (lastOperation_) {
        lastOperation_->cancel();
    }
}

std::shared_ptr<const SearchResults> BrowseSearch::results() const {
    MutexLock lock(shared_->mutex);
    return shared_->results;
}

void BrowseSearch::forgetResults() {
    shared_->setResults(std::make_shared<const SearchResults>());
}

}  // namespace tavrion
