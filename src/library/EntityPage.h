// What the page of a song, album, artist, genre or playlist shows, as a value.
//
// Queue: any; an immutable value once published, cheap to copy. Absent: see each.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "library/EntityActivity.h"
#include "library/EntityRows.h"
#include "library/EntitySections.h"
#include "library/EntityTexts.h"
#include "library/RVStatistic.h"

namespace tavrion {

struct EntityList {
    EntitySection section = EntitySection::songs;
    /// What the section's button says; the rows follow it a moment later.
    EntitySort sort;
    EntityRows rows;
};

struct EntityPage {
    MPMediaEntity entity;
    EntityHeader header;
    std::vector<RVStatisticReference> statistics;
    /// Date and time as text.
    std::string lastPlayed;
    /// Absent until the plays were read.
    std::optional<EntityActivity> activity;
    std::vector<EntityList> lists;

    /// Null when the page has no such list.
    const EntityList* list(EntitySection section) const;
    /// The numbers of all sections, from the top. The chart stands between the tiles and the lists.
    std::vector<EntitySection> sections() const;
    /// The words beside the chart: "Last Played: ...".
    std::string lastPlayedText() const;
    /// Of the button that opens a list's sorts: what it is sorted by, and which way.
    NSAttributedString sortButtonTitle(EntitySection section) const;
    /// What playing the page queues, in this order: the songs as they are shown, or the song.
    /// Absent for anything else.
    std::optional<MPMediaItemCollection> itemsToPlay() const;

    /// What the list's button says from now on, if the page has the list.
    void setSort(EntitySection section, const EntitySort& sort);
    /// The list takes the place of the one that the page has of its section, else it stands at the
    /// end. An empty one changes nothing.
    void setList(EntityList list);
};

}  // namespace tavrion
