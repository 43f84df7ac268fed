#include "platform/mediaplayer/MPMediaEntity.h"

#include "platform/mediaplayer/MPMediaLibrary.h"
#include "platform/mediaplayer/Source.h"

namespace tavrion {

std::optional<MPMediaPlaylist> MPMediaEntity::playlist() const {
    return collection() == nullptr ? std::nullopt
                                   : MPMediaPlaylist::playlistFromCollection(*collection());
}

std::optional<MPMediaItem> MPMediaEntity::representativeItem() const {
    if (item() != nullptr) {
        return *item();
    }
    return collection() == nullptr ? std::nullopt : collection()->representativeItem();
}

MPMediaGrouping MPMediaEntity::groupingType() const {
    return collection() == nullptr ? MPMediaGrouping::title : collection()->groupingType();
}

std::uint64_t MPMediaEntity::persistentID() const {
    if (item() != nullptr) {
        return item()->persistentID();
    }
    return collection() == nullptr ? 0 : collection()->persistentID();
}

Value MPMediaEntity::valueForKey(std::string_view key) const {
    if (item() != nullptr) {
        return item()->valueForKey(key);
    }
    return collection() == nullptr ? Value() : collection()->valueForKey(key);
}

std::optional<NSData> MPMediaEntity::bestImageFromDisk() const {
    const std::shared_ptr<const Source> source = MPMediaLibrary::defaultMediaLibrary().source();
    return isEmpty() || source == nullptr
               ? std::nullopt
               : source->bestImageFromDisk(groupingType(), persistentID());
}

std::optional<NSData> MPMediaEntity::artwork() const {
    const std::shared_ptr<const Source> source = MPMediaLibrary::defaultMediaLibrary().source();
    const std::optional<MPMediaItem> song = representativeItem();
    return source == nullptr || !song ? std::nullopt : source->artwork(song->persistentID());
}

}  // namespace tavrion
