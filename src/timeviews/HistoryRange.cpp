#include "timeviews/HistoryRange.h"

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSUserDefaults.h"
#include "timeviews/RVDateRangeSelectorViewController.h"

namespace tavrion {
namespace {

/// Whether the object is that very number.
bool isNumber(const Value& object, std::int64_t number) {
    if (const auto* whole = object.get<std::int64_t>()) {
        return *whole == number;
    }
    const auto* real = object.get<double>();
    return real != nullptr && *real == static_cast<double>(number);
}

}  // namespace

HistoryRange HistoryRange::stored() {
    const Value object = NSUserDefaults::standardUserDefaults().objectForKey(DateRangeKey::history);
    return {RVDateRangeSelectorViewController::dateIntervalForKey(DateRangeKey::history),
            isNumber(object, static_cast<std::int64_t>(DateRangePreset::currentYear))};
}

NSDateInterval spanOfHistoryBar(NSDate date, bool isCurrentYear) {
    if (!isCurrentYear) {
        return {Extended::startOfDay(date), Extended::endOfDay(date)};
    }
    const NSCalendar calendar = NSCalendar::currentCalendar();
    const CivilTime time = calendar.timeZone().civilTime(date);
    const NSDate start =
        calendar.timeZone().startOfDay(CivilDay::fromDate(time.year, time.month, 1));
    return {start, calendar.dateByAddingComponents({.month = 1}, start)};
}

}  // namespace tavrion
