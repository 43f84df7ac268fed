// The one who listens to the sample library: every play and skip of every day, a pure function of
// the catalogue and the zone of the wall clock.
//
// Queue: any; immutable, but for what an asking walks through. A song played to its end counts at
// the instant of that end; one that is left counts as skipped at that instant. Plays and skips of
// the listener never overlap. Before SampleCalendar::firstDay and from lastDay on there is silence.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/foundation/NSTimeZone.h"
#include "sources/sample/SampleCatalogue.h"
#include "sources/sample/SampleTaste.h"

namespace tavrion {

struct SamplePlay {
    std::uint32_t song = 0;
    NSDate start;
    NSDate end;
    /// False when the song was left before its end.
    bool isWhole = true;
};

/// What the library keeps of all plays and skips of a song.
struct SampleCounts {
    std::uint64_t plays = 0;
    std::uint64_t skips = 0;
    std::optional<NSDate> lastPlayed;
    std::optional<NSDate> lastSkipped;

    void add(bool isWhole, NSDate end);
};

class SampleListener {
  public:
    /// The catalogue outlives the listener.
    SampleListener(const SampleCatalogue& catalogue, NSTimeZone zone);

    /// What ended after `start` and not after `end`, in that order: plays and skips.
    std::vector<SamplePlay> playsBetween(NSDate start, NSDate end) const;
    /// By song.
    std::vector<SampleCounts> countsAt(NSDate instant) const;

  private:
    using Visitor = std::function<void(const SamplePlay&)>;
    void visitDays(std::int64_t first, std::int64_t last, const Visitor& visit) const;
    void visitDay(std::int64_t day, SampleTaste& taste, const Visitor& visit) const;
    std::int64_t heldDay(NSDate instant) const;

    const SampleCatalogue& catalogue_;
    NSTimeZone zone_;
    double sessionScale_;
};

}  // namespace tavrion
