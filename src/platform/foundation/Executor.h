// Something that runs work later: what foundation needs to know of a queue.
//
// Queue: async() is called from any queue; the work runs on the executor's own. Implemented by
// platform/dispatch.
#pragma once

#include <functional>

namespace tavrion {

using Work = std::function<void()>;

class Executor {
  public:
    virtual ~Executor() = default;
    /// Runs `work` later, once, in the order of the calls when the executor is serial.
    virtual void async(Work work) = 0;
    /// Whether the caller runs as this executor.
    virtual bool isCurrent() const = 0;
};

}  // namespace tavrion
