#include "platform/dispatch/DispatchActivity.h"

#include <utility>
#include <vector>

#include "platform/foundation/Mutex.h"

namespace tavrion::DispatchActivity {
namespace {

struct State {
    Mutex mutex;
    std::size_t count TAVRION_GUARDED_BY(mutex) = 0;
    std::uint64_t begun TAVRION_GUARDED_BY(mutex) = 0;
    Mutex listenerMutex;
    std::vector<const EndListener*> listeners TAVRION_GUARDED_BY(listenerMutex);
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
    // A listener only raises a flag of its run loop; it is called under a lock so that it can be
    // taken out safely. The lock spans the counting too, so that a listener hears only of the ends
    // after it was made, in their order.
    MutexLock lock(state().listenerMutex);
    const std::size_t left = countDown();
    for (const EndListener* listener : state().listeners) {
        listener->ended_(left);
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

EndListener::EndListener(std::function<void(std::size_t)> ended) : ended_(std::move(ended)) {
    MutexLock lock(state().listenerMutex);
    state().listeners.push_back(this);
}

EndListener::~EndListener() {
    MutexLock lock(state().listenerMutex);
    std::erase(state().listeners, this);
}

}  // namespace tavrion::DispatchActivity
