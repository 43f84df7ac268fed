#include "library/BrowsePage.h"

#include "library/RVMetadataManager.h"
#include "library/RVQueryManager+Results.h"

namespace tavrion {

NSAttributedString BrowsePage::groupingButtonTitle() const {
    return RVMetadataManager::attributedString(
        BrowseChoices::groupTitles()[BrowseChoices::indexForGrouping(choices.groupType)],
        UIImage::systemImageNamed("square.split.1x2"));
}

NSAttributedString BrowsePage::sortButtonTitle() const {
    const std::vector<std::string> titles = BrowseChoices::sortTitles();
    const bool isKnown = choices.sortType < titles.size();
    return RVMetadataManager::attributedString(
        titles[isKnown ? choices.sortType : RVSortTypePlayCount],
        UIImage::systemImageNamed(choices.reverse ? "chevron.down.square" : "chevron.up.square"));
}

EntityRows libraryList(const BrowseChoices& choices) {
    return EntityRows::ranked(RVQueryManager::resultsForQuery(nullptr, choices.groupType,
                                                              choices.sortType, choices.reverse),
                              choices.sortType);
}

}  // namespace tavrion
