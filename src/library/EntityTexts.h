// What an entity's page says about the entity and about each row.
//
// Queue: any; what walks the songs of an entity stays off the main queue. Stateless. Absent: see
// each.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "kit/NSAttributedString.h"
#include "library/RVSortType.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

/// The top of the page.
struct EntityHeader {
    /// Without a mark for explicit songs. Absent as the entity's title is.
    std::optional<std::string> title;
    std::optional<std::string> subtitle;
    std::string duration;
    /// Of a song only; absent means that there is no place for them.
    std::optional<NSAttributedString> icons;
    /// Whether the subtitle leads to the artist's page.
    bool linksToArtist = false;
};

/// A row's number, its visibility, and the value at the right.
struct EntityRank {
    /// Empty when the row shows none.
    std::string text;
    bool isShown = false;
    NSAttributedString property;
};

namespace EntityTexts {

EntityHeader header(const MPMediaEntity& entity);
/// The collection of the album artist of the song that stands for the entity: also for a song on a
/// compilation, whether compilations are split or not. Absent when no song has that artist.
std::optional<MPMediaItemCollection> artistForEntity(const MPMediaEntity& entity);
/// Of the row at that index of its section: its track on an album's page in track order, its place
/// where the sort is ranked.
EntityRank rankOfEntity(const MPMediaEntity& entity, std::size_t index, RVSortType sortType,
                        const MPMediaEntity& page);

}  // namespace EntityTexts
}  // namespace tavrion
