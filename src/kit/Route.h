// Where a screen leads, as a value: the shell opens it.
//
// Queue: any; an immutable value. A screen that needs another place adds an alternative here.
#pragma once

#include <string>
#include <variant>

#include "kit/FoundEntities.h"
#include "platform/coredata/NSManagedObjectID.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

/// The page of a song, an album, an artist and the like.
struct EntityRoute {
    MPMediaEntity entity;
    bool operator==(const EntityRoute&) const = default;
};

/// All hits of one kind.
struct FoundEntitiesRoute {
    /// What was typed.
    std::string title;
    FoundEntities entities;
};

/// The drawer that edits the stored range of that user default.
struct DateRangeRoute {
    std::string userDefaultKey;
    bool operator==(const DateRangeRoute&) const = default;
};

/// Every play of one song, to be corrected.
struct SongHistoryRoute {
    std::string title;
    NSManagedObjectID playbackHistory;
    bool operator==(const SongHistoryRoute&) const = default;
};

using Route = std::variant<EntityRoute, FoundEntitiesRoute, DateRangeRoute, SongHistoryRoute>;

}  // namespace tavrion
