#include "timeviews/RVTrendingCollectionViewController.h"

#include <atomic>
#include <utility>

#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/mediaplayer/MPMusicPlayerController.h"
#include "recording/RVPlaybackHistoryManager.h"
#include "recording/RecordStore.h"

namespace tavrion {
namespace {

constexpr NSTimeInterval tooltipDelay = 0.3;

NSUserDefaults& defaults() {
    return NSUserDefaults::standardUserDefaults();
}

/// The stored grouping as it is at each reading. A reading of the defaults looks at the disk, which
/// is too much for every song; told of each change, this reads only after one.
class StoredGrouping {
  public:
    StoredGrouping()
        : observation_(defaults().addObserver(
              TrendingDefaults::groupingType, nullptr,
              [this](const std::string&, const Value&) { isStale_.store(true); })) {}
    TrendingGrouping read() {
        if (isStale_.load(std::memory_order_relaxed) && isStale_.exchange(false)) {
            grouping_ = static_cast<TrendingGrouping>(
                defaults().integerForKey(TrendingDefaults::groupingType));
        }
        return grouping_;
    }

  private:
    std::atomic<bool> isStale_{true};
    TrendingGrouping grouping_ = TrendingGrouping::artists;
    NSUserDefaults::Observation observation_;
};

void postProgress(float progress) {
    NSNotificationCenter::defaultCenter().postNotification(
        {TrendingNotification::didChange, nullptr, {{"progress", progress}}});
}

bool isProgressHeard() {
    return NSNotificationCenter::defaultCenter().observerCount(TrendingNotification::didChange) > 0;
}

TrendingSnapshot rankByDefaults(NSManagedObjectContext& context, TrendingKeys& keys) {
    NSNotificationCenter& center = NSNotificationCenter::defaultCenter();
    center.postNotificationName(TrendingNotification::didBegin);
    StoredGrouping grouping;
    TrendingSnapshot snapshot = TrendingRanking::rank(
        context,
        {RVDateRangeSelectorViewController::dateIntervalForKey(DateRangeKey::trending),
         defaults().integerForKey(TrendingDefaults::weightedRankFormat) == TrendingDefaults::byTime,
         [&grouping] { return grouping.read(); }, &postProgress, &isProgressHeard},
        keys);
    center.postNotificationName(TrendingNotification::didEnd);
    // A look-up takes the library's title over into the record; ranking is not what saves it.
    context.rollback();
    return snapshot;
}

TrendingHint playBackHint() {
    return {TrendingHint::Source::playlistButton, NSLocalizedString("PlayBack"),
            NSLocalizedString(
                "PlayBack creates a dynamic list of your top songs based on a mix of stats like "
                "play count and time listened. Save versions of your PlayBack results by exporting "
                "them as playlists.")};
}

TrendingHint collectionsHint() {
    return {TrendingHint::Source::collectionButton, NSLocalizedString("Trending Collections"),
            NSLocalizedString("Toggle between your trending artists and albums.")};
}

}  // namespace

std::shared_ptr<RVTrendingCollectionViewController> RVTrendingCollectionViewController::make(
    TrendingScreen* screen) {
    return std::shared_ptr<RVTrendingCollectionViewController>(
        new RVTrendingCollectionViewController(screen));
}

RVTrendingCollectionViewController::RVTrendingCollectionViewController(TrendingScreen* screen)
    : screen_(screen), privateContext_(Port<RecordStore>::current().privateContext()) {}

// Life

void RVTrendingCollectionViewController::viewDidLoad() {
    Port<MainQueue>::current().assertCurrent();
    layoutNavigationItem();
    registerObservers();
    updateDataSource();
    observations_.push_back(NSNotificationCenter::defaultCenter().addObserver(
        TrendingNotification::dateRangeDidChange, nullptr, nullptr,
        [weak = weak_from_this()](const NSNotification&) {
            if (const auto self = weak.lock()) {
                self->updateDataSource();
            }
        }));
}

void RVTrendingCollectionViewController::viewDidAppear() {
    if (screen_ != nullptr) {
        screen_->becomeTabBarDelegate();
    }
}

void RVTrendingCollectionViewController::layoutNavigationItem() {
    if (!defaults().boolForKey(TrendingDefaults::didShowPullToRefresh)) {
        prompt_ = NSLocalizedString("Pull down to refresh.");
        defaults().setObject(TrendingDefaults::didShowPullToRefresh, true);
    }
}

void RVTrendingCollectionViewController::registerObservers() {
    MainQueue& mainQueue = Port<MainQueue>::current();
    const auto showProgress = [&](const char* name, bool shows) {
        observations_.push_back(NSNotificationCenter::defaultCenter().addObserver(
            name, nullptr, &mainQueue, [weak = weak_from_this(), shows](const NSNotification&) {
                const auto self = weak.lock();
                if (self && self->screen_ != nullptr) {
                    self->screen_->setShowsProgress(shows);
                }
            }));
    };
    showProgress(TrendingNotification::didBegin, true);
    showProgress(TrendingNotification::didEnd, false);
    dateRange_ =
        defaults().addObserver(DateRangeKey::trending, &mainQueue,
                               [weak = weak_from_this()](const std::string&, const Value&) {
                                   const auto self = weak.lock();
                                   if (self && self->screen_ != nullptr) {
                                       self->screen_->dateRangeTitleDidChange();
                                   }
                               });
}

// The ranking

void RVTrendingCollectionViewController::updateDataSource() {
    privateContext_->performBlock(
        [context = privateContext_, keys = keys_, weak = weak_from_this()] {
            TrendingSnapshot snapshot = rankByDefaults(*context, *keys);
            Port<MainQueue>::current().async([weak, snapshot = std::move(snapshot)]() mutable {
                if (const auto self = weak.lock()) {
                    self->apply(std::move(snapshot));
                }
            });
        });
}

void RVTrendingCollectionViewController::apply(TrendingSnapshot snapshot) {
    snapshot_ = std::move(snapshot);
    showsBackgroundView_ = snapshot_.songs.empty();
    if (screen_ != nullptr) {
        screen_->setBackgroundViewHidden(!showsBackgroundView_);
        screen_->applySnapshot(snapshot_, false);
        showOnboardingTooltips();
    }
}

NSAttributedString RVTrendingCollectionViewController::dateRangeTitle() const {
    return RVDateRangeSelectorViewController::titleForUserDefaultObject(
        defaults().objectForKey(DateRangeKey::trending));
}

// What the user does

void RVTrendingCollectionViewController::refreshDataSource() {
    if (screen_ != nullptr) {
        screen_->endRefreshing();
    }
    RVPlaybackHistoryManager::updatePlaybackHistoryWithPopup(false, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->updateDataSource();
        }
    });
}

