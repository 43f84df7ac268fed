// Orders songs and collections by their names while a snapshot is made.
//
// Queue: any. Free functions over the builder's own arrays.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion {

/// The positions of `songs` in library order.
std::vector<std::uint32_t> libraryOrder(const std::vector<SongRecord>& songs,
                                        std::string_view texts);
/// Fills groupPersistentIDs and groupRanks of every song.
void groupSongs(std::vector<SongRecord>& songs, std::string_view texts);

/// The arrays of a PositionIndex.
struct PositionIndexArrays {
    std::vector<std::uint32_t> starts;
    std::vector<std::uint32_t> entries;
    /// `hashes` by position.
    static PositionIndexArrays build(const std::vector<std::uint64_t>& hashes);
    PositionIndex view() const { return {starts, entries}; }
};

}  // namespace tavrion
