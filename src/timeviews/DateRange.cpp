#include "timeviews/DateRange.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "library/RVMetadataManager.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSDateFormatter.h"
#include "platform/foundation/NSKeyedArchiver.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSUserDefaults.h"
#include "recording/RVPlaybackHistoryManager.h"

namespace tavrion {
namespace {

constexpr std::int64_t daysBackInWeek = 6;
constexpr std::int64_t daysBackInMonth = 29;

/// The presets in the order of their numbers.
constexpr std::array<const char*, 5> presetTexts{"today", "past-week", "past-month", "year",
                                                 "lifetime"};

/// A day of the calendar, not its time kept so many days back: that is not the start of a day where
/// the midnight of today is skipped.
NSDate startOfDayBefore(NSDate now, std::int64_t days) {
    const NSTimeZone zone = NSCalendar::currentCalendar().timeZone();
    return zone.startOfDay({zone.civilDay(now).number - days});
}

NSDate startOfPreset(DateRangePreset preset, NSDate now) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    switch (preset) {
        case DateRangePreset::pastWeek:
            return startOfDayBefore(now, daysBackInWeek);
        case DateRangePreset::pastMonth:
            return startOfDayBefore(now, daysBackInMonth);
        case DateRangePreset::currentYear:
            return calendar.dateFromYear(calendar.timeZone().civilTime(now).year);
        case DateRangePreset::lifetime:
            return RVPlaybackHistoryManager::installationDate();
        case DateRangePreset::today:
            break;
    }
    return Extended::startOfDay(now);
}

NSDateInterval intervalOfPreset(DateRangePreset preset) {
    const NSDate now = NSDate::date();
    const NSDate end = Extended::endOfDay(now);
    // A clock that was set back can be before the installation.
    return {std::min(startOfPreset(preset, now), end), end};
}

std::string titleOfPreset(DateRangePreset preset) {
    switch (preset) {
        case DateRangePreset::pastWeek:
            return NSLocalizedString("Past Week");
        case DateRangePreset::pastMonth:
            return NSLocalizedString("Past Month");
        case DateRangePreset::currentYear:
            return DateRange::titleOfCurrentYear();
        case DateRangePreset::lifetime:
            return NSLocalizedString("Lifetime");
        case DateRangePreset::today:
            break;
    }
    return NSLocalizedString("Today");
}

std::string titleOfInterval(const std::optional<NSDateInterval>& interval) {
    const auto text = [](NSDate date) { return RVMetadataManager::formattedDate(date, false); };
    if (!interval) {
        return RVMetadataManager::formattedDate(std::nullopt, false);
    }
    if (NSCalendar::currentCalendar().isDateInSameDay(interval->startDate(), interval->endDate())) {
        return text(interval->startDate());
    }
    return text(interval->startDate()) + " – " + text(interval->endDate());
}

/// The first instant of the day "YYYY-MM-DD"; absent when there is no such day.
std::optional<NSDate> startOfWrittenDay(const std::string& text) {
    int year = 0;
    int month = 0;
    int day = 0;
    char rest = 0;
    constexpr std::size_t length = 10;
    if (text.size() != length ||
        std::sscanf(text.c_str(), "%4d-%2d-%2d%c", &year, &month, &day, &rest) != 3) {
        return std::nullopt;
    }
    const NSTimeZone zone = NSCalendar::currentCalendar().timeZone();
    const NSDate start = zone.startOfDay(CivilDay::fromDate(year, month, day));
    // A day that was written wrongly (the 31st of February) moves into another month.
    return month >= 1 && month <= 12 && day >= 1 && day <= 31 &&
                   zone.civilTime(start).month == month &&
                   CivilDay::fromDate(year, month, day) == zone.civilDay(start)
               ? std::optional(start)
               : std::nullopt;
}

}  // namespace

DateRange::DateRange(DateRangePreset preset) : object_(static_cast<std::uint64_t>(preset)) {}

DateRange::DateRange(const NSDateInterval& interval)
    : object_(NSKeyedArchiver::archivedDataWithRootObject(interval)) {}

DateRange::DateRange(Value object) : object_(std::move(object)) {}

DateRange DateRange::stored(const std::string& key) {
    return DateRange(NSUserDefaults::standardUserDefaults().objectForKey(key));
}

std::optional<DateRange> DateRange::ofText(const std::string& text) {
    const auto* const preset = std::find(presetTexts.begin(), presetTexts.end(), text);
    if (preset != presetTexts.end()) {
        return DateRange(static_cast<DateRangePreset>(preset - presetTexts.begin()));
    }
    const std::size_t dots = text.find("..");
    if (dots == std::string::npos) {
        return std::nullopt;
    }
    const auto from = startOfWrittenDay(text.substr(0, dots));
    const auto to = startOfWrittenDay(text.substr(dots + 2));
    return from && to && *from <= *to
               ? std::optional(DateRange(NSDateInterval(*from, Extended::endOfDay(*to))))
               : std::nullopt;
}

// A number may be stored in another form than this program's.
std::optional<std::uint64_t> DateRange::number() const {
    if (object_.isAbsent()) {
        return 0;
    }
    if (const auto* number = object_.get<std::int64_t>()) {
        return static_cast<std::uint64_t>(*number);
    }
    if (const auto* real = object_.get<double>()) {
        constexpr double beyondPresets = 1000;
        return *real >= 0 && *real < beyondPresets ? static_cast<std::uint64_t>(*real)
                                                   : static_cast<std::uint64_t>(beyondPresets);
    }
    if (const auto* flag = object_.get<bool>()) {
        return *flag ? 1 : 0;
    }
    return std::nullopt;
}

std::optional<NSDateInterval> DateRange::fixedInterval() const {
    const auto* data = object_.get<NSData>();
    if (data == nullptr) {
        return std::nullopt;
    }
    const auto interval = NSKeyedUnarchiver::unarchivedObjectOfClass<NSDateInterval>(*data);
    return interval ? std::optional(interval.value()) : std::nullopt;
}

bool DateRange::isCurrentYear() const {
    constexpr auto currentYear = static_cast<std::int64_t>(DateRangePreset::currentYear);
    if (const auto* whole = object_.get<std::int64_t>()) {
        return *whole == currentYear;
    }
    // Dates of the year do not make a number that is not whole the year's.
    const auto* real = object_.get<double>();
    return real != nullptr && *real == static_cast<double>(currentYear);
}

NSDateInterval DateRange::interval() const {
    if (const auto fixed = fixedInterval()) {
        return *fixed;
    }
    return intervalOfPreset(static_cast<DateRangePreset>(number().value_or(0)));
}

std::string DateRange::title() const {
    if (const auto preset = number()) {
        return titleOfPreset(static_cast<DateRangePreset>(*preset));
    }
    return isCustom() ? titleOfInterval(fixedInterval()) : std::string();
}

NSAttributedString DateRange::attributedTitle() const {
    return RVMetadataManager::attributedString(
        title(),
        UIImage::systemImageNamed("calendar", {UIImageSymbolScale::unspecified,
                                               UIImageSymbolWeight::semibold, std::nullopt}));
}

std::string DateRange::titleOfCurrentYear() {
    NSDateFormatter formatter;
    formatter.setDateFormat("y");
    return formatter.stringFromDate(NSDate::date());
}

}  // namespace tavrion
