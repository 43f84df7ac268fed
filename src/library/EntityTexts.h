// What an entity's page says about the entity.
//
// Queue: any; what walks the songs of an entity stays off the main queue. Stateless. Absent: see
// each.
#pragma once

#include <optional>
#include <string>

#include "kit/NSAttributedString.h"
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

namespace EntityTexts {

EntityHeader header(const MPMediaEntity& entity);
/// The collection of the album artist of the song that stands for the entity: also for a song on a
/// compilation, whether compilations are split or not. Absent when no song has that artist.
std::optional<MPMediaItemCollection> artistForEntity(const MPMediaEntity& entity);

}  // namespace EntityTexts
}  // namespace tavrion
