// What the History screen shows of a range, as one value: its list, its totals, its chart, and what
// choosing a bar does to them. The screen and the command line show the same one.
//
// Queue: any; a value, whose lists and charts are shared and never change. Units: seconds. Absent:
// the range before there is a list, the chart before there is one, what is kept while no bar is
// chosen.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "kit/NSAttributedString.h"
#include "kit/NSDiffableDataSourceSnapshot.h"
#include "platform/coredata/StoreVersion.h"
#include "recording/PlayTotals.h"
#include "timeviews/DateRange.h"
#include "timeviews/HistoryChart.h"

namespace tavrion {

/// What the first row shows. A text is empty until there was something to show.
struct RVHistoryStatCell {
    /// How many songs were played, whatever its name says.
    std::string playsLabel;
    std::string durationLabel;
    std::string durationCaption;
    /// Null until the first chart was made.
    std::shared_ptr<const HistoryChart> chart;
};

/// The plays of a range, day by day.
struct HistoryList {
    DateRange range;
    /// Of the range when the plays were read.
    NSDateInterval interval;
    NSDiffableDataSourceSnapshot snapshot;
    PlayTotals totals;

    /// `progress` is called for each day, from the newest on; may be null.
    static HistoryList of(const std::shared_ptr<const StoreVersion>& records,
                          const DateRange& range, const std::function<void(float)>& progress);
};

/// The plays behind a chosen bar.
struct HistorySelection {
    NSDiffableDataSourceSnapshot snapshot;
    PlayTotals totals;
    bool isMonth = false;

    /// `date` is the bar's.
    static HistorySelection of(const std::shared_ptr<const StoreVersion>& records, NSDate date,
                               bool isCurrentYear);
};

struct HistoryPage {
    using List = std::shared_ptr<const NSDiffableDataSourceSnapshot>;

    std::optional<DateRange> range;
    std::optional<NSDateInterval> interval;
    /// Never null.
    List list = std::make_shared<const NSDiffableDataSourceSnapshot>();
    bool isBackgroundViewHidden = true;
    RVHistoryStatCell statCell;
    /// What the texts of the first row were made of.
    PlayTotals totals;
    /// Counts the charts that were made: new bars rise, the same ones in other colours do not.
    std::size_t chartRisings = 0;
    /// Section headers show a month instead of a day.
    bool showsMonthTitles = false;
    /// Of the button that opens the range drawer.
    NSAttributedString dateRangeTitle;
    /// Progress of an update stands in place of the title, following the notification
    /// "RVHistoryUpdateDidChange".
    bool showsProgress = false;
    /// Above the list, for the rest of the run in which it was first shown.
    std::optional<std::string> prompt;
    /// The list and the totals as they were before a bar was chosen; null and absent while none is.
    List deselectSnapshot;
    std::optional<std::string> deselectCount;
    std::optional<std::string> deselectMinutes;
    PlayTotals deselectTotals;

    /// The page of a range with everything in view, its first row too.
    static HistoryPage of(const std::shared_ptr<const StoreVersion>& records,
                          const DateRange& range);

    void showList(HistoryList update);
    void showTotals(const PlayTotals& totals);
    void showChart(HistoryChart chart);
    /// Highlights a bar. False where it can't be chosen, because it is empty or an hour; then
    /// nothing changes.
    bool highlight(const HistoryBar& entry);
    /// Takes the highlight away and leaves the colours.
    void clearHighlight();
    void showSelection(HistorySelection selection);
    /// Its totals. What they replace is kept.
    void showSelectionTotals(const PlayTotals& totals);
    /// All bars alike, and the list of the whole range again.
    void clearSelection();
    void restoreTotals();

    /// Absent for the section of the totals and for empty ones, which have no header.
    std::optional<std::string> titleForHeaderInSection(std::size_t section) const;

  private:
    void recolor(const HistoryBarColors& colors);
};

}  // namespace tavrion
