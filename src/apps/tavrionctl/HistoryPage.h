// What the History screen shows of a range, as a command gathers it.
//
// Queue: the main thread. Who owns: whoever prints it; the rows are read from the main context when
// they are printed. Absent: the chart of a range without plays, and the chosen bar.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "platform/coredata/NSManagedObjectContext.h"
#include "recording/PlayTotals.h"
#include "timeviews/HistoryChart.h"
#include "timeviews/RVHistoryTableViewViewController.h"

namespace tavrion::ctl {

struct HistoryPage {
    DateRange range;
    /// The range as dates.
    NSDateInterval interval;
    NSDiffableDataSourceSnapshot list;
    PlayTotals totals;
    std::optional<HistoryChart> chart;
    bool showsMonthTitles = false;

    /// The page of a range.
    static HistoryPage of(const DateRange& range, NSManagedObjectContext& context);
    /// Narrows list and totals to the bar. False when it cannot be chosen, because it is empty or
    /// an hour; then nothing changes.
    bool choose(std::size_t bar, NSManagedObjectContext& context);

    bool isEmpty() const { return !chart.has_value(); }
    std::string songsText() const;
    std::string secondsText() const;
    std::string caption() const;
    /// Of a section below the first.
    std::string titleOfSection(std::size_t section) const;
};

/// The rows of a page. A song of the library is looked up once, however often it was played.
class HistoryRows {
  public:
    explicit HistoryRows(NSManagedObjectContext& context) : context_(context) {}
    HistoryRow rowOf(NSManagedObjectID play, const std::optional<UIFont>& font);

  private:
    NSManagedObjectContext& context_;
    std::unordered_map<RecordCounter, std::optional<MPMediaItem>> items_;
};

}  // namespace tavrion::ctl
