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
    const bool isDecember = time.month == 12;
    const NSTimeZone& zone = calendar.timeZone();
    return {zone.startOfDay(CivilDay::fromDate(time.year, time.month, 1)),
            zone.startOfDay(isDecember ? CivilDay::fromDate(time.year + 1, 1, 1)
                                       : CivilDay::fromDate(time.year, time.month + 1, 1))};
}

}  // namespace tavrion
