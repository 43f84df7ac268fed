// A clock that a test sets.
//
// Queue: any. The test plugs it with Port<Clock>.
#pragma once

#include <atomic>

#include "platform/foundation/Clock.h"

namespace tavrion {

class ManualClock final : public Clock {
  public:
    explicit ManualClock(NSDate instant) : instant_(instant) {}
    NSDate now() const override { return instant_.load(); }
    void set(NSDate instant) { instant_.store(instant); }
    /// Moves on by `seconds`.
    void advance(NSTimeInterval seconds) {
        instant_.store(instant_.load().dateByAddingTimeInterval(seconds));
    }

  private:
    std::atomic<NSDate> instant_;
};

}  // namespace tavrion
