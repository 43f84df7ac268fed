// The Trending screen over the made rows, with no window.
//
// Queue: the thread that makes it is the main queue.
#pragma once

#include <memory>

#include "bench/Fixtures.h"
#include "timeviews/RVDateRangeSelectorViewController.h"
#include "timeviews/RVTrendingCollectionViewController.h"

namespace tavrion::bench {

/// A second outside of the ten years.
inline constexpr double lifetimeStart = endOfYears - tenYears - 1;
inline constexpr double lifetimeEnd = endOfYears + 1;

class TrendingWork {
  public:
    TrendingWork(double start, double end);

    /// A screen that was never shown.
    void openScreen() { screen_ = RVTrendingCollectionViewController::make(); }
    /// From the call for an update to both lists.
    const TrendingSnapshot& update();

  private:
    BenchEnvironment environment_{fixtures().store(), endOfYears};
    std::shared_ptr<RVTrendingCollectionViewController> screen_;
};

}  // namespace tavrion::bench
