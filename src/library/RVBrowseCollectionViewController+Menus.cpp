#include "kit/RVAlertManager.h"
#include "library/RVBrowseCollectionViewController.h"

namespace tavrion {

UIMenu RVBrowseCollectionViewController::groupingMenuForButton() {
    UIMenu menu;
    for (const std::string& title : BrowseChoices::groupTitles()) {
        menu.children.push_back(
            {title, std::nullopt,
             ifAlive([index = menu.children.size()](auto& self) { self.chooseGrouping(index); })});
    }
    return menu;
}

UIMenu RVBrowseCollectionViewController::sortMenuForButton() {
    UIMenu menu;
    const BrowseChoices& choices = state()->choices;
    for (const std::string& title : BrowseChoices::sortTitles()) {
        const RVSortType sortType = menu.children.size();
        UIAction action{title, std::nullopt,
                        ifAlive([sortType](auto& self) { self.chooseSort(sortType); })};
        if (sortType == choices.sortType) {
            action.image =
                UIImage::systemImageNamed(choices.reverse ? "chevron.down" : "chevron.up");
        }
        menu.children.push_back(std::move(action));
    }
    return menu;
}

void RVBrowseCollectionViewController::chooseGrouping(std::size_t index) {
    const MPMediaGrouping groupType = BrowseChoices::groupingForIndex(index);
    RVAlertManager::storeValue(static_cast<std::uint64_t>(groupType), BrowseChoices::groupTypeKey);
    change([&](BrowsePage& page) { page.choices.groupType = groupType; });
    sortDataSourceWithAnimation(true);
}

void RVBrowseCollectionViewController::chooseSort(RVSortType sortType) {
    BrowseChoices choices = state()->choices;
    if (sortType == choices.sortType) {
        choices.reverse = !choices.reverse;
    } else {
        choices.sortType = sortType;
        choices.reverse = false;
        RVAlertManager::storeValue(sortType, BrowseChoices::sortTypeKey);
    }
    RVAlertManager::storeValue(choices.reverse ? 1 : 0, BrowseChoices::reverseKey);
    change([&](BrowsePage& page) { page.choices = choices; });
    sortDataSourceWithAnimation(true);
}

}  // namespace tavrion
