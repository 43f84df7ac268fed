#include "platform/foundation/ObserverGate.h"

#include <algorithm>

namespace tavrion {

bool ObserverGate::enter() {
    const MutexLock lock(mutex_);
    if (!closed_) {
        inside_.push_back(std::this_thread::get_id());
    }
    return !closed_;
}

void ObserverGate::leave() {
    const MutexLock lock(mutex_);
    inside_.erase(std::find(inside_.begin(), inside_.end(), std::this_thread::get_id()));
    left_.notifyAll();
}

bool ObserverGate::close() {
    const MutexLock lock(mutex_);
    closed_ = true;
    const auto caller = std::this_thread::get_id();
    if (std::find(inside_.begin(), inside_.end(), caller) != inside_.end()) {
        return false;
    }
    while (!inside_.empty()) {
        left_.wait(mutex_);
    }
    return true;
}

}  // namespace tavrion
