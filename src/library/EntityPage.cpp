#include "library/EntityPage.h"

#include <algorithm>
#include <utility>

#include "library/RVMetadataManager.h"
#include "platform/foundation/NSLocalizedString.h"

namespace tavrion {

namespace {

template <class Lists>
auto placeOf(Lists& lists, EntitySection section) {
    return std::find_if(lists.begin(), lists.end(),
                        [&](const EntityList& each) { return each.section == section; });
}

}  // namespace

const EntityList* EntityPage::list(EntitySection section) const {
    const auto found = placeOf(lists, section);
    return found == lists.end() ? nullptr : &*found;
}

std::vector<EntitySection> EntityPage::sections() const {
    std::vector<EntitySection> found{EntitySection::statistics, EntitySection::recentActivity};
    for (const EntityList& each : lists) {
        found.push_back(each.section);
    }
    return found;
}

std::string EntityPage::lastPlayedText() const {
    return stringWithFormat(NSLocalizedString("Last Played: %@"), {lastPlayed});
}

NSAttributedString EntityPage::sortButtonTitle(EntitySection section) const {
    const EntityList* shown = list(section);
    const EntitySort sort =
        shown == nullptr ? EntitySections::sortForSection(section) : shown->sort;
    const std::vector<std::string> titles = EntitySections::sortTitlesForSection(section, entity);
    return RVMetadataManager::attributedString(
        titles[sort.type < titles.size() ? sort.type : RVSortTypePlayCount],
        UIImage::systemImageNamed(sort.reverse ? "chevron.down.square" : "chevron.up.square"));
}

std::optional<MPMediaItemCollection> EntityPage::itemsToPlay() const {
    if (const MPMediaItem* song = entity.item()) {
        return MPMediaItemCollection({*song});
    }
    const EntityList* songs = list(EntitySection::songs);
    if (songs == nullptr) {
        return std::nullopt;
    }
    std::vector<MPMediaItem> items;
    items.reserve(songs->rows.size());
    for (const MPMediaEntity& song : songs->rows.entities()) {
        items.push_back(*song.item());
    }
    return MPMediaItemCollection(std::move(items));
}

void EntityPage::setSort(EntitySection section, const EntitySort& sort) {
    if (const auto found = placeOf(lists, section); found != lists.end()) {
        found->sort = sort;
    }
}

void EntityPage::setList(EntityList list) {
    if (list.rows.isEmpty()) {
        return;
    }
    const auto found = placeOf(lists, list.section);
    if (found == lists.end()) {
        lists.push_back(std::move(list));
    } else {
        *found = std::move(list);
    }
}

}  // namespace tavrion
