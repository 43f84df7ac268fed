// A span of time from one instant to another, both included.
//
// Queue: any; a value. The end is never before the start: whoever makes one of dates that may
// stand the wrong way round asks first.
#pragma once

#include "platform/foundation/NSDate.h"
#include "platform/foundation/Precondition.h"

namespace tavrion {

class NSDateInterval {
  public:
    NSDateInterval(NSDate startDate, NSDate endDate) : start_(startDate), end_(endDate) {
        precondition(startDate <= endDate, "an interval does not end before it starts");
    }

    NSDate startDate() const { return start_; }
    NSDate endDate() const { return end_; }
    NSTimeInterval duration() const { return end_.timeIntervalSinceDate(start_); }
    bool containsDate(NSDate date) const { return date >= start_ && date <= end_; }

    bool operator==(const NSDateInterval&) const = default;

  private:
    NSDate start_;
    NSDate end_;
};

}  // namespace tavrion
