// The rows of the ranking, the buttons above them and how they are arranged.
#include <array>

#include "library/RVMetadataManager.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSLocalizedString.h"
#include "timeviews/RVTrendingCollectionViewController.h"

namespace tavrion {
namespace {

NSUserDefaults& defaults() {
    return NSUserDefaults::standardUserDefaults();
}

/// In the order of their numbers.
std::array<std::string, 3> groupingTitles() {
    return {NSLocalizedString("Artists"), NSLocalizedString("Albums"), NSLocalizedString("Genres")};
}

}  // namespace

TrendingCell RVTrendingCollectionViewController::cellForRow(const RVTrendingEntity& row,
                                                            std::size_t index,
                                                            const std::optional<UIFont>& font) {
    const bool byTime =
        defaults().integerForKey(TrendingDefaults::weightedRankFormat) == TrendingDefaults::byTime;
    return TrendingPage::cell(row, index, byTime, font);
}

ScreenRequest RVTrendingCollectionViewController::loadArtwork(const MPMediaEntity& entity,
                                                              std::function<void(UIImage)> loaded) {
    return load(
        *imageHandlingQueue_, [entity] { return RVMetadataManager::artworkForEntity(entity); },
        std::move(loaded));
}

void RVTrendingCollectionViewController::controlsDidAppear(int identifier) {
    hasCollectionButton_ =
        hasCollectionButton_ || identifier == TrendingSnapshot::collectionsSection;
    hasPlaylistButton_ = hasPlaylistButton_ || identifier == TrendingSnapshot::songsSection;
}

std::optional<TrendingControls> RVTrendingCollectionViewController::controlsForSection(
    int identifier) {
    switch (identifier) {
        case TrendingSnapshot::collectionsSection:
            return collectionsControls();
        case TrendingSnapshot::songsSection:
            return songsControls();
        default:
            return std::nullopt;
    }
}

TrendingControls RVTrendingCollectionViewController::collectionsControls() {
    TrendingControls controls;
    controls.first.title = groupingTitle();
    controls.first.menu = groupingMenuForButton();
    controls.second.isHidden = true;
    return controls;
}

TrendingControls RVTrendingCollectionViewController::songsControls() {
    const auto button = [this](const std::string& title, const char* icon,
                               void (RVTrendingCollectionViewController::*action)()) {
        TrendingButton made;
        made.title = RVMetadataManager::attributedString(title, UIImage::systemImageNamed(icon));
        made.touchUpInside =
            ifAlive([action](RVTrendingCollectionViewController& self) { (self.*action)(); });
        return made;
    };
    return {button(NSLocalizedString("Play All"), "play.fill",
                   &RVTrendingCollectionViewController::playAll),
            button(NSLocalizedString("New Playlist"), "plus",
                   &RVTrendingCollectionViewController::createPlaylist)};
}

NSAttributedString RVTrendingCollectionViewController::groupingTitle() {
    const auto stored =
        static_cast<std::uint64_t>(defaults().integerForKey(TrendingDefaults::groupingType));
    const auto titles = groupingTitles();
    return RVMetadataManager::attributedString(
        stored < titles.size() ? titles[static_cast<std::size_t>(stored)] : std::string(),
        UIImage::systemImageNamed("square.split.1x2"));
}

UIMenu RVTrendingCollectionViewController::groupingMenuForButton() {
    UIMenu menu;
    for (const std::string& title : groupingTitles()) {
        const auto grouping = static_cast<std::int64_t>(menu.children.size());
        menu.children.push_back(
            {title, std::nullopt, ifAlive([grouping](RVTrendingCollectionViewController& self) {
                 self.chooseGrouping(grouping);
             })});
    }
    return menu;
}

void RVTrendingCollectionViewController::chooseGrouping(std::int64_t grouping) {
    defaults().setObject(TrendingDefaults::groupingType, grouping);
    change([](TrendingPage& page) { page.groupingTitle = groupingTitle(); });
    updateDataSource();
}

void RVTrendingCollectionViewController::didSelectRow(const TrendingRow& row) {
    if (row != nullptr) {
        emit(EntityRoute{row->entity});
    }
}

std::optional<MPMediaEntity> RVTrendingCollectionViewController::entityForContextMenu(
    const TrendingRow& row) {
    return row == nullptr || row->entity.isEmpty() ? std::nullopt : std::optional(row->entity);
}

}  // namespace tavrion
