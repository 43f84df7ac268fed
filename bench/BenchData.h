// Made songs and plays: the same rows for Tavrion and for its peer.
//
// Queue: one thread. Everything follows from the counts alone, so that two runs measure the same.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "bench/peer/sqlite_peer.h"
#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion::bench {

struct BenchSong {
    std::string title;
    std::string artist;
    std::string albumTitle;
    std::string albumID;
    std::string genre;
    std::string storeID;
    std::string libraryID;
    double duration = 0;
    double lastPlayed = 0;
    double released = 0;
    std::uint64_t persistentID = 0;
    std::uint64_t playCount = 0;
    std::uint64_t skipCount = 0;
};

/// The ten years end here.
inline constexpr double endOfYears = 800000000;
inline constexpr double tenYears = 10 * 365.25 * 86400;

std::vector<BenchSong> makeSongs(std::size_t count);
/// Spread over ten years in the order of their dates, favourites more often.
std::vector<peer_play> makePlays(std::size_t count, std::size_t songs);
/// Views of the songs, as the peer takes them.
std::vector<peer_song> peerSongs(const std::vector<BenchSong>& songs);
std::shared_ptr<const MediaSnapshot> snapshotOf(const std::vector<BenchSong>& songs);
/// The songs as a Music export with sort names.
void writeMusicXml(const std::vector<BenchSong>& songs, const std::string& file);

}  // namespace tavrion::bench
