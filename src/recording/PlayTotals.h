// How many plays a span of time holds, of how many songs, and how long they lasted.
//
// Queue: any; walks the columns of an immutable version. Both ends of a span are outside of it.
// Plays without a date are in no span; a play without a song counts, and adds no song and no time.
#pragma once

#include <cstddef>

#include "recording/Plays.h"

namespace tavrion {

struct PlayTotals {
    std::size_t plays = 0;
    /// Distinct ones.
    std::size_t songs = 0;
    /// The sum of the songs' durations, once for each play.
    double seconds = 0;
};

PlayTotals playTotals(const StoreVersion& records, const Plays& plays);
PlayTotals playTotalsBetween(const StoreVersion& records, NSDate start, NSDate end);

}  // namespace tavrion
