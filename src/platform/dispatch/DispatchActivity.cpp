#include "platform/dispatch/DispatchActivity.h"

#include <utility>

#include "platform/foundation/Mutex.h"

namespace tavrion::DispatchActivity {
namespace {

struct State {
    Mutex mutex;
    std::size_t count TAVRION_GUARDED_BY(mutex) = 0;
    std::uint64_t begun TAVRION_GUARDED_BY(mutex) = 0;
    Mutex listenerMutex;
    std::function<void(std::size_t)> listener TAVRION_GUARDED_BY(listenerMutex);
};

State& state() {
    // Never destroyed: a worker may still end its work while the process ends.
    static State& shared = *new State;
    return shared;
}

std::size_t countDown() {
    MutexLock lock(state().mutex);
    return --state().count;
}

}  // namespace

void begin() {
    MutexLock lock(state().mutex);
    ++state().count;
    ++state().begun;
}

void end() {
    // The listener only raises a flag of the run loop; it is called under its own lock so that it
    // can be taken out safely. The lock spans the counting too, so that a listener hears of the
    // ends after it was set alone, in their order.
    MutexLock lock(state().listenerMutex);
    const std::size_t left = countDown();
    if (state().listener) {
        state().listener(left);
    }
}

std::size_t count() {
    MutexLock lock(state().mutex);
    return state().count;
}

std::uint64_t begun() {
    MutexLock lock(state().mutex);
    return state().begun;
}

void setEndListener(std::function<void(std::size_t)> ended) {
    MutexLock lock(state().listenerMutex);
    state().listener = std::move(ended);
}

}  // namespace tavrion::DispatchActivity
