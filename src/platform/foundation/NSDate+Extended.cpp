#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"

namespace tavrion::Extended {

NSDate startOfDay(NSDate date) {
    return NSCalendar::currentCalendar().startOfDayForDate(date);
}

NSDate endOfDay(NSDate date) {
    // Adding a day to the start would keep its time of the day, which is not midnight where that is
    // skipped.
    return NSCalendar::currentCalendar().startOfNextDayForDate(date).dateByAddingTimeInterval(-1);
}

std::int64_t daysBetweenDate(NSDate date, NSDate andDate) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    return calendar.dayComponentFromDate(calendar.startOfDayForDate(date),
                                         calendar.startOfDayForDate(andDate));
}

}  // namespace tavrion::Extended
