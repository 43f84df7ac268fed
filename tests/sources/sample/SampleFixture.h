// What the tests of the sample library share.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate.h"
#include "platform/mediaplayer/MediaSnapshot.h"
#include "platform/testing/ManualClock.h"

namespace tavrion {

inline NSDate instant(const std::string& text) {
    return dateFromIsoText(text).value();
}

inline NSTimeZone zoneNamed(const std::string& name) {
    return NSTimeZone::timeZoneWithName(name).value();
}

/// The songs of a snapshot by their persistent identifiers.
inline std::map<std::uint64_t, SongRecord> byPersistentID(const MediaSnapshot& snapshot) {
    std::map<std::uint64_t, SongRecord> songs;
    for (const SongRecord& song : snapshot.songs()) {
        songs[song.persistentID] = song;
    }
    return songs;
}

/// A clock and a region for the life of a test.
class SampleTest : public testing::Test {
  protected:
    ManualClock clock{instant("2026-03-01T12:00:00Z")};
    Port<Clock>::Plug clockPlug{clock};
    Regional region{zoneNamed("Europe/Berlin"), "en_US"};
    Port<Regional>::Plug regionPlug{region};
};

}  // namespace tavrion
