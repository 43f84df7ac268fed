#include "platform/foundation/NSUserDefaults.h"

#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

#include "platform/foundation/DefaultsStore.h"
#include "platform/foundation/PropertyList.h"

namespace tavrion {

struct NSUserDefaults::State {
    State() = default;
    explicit State(std::filesystem::path file) : store(std::move(file)) {}

    void tell(const DefaultsStore::Changes& changes) const {
        for (const DefaultsStore::Change& change : changes) {
            observers.send(change.key, nullptr, change);
        }
    }

    DefaultsStore store;
    ObserverList<DefaultsStore::Change> observers;
};

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

Observation NSUserDefaults::addObserver(const std::string& key, Executor* queue,
                                        Observer observer) {
    return state_->observers.add(
        PropertyList::storableText(key), nullptr, queue,
        [observer = std::move(observer)](const DefaultsStore::Change& change) {
            observer(change.key, change.value);
        });
}

}  // namespace tavrion
