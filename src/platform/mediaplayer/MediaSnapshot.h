// A library's songs and playlists at one moment, immutable.
//
// Queue: any; shared by std::shared_ptr<const MediaSnapshot>, never changed. MediaSnapshotBuilder
// makes one. Songs are plain records of one size over one text blob, so that a snapshot can be in
// a mapped file as it is. They stand in library order: by the collation of the sort title or else
// the title, then by the text, then by the persistent identifier. A position is the song's place in
// that order. Units: durations in seconds, sizes in bytes. Absent: a text without
// TextReference::absentOffset, a date without its bit in SongRecord::flags, an identifier 0.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "platform/foundation/NSDate.h"

namespace tavrion {

/// A text of the blob, or none.
struct TextReference {
    static constexpr std::uint32_t absentOffset = std::numeric_limits<std::uint32_t>::max();
    std::uint32_t offset = absentOffset;
    std::uint32_t length = 0;
    bool isAbsent() const { return offset == absentOffset; }
};

/// The texts of a song, in the order in which a record keeps them.
enum class SongText : std::uint8_t {
    title,
    artist,
    albumArtist,
    albumTitle,
    genre,
    composer,
    sortTitle,
    sortArtist,
    sortAlbumArtist,
    sortAlbumTitle,
    storeID,
    libraryID,
};
inline constexpr std::size_t songTextCount = 12;

enum class SongDate : std::uint8_t { lastPlayed, added, released, lastSkipped };
inline constexpr std::size_t songDateCount = 4;

/// The ways in which songs form collections, apart from single songs and playlists.
enum class SongGroup : std::uint8_t { album, artist, albumArtist, composer, genre };
inline constexpr std::size_t songGroupCount = 5;

/// Media types as the platform numbers them. A music video counts as music.
enum class MediaType : std::int32_t {
    music = 1,
    podcast = 2,
    audiobook = 4,
    movie = 256,
    tvShow = 512,
    video = 1024,
};

struct SongRecord {
    /// One bit for each date that is present stands above these.
    enum Flag : std::uint32_t {
        compilation = 1U << 0U,
        explicitContent = 1U << 1U,
        cloud = 1U << 2U,
        outsideLibrary = 1U << 3U,
    };
    static constexpr std::uint32_t firstDateFlag = 1U << 8U;
    static constexpr std::uint32_t noGroup = std::numeric_limits<std::uint32_t>::max();

    double playbackDuration = 0;
    double fileSize = 0;
    /// Seconds since 2001-01-01 UTC.
    double dates[songDateCount] = {};
    std::uint64_t playCount = 0;
    std::uint64_t skipCount = 0;
    std::uint64_t persistentID = 0;
    /// Stable hashes of names, by SongGroup: an album's of album artist and album title; 0 where
    /// the song has no such name.
    std::uint64_t groupPersistentIDs[songGroupCount] = {};
    TextReference texts[songTextCount];
    /// Place of the song's collection among the collections of that kind, by name; songs without an
    /// artist form a last, nameless one, and songs without a genre or a composer are in none
    /// (noGroup).
    std::uint32_t groupRanks[songGroupCount] = {};
    std::uint32_t flags = 0;
    std::int32_t mediaType = 1;
    std::uint32_t trackNumber = 0;
    std::uint32_t discNumber = 0;
    std::uint32_t year = 0;
    std::uint32_t likedState = 0;
    /// How many tracks the album or its disc has, whether in the library or not; 0 when unknown.
    std::uint32_t trackCount = 0;
};
static_assert(sizeof(SongRecord) == 256, "a record has no hidden gaps");

struct PlaylistRecord {
    enum Flag : std::uint32_t { folder = 1U << 0U, hidden = 1U << 1U, stock = 1U << 2U };
    std::uint64_t persistentID = 0;
    /// 0 at the top.
    std::uint64_t parentPersistentID = 0;
    TextReference name;
    /// The songs: a range of positions in MediaSnapshotParts::playlistSongs.
    std::uint32_t firstSong = 0;
    std::uint32_t songCount = 0;
    std::uint32_t flags = 0;
    std::uint32_t unused = 0;
};
static_assert(sizeof(PlaylistRecord) == 40, "a record has no hidden gaps");

/// A song that came with the persistent identifier of an earlier one.
struct DuplicateSongRecord {
    /// As it came.
    std::uint64_t persistentID = 0;
    /// What it is known by instead; 0 when it was left out, since the two had one location or none.
    std::uint64_t ownPersistentID = 0;
    TextReference title;
    TextReference artist;
};
static_assert(sizeof(DuplicateSongRecord) == 32, "a record has no hidden gaps");

/// Positions by the hash of a key: bucket b holds entries[starts[b]] up to entries[starts[b + 1]],
/// in library order. There are starts.size() - 1 buckets, a power of two. Whoever looks up compares
/// the key itself.
struct PositionIndex {
    std::span<const std::uint32_t> starts;
    std::span<const std::uint32_t> entries;
    std::span<const std::uint32_t> bucket(std::uint64_t hash) const;
};

/// What a snapshot consists of: flat arrays only.
struct MediaSnapshotParts {
    std::string_view texts;
    std::span<const SongRecord> songs;
    std::span<const PlaylistRecord> playlists;
    std::span<const std::uint32_t> playlistSongs;
    std::span<const DuplicateSongRecord> duplicates;
    PositionIndex byPersistentID;
    /// By mediaTextHash().
    PositionIndex byTitle;
    PositionIndex byAlbumTitle;
    /// By groupPersistentIDs.
    std::array<PositionIndex, songGroupCount> byGroup;
    std::uint64_t droppedSongCount = 0;
};

class MediaSnapshot {
  public:
    /// `owner` keeps what the parts point at.
    MediaSnapshot(const MediaSnapshotParts& parts, std::shared_ptr<const void> owner)
        : parts_(parts), owner_(std::move(owner)) {}
    /// A snapshot without a song.
    static const std::shared_ptr<const MediaSnapshot>& empty();

    const MediaSnapshotParts& parts() const { return parts_; }
    std::span<const SongRecord> songs() const { return parts_.songs; }
    std::span<const PlaylistRecord> playlists() const { return parts_.playlists; }
    /// In the order in which they came.
    std::span<const DuplicateSongRecord> duplicates() const { return parts_.duplicates; }
    /// Songs left out because an earlier one was the same, or because there was no room.
    std::uint64_t droppedSongCount() const { return parts_.droppedSongCount; }

    std::optional<std::string_view> text(TextReference reference) const;
    std::optional<std::string_view> text(std::uint32_t position, SongText which) const;
    std::optional<NSDate> date(std::uint32_t position, SongDate which) const;
    std::span<const std::uint32_t> songsOfPlaylist(const PlaylistRecord& playlist) const;

    std::optional<std::uint32_t> positionOfPersistentID(std::uint64_t persistentID) const;

  private:
    MediaSnapshotParts parts_;
    std::shared_ptr<const void> owner_;
};

/// The stable hash under which names are indexed; never 0.
std::uint64_t mediaTextHash(std::string_view text);
/// The hash under which persistent identifiers are indexed.
std::uint64_t mediaNumberHash(std::uint64_t number);

}  // namespace tavrion
