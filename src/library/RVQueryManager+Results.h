// The lists of the library: songs, albums, artists, genres or playlists in the order the user
// wants.
//
// Queue: any but the main one, since it walks the library; callers serialise on queues of their
// own. Stateless. Absent is the null query, in whose place the user's music is taken. Nothing
// fails: an unknown sort leaves the query's own order, and an empty library gives an empty list.
#pragma once

#include <cstdint>
#include <vector>

#include "library/RVSortType.h"
#include "platform/mediaplayer/MPMediaEntity.h"
#include "platform/mediaplayer/MPMediaQuery.h"
#include "recording/RVQueryManager.h"

namespace tavrion::RVQueryManager {

/// The entities of the query, each once, at its first place in the list as it is given. An entity's
/// rank is its place plus one. The natural order is A to Z, and highest, latest or longest first;
/// `reverse` turns it round. Entities of the same value stay in the query's order either way, and
/// one without a value counts as smaller than any. The query is changed: it keeps the grouping and
/// the filters that the list needed.
std::vector<MPMediaEntity> resultsForQuery(MPMediaQuery* query, MPMediaGrouping groupType,
                                           RVSortType sortType, bool reverse);

}  // namespace tavrion::RVQueryManager
