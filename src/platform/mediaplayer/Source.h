// Where a media library comes from: the library of one player, read into snapshots.
//
// Queue: one caller at a time, any queue; read() may take seconds. Who owns: the media library, and
// whoever still reads pictures from it.
// What a source cannot do it says in its capabilities; the screens leave that action out.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/foundation/Executor.h"
#include "platform/foundation/Observation.h"
#include "platform/foundation/Result.h"
#include "platform/foundation/Value.h"
#include "platform/mediaplayer/MPMediaItemCollection.h"
#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion {

class MPMusicPlayerController;

struct SourceCapabilities {
    bool canWriteLikes = false;
    bool canWritePlaylists = false;
    bool canPlay = false;
};

class Source {
  public:
    virtual ~Source() = default;

    /// The name under which the source is registered ("music-xml").
    virtual std::string kind() const = 0;
    /// Which library of that kind: a file, a socket, an address.
    virtual std::string location() const = 0;
    virtual SourceCapabilities capabilities() const { return {}; }
    /// How the library looks from outside, cheap to ask: while it is the same, an earlier snapshot
    /// is still right. Absent when only a reading can tell.
    virtual std::optional<std::string> stamp() const { return std::nullopt; }
    /// Reads the whole library. An error is one line that says what to do.
    virtual Result<std::shared_ptr<const MediaSnapshot>> read() = 0;
    /// Writes the liked state of a song into the player's library. Called only with canWriteLikes;
    /// from any queue.
    virtual Result<void> setLiked(std::uint64_t persistentID, std::uint32_t likedState);
    /// Makes a playlist of songs, told by their persistent identifiers, and gives the playlist's
    /// own. Called only with canWritePlaylists; from any queue. It shows at the next reading.
    virtual Result<std::uint64_t> createPlaylist(const std::string& name,
                                                 std::span<const std::uint64_t> songs);
    /// Puts songs at the end of a playlist that createPlaylist() has made. As createPlaylist().
    virtual Result<void> addToPlaylist(std::uint64_t playlistID,
                                       std::span<const std::uint64_t> songs);
    /// The bytes of a song's picture (PNG, JPEG), wherever the player keeps it; absent when there
    /// is none or it cannot be read. From any queue but the main one.
    virtual std::optional<NSData> artwork(std::uint64_t persistentID) const;
    /// The same of a song (grouping title) or a collection, but only of pictures that are ready on
    /// disk.
    virtual std::optional<NSData> bestImageFromDisk(MPMediaGrouping grouping,
                                                    std::uint64_t persistentID) const;
    /// Calls `changed` on a thread of the watch's own each time the library is another one and has
    /// settled since, until the returned Observation ends. An empty one where nothing tells of
    /// changes; the error is one line.
    virtual Result<Observation> watch(Work changed);
    /// Who plays the library's songs, for the main queue; null where nobody takes commands. It goes
    /// with the source.
    virtual MPMusicPlayerController* player() { return nullptr; }
};

}  // namespace tavrion
