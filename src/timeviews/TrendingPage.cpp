#include "timeviews/TrendingPage.h"

#include <utility>

#include "library/RVMetadataManager.h"
#include "timeviews/TrendingKeys.h"

namespace tavrion {
namespace {

using Arrangement = TrendingSectionLayout::Arrangement;

constexpr const char* rowNib = "RVEntityRowCell";
constexpr const char* columnNib = "RVEntityColumnCell";

}  // namespace

TrendingPage TrendingPage::of(NSManagedObjectContext& context, const TrendingRequest& request,
                              TrendingKeys& keys) {
    TrendingPage page;
    page.show(TrendingRanking::rank(context, request, keys));
    // A look-up takes the library's title over into the record; ranking is not what saves it.
    context.rollback();
    return page;
}

void TrendingPage::show(TrendingSnapshot snapshot) {
    ranking = std::move(snapshot);
    showsBackgroundView = ranking.songs.empty();
}

std::optional<TrendingSectionLayout> TrendingPage::layoutForSectionAtIndex(
    std::size_t index) const {
    const std::vector<int> identifiers = ranking.sectionIdentifiers();
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

std::string TrendingPage::number(const RVTrendingEntity& row, bool byTime) {
    return byTime ? RVMetadataManager::formattedDuration(row.playDuration)
                  : RVMetadataManager::formattedPlays(row.playCount);
}

TrendingCell TrendingPage::cell(const RVTrendingEntity& row, std::size_t index, bool byTime,
                                const std::optional<UIFont>& font) {
    TrendingCell cell;
    cell.reuseIdentifier =
        row.entity.collection() != nullptr ? "EntityColumnCell" : "EntityRowCell";
    cell.title = RVMetadataManager::titleForMediaEntity(row.entity, font);
    cell.property = RVMetadataManager::attributedString(
        number(row, byTime), UIImage::systemImageNamed(byTime ? "stopwatch" : "play.fill",
                                                       {.scale = UIImageSymbolScale::small}));
    if (row.entity.item() != nullptr) {
        cell.subtitle = RVMetadataManager::subtitleForMediaEntity(row.entity);
        cell.ranking = index + 1;
    }
    return cell;
}

}  // namespace tavrion
