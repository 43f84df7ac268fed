// Days around an instant, in the current calendar.
//
// Queue: any. Stateless.
#pragma once

#include <cstdint>

#include "platform/foundation/NSDate.h"

namespace tavrion::Extended {

/// The first instant of the date's day.
NSDate startOfDay(NSDate date);
/// The last whole second of the date's day: a second before the first instant of the next one.
NSDate endOfDay(NSDate date);
/// Whole days between the days of two dates, negative when the first is later.
std::int64_t daysBetweenDate(NSDate date, NSDate andDate);

}  // namespace tavrion::Extended
