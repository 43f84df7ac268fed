// One song of the media library: a light handle into a snapshot.
//
// Queue: any; an immutable value. Who owns: the handle keeps its snapshot alive; the library may
// have moved on since. Units: durations in seconds, "fileSize" in bytes. Absent texts and dates are
// empty optionals, absent numbers 0.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/NSDate.h"
#include "platform/foundation/Value.h"
#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion {

inline constexpr std::string_view MPMediaItemPropertyTitle = "title";
inline constexpr std::string_view MPMediaItemPropertyArtist = "artist";
inline constexpr std::string_view MPMediaItemPropertyAlbumArtist = "albumArtist";
inline constexpr std::string_view MPMediaItemPropertyAlbumTitle = "albumTitle";
inline constexpr std::string_view MPMediaItemPropertyGenre = "genre";
inline constexpr std::string_view MPMediaItemPropertyComposer = "composer";
inline constexpr std::string_view MPMediaItemPropertyMediaType = "mediaType";
inline constexpr std::string_view MPMediaItemPropertyIsCompilation = "isCompilation";
inline constexpr std::string_view MPMediaItemPropertyPersistentID = "persistentID";
inline constexpr std::string_view MPMediaItemPropertyAlbumPersistentID = "albumPersistentID";
inline constexpr std::string_view MPMediaItemPropertyAlbumArtistPersistentID =
    "albumArtistPersistentID";
inline constexpr std::string_view MPMediaItemPropertyArtistPersistentID = "artistPersistentID";
inline constexpr std::string_view MPMediaItemPropertyGenrePersistentID = "genrePersistentID";
inline constexpr std::string_view MPMediaItemPropertyPlaybackDuration = "playbackDuration";
inline constexpr std::string_view MPMediaItemPropertyPlayCount = "playCount";
inline constexpr std::string_view MPMediaItemPropertySkipCount = "skipCount";
inline constexpr std::string_view MPMediaItemPropertyLastPlayedDate = "lastPlayedDate";
inline constexpr std::string_view MPMediaItemPropertyDateAdded = "dateAdded";
inline constexpr std::string_view MPMediaItemPropertyReleaseDate = "releaseDate";

class MPMediaItem {
  public:
    /// Gives a property that a room above adds to every item.
    using ComputedKey = std::function<Value(const MPMediaItem&)>;

    MPMediaItem(std::shared_ptr<const MediaSnapshot> snapshot, std::uint32_t position)
        : snapshot_(std::move(snapshot)), position_(position) {}

    std::optional<std::string_view> title() const { return text(SongText::title); }
    std::optional<std::string_view> artist() const { return text(SongText::artist); }
    /// The artist where the library has none and the song is not of a compilation.
    std::optional<std::string_view> albumArtist() const { return text(SongText::albumArtist); }
    std::optional<std::string_view> albumTitle() const { return text(SongText::albumTitle); }
    std::optional<std::string_view> genre() const { return text(SongText::genre); }
    std::optional<std::string_view> composer() const { return text(SongText::composer); }
    std::optional<std::string_view> sortTitle() const { return text(SongText::sortTitle); }
    std::optional<std::string_view> sortArtist() const { return text(SongText::sortArtist); }
    std::optional<std::string_view> sortAlbumArtist() const {
        return text(SongText::sortAlbumArtist);
    }
    std::optional<std::string_view> sortAlbumTitle() const {
        return text(SongText::sortAlbumTitle);
    }
    /// The player's own identifier of the song, the same after a new export.
    std::optional<std::string_view> cloudUniversalLibraryId() const {
        return text(SongText::libraryID);
    }
    /// Empty when there is none, or when two songs of the library claim the same.
    std::string_view playbackStoreID() const {
        return text(SongText::storeID).value_or(std::string_view());
    }

    double playbackDuration() const { return record().playbackDuration; }
    double fileSize() const { return record().fileSize; }
    std::uint64_t playCount() const { return record().playCount; }
    std::uint64_t skipCount() const { return record().skipCount; }
    std::optional<NSDate> lastPlayedDate() const { return date(SongDate::lastPlayed); }
    std::optional<NSDate> dateAdded() const { return date(SongDate::added); }
    std::optional<NSDate> releaseDate() const { return date(SongDate::released); }
    std::optional<NSDate> lastSkippedDate() const { return date(SongDate::lastSkipped); }

    std::uint64_t persistentID() const { return record().persistentID; }
    std::uint64_t albumPersistentID() const { return group(SongGroup::album); }
    std::uint64_t albumArtistPersistentID() const { return group(SongGroup::albumArtist); }
    std::uint64_t artistPersistentID() const { return group(SongGroup::artist); }
    std::uint64_t composerPersistentID() const { return group(SongGroup::composer); }
    std::uint64_t genrePersistentID() const { return group(SongGroup::genre); }

    bool isCompilation() const { return flag(SongRecord::compilation); }
    bool isExplicitItem() const { return flag(SongRecord::explicitContent); }
    bool isCloudItem() const { return flag(SongRecord::cloud); }
    bool existsInLibrary() const { return !flag(SongRecord::outsideLibrary); }
    unsigned albumTrackNumber() const { return record().trackNumber; }
    /// As the song tells it: of its album, or of its disc.
    unsigned albumTrackCount() const { return record().trackCount; }
    unsigned discNumber() const { return record().discNumber; }
    unsigned year() const { return record().year; }
    /// 2 liked, 3 disliked, 1 neither any more, 0 never said.
    unsigned likedState() const { return record().likedState; }
    /// See MediaType.
    int mediaType() const { return record().mediaType; }

    /// The property of that name, else the computed key of that name; absent for an unknown name.
    Value valueForKey(std::string_view key) const;
    /// The property of that name; absent for an unknown name.
    Value valueForProperty(std::string_view property) const;
    /// Whether the library's source can write a property.
    bool respondsToSetValueForProperty() const;
    /// Writes "likedState" into the player's library; other properties, and a source that cannot,
    /// do nothing. A failure is logged. The handle keeps the value that it was read with.
    void setValueForProperty(const Value& value, std::string_view property) const;

    /// Makes `name` readable by valueForKey(); a second registration replaces the first. From any
    /// queue.
    static void registerComputedKey(const std::string& name, ComputedKey function);

    const std::shared_ptr<const MediaSnapshot>& snapshot() const { return snapshot_; }
    std::uint32_t position() const { return position_; }
    /// The same song of the same snapshot.
    bool operator==(const MPMediaItem&) const = default;

  private:
    const SongRecord& record() const { return snapshot_->songs()[position_]; }
    std::optional<std::string_view> text(SongText which) const {
        return snapshot_->text(position_, which);
    }
    std::optional<NSDate> date(SongDate which) const { return snapshot_->date(position_, which); }
    std::uint64_t group(SongGroup which) const {
        return record().groupPersistentIDs[static_cast<std::size_t>(which)];
    }
    bool flag(SongRecord::Flag which) const { return (record().flags & which) != 0; }

    std::shared_ptr<const MediaSnapshot> snapshot_;
    std::uint32_t position_;
};

}  // namespace tavrion
