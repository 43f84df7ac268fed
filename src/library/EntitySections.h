// The sections of an entity's page: what they are called, and how the user wants them sorted.
//
// Queue: storing on the main queue, the rest on any. Stateless; the choices are in the user's sort
// preferences, one for each kind of list, not for each entity: sorting the songs of one album sorts
// the songs of every page that opens later. Absent: a section without a title or a sort of its own
// has an empty one.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "library/RVSortType.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

/// In their order on the page. The numbers are the tags of the sort buttons.
enum class EntitySection : std::uint64_t {
    statistics = 0,
    recentActivity = 1,
    artists = 2,
    albums = 3,
    songs = 4,
};

/// How a list is sorted.
struct EntitySort {
    RVSortType type = RVSortTypeAlphabetical;
    bool reverse = false;
    bool operator==(const EntitySort&) const = default;
};

namespace EntitySections {

std::string titleForSection(EntitySection section);
std::string sortPreferenceKeyForSection(EntitySection section);
/// The six sorts; the first depends on the page alone.
std::vector<std::string> sortTitlesForSection(EntitySection section, const MPMediaEntity& page);
RVSortType sortTypeForSection(EntitySection section);
bool reverseForSection(EntitySection section);
EntitySort sortForSection(EntitySection section);
void storeSort(const EntitySort& sort, EntitySection section);
/// What choosing a type of the menu comes to: that type as it is, or, chosen again, turned round.
EntitySort chosenSort(const EntitySort& current, RVSortType chosen);

}  // namespace EntitySections
}  // namespace tavrion
