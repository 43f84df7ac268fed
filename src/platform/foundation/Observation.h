// One registered observer: a handle that keeps it registered, and the list that calls it.
//
// Queue: any. Who owns: whoever observes keeps the Observation, whoever is observed keeps the
// ObserverList; either may go first. An observer without a queue runs on the caller's, inside the
// call; one with a queue runs there later. No lock is held while an observer runs, so it may
// observe, send and end. When an Observation has ended, its observer is not running and will not
// run, unless it was ended from inside that very observer. Work already handed to a queue is
// dropped too.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/Executor.h"
#include "platform/foundation/Mutex.h"
#include "platform/foundation/ObserverGate.h"

namespace tavrion {

/// Keeps an observer registered for its own life. Movable; an empty one holds nothing.
class [[nodiscard]] Observation {
  public:
    /// What is registered. The gate lets calls in until the observation ends.
    class Registration {
      public:
        virtual ~Registration() = default;
        /// Takes itself off its list: nobody begins to call it any more.
        virtual void remove() = 0;
        /// Lets go of what the observer holds. Only when it is not running.
        virtual void forget() = 0;
        ObserverGate gate;
    };

    Observation() = default;
    explicit Observation(std::shared_ptr<Registration> registration)
        : registration_(std::move(registration)) {}
    ~Observation() { end(); }
    Observation(Observation&&) noexcept = default;
    Observation& operator=(Observation&& other) noexcept {
        // What was held here ends when `before` does, after this one already holds the new one.
        const Observation before(std::move(*this));
        registration_ = std::move(other.registration_);
        return *this;
    }

    /// Ends it before its time; waits for a call that is running.
    void end() {
        const std::shared_ptr<Registration> ended = std::move(registration_);
        registration_ = nullptr;
        if (!ended) {
            return;
        }
        ended->remove();
        if (ended->gate.close()) {
            ended->forget();
        }
    }

  private:
    std::shared_ptr<Registration> registration_;
};

/// Observers of messages by name, called in the order of their registration.
template <class Message>
class ObserverList {
  public:
    using Observer = std::function<void(const Message&)>;

    /// Calls `observer` for each message of that name, from any object (`object` null) or about
    /// that object only, on `queue`, or on the sender's queue when `queue` is null.
    [[nodiscard]] Observation add(const std::string& name, const void* object, Executor* queue,
                                  Observer observer) {
        auto entry = std::make_shared<Entry>();
        entry->registry = registry_;
        entry->name = name;
        entry->object = object;
        entry->queue = queue;
        entry->observer = std::move(observer);
        registry_->add(entry);
        return Observation(std::move(entry));
    }

    void send(const std::string& name, const void* object, const Message& message) const {
        const std::shared_ptr<const Entries> entries = registry_->entriesFor(name);
        if (!entries) {
            return;
        }
        std::shared_ptr<const Message> shared;
        for (const std::shared_ptr<Entry>& entry : *entries) {
            if (entry->object == nullptr || entry->object == object) {
                call(entry, message, shared);
            }
        }
    }

    /// How many observers wait for `name`.
    std::size_t count(const std::string& name) const {
        const auto entries = registry_->entriesFor(name);
        return entries ? entries->size() : 0;
    }

  private:
    struct Registry;

    /// Nothing but the gate changes while the observer can run, so it runs without a lock.
    struct Entry final : Observation::Registration {
        void remove() override {
            if (const auto list = registry.lock()) {
                list->remove(*this);
            }
        }
        void forget() override { observer = nullptr; }

        std::weak_ptr<Registry> registry;
        std::string name;
        const void* object = nullptr;
        Executor* queue = nullptr;
        Observer observer;
    };
    using Entries = std::vector<std::shared_ptr<Entry>>;

    /// Each change makes a new list, so that sending only takes hold of the one that there is.
    struct Registry {
        void add(std::shared_ptr<Entry> entry) {
            const MutexLock lock(mutex);
            std::shared_ptr<const Entries>& list = byName[entry->name];
            auto longer = list ? std::make_shared<Entries>(*list) : std::make_shared<Entries>();
            longer->push_back(std::move(entry));
            list = std::move(longer);
        }
        void remove(const Entry& entry) {
            const MutexLock lock(mutex);
            const auto found = byName.find(entry.name);
            if (found == byName.end()) {
                return;
            }
            auto rest = std::make_shared<Entries>(*found->second);
            std::erase_if(*rest, [&entry](const auto& each) { return each.get() == &entry; });
            if (rest->empty()) {
                byName.erase(found);
            } else {
                found->second = std::move(rest);
            }
        }
        /// Null when nobody waits.
        std::shared_ptr<const Entries> entriesFor(const std::string& name) const {
            const MutexLock lock(mutex);
            const auto found = byName.find(name);
            return found == byName.end() ? nullptr : found->second;
        }

        mutable Mutex mutex;
        std::map<std::string, std::shared_ptr<const Entries>> byName TAVRION_GUARDED_BY(mutex);
    };

    static void call(const std::shared_ptr<Entry>& entry, const Message& message,
                     std::shared_ptr<const Message>& shared) {
        // Also the hand-over happens inside the gate: once the Observation is gone, its owner may
        // end the queue.
        const ObserverGate::Stay stay(entry->gate);
        if (!stay) {
            return;
        }
        if (entry->queue == nullptr) {
            entry->observer(message);
            return;
        }
        if (!shared) {
            shared = std::make_shared<const Message>(message);
        }
        entry->queue->async([entry, shared] {
            const ObserverGate::Stay later(entry->gate);
            if (later) {
                entry->observer(*shared);
            }
        });
    }

    std::shared_ptr<Registry> registry_ = std::make_shared<Registry>();
};

}  // namespace tavrion
