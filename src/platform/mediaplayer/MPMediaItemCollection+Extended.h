// What a collection files under.
//
// Queue: any. Stateless.
#pragma once

#include <optional>
#include <string>

#include "platform/mediaplayer/MPMediaItemCollection.h"

namespace tavrion::Extended {

/// The name of a playlist or genre, the sort name or else the name of an album artist or album;
/// absent for collections of other kinds.
std::optional<std::string> sortKey(const MPMediaItemCollection& collection);
/// The sort name or else the name of an album artist or artist, so that both can stand in one list;
/// an empty text for collections of other kinds, absent where there is no name at all.
std::optional<std::string> sortArtistKey(const MPMediaItemCollection& collection);

}  // namespace tavrion::Extended
