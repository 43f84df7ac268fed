// On which day of the calendar an instant is, for whoever asks about many instants that are close
// together.
//
// Queue: one at a time; remembers the stretch of time that it looked at last. Units: seconds since
// 2001-01-01 UTC. Days of which the calendar shows a part twice (clocks set back over midnight) are
// told right at both times, and no day needs a midnight.
#pragma once

#include <vector>

#include "platform/foundation/NSDateInterval.h"
#include "platform/foundation/NSTimeZone.h"

namespace tavrion {

class CalendarDays {
  public:
    explicit CalendarDays(NSTimeZone zone) : zone_(std::move(zone)) {}

    CivilDay dayOf(double seconds) {
        if (seconds < start_ || seconds >= end_) {
            look(seconds);
        }
        return day_;
    }
    /// When the stretch of the last answer ends. It says nothing of the day that follows.
    double endOfStretch() const { return end_; }

  private:
    void look(double seconds);

    const NSTimeZone zone_;
    /// The stretch in which the day is day_; empty before the first look.
    double start_ = 0;
    double end_ = 0;
    CivilDay day_;
};

/// A day of the calendar with its first instant.
struct CalendarDay {
    CivilDay day;
    NSDate start;
};

/// The days from that of the interval's start on which begin before its end, in order. Days that a
/// zone left out are not there. Only days of the years 1 to 9999 are known.
std::vector<CalendarDay> calendarDaysOf(const NSDateInterval& interval, const NSTimeZone& zone);

}  // namespace tavrion
