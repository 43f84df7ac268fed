// What the handles of one collection share.
//
// Queue: any; immutable.
#pragma once

#include <optional>
#include <vector>

#include "platform/mediaplayer/MPMediaItemCollection.h"
#include "platform/mediaplayer/MPMediaQuery.h"

namespace tavrion {

struct MPMediaItemCollection::State {
    std::vector<MPMediaItem> items;
    MPMediaGrouping grouping = MPMediaGrouping::title;
    std::uint64_t persistentID = 0;
    /// Finds the songs again.
    MPMediaQuery query = MPMediaQuery::songsQuery();
    /// Of a playlist only: keeps the record alive.
    std::shared_ptr<const MediaSnapshot> snapshot;
    const PlaylistRecord* playlist = nullptr;
};

}  // namespace tavrion
