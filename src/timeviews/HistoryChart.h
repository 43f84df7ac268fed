// The chart of the History screen: how long was listened in each hour, day or month of a range.
//
// Queue: any; a value. Units: seconds; x counts bars from 0. What a chart looks like and how it may
// be touched is part of it, so that a window only draws it and a terminal can too.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "kit/UIImage.h"
#include "platform/coredata/StoreVersion.h"
#include "timeviews/DateRange.h"

namespace tavrion {

enum class HistoryChartForm { hours, months, days };

struct HistoryBar {
    std::size_t x = 0;
    /// How long was listened.
    double y = 0;
    /// Where the day or the month begins; absent for an hour, which cannot be chosen.
    std::optional<NSDate> data;
    bool operator==(const HistoryBar&) const = default;
};

/// The colours of the bars: all alike, or faded but for the chosen one.
struct HistoryBarColors {
    UIColor bars{"musicColor"};
    UIColor highlight{"musicColor"};
    float highlightAlpha = 0;
    static HistoryBarColors whileChosen() { return {{"systemFillColor"}, {"musicColor"}, 1}; }
    bool operator==(const HistoryBarColors&) const = default;
};

struct HistoryChart {
    static constexpr float barWidth = 0.9F;
    static constexpr bool drawsValues = false;
    /// How long the bars take to rise.
    static constexpr double risingDuration = 0.3;

    HistoryChartForm form = HistoryChartForm::days;
    std::vector<HistoryBar> bars;
    /// Whether a tap chooses a bar.
    bool isTapHighlightEnabled = false;
    std::size_t labelCount = 0;
    /// How many bars are in view at once.
    std::size_t leastVisible = 0;
    std::size_t mostVisible = 0;
    /// The x that is brought into view first, beyond the last bar; absent where all are in view.
    std::optional<std::size_t> movedToX;
    HistoryBarColors colors;
    /// The x of the bar that is drawn as chosen.
    std::optional<std::size_t> highlightedX;

    /// What stands below a bar, by the present day. Made when it is asked for, because a chart of
    /// years has room for few of its labels.
    std::string label(const HistoryBar& bar) const;
};

/// What the bars of a range stand for; its length does not matter. `interval` is the range as
/// dates, here and below.
HistoryChartForm historyChartForm(const DateRange& range, const NSDateInterval& interval);

/// The chart of the plays strictly within the range.
HistoryChart historyChart(const StoreVersion& records, const DateRange& range,
                          const NSDateInterval& interval);

/// The plays behind a bar that stands for the day of `date`, or for its month in a chart of the
/// current year. Unlike the bar itself a month ends where the next one begins.
NSDateInterval spanOfHistoryBar(NSDate date, bool isCurrentYear);

}  // namespace tavrion
