// The life of one registered block: lets calls in while it is registered, and waits for those
// inside when it is removed.
//
// Queue: any. Who owns: the Observation and the list share it; foundation's own, not for other
// rooms.
#pragma once

#include <thread>
#include <vector>

#include "platform/foundation/Mutex.h"

namespace tavrion {

class ObserverGate {
  public:
    /// A stay inside the gate; false when the gate was already closed.
    class Stay {
      public:
        explicit Stay(ObserverGate& gate) : gate_(gate), inside_(gate.enter()) {}
        ~Stay() {
            if (inside_) {
                gate_.leave();
            }
        }
        Stay(const Stay&) = delete;
        Stay& operator=(const Stay&) = delete;
        explicit operator bool() const { return inside_; }

      private:
        ObserverGate& gate_;
        const bool inside_;
    };

    /// Lets nobody in any more, and returns when nobody is inside. A caller that is inside itself
    /// does not wait, because it would wait for its own end. Whether nobody is inside.
    bool close();

  private:
    bool enter();
    void leave();

    Mutex mutex_;
    ConditionVariable left_;
    bool closed_ TAVRION_GUARDED_BY(mutex_) = false;
    std::vector<std::thread::id> inside_ TAVRION_GUARDED_BY(mutex_);
};

}  // namespace tavrion
