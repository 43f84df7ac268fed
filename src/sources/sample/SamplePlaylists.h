// The playlists that the sample library came with.
//
// Queue: any; a pure function of the catalogue. Songs that are not there at an instant are left out
// by whoever reads.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sources/sample/SampleCatalogue.h"

namespace tavrion {

struct SamplePlaylist {
    std::string name;
    std::uint64_t persistentID = 0;
    /// 0 at the top.
    std::uint64_t parentPersistentID = 0;
    bool isFolder = false;
    bool isHidden = false;
    /// Persistent identifiers of songs.
    std::vector<std::uint64_t> songs;
};

std::vector<SamplePlaylist> samplePlaylists(const SampleCatalogue& catalogue);
/// The identifier of a playlist of the catalogue (numbers below 100) or of the user; never 0, and
/// of no other playlist.
std::uint64_t samplePlaylistID(const SampleCatalogue& catalogue, std::uint64_t number);

}  // namespace tavrion
