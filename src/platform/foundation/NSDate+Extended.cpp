#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"

namespace tavrion::Extended {

NSDate startOfDay(NSDate date) {
    return NSCalendar::currentCalendar().startOfDayForDate(date);
}

NSDate endOfDay(NSDate date) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    NSDateComponents components;
    components.day = 1;
    components.second = -1;
    return calendar.dateByAddingComponents(components, calendar.startOfDayForDate(date));
}

std::int64_t daysBetweenDate(NSDate date, NSDate andDate) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    return calendar.dayComponentFromDate(calendar.startOfDayForDate(date),
                                         calendar.startOfDayForDate(andDate));
}

}  // namespace tavrion::Extended
