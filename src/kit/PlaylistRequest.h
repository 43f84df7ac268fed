// A playlist that the user wants to make, as a value.
//
// Queue: any; an immutable value.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "platform/coredata/NSManagedObjectID.h"
#include "platform/mediaplayer/MPMediaItem.h"

namespace tavrion {

struct PlaylistRequest {
    /// A song, or a recorded play whose song is meant.
    using Song = std::variant<MPMediaItem, NSManagedObjectID>;

    /// Offered as the name.
    std::string title;
    /// In the playlist's order; one song can stand there several times.
    std::vector<Song> songs;
};

}  // namespace tavrion
