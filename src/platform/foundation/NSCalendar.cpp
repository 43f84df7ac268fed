#include "platform/foundation/NSCalendar.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "platform/foundation/SystemZone.h"

namespace tavrion {

namespace {

/// Whether days can be told apart there at all: beyond, and at infinities, dates are left as they
/// are.
bool isReckonable(NSDate date) {
    return std::abs(date.timeIntervalSinceReferenceDate()) < 1e14;
}

int daysInMonth(std::int64_t year, int month) {
    static constexpr std::array<int, 12> lengths{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool isLeapYear = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    return month == 2 && isLeapYear ? 29 : lengths[static_cast<std::size_t>(month - 1)];
}

/// The wall clock `months` on, the day held inside its month.
CivilTime byAddingMonths(CivilTime time, std::int64_t months) {
    const std::int64_t count = time.year * 12 + (time.month - 1) + months;
    const std::int64_t month = ((count % 12) + 12) % 12;
    time.year = (count - month) / 12;
    time.month = static_cast<int>(month) + 1;
    time.day = std::min(time.day, daysInMonth(time.year, time.month));
    return time;
}

/// The instant at which the wall clock shows `target`: coming from earlier the first of two, coming
/// from later the second. What `from` has beyond a whole second is kept.
NSDate moveTo(const NSTimeZone& zone, NSDate from, const CivilTime& target, bool forward) {
    const double seconds = from.timeIntervalSinceReferenceDate();
    const NSDate whole = forward ? zone.dateOfCivilTime(target) : zone.lastDateOfCivilTime(target);
    return from.dateByAddingTimeInterval(whole.timeIntervalSinceReferenceDate() -
                                         std::floor(seconds));
}

NSDate byAddingMonths(const NSTimeZone& zone, NSDate date, std::int64_t months) {
    return months == 0
               ? date
               : moveTo(zone, date, byAddingMonths(zone.civilTime(date), months), months > 0);
}

/// The calendar's date `number` days after 1970-01-01, with the time of `time`.
CivilTime onDay(CivilTime time, CivilDay day) {
    const CivilTime date = NSTimeZone().civilTime(NSTimeZone().startOfDay(day));
    time.year = date.year;
    time.month = date.month;
    time.day = date.day;
    return time;
}

NSDate byAddingDays(const NSTimeZone& zone, NSDate date, std::int64_t days) {
    if (days == 0) {
        return date;
    }
    const CivilDay day{zone.civilDay(date).number + days};
    return moveTo(zone, date, onDay(zone.civilTime(date), day), days > 0);
}

}  // namespace

NSCalendar NSCalendar::currentCalendar() {
    return NSCalendar(Port<Regional>::current().timeZone());
}

NSDate NSCalendar::startOfDayForDate(NSDate date) const {
    return isReckonable(date) ? zone_.startOfDay(zone_.civilDay(date)) : date;
}

NSDate NSCalendar::startOfNextDayForDate(NSDate date) const {
    return isReckonable(date) ? zone_.startOfDay({zone_.civilDay(date).number + 1}) : date;
}

NSDate NSCalendar::dateByAddingComponents(const NSDateComponents& components, NSDate date) const {
    if (!isReckonable(date)) {
        return date;
    }
    // Each step starts from the existing instant that the step before it reached.
    NSDate moved = byAddingMonths(zone_, date, std::int64_t{components.year} * 12);
    moved = byAddingMonths(zone_, moved, components.month);
    moved = byAddingDays(zone_, moved, components.day);
    return moved.dateByAddingTimeInterval(components.hour * 3600.0 + components.minute * 60.0 +
                                          components.second);
}

NSDate NSCalendar::dateFromYear(std::int64_t year) const {
    return zone_.startOfDay(CivilDay::fromDate(year, 1, 1));
}

bool NSCalendar::isDateInSameDay(NSDate a, NSDate b) const {
    return zone_.civilDay(a) == zone_.civilDay(b);
}

std::int64_t NSCalendar::dayComponentFromDate(NSDate from, NSDate to) const {
    if (!isReckonable(from) || !isReckonable(to)) {
        const double days = to.timeIntervalSinceDate(from) / 86400.0;
        return std::isnan(days) ? 0 : static_cast<std::int64_t>(std::clamp(days, -1e15, 1e15));
    }
    std::int64_t days = zone_.civilDay(to).number - zone_.civilDay(from).number;
    // The calendar's days are at most one step too far: a step counts when the whole of it fits.
    while (days > 0 && byAddingDays(zone_, from, days) > to) {
        days -= 1;
    }
    while (days < 0 && byAddingDays(zone_, from, days) < to) {
        days += 1;
    }
    return days;
}

Regional Regional::fromEnvironment() {
    const auto localeOf = [](const char* category) {
        return SystemZone::localeName(
            {std::getenv("LC_ALL"), std::getenv(category), std::getenv("LANG")});
    };
    return Regional(NSTimeZone::systemTimeZone(),
                    Locales{localeOf("LC_TIME"), localeOf("LC_COLLATE"), localeOf("LC_MESSAGES")});
}

}  // namespace tavrion
