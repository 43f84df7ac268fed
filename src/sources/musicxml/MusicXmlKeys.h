// The keys of a Library.xml that mean something to a song or a playlist.
//
// Queue: any. Stateless.
#pragma once

#include <cstdint>
#include <string_view>

namespace tavrion {

/// Keys of one kind of value stand together, so that a key is also a place in an array of that
/// kind.
enum class MusicXmlKey : std::uint8_t {
    // Texts.
    name,
    artist,
    albumArtist,
    album,
    genre,
    composer,
    sortName,
    sortArtist,
    sortAlbumArtist,
    sortAlbum,
    persistentID,
    location,
    trackType,
    playlistPersistentID,
    parentPersistentID,
    // Integers.
    trackID,
    size,
    totalTime,
    discNumber,
    trackNumber,
    trackCount,
    year,
    playCount,
    skipCount,
    distinguishedKind,
    // Dates.
    playDate,
    skipDate,
    dateAdded,
    releaseDate,
    // Flags.
    compilation,
    explicitContent,
    loved,
    favorited,
    disliked,
    appleMusic,
    playlistOnly,
    podcast,
    movie,
    tvShow,
    hasVideo,
    musicVideo,
    audiobook,
    folder,
    master,
    visible,
    // What holds more of these.
    tracks,
    playlists,
    playlistItems,
    unknown,
};

inline constexpr auto firstMusicXmlInteger = MusicXmlKey::trackID;
inline constexpr auto firstMusicXmlDate = MusicXmlKey::playDate;
inline constexpr auto firstMusicXmlFlag = MusicXmlKey::compilation;
inline constexpr auto firstMusicXmlContainer = MusicXmlKey::tracks;

/// `unknown` for a key that is of no use here.
MusicXmlKey musicXmlKeyNamed(std::string_view name);
/// As the file spells it; empty for `unknown`.
std::string_view nameOfMusicXmlKey(MusicXmlKey key);

}  // namespace tavrion