void RVTrendingCollectionViewController::changeDateInterval() {
    if (screen_ != nullptr) {
        screen_->presentDateRangeSelector(
            RVDateRangeSelectorViewController::initWithUserDefault(DateRangeKey::trending));
    }
}

std::vector<MPMediaEntity> RVTrendingCollectionViewController::songs() const {
    std::vector<MPMediaEntity> songs;
    songs.reserve(snapshot_.songs.size());
    for (const TrendingRow& row : snapshot_.songs) {
        songs.push_back(row->entity);
    }
    return songs;
}

void RVTrendingCollectionViewController::playAll() {
    if (screen_ != nullptr) {
        screen_->giveLightImpact();
    }
    std::vector<MPMediaItem> items;
    items.reserve(snapshot_.songs.size());
    for (const TrendingRow& row : snapshot_.songs) {
        items.push_back(*row->entity.item());
    }
    MPMusicPlayerController& player = MPMusicPlayerController::systemMusicPlayer();
    player.setQueueWithDescriptor(
        MPMusicPlayerMediaItemQueueDescriptor(MPMediaItemCollection(std::move(items))));
    player.setShuffleMode(MPMusicShuffleMode::off);
    player.prepareToPlay();
    player.play();
}

void RVTrendingCollectionViewController::createPlaylist() {
    if (screen_ != nullptr) {
        screen_->presentCreatePlaylist({dateRangeTitle().textWithoutAttachments(), songs()});
    }
}

bool RVTrendingCollectionViewController::shouldSelectViewController(bool isSelectedTab,
                                                                    bool isOnTopOfItsStack) {
    if (isSelectedTab && isOnTopOfItsStack && screen_ != nullptr) {
        screen_->scrollToTop();
    }
    return true;
}

// The hints

void RVTrendingCollectionViewController::showOnboardingTooltips() {
    if (hasPlaylistButton_ && !defaults().boolForKey(TrendingDefaults::onboardingPlayBack)) {
        presentTooltipSoon(playBackHint(), TrendingDefaults::onboardingPlayBack);
    } else if (hasCollectionButton_ && !defaults().boolForKey(TrendingDefaults::onboardingAlbums)) {
        presentTooltipSoon(collectionsHint(), TrendingDefaults::onboardingAlbums);
    }
}

void RVTrendingCollectionViewController::presentTooltipSoon(const TrendingHint& hint,
                                                            const char* shownKey) {
    tooltip_ = Port<TimerService>::current().schedule(
        tooltipDelay, Port<MainQueue>::current(), [weak = weak_from_this(), hint, shownKey] {
            const auto self = weak.lock();
            if (self && self->screen_ != nullptr) {
                self->screen_->presentTooltip(hint,
                                              [shownKey] { defaults().setObject(shownKey, true); });
            }
        });
}

}  // namespace tavrion
