#include "library/BrowseChoices.h"

#include "kit/RVAlertManager.h"

namespace tavrion {

BrowseChoices BrowseChoices::stored() {
    return {static_cast<MPMediaGrouping>(RVAlertManager::storedValueForKey(groupTypeKey)),
            RVAlertManager::storedValueForKey(sortTypeKey),
            RVAlertManager::storedValueForKey(reverseKey) != 0};
}

}  // namespace tavrion
