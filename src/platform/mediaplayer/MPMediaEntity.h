// Whatever a list of the library shows: a song, or songs that belong together.
//
// Queue: any; an immutable value, cheap to copy. Absent is the empty entity, which is neither.
#pragma once

#include <optional>
#include <variant>

#include "platform/mediaplayer/MPMediaItemCollection.h"
#include "platform/mediaplayer/MPMediaPlaylist.h"

namespace tavrion {

class MPMediaEntity {
  public:
    MPMediaEntity() = default;
    MPMediaEntity(MPMediaItem item) : entity_(std::move(item)) {}  // NOLINT: implicit by design
    MPMediaEntity(MPMediaItemCollection collection)                // NOLINT
        : entity_(std::move(collection)) {}

    bool isEmpty() const { return std::holds_alternative<std::monostate>(entity_); }
    /// The song, or null when it is none.
    const MPMediaItem* item() const { return std::get_if<MPMediaItem>(&entity_); }
    /// The collection, a playlist too, or null when it is none.
    const MPMediaItemCollection* collection() const {
        return std::get_if<MPMediaItemCollection>(&entity_);
    }
    std::optional<MPMediaPlaylist> playlist() const;

    /// A song stands for itself; none in an empty collection.
    std::optional<MPMediaItem> representativeItem() const;
    /// 0 for a song.
    MPMediaGrouping groupingType() const;
    /// 0 when there is none.
    std::uint64_t persistentID() const;
    Value valueForKey(std::string_view key) const;
    /// The bytes of the best picture that is ready on disk (private keys "artworkCatalog" and
    /// "bestImageFromDisk"). Reads the disk: not on the main queue.
    std::optional<NSData> bestImageFromDisk() const;
    /// The bytes of the picture of the song, or of the one that stands for a collection. Reads the
    /// disk or asks the player: not on the main queue.
    std::optional<NSData> artwork() const;

    /// The same song or collection of the same snapshot.
    bool operator==(const MPMediaEntity&) const = default;

  private:
    std::variant<std::monostate, MPMediaItem, MPMediaItemCollection> entity_;
};

}  // namespace tavrion
