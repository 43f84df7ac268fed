#include "platform/foundation/NSUserDefaults.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

#include "platform/foundation/DefaultsStore.h"
#include "platform/foundation/Mutex.h"
#include "platform/foundation/ObserverGate.h"
#include "platform/foundation/PropertyList.h"

namespace tavrion {

/// Does not change after it was made, but for its gate; so observers are called without a lock.
struct NSUserDefaults::Observation::Registration {
    std::weak_ptr<State> state;
    std::string key;
    Executor* queue = nullptr;
    Observer observer;
    ObserverGate gate;
};

struct NSUserDefaults::State {
    using Registrations = std::vector<std::shared_ptr<Observation::Registration>>;

    State() = default;
    explicit State(std::filesystem::path file) : store(std::move(file)) {}

    DefaultsStore store;
    Mutex mutex;
    Registrations registrations TAVRION_GUARDED_BY(mutex);

    Registrations waitingFor(const std::string& key) TAVRION_EXCLUDES(mutex) {
        const MutexLock lock(mutex);
        Registrations waiting;
        std::copy_if(registrations.begin(), registrations.end(), std::back_inserter(waiting),
                     [&key](const auto& each) { return each->key == key; });
        return waiting;
    }
    void remove(const std::shared_ptr<Observation::Registration>& registration)
        TAVRION_EXCLUDES(mutex) {
        const MutexLock lock(mutex);
        std::erase(registrations, registration);
    }
    void tell(const DefaultsStore::Changes& changes) TAVRION_EXCLUDES(mutex);
};

void NSUserDefaults::State::tell(const DefaultsStore::Changes& changes) {
    for (const DefaultsStore::Change& change : changes) {
        for (const auto& registration : waitingFor(change.key)) {
            // Also the hand-over happens inside the gate: once the Observation is gone, its owner
            // may end the queue.
            const ObserverGate::Stay stay(registration->gate);
            if (!stay) {
                continue;
            }
            if (registration->queue == nullptr) {
                registration->observer(change.key, change.value);
                continue;
            }
            registration->queue->async([registration, change] {
                const ObserverGate::Stay later(registration->gate);
                if (later) {
                    registration->observer(change.key, change.value);
                }
            });
        }
    }
}

namespace {

std::int64_t cutTowardsZero(double real) {
    constexpr double twoToThe63rd = 9223372036854775808.0;
    using Limits = std::numeric_limits<std::int64_t>;
    if (std::isnan(real)) {
        return 0;
    }
    if (real >= twoToThe63rd) {
        return Limits::max();
    }
    return real < -twoToThe63rd ? Limits::min() : static_cast<std::int64_t>(real);
}

template <class T>
std::optional<T> copyOf(const Value& value) {
    const T* found = value.get<T>();
    return found == nullptr ? std::nullopt : std::optional<T>(*found);
}

/// A later change of the working folder does not move the file, and a link to the file stays a link
/// when the file is replaced.
std::filesystem::path followed(const std::filesystem::path& file) {
    std::error_code error;
    // Absolute first: of a path with nothing there yet, the second step would leave a relative one.
    const std::filesystem::path absolute = std::filesystem::absolute(file, error);
    const std::filesystem::path place = std::filesystem::weakly_canonical(absolute, error);
    return error ? absolute : place;
}

}  // namespace

NSUserDefaults::Observation::Observation() = default;
NSUserDefaults::Observation::Observation(Observation&&) noexcept = default;

NSUserDefaults::Observation& NSUserDefaults::Observation::operator=(Observation&& other) noexcept {
    // What was held here goes when `before` does, after this one already holds the new
    // registration.
    const Observation before(std::move(*this));
    registration_ = std::move(other.registration_);
    return *this;
}

NSUserDefaults::Observation::~Observation() {
    if (!registration_) {
        return;
    }
    if (const auto state = registration_->state.lock()) {
        state->remove(registration_);
    }
    if (registration_->gate.close()) {
        registration_->observer =
            nullptr;  // What it captured need not wait for a queue to drop it.
    }
}

NSUserDefaults::NSUserDefaults(std::shared_ptr<State> state) : state_(std::move(state)) {}

NSUserDefaults::~NSUserDefaults() {
    DefaultsStore::Changes toldToNobody;
    state_->store.synchronize(toldToNobody)
        .ignore();  // The last try; nobody is left to hear of it.
}

Result<std::unique_ptr<NSUserDefaults>> NSUserDefaults::open(const std::filesystem::path& file) {
    auto state = std::make_shared<State>(followed(file));
    DefaultsStore::Changes nobodyListensYet;
    const Result<void> read = state->store.synchronize(nobodyListensYet);
    if (!read) {
        return read.error();
    }
    return std::unique_ptr<NSUserDefaults>(new NSUserDefaults(std::move(state)));
}

std::unique_ptr<NSUserDefaults> NSUserDefaults::inMemory() {
    return std::unique_ptr<NSUserDefaults>(new NSUserDefaults(std::make_shared<State>()));
}

Value NSUserDefaults::objectForKey(const std::string& key) const {
    DefaultsStore::Changes changes;
    Value value = state_->store.value(PropertyList::storableText(key), changes);
    state_->tell(changes);
    return value;
}

bool NSUserDefaults::boolForKey(const std::string& key) const {
    const Value value = objectForKey(key);
    if (const auto* flag = value.get<bool>()) {
        return *flag;
    }
    if (const auto* integer = value.get<std::int64_t>()) {
        return *integer != 0;
    }
    const auto* real = value.get<double>();
    return real != nullptr && *real != 0;
}

std::int64_t NSUserDefaults::integerForKey(const std::string& key) const {
    const Value value = objectForKey(key);
    if (const auto* flag = value.get<bool>()) {
        return *flag ? 1 : 0;
    }
    if (const auto* integer = value.get<std::int64_t>()) {
        return *integer;
    }
    const auto* real = value.get<double>();
    return real == nullptr ? 0 : cutTowardsZero(*real);
}

std::optional<NSDate> NSUserDefaults::dateForKey(const std::string& key) const {
    return copyOf<NSDate>(objectForKey(key));
}

std::optional<std::string> NSUserDefaults::stringForKey(const std::string& key) const {
    return copyOf<std::string>(objectForKey(key));
}

std::optional<NSData> NSUserDefaults::dataForKey(const std::string& key) const {
    return copyOf<NSData>(objectForKey(key));
}

std::optional<Value::Array> NSUserDefaults::arrayForKey(const std::string& key) const {
    return copyOf<Value::Array>(objectForKey(key));
}

std::optional<Value::Dictionary> NSUserDefaults::dictionaryForKey(const std::string& key) const {
    return copyOf<Value::Dictionary>(objectForKey(key));
}

Value::Dictionary NSUserDefaults::dictionaryRepresentation() const {
    DefaultsStore::Changes changes;
    Value::Dictionary values = state_->store.allValues(changes);
    state_->tell(changes);
    return values;
}

void NSUserDefaults::setObject(const std::string& key, Value value) {
    DefaultsStore::Changes changes;
    state_->store.store(PropertyList::storableText(key),
                        PropertyList::storableValue(std::move(value)), changes);
    state_->tell(changes);
}

void NSUserDefaults::removeObject(const std::string& key) {
    setObject(key, Value());
}

void NSUserDefaults::beginGathering() {
    state_->store.beginGathering();
}

void NSUserDefaults::endGathering() {
    DefaultsStore::Changes changes;
    state_->store.endGathering(changes);
    state_->tell(changes);
}

Result<void> NSUserDefaults::synchronize() {
    DefaultsStore::Changes changes;
    Result<void> outcome = state_->store.synchronize(changes);
    state_->tell(changes);
    return outcome;
}

NSUserDefaults::Observation NSUserDefaults::addObserver(const std::string& key, Executor* queue,
                                                        Observer observer) {
    Observation observation;
    observation.registration_ = std::make_shared<Observation::Registration>();
    Observation::Registration& registration = *observation.registration_;
    registration.state = state_;
    registration.key = PropertyList::storableText(key);
    registration.queue = queue;
    registration.observer = std::move(observer);
    const MutexLock lock(state_->mutex);
    state_->registrations.push_back(observation.registration_);
    return observation;
}

}  // namespace tavrion
