// The user's Gregorian calendar: a time zone, and arithmetic in days, months and years.
//
// Queue: any; an immutable value. The composition root or a test plugs the current one through
// Regional.
#pragma once

#include "platform/foundation/NSTimeZone.h"
#include "platform/foundation/Port.h"

namespace tavrion {

/// What to add, in this order: years, months, days, then hours, minutes and seconds. The first
/// three keep the wall clock; the others are absolute.
struct NSDateComponents {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

class NSCalendar {
  public:
    explicit NSCalendar(NSTimeZone zone) : zone_(std::move(zone)) {}
    /// The calendar of the plugged region.
    static NSCalendar currentCalendar();

    const NSTimeZone& timeZone() const& { return zone_; }
    /// Of a calendar that is about to go: a copy, so that a reference bound to it stays good.
    NSTimeZone timeZone() && { return std::move(zone_); }
    NSDate startOfDayForDate(NSDate date) const;
    NSDate dateByAddingComponents(const NSDateComponents& components, NSDate date) const;
    /// The first instant of that year.
    NSDate dateFromYear(std::int64_t year) const;
    bool isDateInSameDay(NSDate a, NSDate b) const;
    /// Whole days of the calendar difference from `from` to `to` at the wall clock of `from`, cut
    /// towards zero.
    std::int64_t dayComponentFromDate(NSDate from, NSDate to) const;

  private:
    NSTimeZone zone_;
};

/// Where the user is: the zone of the calendar and the locale of texts.
class Regional {
  public:
    static constexpr const char* portName = "a region is plugged in";
    /// `locale` is an ICU name ("de_DE").
    Regional(NSTimeZone zone, std::string locale)
        : zone_(std::move(zone)), locale_(std::move(locale)) {}
    /// From the environment: TZ, and LC_ALL or LC_COLLATE or LANG; "C" and "POSIX" mean en_US.
    static Regional fromEnvironment();

    const NSTimeZone& timeZone() const& { return zone_; }
    NSTimeZone timeZone() && { return std::move(zone_); }
    const std::string& locale() const& { return locale_; }
    std::string locale() && { return std::move(locale_); }

  private:
    NSTimeZone zone_;
    std::string locale_;
};

}  // namespace tavrion
