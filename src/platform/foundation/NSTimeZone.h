// The rules of a time zone, from the system's time-zone data.
//
// Queue: any; an immutable value, cheap to copy. Instants more than thirty million years away are
// reckoned as if they were that far, and one that is not a number as the reference date.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/NSDate.h"

namespace tavrion {

/// A day of the proleptic Gregorian calendar, without a time or a zone. Days are counted from
/// 1970-01-01, which is 0.
struct CivilDay {
    std::int64_t number = 0;
    auto operator<=>(const CivilDay&) const = default;
    static CivilDay fromDate(std::int64_t year, int month, int day);
};

/// A reading of the wall clock.
struct CivilTime {
    std::int64_t year = 1970;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

class NSTimeZone {
  public:
    /// UTC.
    NSTimeZone();
    /// The zone of that name ("Europe/Berlin", "UTC"); absent when the system has no such zone.
    static std::optional<NSTimeZone> timeZoneWithName(const std::string& name);
    /// The zone of the environment variable TZ, else of the system; UTC when neither names a known
    /// one.
    static NSTimeZone systemTimeZone();

    const std::string& name() const;
    /// Offset from UTC at `date`, in seconds, east positive.
    int secondsFromGMTForDate(NSDate date) const;
    CivilTime civilTime(NSDate date) const;
    CivilDay civilDay(NSDate date) const;
    /// The first instant of the day: the first of two midnights, and the first instant that exists
    /// where midnight does not; for a day that does not exist, the start of the next one.
    NSDate startOfDay(CivilDay day) const;
    /// The instant of a wall clock reading; the first where it occurs twice, and moved on by the
    /// length of the gap where it does not occur.
    NSDate dateOfCivilTime(const CivilTime& time) const;
    /// As dateOfCivilTime, but the last where it occurs twice.
    NSDate lastDateOfCivilTime(const CivilTime& time) const;

  private:
    struct Rules;
    explicit NSTimeZone(std::shared_ptr<const Rules> rules);
    std::shared_ptr<const Rules> rules_;
};

}  // namespace tavrion
