#include "library/BrowseChoices.h"

#include "kit/RVAlertManager.h"
#include "platform/foundation/NSLocalizedString.h"

namespace tavrion {

BrowseChoices BrowseChoices::stored() {
    return {static_cast<MPMediaGrouping>(RVAlertManager::storedValueForKey(groupTypeKey)),
            RVAlertManager::storedValueForKey(sortTypeKey),
            RVAlertManager::storedValueForKey(reverseKey) != 0};
}

std::vector<std::string> BrowseChoices::groupTitles() {
    return {NSLocalizedString("Songs"), NSLocalizedString("Albums"), NSLocalizedString("Artists"),
            NSLocalizedString("Genres"), NSLocalizedString("Playlists")};
}

std::vector<std::string> BrowseChoices::sortTitles() {
    return {NSLocalizedString("Alphabetical"), NSLocalizedString("Play Count"),
            NSLocalizedString("Last Played"),  NSLocalizedString("Time Listened"),
            NSLocalizedString("Date Added"),   NSLocalizedString("Release Date")};
}

MPMediaGrouping BrowseChoices::groupingForIndex(std::size_t index) {
    switch (index) {
        case 1:
            return MPMediaGrouping::album;
        case 2:
            return MPMediaGrouping::albumArtist;
        case 3:
            return MPMediaGrouping::genre;
        case 4:
            return MPMediaGrouping::playlist;
        default:
            return MPMediaGrouping::title;
    }
}

std::size_t BrowseChoices::indexForGrouping(MPMediaGrouping grouping) {
    switch (grouping) {
        case MPMediaGrouping::album:
            return 1;
        case MPMediaGrouping::albumArtist:
            return 2;
        case MPMediaGrouping::genre:
            return 3;
        case MPMediaGrouping::playlist:
            return 4;
        default:
            return 0;
    }
}

}  // namespace tavrion
