// The plays of a span of time: how many they are, what they come to, and the list that they make.
//
// Queue: any; an immutable version of the records, which it keeps.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "kit/NSDiffableDataSourceSnapshot.h"
#include "recording/PlayTotals.h"
#include "recording/Plays.h"

namespace tavrion {

/// The first section of the list: the totals and the chart.
inline const char* const historyStatSection = "StatSection";

class HistoryPlays {
  public:
    HistoryPlays(std::shared_ptr<const StoreVersion> records, NSDate start, NSDate end)
        : records_(std::move(records)), plays_(*records_, start, end) {}

    std::size_t count() const { return plays_.count(); }
    PlayTotals totals() const { return playTotals(*records_, plays_); }

    /// Called for each new section: how far the walk is, from 0 to 1.
    using Progress = std::function<void(float)>;
    /// The stat section, and one for each day with plays, the newest first, under the end of the
    /// day; nothing without plays.
    NSDiffableDataSourceSnapshot byDay(const Progress& progress) const;
    /// The stat section and one with all plays, the newest first; nothing without plays.
    NSDiffableDataSourceSnapshot inOneSection(NSDate identifier) const;

  private:
    NSDiffableDataSourceSnapshot withStatSection() const;

    const std::shared_ptr<const StoreVersion> records_;
    const Plays plays_;
};

}  // namespace tavrion
