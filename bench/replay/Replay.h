// True plays shown to the scan as a library would show them, and what the scan made of them.
//
// Queue: the thread that makes it is the main queue. Instants are seconds since 2001-01-01 UTC.
#pragma once

#include <cstddef>
#include <vector>

#include "tests/support/TenYearHistory.h"

namespace tavrion::bench {

struct ReplayOptions {
    /// Seconds between two scans.
    double interval = 86400;
    /// Whether every two songs share a title and a duration.
    bool twins = false;
};

struct ReplayResult {
    std::size_t truePlays = 0;
    std::size_t songs = 0;
    std::size_t scans = 0;
    std::size_t recorded = 0;
    /// Recorded at the very second of a true play of the song's title, and not as an estimate.
    std::size_t exact = 0;
    std::size_t estimated = 0;
    /// How far estimates are from the plays that they stand for, in seconds, sorted; of the titles
    /// of which every play was recorded that could be.
    std::vector<double> errors;
    /// Plays that are before a song was first seen: of those only the last is known.
    std::size_t lostBeforeFirstSight = 0;
    /// Plays of titles of which fewer were recorded than could be, and the count of events that the
    /// clean-up removed because another event had the same instant.
    std::size_t lostLater = 0;
    std::size_t removedAsDouble = 0;
    /// Events more than there were plays to record.
    std::size_t surplus = 0;
};

ReplayResult replay(const std::vector<TruePlay>& plays, const ReplayOptions& options);

}  // namespace tavrion::bench
