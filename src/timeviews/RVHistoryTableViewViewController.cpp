#include "timeviews/RVHistoryTableViewViewController.h"

#include <utility>

#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSLocalizedString.h"
#include "recording/NerindaModel.h"
#include "recording/RVPlaybackHistoryManager.h"
#include "recording/RecordStore.h"
#include "timeviews/HistoryPlays.h"
#include "timeviews/HistoryUpdates.h"

namespace tavrion {

using Controller = RVHistoryTableViewViewController;

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

std::shared_ptr<Controller> Controller::make() {
    std::shared_ptr<Controller> controller(new Controller());
    controller->updates_->controller = controller;
    controller->makeDataSource();
    return controller;
}

Controller::RVHistoryTableViewViewController()
    : privateContext_(Port<RecordStore>::current().privateContext()),
      updates_(std::make_shared<Updates>()) {
    updates_->context = privateContext_;
}

// Life

void Controller::makeDataSource() {
    dataSource_ = std::make_shared<RVHistoryTableViewDiffableDataSource>(
        privateContext_, [this]() -> const auto& { return snapshot(); },
        ifAlive([](Controller& self, const NSDiffableDataSourceSnapshot& rest, bool animated) {
            self.change(
                [&](HistoryPage& page) {
                    page.list = std::make_shared<const NSDiffableDataSourceSnapshot>(rest);
                },
                animated ? StateChange::animated : StateChange::immediate);
        }),
        ifAlive([](Controller& self, Alert alert) { self.emit(std::move(alert)); }));
    // The list that comes back when no bar is chosen any more does not bring a deleted play back.
    dataSource_->didDelete = ifAlive([](Controller& self, const Value& identifier) {
        if (self.state()->deselectSnapshot) {
            NSDiffableDataSourceSnapshot rest = *self.state()->deselectSnapshot;
            rest.deleteItem(identifier);
            self.change([&](HistoryPage& page) {
                page.deselectSnapshot =
                    std::make_shared<const NSDiffableDataSourceSnapshot>(std::move(rest));
            });
        }
    });
}

void Controller::viewDidLoad() {
    Port<MainQueue>::current().assertCurrent();
    dateRange_ = NSUserDefaults::standardUserDefaults().addObserver(
        DateRangeKey::history, &Port<MainQueue>::current(),
        ifAlive([](Controller& self, const std::string&, const Value&) {
            self.change([&](HistoryPage& page) { page.dateRangeTitle = self.dateRangeTitle(); });
        }));
    layoutNavigationItem();
    updateDataSource();
    registerObservers();
    observeUpdates(HistoryNotification::dateRangeDidChange);
    observeUpdates(HistoryNotification::libraryAuthorizationGranted);
}

void Controller::layoutNavigationItem() {
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    const bool shows = !defaults.boolForKey(HistoryDefaults::didShowPullToRefresh);
    if (shows) {
        defaults.setObject(HistoryDefaults::didShowPullToRefresh, true);
    }
    change([&](HistoryPage& page) {
        page.dateRangeTitle = dateRangeTitle();
        if (shows) {
            page.prompt = NSLocalizedString("Pull down to refresh.");
        }
    });
}

void Controller::registerObservers() {
    const auto showProgress = [this](const std::string& name, bool shows) {
        observations_.push_back(NSNotificationCenter::defaultCenter().addObserver(
            name, nullptr, &Port<MainQueue>::current(),
            ifAlive([shows](Controller& self, const NSNotification&) {
                self.change([&](HistoryPage& page) { page.showsProgress = shows; });
            })));
    };
    showProgress(HistoryNotification::didBegin, true);
    showProgress(HistoryNotification::didEnd, false);
}

void Controller::observeUpdates(const std::string& name) {
    observations_.push_back(NSNotificationCenter::defaultCenter().addObserver(
        name, nullptr, nullptr, [start = updater()](const NSNotification&) { start(); }));
}

// The list

void Controller::updateDataSource(const void*, bool preserveChart) {
    update(updates_, preserveChart);
}

std::function<void()> Controller::updater() {
    return [weak = std::weak_ptr(updates_)] {
        if (const auto updates = weak.lock()) {
            update(updates, false);
        }
    };
}

void Controller::update(const std::shared_ptr<Updates>& updates, bool preserveChart) {
    updates->shouldDisplayMonthTitles = false;
    updates->context->performBlock([updates, preserveChart] {
        const auto records = updates->context->snapshot();
        const DateRange range = DateRange::stored(DateRangeKey::history);
        const NSDateInterval interval = range.interval();
        const HistoryPlays plays(records, interval.startDate(), interval.endDate());
        if (plays.count() >= playsWorthProgress) {
            post(HistoryNotification::didBegin);
        }
        HistoryList list = HistoryList::of(
            records, range, [](float progress) { post(HistoryNotification::didChange, progress); });
        deleteStrays(*updates->context, *records);
        post(HistoryNotification::didEnd);
        toMain(updates->controller,
               [list = std::move(list), preserveChart](Controller& self) mutable {
                   self.apply(std::move(list), preserveChart);
               });
    });
}

void Controller::apply(HistoryList update, bool preserveChart) {
    missed_ = Missed{update.totals, preserveChart};
    change([&](HistoryPage& page) {
        page.showList(std::move(update));
        page.showsMonthTitles = updates_->shouldDisplayMonthTitles;
    });
    showTotals();
}

void Controller::showTotals() {
    if (!missed_ || !isStatCellOnHand()) {
        return;
    }
    const Missed missed = *std::exchange(missed_, std::nullopt);
    change([&](HistoryPage& page) {
        page.showTotals(missed.totals);
        page.clearHighlight();
    });
    if (!missed.preserveChart) {
        layoutStatViews();
    }
}

void Controller::statCellDidAppear() {
    isStatCellInView_ = true;
    showTotals();
}

bool Controller::isStatCellOnHand() const {
    return snapshot().numberOfItemsInSection(0) > 0 && (!hasScreen() || isStatCellInView_);
}

// What the user does

void Controller::refreshDataSource() {
    emit(ScreenSignal::endRefreshing);
    RVPlaybackHistoryManager::updatePlaybackHistoryWithPopup(false, updater());
}

void Controller::changeDateInterval() {
    emit(DateRangeRoute{DateRangeKey::history});
}

bool Controller::shouldSelectViewController(bool isSelectedTab, bool isOnTopOfItsStack) {
    if (isSelectedTab && isOnTopOfItsStack) {
        emit(ScreenSignal::scrollToTop);
    }
    return true;
}

NSAttributedString Controller::dateRangeTitle() const {
    return DateRange::stored(DateRangeKey::history).attributedTitle();
}

// The hint

Tooltip Controller::dateRangeTooltip() {
    return {.title = NSLocalizedString("Date Range"),
            .text = NSLocalizedString(
                "Tavrion begins recording your listening history once installed. As you continue "
                "to use the app, you will be able to view your history over longer time "
                "periods."),
            .source = dateRangeButton,
            .presented = [] {
                NSUserDefaults::standardUserDefaults().setObject(
                    HistoryDefaults::onboardingDateRange, true);
            }};
}

void Controller::viewDidAppear() {
    emit(ScreenSignal::becomeTabBarDelegate);
    showOnboardingTooltips();
}

void Controller::showOnboardingTooltips() {
    if (!NSUserDefaults::standardUserDefaults().boolForKey(HistoryDefaults::onboardingDateRange)) {
        tooltip_ = Port<TimerService>::current().schedule(
            tooltipDelay, Port<MainQueue>::current(),
            ifAlive([](Controller& self) { self.emit(dateRangeTooltip()); }));
    }
}

}  // namespace tavrion
