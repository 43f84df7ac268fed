#include "apps/tavrionctl/RangeArgument.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"

namespace tavrion::ctl {
namespace {

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

/// The presets in the order of their numbers.
constexpr std::array<const char*, 5> presetNames{"today", "past-week", "past-month", "year",
                                                 "lifetime"};

}  // namespace

std::optional<DateRangePreset> datePreset(const std::string& text) {
    const auto* const name = std::find(presetNames.begin(), presetNames.end(), text);
    return name == presetNames.end()
               ? std::nullopt
               : std::optional(static_cast<DateRangePreset>(name - presetNames.begin()));
}

Result<DateRange> dateRange(const std::string& text) {
    if (const auto preset = datePreset(text)) {
        const NSDateInterval interval =
            RVDateRangeSelectorViewController::dateIntervalForPreset(*preset);
        return DateRange{interval.startDate(), interval.endDate()};
    }
    const std::size_t dots = text.find("..");
    if (dots != std::string::npos) {
        const auto from = startOfWrittenDay(text.substr(0, dots));
        const auto to = startOfWrittenDay(text.substr(dots + 2));
        if (from && to && *from <= *to) {
            return DateRange{*from, Extended::endOfDay(*to)};
        }
    }
    return NSError{fmt::format("'{}' is not a range; write {}", text, rangeHelp), {}};
}

}  // namespace tavrion::ctl
