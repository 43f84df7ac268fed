// Where a lower room reaches up: it declares a small interface, and the composition root plugs the
// upper room in.
//
// Queue: current() from any queue. Plugs are made and taken out by the composition root or a test
// before and after the queues run; the plugged object outlives its Plug. Absent (nothing plugged)
// is a mistake of the composition root, and current() ends the process; isPlugged() asks.
#pragma once

#include <atomic>

#include "platform/foundation/Precondition.h"

namespace tavrion {

template <class Interface>
class Port {
  public:
    Port() = delete;

    static Interface& current() {
        Interface* plugged = slot().load(std::memory_order_acquire);
        precondition(plugged != nullptr, Interface::portName);
        return *plugged;
    }
    static bool isPlugged() { return slot().load(std::memory_order_acquire) != nullptr; }

    /// Keeps an object plugged for the life of the scope, then puts back what was there before.
    class Plug {
      public:
        explicit Plug(Interface& object) : before_(slot().exchange(&object)) {}
        ~Plug() { slot().store(before_); }
        Plug(const Plug&) = delete;
        Plug& operator=(const Plug&) = delete;
        /// Another object in the place of this one's; who asks at the same time gets either.
        void replace(Interface& object) { slot().store(&object); }

      private:
        Interface* before_;
    };

  private:
    static std::atomic<Interface*>& slot() {
        static std::atomic<Interface*> plugged{nullptr};
        return plugged;
    }
};

}  // namespace tavrion
