// The lists of an entity's page: all of them when the page opens, one of them when it is sorted
// again.
//
// Queue: one caller at a time, off the main queue, since the library is walked. Who owns: the page.
// The two ways do not give the same order where the song list stands in its first sort; that is
// wanted. Absent: a song has no lists.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "library/EntityPage.h"
#include "platform/mediaplayer/MPMediaQuery.h"

namespace tavrion {

class EntityLists {
  public:
    using SortOfSection = std::function<EntitySort(EntitySection)>;

    explicit EntityLists(MPMediaEntity entity);

    const MPMediaEntity& entity() const { return entity_; }
    /// The whole page but for its chart, whose plays are read later. In their first sort the songs
    /// of an artist or a genre come by title whatever `reverse` says.
    EntityPage fullBuild(const SortOfSection& sortOfSection);
    /// One list in another sort. In the first, a playlist comes by title and an album by disc and
    /// track whatever `reverse` says.
    EntityList reloadedList(EntitySection section, const EntitySort& sort);

    static MPMediaGrouping groupTypeOfSection(EntitySection section);

  private:
    std::vector<MPMediaEntity> results(EntitySection section, const EntitySort& sort);
    std::vector<MPMediaEntity> inFirstOrder(std::vector<MPMediaEntity> songs,
                                            const EntitySort& sort) const;
    EntityList listOf(EntitySection section, const EntitySort& sort,
                      std::vector<MPMediaEntity> entities) const;

    MPMediaEntity entity_;
    /// One for all lists, never a copy: a filter that one list needs stays on for those after it.
    std::optional<MPMediaQuery> itemsQuery_;
};

}  // namespace tavrion
