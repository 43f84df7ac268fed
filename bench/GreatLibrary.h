// A made library, by default of 100,000 songs, 12,000 albums, 5,000 artists and 300 playlists, and
// the same as tables of SQLite. TAVRION_BENCH_SONGS makes all of it greater or smaller.
//
// Queue: one thread. Everything follows from the count alone, so that two runs measure the same.
#pragma once

#include <memory>

#include "bench/peer/library_peer.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaLibrary.h"

namespace tavrion::bench {

/// Made at the first call.
const std::shared_ptr<const MediaSnapshot>& greatLibrary();
/// The same rows in memory, with an index for every way to look songs up; made at the first call.
library_peer* greatPeer();

/// The great library plugged for the life of one measurement.
class LibraryEnvironment {
  public:
    explicit LibraryEnvironment(bool splitsCompilations);

  private:
    FixedClock clock_{NSDate::dateWithTimeIntervalSinceReferenceDate(7e8)};
    Port<Clock>::Plug clockPlug_{clock_};
    Regional region_{*NSTimeZone::timeZoneWithName("Europe/Berlin"), "en_US"};
    Port<Regional>::Plug regionPlug_{region_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug defaultsPlug_{*defaults_};
    MPMediaLibrary library_;
    Port<MPMediaLibrary>::Plug libraryPlug_{library_};
};

}  // namespace tavrion::bench
