#include "library/EntityLists.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "library/RVQueryManager+Results.h"
#include "library/RVQueryManager+Statistics.h"
#include "library/SortedEntities.h"
#include "recording/MPMediaItem+Nerinda.h"

namespace tavrion {

namespace {

using Entities = std::vector<MPMediaEntity>;

Entities sortedByTitle(Entities songs, bool ascending) {
    std::vector<std::optional<std::string>> names;
    names.reserve(songs.size());
    for (const MPMediaEntity& song : songs) {
        names.push_back(Nerinda::sortKey(*song.item()));
    }
    Entities sorted;
    sorted.reserve(songs.size());
    for (const std::uint32_t place : SortedEntities::alphabeticalOrder(names, ascending)) {
        sorted.push_back(std::move(songs[place]));
    }
    return sorted;
}

Entities sortedByDiscAndTrack(Entities songs) {
    const auto place = [](const MPMediaEntity& song) {
        return std::tuple(song.item()->discNumber(), song.item()->albumTrackNumber());
    };
    std::stable_sort(
        songs.begin(), songs.end(),
        [&](const MPMediaEntity& a, const MPMediaEntity& b) { return place(a) < place(b); });
    return songs;
}

/// The list above the songs, by the kind of the page.
std::optional<EntitySection> sectionAboveSongs(MPMediaGrouping grouping) {
    switch (grouping) {
        case MPMediaGrouping::artist:
        case MPMediaGrouping::albumArtist:
            return EntitySection::albums;
        case MPMediaGrouping::genre:
            return EntitySection::artists;
        default:
            return std::nullopt;
    }
}

}  // namespace

const EntityList* EntitySnapshot::list(EntitySection section) const {
    const auto found = std::find_if(lists.begin(), lists.end(), [&](const EntityList& each) {
        return each.section == section;
    });
    return found == lists.end() ? nullptr : &*found;
}

std::vector<EntitySection> EntitySnapshot::sections() const {
    std::vector<EntitySection> found{EntitySection::statistics, EntitySection::recentActivity};
    for (const EntityList& each : lists) {
        found.push_back(each.section);
    }
    return found;
}

EntityLists::EntityLists(MPMediaEntity entity) : entity_(std::move(entity)) {
    if (const MPMediaItemCollection* collection = entity_.collection()) {
        itemsQuery_ = collection->itemsQuery();
    }
}

MPMediaGrouping EntityLists::groupTypeOfSection(EntitySection section) {
    switch (section) {
        case EntitySection::artists:
            return MPMediaGrouping::albumArtist;
        case EntitySection::albums:
            return MPMediaGrouping::album;
        default:
            return MPMediaGrouping::title;
    }
}

Entities EntityLists::results(EntitySection section, const EntitySort& sort) {
    return RVQueryManager::resultsForQuery(&*itemsQuery_, groupTypeOfSection(section), sort.type,
                                           sort.reverse);
}

EntitySnapshot EntityLists::fullBuild(const SortOfSection& sortOfSection) {
    EntitySnapshot snapshot;
    snapshot.statistics =
        RVQueryManager::statsForMediaEntity(entity_).value_or(std::vector<RVStatisticReference>());
    if (!itemsQuery_) {
        return snapshot;
    }
    if (const auto section = sectionAboveSongs(entity_.groupingType())) {
        snapshot.lists.push_back({*section, results(*section, sortOfSection(*section))});
    }
    const EntitySort sort = sortOfSection(EntitySection::songs);
    snapshot.lists.push_back(
        {EntitySection::songs, inFirstOrder(results(EntitySection::songs, sort), sort)});
    return snapshot;
}

Entities EntityLists::inFirstOrder(Entities songs, const EntitySort& sort) const {
    // Albums and playlists have an order of their own, which their queries give.
    const bool hasOwnOrder =
        entity_.playlist().has_value() || entity_.groupingType() == MPMediaGrouping::album;
    return sort.type == RVSortTypeAlphabetical && !hasOwnOrder
               ? sortedByTitle(std::move(songs), true)
               : songs;
}

Entities EntityLists::reloadedList(EntitySection section, const EntitySort& sort) {
    if (!itemsQuery_) {
        return {};
    }
    Entities list = results(section, sort);
    if (section != EntitySection::songs || sort.type != RVSortTypeAlphabetical) {
        return list;
    }
    return entity_.groupingType() == MPMediaGrouping::album
               ? sortedByDiscAndTrack(std::move(list))
               : sortedByTitle(std::move(list), !sort.reverse);
}

EntitySnapshot EntityLists::withList(EntitySnapshot snapshot, EntityList list) {
    if (list.entities.empty()) {
        return snapshot;
    }
    for (EntityList& each : snapshot.lists) {
        if (each.section == list.section) {
            each = std::move(list);
            return snapshot;
        }
    }
    snapshot.lists.push_back(std::move(list));
    return snapshot;
}

}  // namespace tavrion
