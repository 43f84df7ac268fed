// A length of time cut into years, months, weeks, days, hours, minutes and seconds.
//
// Queue: any. Stateless; foundation's own, not for other rooms.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/foundation/NSCalendar.h"

namespace tavrion {

enum class TimeUnit { year, month, week, day, hour, minute, second };

struct UnitCount {
    TimeUnit unit;
    std::int64_t count;
};

namespace UnitCounts {

/// The bit of NSCalendarUnit.
std::uint64_t maskOf(TimeUnit unit);
/// All units of the mask, largest first: whole seconds from `start` on, first as many years as fit,
/// then months, and so on.
std::vector<UnitCount> ofTime(std::int64_t seconds, NSDate start, std::uint64_t units,
                              const NSCalendar& calendar);
/// Leaves at most `most` counts that are not zero, the largest, and rounds the rest into them.
void roundTo(std::size_t most, std::vector<UnitCount>& counts);
/// Whether the largest unit that is not zero is one, with less than a quarter of it beside.
bool isBarelyOne(const std::vector<UnitCount>& counts);

}  // namespace UnitCounts
}  // namespace tavrion
