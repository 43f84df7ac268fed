// What counts as the user's music.
//
// Queue: any. Stateless. The lists of the library are in library/RVQueryManager+Results.h.
#pragma once

#include "platform/mediaplayer/MPMediaQuery.h"

namespace tavrion::RVQueryManager {

/// The user default that says whether songs of compilations stand under their own artists instead
/// of one album artist.
inline constexpr const char* splitCompilationsKey = "BrowseShouldSplitCompilations";

/// A new query for all songs whose media type is music.
MPMediaQuery defaultQuery();

}  // namespace tavrion::RVQueryManager
