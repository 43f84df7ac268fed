// Makes a MediaSnapshot out of a source's songs and playlists.
//
// Queue: one caller at a time. The views in a description are read during the call only.
// Absent: an empty optional. An empty text counts as absent too.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion {

/// A song as a source tells it.
struct SongDescription {
    std::uint64_t persistentID = 0;
    std::optional<std::string_view> title = {};
    std::optional<std::string_view> artist = {};
    std::optional<std::string_view> albumArtist = {};
    std::optional<std::string_view> albumTitle = {};
    std::optional<std::string_view> genre = {};
    std::optional<std::string_view> composer = {};
    std::optional<std::string_view> sortTitle = {};
    std::optional<std::string_view> sortArtist = {};
    std::optional<std::string_view> sortAlbumArtist = {};
    std::optional<std::string_view> sortAlbumTitle = {};
    std::optional<std::string_view> playbackStoreID = {};
    /// Read back as "cloudUniversalLibraryId".
    std::optional<std::string_view> libraryID = {};
    /// Where the song's file is; only tells two songs of one persistent identifier apart.
    std::optional<std::string_view> location = {};
    /// Seconds.
    double playbackDuration = 0;
    /// Bytes.
    double fileSize = 0;
    std::uint64_t playCount = 0;
    std::uint64_t skipCount = 0;
    std::optional<NSDate> lastPlayedDate = {};
    std::optional<NSDate> dateAdded = {};
    std::optional<NSDate> releaseDate = {};
    std::optional<NSDate> lastSkippedDate = {};
    std::uint32_t trackNumber = 0;
    /// How many tracks the album or its disc has, whether in the library or not; 0 when unknown.
    std::uint32_t trackCount = 0;
    std::uint32_t discNumber = 0;
    std::uint32_t year = 0;
    /// 2 liked, 3 disliked, 1 neither any more, 0 never said.
    std::uint32_t likedState = 0;
    MediaType mediaType = MediaType::music;
    bool isCompilation = false;
    bool isExplicit = false;
    bool isCloudItem = false;
    bool existsInLibrary = true;
};

struct PlaylistDescription {
    std::string_view name = {};
    std::uint64_t persistentID = 0;
    /// 0 at the top.
    std::uint64_t parentPersistentID = 0;
    bool isFolder = false;
    bool isHidden = false;
    /// Made by the player, not by the user.
    bool isStock = false;
    /// Persistent identifiers of songs, in the playlist's order; unknown ones are left out.
    std::span<const std::uint64_t> songs = {};
};

class MediaSnapshotBuilder {
  public:
    MediaSnapshotBuilder();
    ~MediaSnapshotBuilder();
    MediaSnapshotBuilder(const MediaSnapshotBuilder&) = delete;
    MediaSnapshotBuilder& operator=(const MediaSnapshotBuilder&) = delete;

    void reserve(std::size_t songs, std::size_t textBytes);
    /// Gives the persistent identifier under which the song is known: its own, unless an earlier
    /// song has it. Of two songs with one identifier the later one gets another, which follows from
    /// identifier and location; at one and the same location, and where both have none, it is left
    /// out. Either way it is noted among the duplicates.
    std::uint64_t addSong(const SongDescription& song);
    void addPlaylist(const PlaylistDescription& playlist);
    /// Puts all in order and hands it over; the builder is empty afterwards.
    std::shared_ptr<const MediaSnapshot> finish();

  private:
    struct Storage;
    /// `last` is a text that this one may repeat.
    TextReference addText(std::optional<std::string_view> text, TextReference& last);
    std::optional<std::uint64_t> freeIdentifier(const SongDescription& song) const;
    void noteDuplicate(const SongDescription& song, std::uint64_t own);
    void orderSongs();
    void resolvePlaylists();
    std::unique_ptr<Storage> storage_;
};

}  // namespace tavrion
