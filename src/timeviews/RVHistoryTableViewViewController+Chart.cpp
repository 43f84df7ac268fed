// The chart, and what choosing one of its bars does.
#include <utility>

#include "platform/dispatch/MainQueue.h"
#include "timeviews/HistoryPlays.h"
#include "timeviews/HistoryUpdates.h"
#include "timeviews/RVHistoryTableViewViewController.h"

namespace tavrion {

using Controller = RVHistoryTableViewViewController;

void Controller::layoutStatViews() {
    privateContext_->performBlock([weak = weak_from_this(), context = privateContext_] {
        const DateRange range = DateRange::stored(DateRangeKey::history);
        toMain(weak, [chart = historyChart(*context->snapshot(), range, range.interval())](
                         Controller& self) mutable { self.apply(std::move(chart)); });
    });
}

void Controller::apply(HistoryChart chart) {
    if (isStatCellOnHand()) {
        change([&](HistoryPage& page) { page.showChart(std::move(chart)); });
    }
}

void Controller::chartValueSelected(const HistoryBar& entry) {
    Port<MainQueue>::current().assertCurrent();
    HistoryPage page = *state();
    if (!page.highlight(entry)) {
        change([](HistoryPage& present) { present.clearHighlight(); });
        chartValueNothingSelected();
        return;
    }
    privateContext_->performBlock([weak = weak_from_this(), updates = updates_,
                                   context = privateContext_, date = *entry.data] {
        const bool isCurrentYear = DateRange::stored(DateRangeKey::history).isCurrentYear();
        if (isCurrentYear) {
            updates->shouldDisplayMonthTitles = true;
        }
        toMain(weak, [selection = HistorySelection::of(context->snapshot(), date, isCurrentYear)](
                         Controller& self) mutable { self.applySelection(std::move(selection)); });
    });
    publish(std::make_shared<const HistoryPage>(std::move(page)));
}

void Controller::applySelection(HistorySelection selection) {
    const PlayTotals totals = selection.totals;
    change([&](HistoryPage& page) {
        page.showSelection(std::move(selection));
        page.showsMonthTitles = updates_->shouldDisplayMonthTitles;
    });
    if (isStatCellOnHand()) {
        change([&](HistoryPage& page) { page.showSelectionTotals(totals); });
    }
}

void Controller::chartValueNothingSelected() {
    Port<MainQueue>::current().assertCurrent();
    change([&](HistoryPage& page) {
        page.clearSelection();
        page.showsMonthTitles = updates_->shouldDisplayMonthTitles;
    });
    if (isStatCellOnHand() && (state()->deselectCount || state()->deselectMinutes)) {
        change([](HistoryPage& page) { page.restoreTotals(); });
    }
}

}  // namespace tavrion
