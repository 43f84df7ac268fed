#include "kit/RVAlertManager.h"

#include "platform/foundation/NSUserDefaults.h"

namespace tavrion {

namespace {

Value::Dictionary sortPreferences() {
    return NSUserDefaults::standardUserDefaults()
        .dictionaryForKey(RVAlertManager::sortPreferencesKey)
        .value_or(Value::Dictionary());
}

/// What a stored value is as a number; other programs may have written another kind of number.
std::uint64_t unsignedValue(const Value& value) {
    if (const auto* number = value.get<std::int64_t>()) {
        return static_cast<std::uint64_t>(*number);
    }
    if (const auto* flag = value.get<bool>()) {
        return *flag ? 1 : 0;
    }
    const auto* real = value.get<double>();
    const bool isInRange = real != nullptr && *real >= 0 && *real < 9e18;
    return isInRange ? static_cast<std::uint64_t>(*real) : 0;
}

}  // namespace

void RVAlertManager::storeValue(std::uint64_t value, const std::string& forKey) {
    Value::Dictionary preferences = sortPreferences();
    preferences[forKey] = Value(value);
    NSUserDefaults::standardUserDefaults().setObject(sortPreferencesKey, Value(preferences));
}

std::uint64_t RVAlertManager::storedValueForKey(const std::string& key) {
    const Value::Dictionary preferences = sortPreferences();
    const auto found = preferences.find(key);
    return found == preferences.end() ? 0 : unsignedValue(found->second);
}

}  // namespace tavrion
