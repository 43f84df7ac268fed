#include "recording/DataProcess.h"

#include "platform/foundation/NSNotificationCenter.h"

namespace tavrion::DataProcess {

void postUpdate(float progress) {
    NSNotificationCenter::defaultCenter().postNotification(
        {didUpdate, nullptr, {{progressKey, progress}}});
}

void postFinish() {
    NSNotificationCenter::defaultCenter().postNotificationName(didFinish);
}

}  // namespace tavrion::DataProcess
