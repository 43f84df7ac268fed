#include "platform/mediaplayer/MediaSnapshotBuilder.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <unordered_map>

#include "platform/mediaplayer/SongGrouping.h"

namespace tavrion {

namespace {

/// Everything that a finished snapshot points at.
struct Arrays {
    std::string texts;
    std::vector<SongRecord> songs;
    std::vector<PlaylistRecord> playlists;
    std::vector<std::uint32_t> playlistSongs;
    std::vector<DuplicateSongRecord> duplicates;
    PositionIndexArrays byPersistentID;
    PositionIndexArrays byTitle;
    PositionIndexArrays byAlbumTitle;
    std::array<PositionIndexArrays, songGroupCount> byGroup;
};

TextReference& textOf(SongRecord& song, SongText which) {
    return song.texts[static_cast<std::size_t>(which)];
}

void setDate(SongRecord& song, SongDate which, std::optional<NSDate> date) {
    if (date) {
        const auto number = static_cast<std::size_t>(which);
        song.dates[number] = date->timeIntervalSinceReferenceDate();
        song.flags |= SongRecord::firstDateFlag << number;
    }
}

SongRecord recordWithoutTexts(const SongDescription& song) {
    SongRecord record;
    record.persistentID = song.persistentID;
    record.playbackDuration = song.playbackDuration;
    record.fileSize = song.fileSize;
    record.playCount = song.playCount;
    record.skipCount = song.skipCount;
    setDate(record, SongDate::lastPlayed, song.lastPlayedDate);
    setDate(record, SongDate::added, song.dateAdded);
    setDate(record, SongDate::released, song.releaseDate);
    setDate(record, SongDate::lastSkipped, song.lastSkippedDate);
    record.trackNumber = song.trackNumber;
    record.trackCount = song.trackCount;
    record.discNumber = song.discNumber;
    record.year = song.year;
    record.likedState = song.likedState;
    record.mediaType = static_cast<std::int32_t>(song.mediaType);
    record.flags |= song.isCompilation ? SongRecord::compilation : 0U;
    record.flags |= song.isExplicit ? SongRecord::explicitContent : 0U;
    record.flags |= song.isCloudItem ? SongRecord::cloud : 0U;
    record.flags |= song.existsInLibrary ? 0U : SongRecord::outsideLibrary;
    return record;
}

std::uint64_t locationHash(const SongDescription& song) {
    return song.location && !song.location->empty() ? mediaTextHash(*song.location) : 0;
}

void removeSharedStoreIDs(std::vector<SongRecord>& songs, std::string_view texts) {
    std::unordered_map<std::string_view, SongRecord*> first;
    for (SongRecord& song : songs) {
        TextReference& reference = textOf(song, SongText::storeID);
        if (reference.isAbsent()) {
            continue;
        }
        const auto [found, isNew] =
            first.try_emplace(texts.substr(reference.offset, reference.length), &song);
        if (!isNew) {
            textOf(*found->second, SongText::storeID) = TextReference();
            reference = TextReference();
        }
    }
}

PositionIndexArrays indexByText(const Arrays& arrays, SongText which) {
    std::vector<std::uint64_t> hashes;
    hashes.reserve(arrays.songs.size());
    for (const SongRecord& song : arrays.songs) {
        const TextReference reference = song.texts[static_cast<std::size_t>(which)];
        hashes.push_back(
            reference.isAbsent()
                ? 0
                : mediaTextHash(
                      std::string_view(arrays.texts).substr(reference.offset, reference.length)));
    }
    return PositionIndexArrays::build(hashes);
}

void buildIndexes(Arrays& arrays) {
    std::vector<std::uint64_t> hashes(arrays.songs.size());
    for (std::size_t i = 0; i < hashes.size(); ++i) {
        hashes[i] = mediaNumberHash(arrays.songs[i].persistentID);
    }
    arrays.byPersistentID = PositionIndexArrays::build(hashes);
    arrays.byTitle = indexByText(arrays, SongText::title);
    arrays.byAlbumTitle = indexByText(arrays, SongText::albumTitle);
    for (std::size_t group = 0; group < songGroupCount; ++group) {
        for (std::size_t i = 0; i < hashes.size(); ++i) {
            hashes[i] = arrays.songs[i].groupPersistentIDs[group];
        }
        arrays.byGroup[group] = PositionIndexArrays::build(hashes);
    }
}

MediaSnapshotParts partsOf(const Arrays& arrays) {
    MediaSnapshotParts parts;
    parts.texts = arrays.texts;
    parts.songs = arrays.songs;
    parts.playlists = arrays.playlists;
    parts.playlistSongs = arrays.playlistSongs;
    parts.duplicates = arrays.duplicates;
    parts.byPersistentID = arrays.byPersistentID.view();
    parts.byTitle = arrays.byTitle.view();
    parts.byAlbumTitle = arrays.byAlbumTitle.view();
    for (std::size_t group = 0; group < songGroupCount; ++group) {
        parts.byGroup[group] = arrays.byGroup[group].view();
    }
    return parts;
}

}  // namespace

struct MediaSnapshotBuilder::Storage {
    Arrays arrays;
    /// Place of the song in `arrays.songs` by its persistent identifier.
    std::unordered_map<std::uint64_t, std::uint32_t> positions;
    /// Hashes, by the place of the song in `arrays.songs`; 0 for none.
    std::vector<std::uint64_t> locations;
    /// By playlist, in the order of addPlaylist(); PlaylistRecord tells the range.
    std::vector<std::uint64_t> playlistSongIDs;
    /// The texts of the song before: neighbours often share artist and album.
    std::array<TextReference, songTextCount> lastTexts;
    std::uint64_t droppedSongCount = 0;
    bool isFull = false;
};

MediaSnapshotBuilder::MediaSnapshotBuilder() : storage_(std::make_unique<Storage>()) {}
MediaSnapshotBuilder::~MediaSnapshotBuilder() = default;

void MediaSnapshotBuilder::reserve(std::size_t songs, std::size_t textBytes) {
    storage_->arrays.songs.reserve(songs);
    storage_->positions.reserve(songs);
    storage_->locations.reserve(songs);
    storage_->arrays.texts.reserve(textBytes);
}

TextReference MediaSnapshotBuilder::addText(std::optional<std::string_view> text,
                                            TextReference& last) {
    if (!text || text->empty()) {
        return {};
    }
    std::string& blob = storage_->arrays.texts;
    if (!last.isAbsent() && std::string_view(blob).substr(last.offset, last.length) == *text) {
        return last;
    }
    if (text->size() >= TextReference::absentOffset - blob.size()) {
        storage_->isFull = true;
        return {};
    }
    last = {static_cast<std::uint32_t>(blob.size()), static_cast<std::uint32_t>(text->size())};
    blob.append(*text);
    return last;
}

/// Absent when the song is at the location of another one of its identifier.
std::optional<std::uint64_t> MediaSnapshotBuilder::freeIdentifier(
    const SongDescription& song) const {
    const Storage& storage = *storage_;
    const std::uint64_t location = locationHash(song);
    std::uint64_t candidate = song.persistentID;
    for (;;) {
        const auto found = storage.positions.find(candidate);
        if (found == storage.positions.end()) {
            return candidate;
        }
        if (storage.locations[found->second] == location) {
            return std::nullopt;
        }
        candidate = std::max<std::uint64_t>(1, mediaNumberHash(candidate ^ location));
    }
}

void MediaSnapshotBuilder::noteDuplicate(const SongDescription& song, std::uint64_t own) {
    TextReference none;
    DuplicateSongRecord record{song.persistentID, own, addText(song.title, none), {}};
    none = {};
    record.artist = addText(song.artist, none);
    storage_->arrays.duplicates.push_back(record);
}

std::uint64_t MediaSnapshotBuilder::addSong(const SongDescription& song) {
    Storage& storage = *storage_;
    const auto position = static_cast<std::uint32_t>(storage.arrays.songs.size());
    const auto free = storage.isFull ? std::nullopt : freeIdentifier(song);
    if (!storage.isFull && free != song.persistentID) {
        noteDuplicate(song, free.value_or(0));
    }
    if (!free) {
        ++storage.droppedSongCount;
        return song.persistentID;
    }
    const std::uint64_t persistentID = *free;
    storage.positions.emplace(persistentID, position);
    SongRecord record = recordWithoutTexts(song);
    record.persistentID = persistentID;
    // Else the records of both would be taken for one song's.
    const std::string ownLibraryID = fmt::format("{:016X}", persistentID);
    const auto libraryID = song.libraryID && persistentID != song.persistentID
                               ? std::optional<std::string_view>(ownLibraryID)
                               : song.libraryID;
    // In the order of SongText.
    const std::array<std::optional<std::string_view>, songTextCount> texts{
        song.title,           song.artist,         song.albumArtist,     song.albumTitle,
        song.genre,           song.composer,       song.sortTitle,       song.sortArtist,
        song.sortAlbumArtist, song.sortAlbumTitle, song.playbackStoreID, libraryID};
    for (std::size_t i = 0; i < songTextCount; ++i) {
        record.texts[i] = addText(texts[i], storage.lastTexts[i]);
    }
    if (textOf(record, SongText::albumArtist).isAbsent() && !song.isCompilation) {
        textOf(record, SongText::albumArtist) = textOf(record, SongText::artist);
    }
    if (storage.isFull) {
        storage.positions.erase(persistentID);
        ++storage.droppedSongCount;
        return persistentID;
    }
    storage.arrays.songs.push_back(record);
    storage.locations.push_back(locationHash(song));
    return persistentID;
}

void MediaSnapshotBuilder::addPlaylist(const PlaylistDescription& playlist) {
    PlaylistRecord record;
    TextReference none;
    record.name = addText(playlist.name, none);
    record.persistentID = playlist.persistentID;
    record.parentPersistentID = playlist.parentPersistentID;
    record.flags |= playlist.isFolder ? PlaylistRecord::folder : 0U;
    record.flags |= playlist.isHidden ? PlaylistRecord::hidden : 0U;
    record.flags |= playlist.isStock ? PlaylistRecord::stock : 0U;
    record.firstSong = static_cast<std::uint32_t>(storage_->playlistSongIDs.size());
    record.songCount = static_cast<std::uint32_t>(playlist.songs.size());
    storage_->playlistSongIDs.insert(storage_->playlistSongIDs.end(), playlist.songs.begin(),
                                     playlist.songs.end());
    storage_->arrays.playlists.push_back(record);
}

void MediaSnapshotBuilder::orderSongs() {
    Arrays& arrays = storage_->arrays;
    const std::vector<std::uint32_t> order = libraryOrder(arrays.songs, arrays.texts);
    std::vector<SongRecord> songs;
    songs.reserve(order.size());
    for (const std::uint32_t position : order) {
        storage_->positions[arrays.songs[position].persistentID] =
            static_cast<std::uint32_t>(songs.size());
        songs.push_back(arrays.songs[position]);
    }
    arrays.songs = std::move(songs);
}

void MediaSnapshotBuilder::resolvePlaylists() {
    Arrays& arrays = storage_->arrays;
    arrays.playlistSongs.reserve(storage_->playlistSongIDs.size());
    for (PlaylistRecord& playlist : arrays.playlists) {
        const std::span<const std::uint64_t> ids =
            std::span(storage_->playlistSongIDs).subspan(playlist.firstSong, playlist.songCount);
        playlist.firstSong = static_cast<std::uint32_t>(arrays.playlistSongs.size());
        for (const std::uint64_t id : ids) {
            const auto found = storage_->positions.find(id);
            if (found != storage_->positions.end()) {
                arrays.playlistSongs.push_back(found->second);
            }
        }
        playlist.songCount =
            static_cast<std::uint32_t>(arrays.playlistSongs.size()) - playlist.firstSong;
    }
}

std::shared_ptr<const MediaSnapshot> MediaSnapshotBuilder::finish() {
    removeSharedStoreIDs(storage_->arrays.songs, storage_->arrays.texts);
    orderSongs();
    groupSongs(storage_->arrays.songs, storage_->arrays.texts);
    resolvePlaylists();
    buildIndexes(storage_->arrays);
    const auto arrays = std::make_shared<const Arrays>(std::move(storage_->arrays));
    MediaSnapshotParts parts = partsOf(*arrays);
    parts.droppedSongCount = storage_->droppedSongCount;
    storage_ = std::make_unique<Storage>();
    return std::make_shared<const MediaSnapshot>(parts, arrays);
}

}  // namespace tavrion
