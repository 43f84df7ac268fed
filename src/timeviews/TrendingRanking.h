// The songs, and the artists, albums or genres, that were played most within a span of time.
//
// Queue: that of the context that is passed. Units: seconds. A play within a span is strictly
// between its ends, and counts the song's whole duration. Songs and groups that the media library
// does not have are left out. A play without a song is not ranked.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/foundation/NSDateInterval.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

class TrendingKeys;

/// What the collections of a ranking are; the numbers are stored. For any other number there are
/// none.
enum class TrendingGrouping : std::int64_t { artists = 0, albums = 1, genres = 2 };

/// The work record of a song or a group: one of the two sums stays 0.
struct RVTrendingHistory {
    /// Of the song's record; 0 for a group.
    RecordCounter playbackHistory = 0;
    /// What is ranked on.
    double trendValue = 0;
    std::uint64_t playCount = 0;
    double playDuration = 0;
};

/// A row. Two rows are never the same one, whatever they show.
struct RVTrendingEntity {
    MPMediaEntity entity;
    std::uint64_t playCount = 0;
    double playDuration = 0;
};
using TrendingRow = std::shared_ptr<const RVTrendingEntity>;

/// What the screen shows, best first.
struct TrendingSnapshot {
    static constexpr int dateSection = 0;
    static constexpr int collectionsSection = 1;
    static constexpr int songsSection = 2;
    /// The one item of the section of the date.
    static constexpr const char* dateItem = "DateSelectorSection";

    std::vector<TrendingRow> collections;
    std::vector<TrendingRow> songs;

    /// The sections that have a row.
    std::vector<int> sectionIdentifiers() const;
};

struct TrendingRequest {
    NSDateInterval interval;
    /// By the time listened instead of the number of plays.
    bool byTime = false;
    /// Asked for every song and once more for the ranking of the groups.
    std::function<TrendingGrouping()> grouping;
    /// Told for every song, twice; may be null. Can pass 1 where songs are missing in the library.
    std::function<void(float)> progress;
    /// Asked now and then whether anybody wants to be told of the progress; null is yes.
    std::function<bool()> isHeard = nullptr;
};

class TrendingRanking {
  public:
    TrendingRanking() = delete;

    static constexpr std::size_t mostSongs = 100;
    static constexpr std::size_t mostCollections = 15;

    static TrendingSnapshot rank(NSManagedObjectContext& context, const TrendingRequest& request);
    /// Whoever ranks again and again keeps the keys: only songs that have changed are read again.
    static TrendingSnapshot rank(NSManagedObjectContext& context, const TrendingRequest& request,
                                 TrendingKeys& keys);
};

}  // namespace tavrion
