#include "platform/foundation/NSNotificationCenter.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/foundation/Mutex.h"
#include "platform/foundation/ObserverGate.h"

namespace tavrion {

/// Nothing but the gate changes while a block can run, so blocks run without a lock.
struct NSNotificationCenter::Observation::Registration {
    std::weak_ptr<Registry> registry;
    std::string name;
    const void* object = nullptr;
    Executor* queue = nullptr;
    Block block;
    ObserverGate gate;
};

struct NSNotificationCenter::Registry {
    using Registrations = std::vector<std::shared_ptr<Observation::Registration>>;
    mutable Mutex mutex;
    /// Each change makes a new list, so that posting only takes hold of the one that there is.
    std::map<std::string, std::shared_ptr<const Registrations>> byName TAVRION_GUARDED_BY(mutex);

    void remove(const std::shared_ptr<Observation::Registration>& registration) {
        const MutexLock lock(mutex);
        const auto found = byName.find(registration->name);
        if (found == byName.end()) {
            return;
        }
        auto rest = std::make_shared<Registrations>(*found->second);
        std::erase(*rest, registration);
        if (rest->empty()) {
            byName.erase(found);
        } else {
            found->second = std::move(rest);
        }
    }

    /// Those who wait for notifications of that name, in the order of their registration; null when
    /// nobody does.
    std::shared_ptr<const Registrations> registrationsFor(const std::string& name) const {
        const MutexLock lock(mutex);
        const auto found = byName.find(name);
        return found == byName.end() ? nullptr : found->second;
    }
};

NSNotificationCenter::Observation::Observation() = default;
NSNotificationCenter::Observation::Observation(Observation&&) noexcept = default;

NSNotificationCenter::Observation& NSNotificationCenter::Observation::operator=(
    Observation&& other) noexcept {
    // What was held here goes when `before` does, after this one already holds the new
    // registration.
    const Observation before(std::move(*this));
    registration_ = std::move(other.registration_);
    return *this;
}

NSNotificationCenter::Observation::~Observation() {
    if (!registration_) {
        return;
    }
    if (const auto registry = registration_->registry.lock()) {
        registry->remove(registration_);
    }
    if (registration_->gate.close()) {
        registration_->block =
            nullptr;  // work that still waits on a queue must not keep what the block holds
    }
}

NSNotificationCenter::NSNotificationCenter() : registry_(std::make_shared<Registry>()) {}
NSNotificationCenter::~NSNotificationCenter() = default;

NSNotificationCenter::Observation NSNotificationCenter::addObserver(const std::string& name,
                                                                    const void* object,
                                                                    Executor* queue, Block block) {
    Observation observation;
    observation.registration_ = std::make_shared<Observation::Registration>();
    Observation::Registration& registration = *observation.registration_;
    registration.registry = registry_;
    registration.name = name;
    registration.object = object;
    registration.queue = queue;
    registration.block = std::move(block);
    const MutexLock lock(registry_->mutex);
    std::shared_ptr<const Registry::Registrations>& list = registry_->byName[name];
    auto longer = list ? std::make_shared<Registry::Registrations>(*list)
                       : std::make_shared<Registry::Registrations>();
    longer->push_back(observation.registration_);
    list = std::move(longer);
    return observation;
}

void NSNotificationCenter::postNotification(const NSNotification& notification) {
    std::shared_ptr<const NSNotification> shared;
    const auto registrations = registry_->registrationsFor(notification.name);
    if (!registrations) {
        return;
    }
    for (const auto& registration : *registrations) {
        if (registration->object != nullptr && registration->object != notification.object) {
            continue;
        }
        // Also the hand-over happens inside the gate: once the Observation is gone, its owner may
        // end the queue.
        const ObserverGate::Stay stay(registration->gate);
        if (!stay) {
            continue;
        }
        if (registration->queue == nullptr) {
            registration->block(notification);
            continue;
        }
        if (!shared) {
            shared = std::make_shared<const NSNotification>(notification);
        }
        registration->queue->async([registration, shared] {
            const ObserverGate::Stay later(registration->gate);
            if (later) {
                registration->block(*shared);
            }
        });
    }
}

std::size_t NSNotificationCenter::observerCount(const std::string& name) const {
    const MutexLock lock(registry_->mutex);
    const auto found = registry_->byName.find(name);
    return found == registry_->byName.end() ? 0 : found->second->size();
}

}  // namespace tavrion
