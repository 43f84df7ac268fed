#include "timeviews/RVHistoryTableViewViewController.h"

#include <utility>

#include "library/RVMetadataManager.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSLocalizedString.h"
#include "recording/NerindaModel.h"
#include "recording/RVPlaybackHistoryManager.h"
#include "recording/RecordStore.h"
#include "timeviews/HistoryPlays.h"

namespace tavrion {
namespace {

constexpr NSTimeInterval tooltipDelay = 0.3;

/// Costs little where nobody listens.
void post(const std::string& name, std::optional<float> progress = std::nullopt) {
    NSNotificationCenter& center = NSNotificationCenter::defaultCenter();
    if (center.observerCount(name) == 0) {
        return;
    }
    NSNotification notification{name, nullptr, {}};
    if (progress) {
        notification.userInfo.emplace("progress", *progress);
    }
    center.postNotification(notification);
}

/// One is left alone.
void deleteStrays(NSManagedObjectContext& context, const StoreVersion& records) {
    const std::vector<RecordCounter> strays = Plays::withoutDate(records);
    if (strays.size() <= 1) {
        return;
    }
    for (const RecordCounter stray : strays) {
        context.deleteObject(NSManagedObject(context, {NerindaEntity::PlayEvent, stray}));
    }
    if (!context.hasChanges()) {
        return;
    }
    if (const Result<void> saved = context.save(); !saved) {
        Port<RecordStore>::current().tellOfFailedSave(saved.error());
    }
}

}  // namespace

struct RVHistoryTableViewViewController::ListUpdate {
    NSDiffableDataSourceSnapshot snapshot;
    PlayTotals totals;
};

std::shared_ptr<RVHistoryTableViewViewController> RVHistoryTableViewViewController::make(
    HistoryScreen* screen) {
    std::shared_ptr<RVHistoryTableViewViewController> controller(
        new RVHistoryTableViewViewController(screen));
    controller->makeDataSource();
    return controller;
}

RVHistoryTableViewViewController::RVHistoryTableViewViewController(HistoryScreen* screen)
    : screen_(screen), privateContext_(Port<RecordStore>::current().privateContext()) {}

// Life

void RVHistoryTableViewViewController::makeDataSource() {
    dataSource_ = std::make_shared<RVHistoryTableViewDiffableDataSource>(
        privateContext_,
        [weak = weak_from_this()](const NSDiffableDataSourceSnapshot& snapshot, bool animated) {
            const auto self = weak.lock();
            if (self && self->screen_ != nullptr) {
                self->screen_->applySnapshot(snapshot, animated);
            }
        },
        [weak = weak_from_this()](std::function<void()> confirmed) {
            const auto self = weak.lock();
            if (self && self->screen_ != nullptr) {
                self->screen_->presentQuestion(
                    {NSLocalizedString("Are you sure?"),
                     NSLocalizedString("Deleted playback events can not be recovered."),
                     NSLocalizedString("Delete"), NSLocalizedString("Cancel")},
                    std::move(confirmed));
            }
        });
    // The list that comes back when no bar is chosen any more does not bring a deleted play back.
    dataSource_->didDelete = [weak = weak_from_this()](const Value& identifier) {
        const auto self = weak.lock();
        if (self && self->deselectSnapshot_) {
            self->deselectSnapshot_->deleteItem(identifier);
        }
    };
}

void RVHistoryTableViewViewController::viewDidLoad() {
    Port<MainQueue>::current().assertCurrent();
    dateRange_ = NSUserDefaults::standardUserDefaults().addObserver(
        DateRangeKey::history, &Port<MainQueue>::current(),
        [weak = weak_from_this()](const std::string&, const Value&) {
            const auto self = weak.lock();
            if (self && self->screen_ != nullptr) {
                self->screen_->dateRangeTitleDidChange();
            }
        });
    layoutNavigationItem();
    updateDataSource();
    registerObservers();
    observeUpdates(HistoryNotification::dateRangeDidChange);
    observeUpdates(HistoryNotification::libraryAuthorizationGranted);
}

void RVHistoryTableViewViewController::layoutNavigationItem() {
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    if (!defaults.boolForKey(HistoryDefaults::didShowPullToRefresh)) {
        prompt_ = NSLocalizedString("Pull down to refresh.");
        defaults.setObject(HistoryDefaults::didShowPullToRefresh, true);
    }
}

void RVHistoryTableViewViewController::registerObservers() {
    const auto showProgress = [this](const std::string& name, bool shows) {
        observations_.push_back(NSNotificationCenter::defaultCenter().addObserver(
            name, nullptr, &Port<MainQueue>::current(),
            [weak = weak_from_this(), shows](const NSNotification&) {
                const auto self = weak.lock();
                if (self && self->screen_ != nullptr) {
                    self->screen_->setShowsProgress(shows);
                }
            }));
    };
    showProgress(HistoryNotification::didBegin, true);
    showProgress(HistoryNotification::didEnd, false);
}

void RVHistoryTableViewViewController::observeUpdates(const std::string& name) {
    observations_.push_back(NSNotificationCenter::defaultCenter().addObserver(
        name, nullptr, nullptr, [weak = weak_from_this()](const NSNotification&) {
            if (const auto self = weak.lock()) {
                self->updateDataSource();
            }
        }));
}

// The list

void RVHistoryTableViewViewController::updateDataSource(const void*, bool preserveChart) {
    shouldDisplayMonthTitles_ = false;
    privateContext_->performBlock(
        [weak = weak_from_this(), context = privateContext_, preserveChart] {
            const NSDateInterval interval =
                RVDateRangeSelectorViewController::dateIntervalForKey(DateRangeKey::history);
            const auto records = context->snapshot();
            const HistoryPlays plays(records, interval.startDate(), interval.endDate());
            if (plays.count() >= playsWorthProgress) {
                post(HistoryNotification::didBegin);
            }
            ListUpdate update{{}, plays.totals()};
            update.snapshot =
                plays.byDay([](float progress) { post(HistoryNotification::didChange, progress); });
            deleteStrays(*context, *records);
            post(HistoryNotification::didEnd);
            Port<MainQueue>::current().async(
                [weak, update = std::move(update), preserveChart]() mutable {
                    if (const auto self = weak.lock()) {
                        self->apply(std::move(update), preserveChart);
                    }
                });
        });
}

void RVHistoryTableViewViewController::apply(ListUpdate update, bool preserveChart) {
    isBackgroundViewHidden_ = update.totals.plays > 0;
    if (screen_ != nullptr) {
        screen_->setBackgroundViewHidden(isBackgroundViewHidden_);
    }
    dataSource_->applySnapshot(std::move(update.snapshot), false);
    statCell_.durationCaption =
        NSUserDefaults::standardUserDefaults().boolForKey(RVMetadataManager::expandedTimeKey)
            ? NSLocalizedString("Time Listened")
            : NSLocalizedString("Minutes Listened");
    if (!isStatCellOnHand()) {
        return;
    }
    setTotals(RVMetadataManager::formattedCount(update.totals.songs),
              RVMetadataManager::formattedMinutesForDuration(update.totals.seconds));
    clearHighlight();
    if (!preserveChart) {
        layoutStatViews();
    }
}

bool RVHistoryTableViewViewController::isStatCellOnHand() const {
    return snapshot().numberOfItemsInSection(0) > 0 &&
           (screen_ == nullptr || screen_->isStatCellOnHand());
}

void RVHistoryTableViewViewController::setTotals(std::string plays, std::string duration) {
    statCell_.playsLabel = std::move(plays);
    statCell_.durationLabel = std::move(duration);
    if (screen_ != nullptr) {
        screen_->totalsDidChange(statCell_);
    }
}

// What the user does

void RVHistoryTableViewViewController::refreshDataSource() {
    if (screen_ != nullptr) {
        screen_->endRefreshing();
    }
    RVPlaybackHistoryManager::updatePlaybackHistoryWithPopup(false, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->updateDataSource();
        }
    });
}

