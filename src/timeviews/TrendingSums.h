// Adds up the plays of a span of time by song, and by the artists, albums and genres of the songs.
//
// Queue: that of its owner; walks the columns of an immutable version, which outlives it. Units:
// seconds. Songs that the user keeps out of the trends are left out everywhere.
#pragma once

#include <string_view>
#include <vector>

#include "platform/coredata/StoreVersion.h"
#include "timeviews/TrendingKeys.h"
#include "timeviews/TrendingRanking.h"

namespace tavrion {

/// A song with its place in the ranking.
struct TrendingSong {
    RVTrendingHistory sums;
    /// Less than every date when it is absent.
    double lastEventDate = 0;
};

/// A group with its name, which lives as long as the keys.
struct TrendingGroup {
    std::string_view key;
    RVTrendingHistory sums;
};

class TrendingSums {
  public:
    TrendingSums(const StoreVersion& records, const TrendingRequest& request, TrendingKeys& keys);

    /// How many songs were played; all plays without a song count as one.
    std::size_t keptCount() const { return keptCount_; }
    /// The best songs but for `after` and all that are better, best first; all count when `after`
    /// is null.
    std::vector<TrendingSong> bestSongs(std::size_t most, const TrendingSong* after) const;
    /// The same of the groups.
    std::vector<TrendingGroup> bestGroups(std::size_t most, const TrendingGroup* after) const;

  private:
    struct GroupSum {
        double trendValue = 0;
        /// Whether a song added to it, if only 0.
        bool isThere = false;
    };

    void countPlays(const StoreVersion& records);
    void keepSongs();
    void addSongs();
    void addToGroups(std::size_t leaf, std::size_t row, double trendValue);
    void addToGroup(std::uint32_t number, double trendValue);
    double trendValue(std::uint32_t plays, double duration) const {
        return request_.byTime ? plays * duration : plays;
    }
    RVTrendingHistory sumsOf(double trendValue) const;

    const TrendingRequest& request_;
    const TableVersion& songs_;
    TrendingKeys& keys_;
    /// By the song's counter; those of no song are at 0.
    std::vector<std::uint32_t> plays_;
    std::size_t keptCount_ = 0;
    /// By the group's number.
    std::vector<GroupSum> groups_;
};

}  // namespace tavrion
