#include "timeviews/HistoryPage.h"

#include <utility>

#include "library/RVMetadataManager.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSUserDefaults.h"
#include "timeviews/HistoryPlays.h"

namespace tavrion {
namespace {

HistoryPage::List shared(NSDiffableDataSourceSnapshot snapshot) {
    return std::make_shared<const NSDiffableDataSourceSnapshot>(std::move(snapshot));
}

}  // namespace

HistoryList HistoryList::of(const std::shared_ptr<const StoreVersion>& records,
                            const DateRange& range, const std::function<void(float)>& progress) {
    const NSDateInterval interval = range.interval();
    const HistoryPlays plays(records, interval.startDate(), interval.endDate());
    const PlayTotals totals = plays.totals();
    return {range, interval, plays.byDay([&](float share) {
                if (progress) {
                    progress(share);
                }
            }),
            totals};
}

HistorySelection HistorySelection::of(const std::shared_ptr<const StoreVersion>& records,
                                      NSDate date, bool isCurrentYear) {
    const NSDateInterval span = spanOfHistoryBar(date, isCurrentYear);
    const HistoryPlays plays(records, span.startDate(), span.endDate());
    return {plays.inOneSection(date), plays.totals(), isCurrentYear};
}

HistoryPage HistoryPage::of(const std::shared_ptr<const StoreVersion>& records,
                            const DateRange& range) {
    HistoryPage page;
    HistoryList list = HistoryList::of(records, range, nullptr);
    const PlayTotals totals = list.totals;
    page.showList(std::move(list));
    page.showTotals(totals);
    if (totals.plays > 0) {
        page.showChart(historyChart(*records, range, *page.interval));
    }
    return page;
}

void HistoryPage::showList(HistoryList update) {
    range = update.range;
    interval = update.interval;
    isBackgroundViewHidden = update.totals.plays > 0;
    list = shared(std::move(update.snapshot));
    showsMonthTitles = false;
    statCell.durationCaption =
        NSUserDefaults::standardUserDefaults().boolForKey(RVMetadataManager::expandedTimeKey)
            ? NSLocalizedString("Time Listened")
            : NSLocalizedString("Minutes Listened");
}

void HistoryPage::showTotals(const PlayTotals& shown) {
    totals = shown;
    statCell.playsLabel = RVMetadataManager::formattedCount(shown.songs);
    statCell.durationLabel = RVMetadataManager::formattedMinutesForDuration(shown.seconds);
}

void HistoryPage::showChart(HistoryChart chart) {
    statCell.chart = std::make_shared<const HistoryChart>(std::move(chart));
    ++chartRisings;
}

bool HistoryPage::highlight(const HistoryBar& entry) {
    if (entry.y == 0 || !entry.data) {
        return false;
    }
    if (statCell.chart) {
        HistoryChart chart = *statCell.chart;
        chart.colors = HistoryBarColors::whileChosen();
        chart.highlightedX = entry.x;
        statCell.chart = std::make_shared<const HistoryChart>(std::move(chart));
    }
    return true;
}

void HistoryPage::clearHighlight() {
    if (statCell.chart && statCell.chart->highlightedX) {
        HistoryChart chart = *statCell.chart;
        chart.highlightedX = std::nullopt;
        statCell.chart = std::make_shared<const HistoryChart>(std::move(chart));
    }
}

void HistoryPage::recolor(const HistoryBarColors& colors) {
    if (statCell.chart) {
        HistoryChart chart = *statCell.chart;
        chart.colors = colors;
        statCell.chart = std::make_shared<const HistoryChart>(std::move(chart));
    }
}

void HistoryPage::showSelection(HistorySelection selection) {
    if (!deselectSnapshot) {
        deselectSnapshot = list;
    }
    list = shared(std::move(selection.snapshot));
    showsMonthTitles = showsMonthTitles || selection.isMonth;
}

void HistoryPage::showSelectionTotals(const PlayTotals& shown) {
    if (!deselectCount) {
        deselectCount = statCell.playsLabel;
    }
    if (!deselectMinutes) {
        deselectTotals = totals;
        deselectMinutes = statCell.durationLabel;
    }
    showTotals(shown);
}

void HistoryPage::clearSelection() {
    recolor({});
    if (deselectSnapshot) {
        list = std::exchange(deselectSnapshot, nullptr);
    }
}

void HistoryPage::restoreTotals() {
    // What was not kept stays as it is.
    if (deselectMinutes) {
        totals = deselectTotals;
    }
    statCell.playsLabel = std::exchange(deselectCount, std::nullopt).value_or(statCell.playsLabel);
    statCell.durationLabel =
        std::exchange(deselectMinutes, std::nullopt).value_or(statCell.durationLabel);
}

std::optional<std::string> HistoryPage::titleForHeaderInSection(std::size_t section) const {
    if (section == 0 || list->numberOfItemsInSection(section) == 0) {
        return std::nullopt;
    }
    const auto* date = list->sectionIdentifier(section).get<NSDate>();
    if (date == nullptr) {
        return std::nullopt;
    }
    return showsMonthTitles ? RVMetadataManager::formattedMonth(*date)
                            : RVMetadataManager::formattedDate(*date, false);
}

}  // namespace tavrion
