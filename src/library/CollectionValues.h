// What the songs of a collection come to together.
//
// Queue: any but the main one for large collections: each walks all songs. Stateless. Units:
// seconds. Absent: a greatest value of songs that have none, or of no songs.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/mediaplayer/MPMediaItem.h"

namespace tavrion::CollectionValues {

/// "items.@sum.playCount".
std::uint64_t playCount(const std::vector<MPMediaItem>& songs);
/// The sum of each song's play count times its duration.
double secondsListened(const std::vector<MPMediaItem>& songs);
/// "items.@sum.skipCount".
std::uint64_t skipCount(const std::vector<MPMediaItem>& songs);
/// How many were last played later than that, not at that instant.
std::size_t playedSince(const std::vector<MPMediaItem>& songs, NSDate date);
/// How many are marked as explicit.
std::size_t explicitCount(const std::vector<MPMediaItem>& songs);
/// How many are not on this device.
std::size_t cloudCount(const std::vector<MPMediaItem>& songs);
/// "items.@min." of a date.
std::optional<NSDate> earliest(const std::vector<MPMediaItem>& songs,
                               std::optional<NSDate> (MPMediaItem::*date)() const);
/// "items.@max." of a date.
std::optional<NSDate> latest(const std::vector<MPMediaItem>& songs,
                             std::optional<NSDate> (MPMediaItem::*date)() const);
/// "items.@max.year"; a year of 0 counts as a year.
std::optional<unsigned> latestYear(const std::vector<MPMediaItem>& songs);
/// How many different values of an identifier there are; none (0) counts as one.
std::size_t distinctCount(const std::vector<MPMediaItem>& songs,
                          std::uint64_t (MPMediaItem::*persistentID)() const);

}  // namespace tavrion::CollectionValues
