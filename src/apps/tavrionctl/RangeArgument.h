// The range of days that --range names.
//
// Queue: any; the current calendar and clock decide which days "today" and the like are.
#pragma once

#include <optional>
#include <string>

#include "platform/foundation/NSDate.h"
#include "platform/foundation/Result.h"
#include "timeviews/RVDateRangeSelectorViewController.h"

namespace tavrion::ctl {

inline const char* const rangeHelp =
    "today, past-week, past-month, year, lifetime, or two dates as FROM..TO "
    "(2026-01-01..2026-01-31)";

/// From the first instant of a day to the last second of one.
struct DateRange {
    NSDate start;
    NSDate end;
};

/// The preset of that name; absent for anything else.
std::optional<DateRangePreset> datePreset(const std::string& text);

/// The error names what is wrong with the text.
Result<DateRange> dateRange(const std::string& text);

}  // namespace tavrion::ctl
