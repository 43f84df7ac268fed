// A playlist of the media library: a collection with a name and a place in a tree.
//
// Queue: any; an immutable value, cheap to copy. It has no state beyond the collection's, so that a
// playlist kept as a collection is still a playlist: playlistFromCollection() gives it back.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/mediaplayer/MPMediaItemCollection.h"

namespace tavrion {

inline constexpr std::string_view MPMediaPlaylistPropertyName = "name";
inline constexpr std::string_view MPMediaPlaylistPropertyPersistentID = "playlistPersistentID";

class MPMediaPlaylist : public MPMediaItemCollection {
  public:
    /// Absent when the collection is not a playlist.
    static std::optional<MPMediaPlaylist> playlistFromCollection(
        const MPMediaItemCollection& collection);

    /// Empty when the playlist has no name.
    std::string_view name() const;
    bool isFolder() const;
    bool isHidden() const;
    /// Made by the player, not by the user.
    bool isStock() const;
    /// The folder that holds it; 0 at the top.
    std::uint64_t parentPersistentID() const;

  private:
    explicit MPMediaPlaylist(const MPMediaItemCollection& collection)
        : MPMediaItemCollection(collection) {}
    const PlaylistRecord& record() const;
};

/// The property of that name ("name", "playlistPersistentID", "parentPersistentID", "isFolder",
/// "isHidden", "isStock"); absent for an unknown name.
Value valueOfPlaylist(const MediaSnapshot& snapshot, const PlaylistRecord& playlist,
                      std::string_view property);
/// Whether a filter on that property chooses among playlists.
bool isPlaylistProperty(std::string_view property);

}  // namespace tavrion
