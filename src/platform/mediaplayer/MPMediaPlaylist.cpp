#include "platform/mediaplayer/MPMediaPlaylist.h"

#include "platform/mediaplayer/MPMediaItemCollectionState.h"

namespace tavrion {

std::optional<MPMediaPlaylist> MPMediaPlaylist::playlistFromCollection(
    const MPMediaItemCollection& collection) {
    return collection.isPlaylist() ? std::optional(MPMediaPlaylist(collection)) : std::nullopt;
}

const PlaylistRecord& MPMediaPlaylist::record() const {
    return *state_->playlist;
}

std::string_view MPMediaPlaylist::name() const {
    return state_->snapshot->text(record().name).value_or(std::string_view());
}

bool MPMediaPlaylist::isFolder() const {
    return (record().flags & PlaylistRecord::folder) != 0;
}

bool MPMediaPlaylist::isHidden() const {
    return (record().flags & PlaylistRecord::hidden) != 0;
}

bool MPMediaPlaylist::isStock() const {
    return (record().flags & PlaylistRecord::stock) != 0;
}

std::uint64_t MPMediaPlaylist::parentPersistentID() const {
    return record().parentPersistentID;
}

Value valueOfPlaylist(const MediaSnapshot& snapshot, const PlaylistRecord& playlist,
                      std::string_view property) {
    const auto flag = [&](PlaylistRecord::Flag which) { return (playlist.flags & which) != 0; };
    if (property == MPMediaPlaylistPropertyName) {
        return std::string(snapshot.text(playlist.name).value_or(std::string_view()));
    }
    if (property == MPMediaPlaylistPropertyPersistentID || property == "persistentID") {
        return playlist.persistentID;
    }
    if (property == "parentPersistentID") {
        return playlist.parentPersistentID;
    }
    if (property == "isFolder") {
        return flag(PlaylistRecord::folder);
    }
    if (property == "isHidden") {
        return flag(PlaylistRecord::hidden);
    }
    return property == "isStock" ? Value(flag(PlaylistRecord::stock)) : Value();
}

bool isPlaylistProperty(std::string_view property) {
    for (const std::string_view known :
         {MPMediaPlaylistPropertyName, MPMediaPlaylistPropertyPersistentID,
          std::string_view("parentPersistentID"), std::string_view("isFolder"),
          std::string_view("isHidden"), std::string_view("isStock")}) {
        if (property == known) {
            return true;
        }
    }
    return false;
}

}  // namespace tavrion
