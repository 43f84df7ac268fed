#include "kit/RVAlertManager.h"
#include "library/RVBrowseCollectionViewController.h"
#include "library/RVMetadataManager.h"
#include "platform/foundation/NSLocalizedString.h"

namespace tavrion {

std::vector<std::string> RVBrowseCollectionViewController::groupTitles() {
    return {NSLocalizedString("Songs"), NSLocalizedString("Albums"), NSLocalizedString("Artists"),
            NSLocalizedString("Genres"), NSLocalizedString("Playlists")};
}

std::vector<std::string> RVBrowseCollectionViewController::sortTitles() {
    return {NSLocalizedString("Alphabetical"), NSLocalizedString("Play Count"),
            NSLocalizedString("Last Played"),  NSLocalizedString("Time Listened"),
            NSLocalizedString("Date Added"),   NSLocalizedString("Release Date")};
}

MPMediaGrouping RVBrowseCollectionViewController::groupingForIndex(std::size_t index) {
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

std::size_t RVBrowseCollectionViewController::indexForGrouping(MPMediaGrouping grouping) {
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

NSAttributedString RVBrowseCollectionViewController::groupingButtonTitle() const {
    return RVMetadataManager::attributedString(groupTitles()[indexForGrouping(choices_.groupType)],
                                               UIImage::systemImageNamed("square.split.1x2"));
}

UIMenu RVBrowseCollectionViewController::groupingMenuForButton() {
    UIMenu menu;
    for (const std::string& title : groupTitles()) {
        menu.children.push_back(
            {title, std::nullopt, [weak = weak_from_this(), index = menu.children.size()] {
                 if (const auto self = weak.lock()) {
                     self->chooseGrouping(index);
                 }
             }});
    }
    return menu;
}

UIMenu RVBrowseCollectionViewController::sortMenuForButton() {
    UIMenu menu;
    for (const std::string& title : sortTitles()) {
        const RVSortType sortType = menu.children.size();
        UIAction action{title, std::nullopt, [weak = weak_from_this(), sortType] {
                            if (const auto self = weak.lock()) {
                                self->chooseSort(sortType);
                            }
                        }};
        if (sortType == choices_.sortType) {
            action.image =
                UIImage::systemImageNamed(choices_.reverse ? "chevron.down" : "chevron.up");
        }
        menu.children.push_back(std::move(action));
    }
    return menu;
}

void RVBrowseCollectionViewController::chooseGrouping(std::size_t index) {
    choices_.groupType = groupingForIndex(index);
    RVAlertManager::storeValue(static_cast<std::uint64_t>(choices_.groupType),
                               BrowseChoices::groupTypeKey);
    screen_.controlsDidChange();
    sortDataSourceWithAnimation(true);
}

void RVBrowseCollectionViewController::chooseSort(RVSortType sortType) {
    if (sortType == choices_.sortType) {
        choices_.reverse = !choices_.reverse;
    } else {
        choices_.sortType = sortType;
        choices_.reverse = false;
        RVAlertManager::storeValue(sortType, BrowseChoices::sortTypeKey);
    }
    RVAlertManager::storeValue(choices_.reverse ? 1 : 0, BrowseChoices::reverseKey);
    screen_.controlsDidChange();
    sortDataSourceWithAnimation(true);
}

}  // namespace tavrion
