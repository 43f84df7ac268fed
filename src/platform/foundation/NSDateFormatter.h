// Dates as the people of a locale write them, and fixed forms of dates.
//
// Queue: any; a value, cheap to make and to copy: what it stands on is kept between calls. The wall
// clock is the time zone's own, by the system's rules, and the calendar is the Gregorian one in all
// locales; ICU only knows the words and digits. Absent: a text that is no date of the format.
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/NSTimeZone.h"

namespace tavrion {

/// The numbers are the platform's own.
enum class NSDateFormatterStyle { none = 0, shortStyle = 1, mediumStyle = 2, longStyle = 3 };

/// What the texts of a formatter look like.
struct NSDateForm {
    enum class Kind { styles, parts, format };
    std::string locale;
    Kind kind = Kind::styles;
    NSDateFormatterStyle dateStyle = NSDateFormatterStyle::none;
    NSDateFormatterStyle timeStyle = NSDateFormatterStyle::none;
    /// Of the other two kinds.
    std::string letters = {};
    auto operator<=>(const NSDateForm&) const = default;
};

class NSDateFormatter {
  public:
    /// In the plugged region's locale and zone, with neither a date nor a time.
    NSDateFormatter();

    /// An ICU name ("de_DE"); "en_US_POSIX" for texts that machines read.
    void setLocale(std::string locale) { form_.locale = std::move(locale); }
    void setTimeZone(NSTimeZone zone) { zone_ = std::move(zone); }

    /// What is set last of these three counts: the locale's own styles,
    void setDateStyle(NSDateFormatterStyle style);
    void setTimeStyle(NSDateFormatterStyle style);
    /// the parts named ("MMMd") in the order and with the signs of the locale,
    void setLocalizedDateFormatFromTemplate(std::string parts);
    /// or exactly these letters (UTS #35) in the words and digits of the locale.
    void setDateFormat(std::string format);

    std::string stringFromDate(NSDate date) const;
    /// Reads strictly: the whole text, years of four digits, and only times that exist. A time that
    /// occurs twice is the second one.
    std::optional<NSDate> dateFromString(std::string_view text) const;

  private:
    NSDateForm form_;
    NSTimeZone zone_;
};

}  // namespace tavrion
