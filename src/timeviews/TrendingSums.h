// Adds up the plays of a span of time by song, and by the artists, albums and genres of the songs.
//
// Queue: that of its owner; walks the columns of an immutable version, which outlives it. Units:
// seconds. Songs that the user keeps out of the trends are left out everywhere.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "platform/coredata/StoreVersion.h"
#include "timeviews/TrendingRanking.h"

namespace tavrion {

/// A song with its place in the ranking.
struct TrendingSong {
    RVTrendingHistory sums;
    /// Less than every date when it is absent.
    double lastEventDate = 0;
};

/// A group with its name.
struct TrendingGroup {
    std::string_view key;
    RVTrendingHistory sums;
};

/// Groups by their names; all kinds of groups share one table.
class TrendingGroups {
  public:
    RVTrendingHistory& at(std::string_view key);
    std::vector<TrendingGroup>& all() { return groups_; }

  private:
    void grow();
    std::vector<TrendingGroup> groups_;
    /// Places in groups_ from 1 on; 0 is free.
    std::vector<std::uint32_t> slots_;
    std::vector<std::size_t> hashes_;
};

class TrendingSums {
  public:
    TrendingSums(const StoreVersion& records, const TrendingRequest& request);

    /// How many songs were played; all plays without a song count as one.
    std::size_t keptCount() const { return keptCount_; }
    std::vector<TrendingSong>& songs() { return songs_; }
    std::vector<TrendingGroup>& groups() { return groups_.all(); }

  private:
    void countPlays(const StoreVersion& records);
    void addSongs(const TableVersion& songs);
    void addToGroups(const TableLeaf& leaf, std::size_t row, const RVTrendingHistory& sums);

    const TrendingRequest& request_;
    /// By the song's counter; what lies beyond the last song is at its end.
    std::vector<std::uint32_t> plays_;
    std::size_t keptCount_ = 0;
    std::vector<TrendingSong> songs_;
    TrendingGroups groups_;
};

}  // namespace tavrion
