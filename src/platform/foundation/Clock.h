// The one source of the present.
//
// Queue: now() is called from any queue. The composition root plugs a clock with Port<Clock>; tests
// plug a manual one.
#pragma once

#include "platform/foundation/NSDate.h"

namespace tavrion {

class Clock {
  public:
    static constexpr const char* portName = "a clock is plugged in";
    virtual ~Clock() = default;
    /// The present instant.
    virtual NSDate now() const = 0;
    /// Whether the clock stands still, so that waiting for a later instant would never end.
    virtual bool standsStill() const { return false; }
};

/// The computer's clock, read to the microsecond.
class SystemClock final : public Clock {
  public:
    NSDate now() const override;
};

/// A clock that stands at one instant for the whole run.
class FixedClock final : public Clock {
  public:
    explicit FixedClock(NSDate instant) : instant_(instant) {}
    NSDate now() const override { return instant_; }
    bool standsStill() const override { return true; }

  private:
    NSDate instant_;
};

}  // namespace tavrion
