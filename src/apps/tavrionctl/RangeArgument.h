// The range of days that --range names.
//
// Queue: any.
#pragma once

#include <string>

#include "platform/foundation/Result.h"
#include "timeviews/DateRange.h"

namespace tavrion::ctl {

inline const char* const rangeHelp =
    "today, past-week, past-month, year, lifetime, or two dates as FROM..TO "
    "(2026-01-01..2026-01-31)";

/// The error names what is wrong with the text.
Result<DateRange> dateRange(const std::string& text);

}  // namespace tavrion::ctl
