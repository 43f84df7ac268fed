// How the user learns of a failed save or of a store that can't be used; plugged in by the
// composition root.
//
// Queue: presentDataFailure() is called on the main queue; endProcess() on the queue on which the
// failure was met.
#pragma once

#include "platform/foundation/Port.h"
#include "platform/foundation/Result.h"

namespace tavrion {

class FailurePresenter {
  public:
    static constexpr const char* portName = "a failure presenter is plugged in";
    virtual ~FailurePresenter() = default;

    /// A save in the background failed: explains it, and ends the process once the user has seen
    /// it.
    virtual void presentDataFailure(const NSError& error) = 0;
    /// The store can't be loaded, or the main save failed: ends the process at once. Does not
    /// return in a program; where a test returns from it, the failed operation has no effect.
    virtual void endProcess(const NSError& error) = 0;
};

}  // namespace tavrion
