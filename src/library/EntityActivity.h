// How long an entity was listened to on each of the last thirty days.
//
// Queue: that of the context. Units: seconds, of the songs' durations as they are known now.
// Absent: an entity without a play in these days has no bars at all.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

struct EntityActivity {
    static constexpr std::size_t dayCount = 30;
    /// Whole seconds, the oldest day first, today last.
    using Days = std::array<std::int64_t, dayCount>;

    /// The first day's start. A play at that very instant does not count.
    NSDate firstDay;
    std::optional<Days> days;
};

/// Reads the recorded plays of the entity's songs.
EntityActivity recentActivity(const MPMediaEntity& entity, NSManagedObjectContext& context);

}  // namespace tavrion
