#include "platform/foundation/CalendarDays.h"

#include <algorithm>
#include <cmath>

namespace tavrion {
namespace {

constexpr double secondsOfDay = 86400;

NSDate at(double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

/// The first second after `from` in which the zone has another offset than at `from`; it has one at
/// `to`. Both are whole seconds.
double changeOfOffset(const NSTimeZone& zone, double from, double to) {
    const int offset = zone.secondsFromGMTForDate(at(from));
    while (to - from > 1) {
        const double middle = std::floor((from + to) / 2);
        (zone.secondsFromGMTForDate(at(middle)) == offset ? from : to) = middle;
    }
    return to;
}

}  // namespace

void CalendarDays::look(double seconds) {
    day_ = zone_.civilDay(at(seconds));
    start_ = std::floor(seconds);
    const CivilTime time = zone_.civilTime(at(start_));
    const double midnight =
        start_ + secondsOfDay - (time.hour * 3600.0 + time.minute * 60.0 + time.second);
    // The clock runs on to midnight, unless it is set to another time before.
    const int offset = zone_.secondsFromGMTForDate(at(start_));
    end_ = zone_.secondsFromGMTForDate(at(midnight - 1)) == offset
               ? midnight
               : changeOfOffset(zone_, start_, midnight - 1);
}

std::vector<CalendarDay> calendarDaysOf(const NSDateInterval& interval, const NSTimeZone& zone) {
    const std::int64_t first =
        std::max(zone.civilDay(interval.startDate()), CivilDay::fromDate(1, 1, 1)).number;
    const std::int64_t last =
        std::min(zone.civilDay(interval.endDate()), CivilDay::fromDate(9999, 12, 31)).number;
    std::vector<CalendarDay> days;
    for (std::int64_t number = first; number <= last; ++number) {
        const CalendarDay day{{number}, zone.startOfDay({number})};
        // A day that does not exist starts where the next one does.
        const bool exists = zone.civilDay(day.start) == day.day;
        if (exists && day.start < interval.endDate()) {
            days.push_back(day);
        }
    }
    return days;
}

}  // namespace tavrion
