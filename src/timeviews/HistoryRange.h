// The range of time that the History screen shows.
//
// Queue: any; a value.
#pragma once

#include "platform/foundation/NSDateInterval.h"

namespace tavrion {

struct HistoryRange {
    NSDateInterval interval;
    /// Chosen as the current year; the same days chosen one by one are not.
    bool isCurrentYear = false;

    /// As the user defaults hold it now.
    static HistoryRange stored();
};

/// The plays behind a bar of a chart of that range that stands for the day or month of `date`.
/// Unlike the bar itself a month ends where the next one begins.
NSDateInterval spanOfHistoryBar(NSDate date, bool isCurrentYear);

}  // namespace tavrion
