// The statistics of one song, album, artist, genre or playlist, from the library's own counters.
//
// Queue: any but the main one: all songs of the entity are walked, and those of the library for the
// share of all plays. Stateless; safe beside a running scan. Absent: the result for the empty
// entity and for kinds that have no statistics (composers).
#pragma once

#include <optional>
#include <vector>

#include "library/RVStatistic.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion::RVQueryManager {

/// The tiles in the order in which they are shown. What is divided by nothing reads as the
/// formatter writes it.
std::optional<std::vector<RVStatisticReference>> statsForMediaEntity(const MPMediaEntity& entity);

}  // namespace tavrion::RVQueryManager
