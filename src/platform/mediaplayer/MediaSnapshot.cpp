#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion {

std::span<const std::uint32_t> PositionIndex::bucket(std::uint64_t hash) const {
    if (starts.size() < 2) {
        return {};
    }
    const std::size_t which = hash & (starts.size() - 2);
    return entries.subspan(starts[which], starts[which + 1] - starts[which]);
}

const std::shared_ptr<const MediaSnapshot>& MediaSnapshot::empty() {
    static const auto none = std::make_shared<const MediaSnapshot>(MediaSnapshotParts(), nullptr);
    return none;
}

std::optional<std::string_view> MediaSnapshot::text(TextReference reference) const {
    if (reference.isAbsent()) {
        return std::nullopt;
    }
    return parts_.texts.substr(reference.offset, reference.length);
}

std::optional<std::string_view> MediaSnapshot::text(std::uint32_t position, SongText which) const {
    return text(parts_.songs[position].texts[static_cast<std::size_t>(which)]);
}

std::optional<NSDate> MediaSnapshot::date(std::uint32_t position, SongDate which) const {
    const SongRecord& song = parts_.songs[position];
    const auto number = static_cast<std::size_t>(which);
    if ((song.flags & (SongRecord::firstDateFlag << number)) == 0) {
        return std::nullopt;
    }
    return NSDate::dateWithTimeIntervalSinceReferenceDate(song.dates[number]);
}

std::span<const std::uint32_t> MediaSnapshot::songsOfPlaylist(
    const PlaylistRecord& playlist) const {
    return parts_.playlistSongs.subspan(playlist.firstSong, playlist.songCount);
}

std::optional<std::uint32_t> MediaSnapshot::positionOfPersistentID(
    std::uint64_t persistentID) const {
    for (const std::uint32_t position :
         parts_.byPersistentID.bucket(mediaNumberHash(persistentID))) {
        if (parts_.songs[position].persistentID == persistentID) {
            return position;
        }
    }
    return std::nullopt;
}

std::uint64_t mediaNumberHash(std::uint64_t number) {
    number ^= number >> 31U;
    number *= 0x9e3779b97f4a7c15U;
    return number ^ (number >> 29U);
}

std::uint64_t mediaTextHash(std::string_view text) {
    // FNV-1a with a last stir: short, and the same on every machine, which std::hash does not
    // promise.
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char byte : text) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3U;
    }
    hash = mediaNumberHash(hash);
    return hash == 0 ? 1 : hash;
}

}  // namespace tavrion
