// Broadcasts named notifications inside the process.
//
// Queue: post and observe from any queue. A block registered without a queue runs on the poster's,
// inside the post; one registered with a queue runs there later. Who owns: an Observation removes
// its block when it ends (see Observation.h).
#pragma once

#include <any>
#include <functional>
#include <map>
#include <string>

#include "platform/foundation/Executor.h"
#include "platform/foundation/Observation.h"
#include "platform/foundation/Port.h"

namespace tavrion {

struct NSNotification {
    std::string name;
    /// Who it is about; null when about nobody in particular. Never followed, only compared.
    const void* object = nullptr;
    /// What the poster tells. A missing key is absent.
    std::map<std::string, std::any> userInfo;

    /// The value under `key`, or null when it is missing or of another type.
    template <class T>
    const T* info(const std::string& key) const {
        const auto found = userInfo.find(key);
        return found == userInfo.end() ? nullptr : std::any_cast<T>(&found->second);
    }
};

class NSNotificationCenter {
  public:
    using Block = std::function<void(const NSNotification&)>;
    static constexpr const char* portName = "a notification centre is plugged in";

    using Observation = tavrion::Observation;

    /// The plugged centre of the process.
    static NSNotificationCenter& defaultCenter() { return Port<NSNotificationCenter>::current(); }

    /// Calls `block` for each notification of that name, from any object (`object` null) or about
    /// that object only, on `queue`, or on the poster's queue when `queue` is null. Blocks run in
    /// the order of their registration.
    [[nodiscard]] Observation addObserver(const std::string& name, const void* object,
                                          Executor* queue, Block block);
    void postNotification(const NSNotification& notification);
    void postNotificationName(const std::string& name) { postNotification({name, nullptr, {}}); }
    /// How many blocks wait for `name`.
    std::size_t observerCount(const std::string& name) const;

  private:
    ObserverList<NSNotification> observers_;
};

}  // namespace tavrion
