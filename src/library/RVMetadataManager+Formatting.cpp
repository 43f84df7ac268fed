// Numbers, dates and lengths of time.
#include "library/RVMetadataManager.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSDateComponentsFormatter.h"
#include "platform/foundation/NSDateFormatter.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSNumberFormatter.h"
#include "platform/foundation/NSUserDefaults.h"

namespace tavrion {

namespace {

using UnitsStyle = NSDateComponentsFormatterUnitsStyle;
using ZeroBehavior = NSDateComponentsFormatterZeroBehavior;

// Above it a time listened loses its smaller unit; at it a clock turns into hours.
constexpr double hundredHours = 360000.0;
constexpr double oneHour = 3600.0;
// Farther back a weekday would be taken for the coming one's namesake.
constexpr std::int64_t daysToldByWeekday = 8;

constexpr std::uint64_t minutesSeconds = NSCalendarUnit::minute | NSCalendarUnit::second;
constexpr std::uint64_t hoursMinutesSeconds = NSCalendarUnit::hour | minutesSeconds;

std::string textInStyles(NSDate date, NSDateFormatterStyle dateStyle,
                         NSDateFormatterStyle timeStyle) {
    NSDateFormatter formatter;
    formatter.setDateStyle(dateStyle);
    formatter.setTimeStyle(timeStyle);
    return formatter.stringFromDate(date);
}

std::string textInFormat(NSDate date, const char* format) {
    NSDateFormatter formatter;
    formatter.setDateFormat(format);
    return formatter.stringFromDate(date);
}

std::string textOfParts(NSDate date, const char* parts) {
    NSDateFormatter formatter;
    formatter.setLocalizedDateFormatFromTemplate(parts);
    return formatter.stringFromDate(date);
}

enum class NamedDay { today, yesterday, other };

NamedDay namedDay(NSDate date, NSDate now) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    if (calendar.isDateInSameDay(date, now)) {
        return NamedDay::today;
    }
    NSDateComponents oneDayBack;
    oneDayBack.day = -1;
    const NSDate yesterday = calendar.dateByAddingComponents(oneDayBack, now);
    return calendar.isDateInSameDay(date, yesterday) ? NamedDay::yesterday : NamedDay::other;
}

std::string duration(double seconds, UnitsStyle style, std::uint64_t units,
                     std::size_t maximumUnitCount, ZeroBehavior zeros = ZeroBehavior::standard) {
    NSDateComponentsFormatter formatter;
    formatter.setUnitsStyle(style);
    formatter.setAllowedUnits(units);
    formatter.setMaximumUnitCount(maximumUnitCount);
    formatter.setZeroFormattingBehavior(zeros);
    return formatter.stringFromTimeInterval(seconds);
}

bool isTimeExpanded() {
    return NSUserDefaults::standardUserDefaults().boolForKey(RVMetadataManager::expandedTimeKey);
}

NSNumberFormatter formatterFor(NSNumberFormatterStyle style, int fractionDigits) {
    NSNumberFormatter formatter(style);
    formatter.setMaximumFractionDigits(fractionDigits);
    return formatter;
}

}  // namespace

std::string RVMetadataManager::formattedDate(std::optional<NSDate> date, bool compact) {
    if (!date) {
        return placeholder;
    }
    const NSDate now = NSDate::date();
    switch (namedDay(*date, now)) {
        case NamedDay::today:
            return NSLocalizedString("Today");
        case NamedDay::yesterday:
            return NSLocalizedString("Yesterday");
        case NamedDay::other:
            break;
    }
    if (Extended::daysBetweenDate(*date, now) < daysToldByWeekday) {
        return textInFormat(*date, "EEEE");
    }
    return compact
               ? textOfParts(*date, "MMMd")
               : textInStyles(*date, NSDateFormatterStyle::mediumStyle, NSDateFormatterStyle::none);
}

std::string RVMetadataManager::formattedEventDate(std::optional<NSDate> date) {
    if (!date) {
        return placeholder;
    }
    switch (namedDay(*date, NSDate::date())) {
        case NamedDay::today:
            return stringWithFormat(NSLocalizedString("Today at %@"),
                                    {formattedTimeFromDate(*date)});
        case NamedDay::yesterday:
            return stringWithFormat(NSLocalizedString("Yesterday at %@"),
                                    {formattedTimeFromDate(*date)});
        case NamedDay::other:
            break;
    }
    return textInStyles(*date, NSDateFormatterStyle::mediumStyle, NSDateFormatterStyle::shortStyle);
}

std::string RVMetadataManager::formattedTimeFromDate(NSDate date) {
    return textInStyles(date, NSDateFormatterStyle::none, NSDateFormatterStyle::shortStyle);
}

std::string RVMetadataManager::formattedHour(std::uint64_t hour) {
    // Components that hold an hour alone stand for that hour of the first day of the year 1, long
    // before any clock was changed.
    const CivilTime time{1, 1, 1, static_cast<int>(hour % 24), 0, 0};
    return textInFormat(NSCalendar::currentCalendar().timeZone().dateOfCivilTime(time), "h a");
}

std::string RVMetadataManager::formattedMonth(NSDate date) {
    return textOfParts(date, "MMMM yyyy");
}

std::string RVMetadataManager::formattedCount(double number) {
    return formatterFor(NSNumberFormatterStyle::decimal, 0).stringFromNumber(number);
}

std::string RVMetadataManager::formattedWholeCount(std::int64_t number) {
    return formatterFor(NSNumberFormatterStyle::decimal, 0).stringFromNumber(number);
}

std::string RVMetadataManager::formattedPlays(std::uint64_t count) {
    return stringWithFormat(NSLocalizedString("%lux"), {count});
}

std::string RVMetadataManager::formattedPercentage(double number) {
    return formatterFor(NSNumberFormatterStyle::percent, 1).stringFromNumber(number);
}

std::string RVMetadataManager::formattedDuration(double seconds) {
    if (!isTimeExpanded()) {
        return duration(seconds, UnitsStyle::shortStyle, NSCalendarUnit::minute, 0);
    }
    const std::size_t maximumUnitCount = seconds > hundredHours ? 1 : 2;
    return duration(seconds, UnitsStyle::abbreviated, hoursMinutesSeconds, maximumUnitCount);
}

std::string RVMetadataManager::formattedPlaybackDuration(double seconds) {
    if (seconds >= hundredHours) {
        return duration(seconds, UnitsStyle::abbreviated, NSCalendarUnit::hour, 0);
    }
    const std::uint64_t units = seconds >= oneHour ? hoursMinutesSeconds : minutesSeconds;
    return duration(seconds, UnitsStyle::positional, units, 0, ZeroBehavior::none);
}

std::string RVMetadataManager::formattedMinutesForDuration(double seconds) {
    return isTimeExpanded() ? formattedPlaybackDuration(seconds)
                            : duration(seconds, UnitsStyle::positional, NSCalendarUnit::minute, 0,
                                       ZeroBehavior::dropLeading);
}

}  // namespace tavrion
