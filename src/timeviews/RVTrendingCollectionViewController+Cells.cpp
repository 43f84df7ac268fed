// The rows of the ranking, the buttons above them and how they are arranged.
#include <array>

#include "library/RVMetadataManager.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSLocalizedString.h"
#include "timeviews/RVTrendingCollectionViewController.h"

namespace tavrion {
namespace {

using Arrangement = TrendingSectionLayout::Arrangement;

constexpr const char* rowNib = "RVEntityRowCell";
constexpr const char* columnNib = "RVEntityColumnCell";

NSUserDefaults& defaults() {
    return NSUserDefaults::standardUserDefaults();
}

/// In the order of their numbers.
std::array<std::string, 3> groupingTitles() {
    return {NSLocalizedString("Artists"), NSLocalizedString("Albums"), NSLocalizedString("Genres")};
}

/// Of the metric that is chosen at this moment: a row ranked by the other one reads 0 until the
/// ranking is made anew.
NSAttributedString propertyOf(const RVTrendingEntity& row) {
    const bool byTime =
        defaults().integerForKey(TrendingDefaults::weightedRankFormat) == TrendingDefaults::byTime;
    return RVMetadataManager::attributedString(
        byTime ? RVMetadataManager::formattedDuration(row.playDuration)
               : RVMetadataManager::formattedPlays(row.playCount),
        UIImage::systemImageNamed(byTime ? "stopwatch" : "play.fill",
                                  {.scale = UIImageSymbolScale::small}));
}

}  // namespace

std::optional<TrendingSectionLayout> RVTrendingCollectionViewController::layoutForSectionAtIndex(
    std::size_t index) const {
    const std::vector<int> identifiers = snapshot_.sectionIdentifiers();
    if (index >= identifiers.size()) {
        return std::nullopt;
    }
    switch (identifiers[index]) {
        case TrendingSnapshot::dateSection:
            return TrendingSectionLayout{Arrangement::rows, rowNib, false};
        case TrendingSnapshot::collectionsSection:
            return TrendingSectionLayout{Arrangement::columns, columnNib, true};
        case TrendingSnapshot::songsSection:
            return TrendingSectionLayout{Arrangement::rows, rowNib, true};
        default:
            return std::nullopt;
    }
}

TrendingCell RVTrendingCollectionViewController::cellForRow(const RVTrendingEntity& row,
                                                            std::size_t index,
                                                            const std::optional<UIFont>& font) {
    TrendingCell cell;
    cell.reuseIdentifier =
        row.entity.collection() != nullptr ? "EntityColumnCell" : "EntityRowCell";
    cell.title = RVMetadataManager::titleForMediaEntity(row.entity, font);
    cell.property = propertyOf(row);
    if (row.entity.item() != nullptr) {
        cell.subtitle = RVMetadataManager::subtitleForMediaEntity(row.entity);
        cell.ranking = index + 1;
    }
    return cell;
}

void RVTrendingCollectionViewController::loadArtwork(const MPMediaEntity& entity,
                                                     std::function<void(UIImage)> loaded) {
    imageHandlingQueue_->async([entity, loaded = std::move(loaded)] {
        Port<MainQueue>::current().async(
            [loaded, artwork = RVMetadataManager::artworkForEntity(entity)] { loaded(artwork); });
    });
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
    hasCollectionButton_ = true;
    TrendingControls controls;
    controls.first.title = groupingTitle();
    controls.first.menu = groupingMenuForButton();
    controls.second.isHidden = true;
    return controls;
}

TrendingControls RVTrendingCollectionViewController::songsControls() {
    hasPlaylistButton_ = true;
    const auto button = [this](const std::string& title, const char* icon,
                               void (RVTrendingCollectionViewController::*action)()) {
        TrendingButton made;
        made.title = RVMetadataManager::attributedString(title, UIImage::systemImageNamed(icon));
        made.touchUpInside = [weak = weak_from_this(), action] {
            if (const auto self = weak.lock()) {
                ((*self).*action)();
            }
        };
        return made;
    };
    return {button(NSLocalizedString("Play All"), "play.fill",
                   &RVTrendingCollectionViewController::playAll),
            button(NSLocalizedString("New Playlist"), "plus",
                   &RVTrendingCollectionViewController::createPlaylist)};
}

NSAttributedString RVTrendingCollectionViewController::groupingTitle() const {
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
        menu.children.push_back({title, std::nullopt, [weak = weak_from_this(), grouping] {
                                     if (const auto self = weak.lock()) {
                                         self->chooseGrouping(grouping);
                                     }
                                 }});
    }
    return menu;
}

void RVTrendingCollectionViewController::chooseGrouping(std::int64_t grouping) {
    defaults().setObject(TrendingDefaults::groupingType, grouping);
    if (screen_ != nullptr) {
        screen_->groupingTitleDidChange();
    }
    updateDataSource();
}

void RVTrendingCollectionViewController::didSelectRow(const TrendingRow& row) {
    if (row != nullptr && screen_ != nullptr) {
        screen_->pushEntity(row->entity);
    }
}

std::optional<MPMediaEntity> RVTrendingCollectionViewController::entityForContextMenu(
    const TrendingRow& row) {
    return row == nullptr || row->entity.isEmpty() ? std::nullopt : std::optional(row->entity);
}

}  // namespace tavrion
