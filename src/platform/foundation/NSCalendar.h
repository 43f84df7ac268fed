// The user's Gregorian calendar: a time zone, and arithmetic in days, months and years.
//
// Queue: any; an immutable value. The composition root or a test plugs the current one through
// Regional.
#pragma once

#include <string>
#include <utility>

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
    /// The first instant of the day that follows: its midnight, or the change of the clocks where
    /// that midnight is skipped.
    NSDate startOfNextDayForDate(NSDate date) const;
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

/// Locales by what they decide, as ICU names ("de_DE").
struct Locales {
    /// Dates, durations and numbers.
    std::string formats;
    /// The order of names, and which letters a search takes for the same.
    std::string order;
    /// The language of the program's own texts.
    std::string words;
    bool operator==(const Locales&) const = default;
};

/// Where the user is: the zone of the calendar and the locales of texts.
class Regional {
  public:
    static constexpr const char* portName = "a region is plugged in";
    /// One locale for everything.
    Regional(NSTimeZone zone, const std::string& locale)
        : Regional(std::move(zone), Locales{locale, locale, locale}) {}
    Regional(NSTimeZone zone, Locales locales)
        : zone_(std::move(zone)), locales_(std::move(locales)) {}
    /// From the environment: TZ; and for formats LC_TIME, for the order LC_COLLATE, for words
    /// LC_MESSAGES, each after LC_ALL and before LANG; "C" and "POSIX" mean en_US.
    static Regional fromEnvironment();

    const NSTimeZone& timeZone() const& { return zone_; }
    NSTimeZone timeZone() && { return std::move(zone_); }
    /// Of dates, durations and numbers.
    const std::string& locale() const& { return locales_.formats; }
    std::string locale() && { return std::move(locales_.formats); }
    const Locales& locales() const& { return locales_; }
    Locales locales() && { return std::move(locales_); }
    const std::string& orderLocale() const& { return locales_.order; }
    std::string orderLocale() && { return std::move(locales_.order); }

  private:
    NSTimeZone zone_;
    Locales locales_;
};

}  // namespace tavrion
