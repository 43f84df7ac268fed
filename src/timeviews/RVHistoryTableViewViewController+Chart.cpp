// The chart, and what choosing one of its bars does.
#include <utility>

#include "library/RVMetadataManager.h"
#include "platform/dispatch/MainQueue.h"
#include "timeviews/HistoryPlays.h"
#include "timeviews/RVHistoryTableViewViewController.h"

namespace tavrion {

struct RVHistoryTableViewViewController::BarSelection {
    NSDiffableDataSourceSnapshot snapshot;
    PlayTotals totals;
};

void RVHistoryTableViewViewController::layoutStatViews() {
    privateContext_->performBlock([weak = weak_from_this(), context = privateContext_] {
        const DateRange range = DateRange::stored(DateRangeKey::history);
        HistoryChart chart = historyChart(*context->snapshot(), range, range.interval());
        Port<MainQueue>::current().async([weak, chart = std::move(chart)]() mutable {
            const auto self = weak.lock();
            if (!self || !self->isStatCellOnHand()) {
                return;
            }
            self->statCell_.chart = std::move(chart);
            if (self->screen_ != nullptr) {
                self->screen_->chartDidChange(*self->statCell_.chart);
            }
        });
    });
}

void RVHistoryTableViewViewController::chartValueSelected(const HistoryBar& entry) {
    Port<MainQueue>::current().assertCurrent();
    if (entry.y == 0 || !entry.data) {
        clearHighlight();
        chartValueNothingSelected();
        return;
    }
    if (statCell_.chart) {
        statCell_.chart->highlightedX = entry.x;
    }
    recolorChart(HistoryBarColors::whileChosen());
    privateContext_->performBlock(
        [weak = weak_from_this(), context = privateContext_, date = *entry.data] {
            const auto self = weak.lock();
            if (!self) {
                return;
            }
            const bool isCurrentYear = DateRange::stored(DateRangeKey::history).isCurrentYear();
            if (isCurrentYear) {
                self->shouldDisplayMonthTitles_ = true;
            }
            const NSDateInterval span = spanOfHistoryBar(date, isCurrentYear);
            const HistoryPlays plays(context->snapshot(), span.startDate(), span.endDate());
            BarSelection selection{plays.inOneSection(date), plays.totals()};
            Port<MainQueue>::current().async([weak, selection = std::move(selection)]() mutable {
                if (const auto controller = weak.lock()) {
                    controller->applySelection(std::move(selection));
                }
            });
        });
}

void RVHistoryTableViewViewController::applySelection(BarSelection selection) {
    if (!deselectSnapshot_) {
        deselectSnapshot_ = snapshot();
    }
    dataSource_->applySnapshot(std::move(selection.snapshot), false);
    if (!isStatCellOnHand()) {
        return;
    }
    if (!deselectCount_) {
        deselectCount_ = statCell_.playsLabel;
    }
    if (!deselectMinutes_) {
        deselectMinutes_ = statCell_.durationLabel;
    }
    setTotals(RVMetadataManager::formattedCount(selection.totals.songs),
              RVMetadataManager::formattedMinutesForDuration(selection.totals.seconds));
}

void RVHistoryTableViewViewController::chartValueNothingSelected() {
    Port<MainQueue>::current().assertCurrent();
    recolorChart({});
    if (deselectSnapshot_) {
        dataSource_->applySnapshot(*std::exchange(deselectSnapshot_, std::nullopt), false);
    }
    if (isStatCellOnHand() && (deselectCount_ || deselectMinutes_)) {
        // What was not kept stays as it is.
        setTotals(std::exchange(deselectCount_, std::nullopt).value_or(statCell_.playsLabel),
                  std::exchange(deselectMinutes_, std::nullopt).value_or(statCell_.durationLabel));
    }
}

void RVHistoryTableViewViewController::recolorChart(const HistoryBarColors& colors) {
    if (!statCell_.chart) {
        return;
    }
    statCell_.chart->colors = colors;
    if (screen_ != nullptr) {
        screen_->chartColorsDidChange(*statCell_.chart);
    }
}

void RVHistoryTableViewViewController::clearHighlight() {
    if (!statCell_.chart || !statCell_.chart->highlightedX) {
        return;
    }
    statCell_.chart->highlightedX = std::nullopt;
    if (screen_ != nullptr) {
        screen_->chartColorsDidChange(*statCell_.chart);
    }
}

}  // namespace tavrion
