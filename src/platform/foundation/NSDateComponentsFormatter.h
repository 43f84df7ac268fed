// Lengths of time as the people of a locale write them: "1h 10m", "70 min", "1:10:00".
//
// Queue: any; a value, cheap to make and to copy: what it stands on is kept between calls. Units:
// seconds; fractions of a second are cut off. A length that is not finite gives an empty text, and
// a negative one reads as its magnitude: whoever wants a sign writes it. Years, months, weeks and
// days are those of the calendar, counted from 2001-01-01 UTC or from a given date.
#pragma once

#include <cstdint>
#include <string>

#include "platform/foundation/NSCalendar.h"

namespace tavrion {

/// Added up to a mask; the numbers are the platform's own.
namespace NSCalendarUnit {
inline constexpr std::uint64_t year = 4;
inline constexpr std::uint64_t month = 8;
inline constexpr std::uint64_t day = 16;
inline constexpr std::uint64_t hour = 32;
inline constexpr std::uint64_t minute = 64;
inline constexpr std::uint64_t second = 128;
/// A quantity of weeks.
inline constexpr std::uint64_t weekOfYear = 8192;
}  // namespace NSCalendarUnit

/// The numbers are the platform's own.
enum class NSDateComponentsFormatterUnitsStyle { positional = 0, abbreviated = 1, shortStyle = 2 };

/// What becomes of units whose count is zero. When none is left, the smallest allowed unit stays.
enum class NSDateComponentsFormatterZeroBehavior : unsigned {
    /// All are shown.
    none = 0,
    /// As dropLeading where the style is positional, else as dropAll.
    standard = 1,
    dropLeading = 2,
    dropAll = 14,
};

class NSDateComponentsFormatter {
  public:
    /// In the plugged region's locale and calendar, with all units and no bound.
    NSDateComponentsFormatter();

    /// An ICU name ("de_DE").
    void setLocale(std::string locale) { locale_ = std::move(locale); }
    void setCalendar(NSCalendar calendar) { calendar_ = std::move(calendar); }
    void setUnitsStyle(NSDateComponentsFormatterUnitsStyle style) { style_ = style; }
    /// A mask; what is smaller than the smallest of them is cut off. In the positional style:
    /// hours, minutes and seconds without a gap.
    void setAllowedUnits(std::uint64_t units) { allowedUnits_ = units; }
    void setZeroFormattingBehavior(NSDateComponentsFormatterZeroBehavior behavior) {
        zeroBehavior_ = behavior;
    }
    /// At most so many units that are not zero; what does not fit is rounded into the last one,
    /// halves to the even number. 0 is no bound.
    void setMaximumUnitCount(std::size_t count) { maximumUnitCount_ = count; }
    /// Whether one of the largest unit and little beside it is told in the next smaller unit: 63
    /// seconds instead of one minute and 3 seconds.
    void setCollapsesLargestUnit(bool collapses) { collapsesLargestUnit_ = collapses; }

    std::string stringFromTimeInterval(NSTimeInterval seconds) const;
    /// The time from one date to another, in the calendar's own days from there.
    std::string stringFromDate(NSDate from, NSDate to) const;

  private:
    std::string stringFromLength(NSTimeInterval seconds, NSDate start) const;

    std::string locale_;
    NSCalendar calendar_;
    NSDateComponentsFormatterUnitsStyle style_ = NSDateComponentsFormatterUnitsStyle::positional;
    std::uint64_t allowedUnits_;
    NSDateComponentsFormatterZeroBehavior zeroBehavior_ =
        NSDateComponentsFormatterZeroBehavior::standard;
    std::size_t maximumUnitCount_ = 0;
    bool collapsesLargestUnit_ = false;
};

}  // namespace tavrion
