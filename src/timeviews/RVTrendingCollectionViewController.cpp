#include "timeviews/RVTrendingCollectionViewController.h"

#include <atomic>
#include <utility>

#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/mediaplayer/MPMusicPlayerController.h"
#include "recording/RVPlaybackHistoryManager.h"
#include "recording/RecordStore.h"
#include "timeviews/DateRange.h"
#include "timeviews/TrendingKeys.h"

namespace tavrion {

using Controller = RVTrendingCollectionViewController;

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

TrendingPage rankByDefaults(NSManagedObjectContext& context, TrendingKeys& keys) {
    NSNotificationCenter& center = NSNotificationCenter::defaultCenter();
    center.postNotificationName(TrendingNotification::didBegin);
    StoredGrouping grouping;
    TrendingPage page = TrendingPage::of(
        context,
        {DateRange::stored(DateRangeKey::trending).interval(),
         defaults().integerForKey(TrendingDefaults::weightedRankFormat) == TrendingDefaults::byTime,
         [&grouping] { return grouping.read(); }, &postProgress, &isProgressHeard},
        keys);
    center.postNotificationName(TrendingNotification::didEnd);
    return page;
}

Tooltip playBackTooltip() {
    return {.title = NSLocalizedString("PlayBack"),
            .text = NSLocalizedString(
                "PlayBack creates a dynamic list of your top songs based on a mix of stats like "
                "play count and time listened. Save versions of your PlayBack results by exporting "
                "them as playlists."),
            .source = Controller::playlistButton};
}

Tooltip collectionsTooltip() {
    return {.title = NSLocalizedString("Trending Collections"),
            .text = NSLocalizedString("Toggle between your trending artists and albums."),
            .source = Controller::collectionButton};
}

}  // namespace

struct Controller::Updates {
    std::weak_ptr<Controller> controller;
    std::shared_ptr<NSManagedObjectContext> context;
    /// On the context's queue alone.
    TrendingKeys keys;
};

std::shared_ptr<Controller> Controller::make() {
    std::shared_ptr<Controller> controller(new Controller());
    controller->updates_->controller = controller;
    return controller;
}

Controller::RVTrendingCollectionViewController() : updates_(std::make_shared<Updates>()) {
    updates_->context = Port<RecordStore>::current().privateContext();
}

// Life

void Controller::viewDidLoad() {
    Port<MainQueue>::current().assertCurrent();
    layoutNavigationItem();
    registerObservers();
    updateDataSource();
    observations_.push_back(NSNotificationCenter::defaultCenter().addObserver(
        TrendingNotification::dateRangeDidChange, nullptr, nullptr,
        [start = updater()](const NSNotification&) { start(); }));
}

void Controller::layoutNavigationItem() {
    const bool shows = !defaults().boolForKey(TrendingDefaults::didShowPullToRefresh);
    if (shows) {
        defaults().setObject(TrendingDefaults::didShowPullToRefresh, true);
    }
    change([shows](TrendingPage& page) {
        page.dateRangeTitle = dateRangeTitle();
        page.groupingTitle = groupingTitle();
        if (shows) {
            page.prompt = NSLocalizedString("Pull down to refresh.");
        }
    });
}

void Controller::registerObservers() {
    MainQueue& mainQueue = Port<MainQueue>::current();
    const auto showProgress = [&](const char* name, bool shows) {
        observations_.push_back(NSNotificationCenter::defaultCenter().addObserver(
            name, nullptr, &mainQueue, ifAlive([shows](Controller& self, const NSNotification&) {
                self.change([&](TrendingPage& page) { page.showsProgress = shows; });
            })));
    };
    showProgress(TrendingNotification::didBegin, true);
    showProgress(TrendingNotification::didEnd, false);
    dateRange_ = defaults().addObserver(
        DateRangeKey::trending, &mainQueue,
        ifAlive([](Controller& self, const std::string&, const Value&) {
            self.change([](TrendingPage& page) { page.dateRangeTitle = dateRangeTitle(); });
        }));
}

// The ranking

void Controller::updateDataSource() {
    update(updates_);
}

std::function<void()> Controller::updater() {
    return [weak = std::weak_ptr(updates_)] {
        if (const auto updates = weak.lock()) {
            update(updates);
        }
    };
}

void Controller::update(const std::shared_ptr<Updates>& updates) {
    updates->context->performBlock([updates] {
        toMain(updates->controller,
               [ranked = rankByDefaults(*updates->context, updates->keys)](
                   Controller& self) mutable { self.apply(std::move(ranked)); });
    });
}

void Controller::apply(TrendingPage ranked) {
    change([&](TrendingPage& page) { page.show(std::move(ranked.ranking)); });
    showOnboardingTooltips();
}

NSAttributedString Controller::dateRangeTitle() {
    return DateRange::stored(DateRangeKey::trending).attributedTitle();
}

// What the user does

void Controller::refreshDataSource() {
    emit(ScreenSignal::endRefreshing);
    RVPlaybackHistoryManager::updatePlaybackHistoryWithPopup(false, updater());
}

void Controller::changeDateInterval() {
    emit(DateRangeRoute{DateRangeKey::trending});
}

void Controller::playAll() {
    emit(ScreenSignal::lightImpact);
    std::vector<MPMediaItem> items;
    items.reserve(snapshot().songs.size());
    for (const TrendingRow& row : snapshot().songs) {
        items.push_back(*row->entity.item());
    }
    MPMusicPlayerController& player = MPMusicPlayerController::systemMusicPlayer();
    player.setQueueWithDescriptor(
        MPMusicPlayerMediaItemQueueDescriptor(MPMediaItemCollection(std::move(items))));
    player.setShuffleMode(MPMusicShuffleMode::off);
    player.prepareToPlay();
    player.play();
}

void Controller::createPlaylist() {
    PlaylistRequest request{dateRangeTitle().textWithoutAttachments(), {}};
    for (const TrendingRow& row : snapshot().songs) {
        request.songs.emplace_back(*row->entity.item());
    }
    emit(std::move(request));
}

bool Controller::shouldSelectViewController(bool isSelectedTab, bool isOnTopOfItsStack) {
    if (isSelectedTab && isOnTopOfItsStack) {
        emit(ScreenSignal::scrollToTop);
    }
    return true;
}

// The hints

void Controller::showOnboardingTooltips() {
    if (hasPlaylistButton_ && !defaults().boolForKey(TrendingDefaults::onboardingPlayBack)) {
        presentTooltipSoon(playBackTooltip(), TrendingDefaults::onboardingPlayBack);
    } else if (hasCollectionButton_ && !defaults().boolForKey(TrendingDefaults::onboardingAlbums)) {
        presentTooltipSoon(collectionsTooltip(), TrendingDefaults::onboardingAlbums);
    }
}

void Controller::presentTooltipSoon(Tooltip tooltip, const char* shownKey) {
    tooltip.presented = [shownKey] { defaults().setObject(shownKey, true); };
    tooltip_ = Port<TimerService>::current().schedule(
        tooltipDelay, Port<MainQueue>::current(),
        ifAlive([tooltip = std::move(tooltip)](Controller& self) { self.emit(tooltip); }));
}

}  // namespace tavrion
