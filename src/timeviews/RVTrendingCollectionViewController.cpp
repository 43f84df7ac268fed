#include "timeviews/RVTrendingCollectionViewController.h"

#include <atomic>

#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "recording/RecordStore.h"
#include "timeviews/RVDateRangeSelectorViewController.h"

namespace tavrion {
namespace {

/// The stored grouping as it is at each reading. A reading of the defaults looks at the disk, which
/// is too much for every song; told of each change, this reads only after one.
class StoredGrouping {
  public:
    StoredGrouping()
        : observation_(defaults().addObserver(
              TrendingDefaults::groupingType, nullptr,
              [this](const std::string&, const Value&) { isStale_.store(true); })) {}
    TrendingGrouping read() {
        if (isStale_.exchange(false)) {
            grouping_ = static_cast<TrendingGrouping>(
                defaults().integerForKey(TrendingDefaults::groupingType));
        }
        return grouping_;
    }

  private:
    static NSUserDefaults& defaults() { return NSUserDefaults::standardUserDefaults(); }
    std::atomic<bool> isStale_{true};
    TrendingGrouping grouping_ = TrendingGrouping::artists;
    NSUserDefaults::Observation observation_;
};

void postProgress(float progress) {
    NSNotificationCenter::defaultCenter().postNotification(
        {TrendingNotification::didChange, nullptr, {{"progress", progress}}});
}

TrendingSnapshot rankByDefaults(NSManagedObjectContext& context) {
    NSNotificationCenter& center = NSNotificationCenter::defaultCenter();
    center.postNotificationName(TrendingNotification::didBegin);
    StoredGrouping grouping;
    TrendingSnapshot snapshot = TrendingRanking::rank(
        context, {RVDateRangeSelectorViewController::dateIntervalForKey(DateRangeKey::trending),
                  NSUserDefaults::standardUserDefaults().integerForKey(
                      TrendingDefaults::weightedRankFormat) == TrendingDefaults::byTime,
                  [&grouping] { return grouping.read(); }, &postProgress});
    center.postNotificationName(TrendingNotification::didEnd);
    return snapshot;
}

}  // namespace

std::shared_ptr<RVTrendingCollectionViewController> RVTrendingCollectionViewController::make() {
    return std::shared_ptr<RVTrendingCollectionViewController>(
        new RVTrendingCollectionViewController());
}

void RVTrendingCollectionViewController::updateDataSource() {
    const auto context = Port<RecordStore>::current().privateContext();
    context->performBlock([context, screen = weak_from_this()] {
        TrendingSnapshot snapshot = rankByDefaults(*context);
        Port<MainQueue>::current().async([screen, snapshot = std::move(snapshot)]() mutable {
            if (const auto shown = screen.lock()) {
                shown->apply(std::move(snapshot));
            }
        });
    });
}

void RVTrendingCollectionViewController::apply(TrendingSnapshot snapshot) {
    snapshot_ = std::move(snapshot);
    showsBackgroundView_ = snapshot_.songs.empty();
}

}  // namespace tavrion
