#include "library/EntityLists.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "library/RVMetadataManager.h"
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

/// An album in the order of its tracks shows their numbers.
EntityList EntityLists::listOf(EntitySection section, const EntitySort& sort,
                               Entities entities) const {
    const bool showsTracks =
        sort.type == RVSortTypeAlphabetical && entity_.groupingType() == MPMediaGrouping::album;
    EntityRows rows = showsTracks ? EntityRows(std::move(entities), sort.type, RowNumbers::tracks)
                                  : EntityRows::ranked(std::move(entities), sort.type);
    return {section, sort, std::move(rows)};
}

EntityPage EntityLists::fullBuild(const SortOfSection& sortOfSection) {
    EntityPage page;
    page.entity = entity_;
    page.header = EntityTexts::header(entity_);
    page.statistics =
        RVQueryManager::statsForMediaEntity(entity_).value_or(std::vector<RVStatisticReference>());
    page.lastPlayed = RVMetadataManager::lastPlayedDateForMediaEntity(entity_);
    if (!itemsQuery_) {
        return page;
    }
    if (const auto section = sectionAboveSongs(entity_.groupingType())) {
        const EntitySort sort = sortOfSection(*section);
        page.lists.push_back(listOf(*section, sort, results(*section, sort)));
    }
    const EntitySort sort = sortOfSection(EntitySection::songs);
    page.lists.push_back(listOf(EntitySection::songs, sort,
                                inFirstOrder(results(EntitySection::songs, sort), sort)));
    return page;
}

Entities EntityLists::inFirstOrder(Entities songs, const EntitySort& sort) const {
    // Albums and playlists have an order of their own, which their queries give.
    const bool hasOwnOrder =
        entity_.playlist().has_value() || entity_.groupingType() == MPMediaGrouping::album;
    return sort.type == RVSortTypeAlphabetical && !hasOwnOrder
               ? sortedByTitle(std::move(songs), true)
               : songs;
}

EntityList EntityLists::reloadedList(EntitySection section, const EntitySort& sort) {
    if (!itemsQuery_) {
        return {section, sort, {}};
    }
    Entities list = results(section, sort);
    if (section == EntitySection::songs && sort.type == RVSortTypeAlphabetical) {
        list = entity_.groupingType() == MPMediaGrouping::album
                   ? sortedByDiscAndTrack(std::move(list))
                   : sortedByTitle(std::move(list), !sort.reverse);
    }
    return listOf(section, sort, std::move(list));
}

}  // namespace tavrion
