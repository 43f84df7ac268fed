// The screen of the ranking: what was played most in the chosen range.
//
// Queue: main, but for updateDataSource(), which may be called from any. Who owns: the screen;
// updates under way keep no screen alive. The ranking is worked out on the queue of a private
// context, and so are its notifications posted; updates are not cancelled, and the one that is
// applied last wins.
#pragma once

#include <memory>

#include "timeviews/TrendingRanking.h"

namespace tavrion {

namespace TrendingDefaults {
/// See TrendingGrouping.
inline const char* const groupingType = "TrendingGroupingType";
/// 2 ranks by the time listened, anything else by the number of plays.
inline const char* const weightedRankFormat = "TrendingWeightedRankFormat";
inline constexpr std::int64_t byTime = 2;
}  // namespace TrendingDefaults

namespace TrendingNotification {
inline const char* const didBegin = "RVTrendingUpdateDidBegin";
/// With the user info "progress", a float.
inline const char* const didChange = "RVTrendingUpdateDidChange";
inline const char* const didEnd = "RVTrendingUpdateDidEnd";
}  // namespace TrendingNotification

class RVTrendingCollectionViewController
    : public std::enable_shared_from_this<RVTrendingCollectionViewController> {
  public:
    static std::shared_ptr<RVTrendingCollectionViewController> make();

    /// Ranks anew by the user defaults, and shows the result later on the main queue.
    void updateDataSource();

    /// What is shown; empty before the first update.
    const TrendingSnapshot& snapshot() const { return snapshot_; }
    /// Whether the screen says that there is nothing.
    bool showsBackgroundView() const { return showsBackgroundView_; }

  private:
    RVTrendingCollectionViewController() = default;
    void apply(TrendingSnapshot snapshot);

    TrendingSnapshot snapshot_;
    bool showsBackgroundView_ = false;
};

}  // namespace tavrion