void RVHistoryTableViewViewController::changeDateInterval() {
    if (screen_ != nullptr) {
        screen_->presentDateRangeSelector(
            RVDateRangeSelectorViewController::initWithUserDefault(DateRangeKey::history));
    }
}

void RVHistoryTableViewViewController::createPlaylist() {
    if (screen_ != nullptr) {
        screen_->presentCreatePlaylist(
            {dateRangeTitle().textWithoutAttachments(), snapshot().itemIdentifiers()});
    }
}

bool RVHistoryTableViewViewController::shouldSelectViewController(bool isSelectedTab,
                                                                  bool isOnTopOfItsStack) {
    if (isSelectedTab && isOnTopOfItsStack && screen_ != nullptr) {
        screen_->scrollToTop();
    }
    return true;
}

NSAttributedString RVHistoryTableViewViewController::dateRangeTitle() const {
    return RVDateRangeSelectorViewController::titleForUserDefaultObject(
        NSUserDefaults::standardUserDefaults().objectForKey(DateRangeKey::history));
}

// The hint

HistoryHint RVHistoryTableViewViewController::dateRangeHint() {
    return {NSLocalizedString("Date Range"),
            NSLocalizedString(
                "Tavrion begins recording your listening history once installed. As you continue "
                "to use the app, you will be able to view your history over longer time "
                "periods.")};
}

void RVHistoryTableViewViewController::showOnboardingTooltips() {
    if (NSUserDefaults::standardUserDefaults().boolForKey(HistoryDefaults::onboardingDateRange)) {
        return;
    }
    tooltip_ = Port<TimerService>::current().schedule(tooltipDelay, Port<MainQueue>::current(),
                                                      [weak = weak_from_this()] {
                                                          if (const auto self = weak.lock()) {
                                                              self->presentDateRangeTooltip();
                                                          }
                                                      });
}

void RVHistoryTableViewViewController::presentDateRangeTooltip() {
    if (screen_ == nullptr) {
        return;
    }
    const HistoryHint hint = dateRangeHint();
    screen_->presentTooltip(hint.title, hint.text, [] {
        NSUserDefaults::standardUserDefaults().setObject(HistoryDefaults::onboardingDateRange,
                                                         true);
    });
}

}  // namespace tavrion
