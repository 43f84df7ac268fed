#include "platform/foundation/UnitCounts.h"

#include <algorithm>
#include <array>

#include "platform/foundation/NSDateComponentsFormatter.h"

namespace tavrion::UnitCounts {

namespace {

struct UnitKind {
    TimeUnit unit;
    std::uint64_t mask;
    /// On average, where it depends on the calendar.
    std::int64_t seconds;
};

constexpr std::array<UnitKind, 7> kinds{{
    {TimeUnit::year, NSCalendarUnit::year, 31556952},
    {TimeUnit::month, NSCalendarUnit::month, 2629746},
    {TimeUnit::week, NSCalendarUnit::weekOfYear, 604800},
    {TimeUnit::day, NSCalendarUnit::day, 86400},
    {TimeUnit::hour, NSCalendarUnit::hour, 3600},
    {TimeUnit::minute, NSCalendarUnit::minute, 60},
    {TimeUnit::second, NSCalendarUnit::second, 1},
}};

std::int64_t secondsOf(TimeUnit unit) {
    return kinds[static_cast<std::size_t>(unit)].seconds;
}

NSDate byAdding(std::int64_t count, TimeUnit unit, NSDate date, const NSCalendar& calendar) {
    NSDateComponents components;
    const int number = static_cast<int>(count);
    switch (unit) {
        case TimeUnit::year:
            components.year = number;
            break;
        case TimeUnit::month:
            components.month = number;
            break;
        case TimeUnit::week:
            components.day = number * 7;
            break;
        default:
            components.day = number;
            break;
    }
    return calendar.dateByAddingComponents(components, date);
}

/// How many whole units of the calendar fit between two dates, and moves the first so far on.
std::int64_t countInCalendar(TimeUnit unit, NSDate& start, NSDate end, const NSCalendar& calendar) {
    const double length = end.timeIntervalSinceDate(start) / static_cast<double>(secondsOf(unit));
    // The average is at most a step off, in either direction.
    std::int64_t count = static_cast<std::int64_t>(std::clamp(length, 0.0, 1e8)) + 1;
    while (count > 0 && byAdding(count, unit, start, calendar) > end) {
        count -= 1;
    }
    start = byAdding(count, unit, start, calendar);
    return count;
}

/// Adds one to a count where the smaller one asks for it: beyond a half of it, and at exactly a
/// half where that makes the count even.
void foldInto(UnitCount& larger, const UnitCount& smaller) {
    const std::int64_t whole = secondsOf(larger.unit);
    const std::int64_t twice = 2 * smaller.count * secondsOf(smaller.unit);
    if (twice > whole || (twice == whole && larger.count % 2 != 0)) {
        larger.count += 1;
    }
}

/// Sixty minutes are an hour, and so on, where the larger unit is among the counts.
void carry(std::vector<UnitCount>& counts) {
    for (std::size_t i = counts.size(); i-- > 1;) {
        const std::int64_t whole = secondsOf(counts[i - 1].unit);
        const std::int64_t part = secondsOf(counts[i].unit);
        // Months and years have no whole number of weeks or days.
        if (whole % part == 0 && counts[i].count * part >= whole) {
            counts[i - 1].count += counts[i].count * part / whole;
            counts[i].count %= whole / part;
        }
    }
}

std::size_t countOfNonZero(const std::vector<UnitCount>& counts) {
    return static_cast<std::size_t>(std::count_if(
        counts.begin(), counts.end(), [](const UnitCount& one) { return one.count != 0; }));
}

}  // namespace

std::uint64_t maskOf(TimeUnit unit) {
    return kinds[static_cast<std::size_t>(unit)].mask;
}

std::vector<UnitCount> ofTime(std::int64_t seconds, NSDate start, std::uint64_t units,
                              const NSCalendar& calendar) {
    NSDate reached = start;
    const NSDate end = start.dateByAddingTimeInterval(static_cast<double>(seconds));
    std::int64_t rest = seconds;
    std::vector<UnitCount> counts;
    for (const UnitKind& kind : kinds) {
        if ((units & kind.mask) == 0) {
            continue;
        }
        if (kind.unit < TimeUnit::hour) {
            counts.push_back({kind.unit, countInCalendar(kind.unit, reached, end, calendar)});
            rest = static_cast<std::int64_t>(end.timeIntervalSinceDate(reached));
        } else {
            counts.push_back({kind.unit, rest / kind.seconds});
            rest %= kind.seconds;
        }
    }
    return counts;
}

void roundTo(std::size_t most, std::vector<UnitCount>& counts) {
    while (countOfNonZero(counts) > most) {
        const auto last = std::find_if(counts.rbegin(), counts.rend(),
                                       [](const UnitCount& one) { return one.count != 0; });
        foldInto(*std::next(last), *last);
        last->count = 0;
        carry(counts);
    }
}

bool isBarelyOne(const std::vector<UnitCount>& counts) {
    const auto largest = std::find_if(counts.begin(), counts.end(),
                                      [](const UnitCount& one) { return one.count != 0; });
    if (largest == counts.end() || largest->count != 1 || std::next(largest) == counts.end()) {
        return false;
    }
    const UnitCount& next = *std::next(largest);
    return next.count != 0 && 4 * next.count * secondsOf(next.unit) < secondsOf(largest->unit);
}

}  // namespace tavrion::UnitCounts
