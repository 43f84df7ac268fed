// The bridge between a song of the media library and its record.
//
// Queue: any, but where a record or a context is passed: that of the context. Stateless; everything
// is worked out again at each call. A song without an identifier gets a freshly generated one at
// each reading, so that it never equals another; an identifier is real when it is not such a
// generated one. Absent is std::nullopt.
#pragma once

#include <optional>
#include <string>

#include "platform/mediaplayer/MPMediaItem.h"
#include "recording/PlayEvent.h"
#include "recording/PlaybackHistory.h"

namespace tavrion::Nerinda {

/// The library's identifier, or a new generated one at each call.
std::string libraryID(const MPMediaItem& item);
/// The store's identifier, or a new generated one at each call.
std::string storeID(const MPMediaItem& item);
std::optional<NSDate> lastSkippedDate(const MPMediaItem& item);
/// The latest of added, played and skipped.
std::optional<NSDate> lastEventDate(const MPMediaItem& item);
/// The key that stands for the song's album in records: album artist and album title.
std::string albumKey(const MPMediaItem& item);

/// The song's record, brought up to date; found strictly: title and duration, and every real
/// identifier. Never makes one. When there are several, the first absorbs the others.
std::optional<PlaybackHistory> playbackHistoryInContext(const MPMediaItem& item,
                                                        NSManagedObjectContext& context);
/// The same in the main context.
std::optional<PlaybackHistory> playbackHistory(const MPMediaItem& item);

/// The song of an event's record.
std::optional<MPMediaItem> mediaItemForEvent(const PlayEvent& event);
/// The song of a record, found leniently: a lone song of the same title, or the first with the
/// title and duration or one of the real identifiers; else the first such song of the whole
/// library. Takes the song's title over into the record.
std::optional<MPMediaItem> mediaItemForHistory(PlaybackHistory& history);

/// What leads from a record to its song, apart from the record's context.
struct SongIdentity {
    /// Empty when the record has none.
    std::string title;
    double duration = 0;
    std::optional<std::string> storeID;
    std::optional<std::string> libraryID;

    static SongIdentity of(const PlaybackHistory& history);
    bool operator==(const SongIdentity&) const = default;
};
/// The song that mediaItemForHistory() finds, on any queue and without a change of the record.
std::optional<MPMediaItem> mediaItemForIdentity(const SongIdentity& song);
/// The song's title becomes the record's.
void takeTitleOver(const MPMediaItem& item, PlaybackHistory& history);

/// The item itself, so that code for a collection also works on a song.
inline const MPMediaItem& representativeItem(const MPMediaItem& item) {
    return item;
}
bool existsInLibrary(const MPMediaItem& item);
/// 2 favourite, 3 disliked; absent reads as 0.
std::uint64_t likedState(const MPMediaItem& item);
/// Writes into the user's library at once; does nothing when the library can't be written.
void setLikedState(const MPMediaItem& item, std::uint64_t state);
/// What the song files under: its sort title, or its title.
std::optional<std::string> sortKey(const MPMediaItem& item);
/// The release date, or the start of its year.
std::optional<NSDate> sortReleaseKey(const MPMediaItem& item);
/// The track's artist where compilations are split and the song is of one, else the album artist.
std::optional<std::string> artistSearchKey(const MPMediaItem& item);
/// Equal store identifiers, or library identifiers, or the same persistent identifier.
bool isEqualToMediaItem(const MPMediaItem& item, const MPMediaItem& other);

/// Makes storeID, libraryID, sortKey, sortReleaseKey, lastEventDate and artistSearchKey reachable
/// by name. Called once by the composition root.
void registerComputedKeys();

}  // namespace tavrion::Nerinda
