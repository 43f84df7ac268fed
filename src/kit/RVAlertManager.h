// The user's sort choices: numbers that all lists of the program keep in one dictionary of the user
// defaults.
//
// Queue: storeValue() on the main queue alone, because it reads the dictionary, changes it and
// writes it back; storedValueForKey() on any. Absent: a number that was never stored reads as 0,
// and that is what makes the defaults of all lists.
#pragma once

#include <cstdint>
#include <string>

namespace tavrion {

class RVAlertManager {
  public:
    RVAlertManager() = delete;

    /// The user default that holds the dictionary.
    static constexpr const char* sortPreferencesKey = "com.oskelvane.Nerinda.sortPreferences";

    static void storeValue(std::uint64_t value, const std::string& forKey);
    static std::uint64_t storedValueForKey(const std::string& key);
};

}  // namespace tavrion
