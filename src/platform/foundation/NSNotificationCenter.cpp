#include "platform/foundation/NSNotificationCenter.h"

#include <utility>

namespace tavrion {

Observation NSNotificationCenter::addObserver(const std::string& name, const void* object,
                                              Executor* queue, Block block) {
    return observers_.add(name, object, queue, std::move(block));
}

void NSNotificationCenter::postNotification(const NSNotification& notification) {
    observers_.send(notification.name, notification.object, notification);
}

std::size_t NSNotificationCenter::observerCount(const std::string& name) const {
    return observers_.count(name);
}

}  // namespace tavrion
