// An instant: seconds since 2001-01-01 00:00:00 UTC as a double, compared exactly.
//
// Queue: any; a value. No other type of time crosses a function border. Absent is
// std::optional<NSDate>. The present comes from the clock (platform/foundation/Clock.h) alone.
// Calendar arithmetic is in NSCalendar.h.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavrion {

/// A length of time in seconds.
using NSTimeInterval = double;

class NSDate {
  public:
    /// Seconds from 1970-01-01 to 2001-01-01, UTC.
    static constexpr NSTimeInterval secondsFrom1970To2001 = 978307200.0;

    constexpr NSDate() = default;
    static constexpr NSDate dateWithTimeIntervalSinceReferenceDate(NSTimeInterval seconds) {
        return NSDate(seconds);
    }
    /// The instant of Unix time `seconds`.
    static constexpr NSDate dateWithTimeIntervalSince1970(NSTimeInterval seconds) {
        return NSDate(seconds - secondsFrom1970To2001);
    }
    /// 0001-01-01 UTC of the Julian calendar, two days before the year 1 begins here: earlier than
    /// anything that a library holds.
    static constexpr NSDate distantPast() { return NSDate(-63114076800.0); }
    /// 4001-01-01 UTC.
    static constexpr NSDate distantFuture() { return NSDate(63113904000.0); }
    /// The present by the plugged clock.
    static NSDate date();

    constexpr NSTimeInterval timeIntervalSinceReferenceDate() const { return seconds_; }
    constexpr NSTimeInterval timeIntervalSince1970() const {
        return seconds_ + secondsFrom1970To2001;
    }
    constexpr NSTimeInterval timeIntervalSinceDate(NSDate earlier) const {
        return seconds_ - earlier.seconds_;
    }
    constexpr NSDate dateByAddingTimeInterval(NSTimeInterval seconds) const {
        return NSDate(seconds_ + seconds);
    }

    constexpr auto operator<=>(const NSDate&) const = default;

  private:
    constexpr explicit NSDate(NSTimeInterval seconds) : seconds_(seconds) {}
    NSTimeInterval seconds_ = 0;
};

/// The later of two dates; an absent date never wins.
constexpr std::optional<NSDate> laterDate(std::optional<NSDate> a, std::optional<NSDate> b) {
    if (!a || !b) {
        return a ? a : b;
    }
    return *a < *b ? b : a;
}

/// "2026-03-01T12:00:00.250Z": ISO 8601 in UTC with milliseconds, rounded down. Years outside 1 to
/// 9999 are clamped.
std::string isoTextOfDate(NSDate date);

/// The instant of an ISO 8601 text with "Z" or an offset ("2026-03-01T13:00:00.25+01:00"),
/// fractions allowed, correctly rounded. Absent when the text is anything else, a date without a
/// time or without an offset and an instant outside the years 1 to 9999 in UTC included.
std::optional<NSDate> dateFromIsoText(std::string_view text);

}  // namespace tavrion
