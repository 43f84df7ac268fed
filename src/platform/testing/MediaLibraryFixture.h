// A media library that a test makes up.
//
// Queue: the test's. The fixture plugs a library and, where none is plugged, a region (UTC, en_US)
// for its own life.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/NSCalendar.h"
#include "platform/mediaplayer/MPMediaItem.h"
#include "platform/mediaplayer/MPMediaLibrary.h"
#include "platform/mediaplayer/MediaSnapshotBuilder.h"

namespace tavrion {

/// A song as a test tells it: whatever is not given is plain or absent. An empty text is absent. A
/// persistent identifier of 0 becomes the song's place in the list, from 1.
struct TestSong {
    std::string title = "Song";
    std::string artist = "Artist";
    std::string albumArtist = {};
    std::string albumTitle = "Album";
    std::string genre = "Genre";
    double duration = 180;
    std::uint64_t playCount = 0;
    std::uint64_t skipCount = 0;
    std::optional<NSDate> lastPlayed = {};
    std::optional<NSDate> added = {};
    std::optional<NSDate> released = {};
    std::optional<NSDate> lastSkipped = {};
    std::uint64_t persistentID = 0;
    std::string storeID = {};
    std::string libraryID = {};
    std::string sortTitle = {};
    std::string composer = {};
    std::uint32_t track = 0;
    std::uint32_t disc = 0;
    std::uint32_t year = 0;
    std::uint32_t likedState = 0;
    double fileSize = 0;
    MediaType mediaType = MediaType::music;
    bool compilation = false;
    bool explicitContent = false;
    bool cloud = false;
    bool inLibrary = true;
    std::string sortArtist = {};
    std::string sortAlbumArtist = {};
    std::string sortAlbumTitle = {};
    std::uint32_t trackCount = 0;
};

struct TestPlaylist {
    std::string name = "Playlist";
    std::uint64_t persistentID = 0;
    /// Persistent identifiers.
    std::vector<std::uint64_t> songs = {};
    std::uint64_t parent = 0;
    bool folder = false;
    bool hidden = false;
    bool stock = false;
};

std::shared_ptr<const MediaSnapshot> snapshotOf(const std::vector<TestSong>& songs,
                                                const std::vector<TestPlaylist>& playlists = {});

class MediaLibraryFixture {
  public:
    explicit MediaLibraryFixture(const std::vector<TestSong>& songs = {},
                                 const std::vector<TestPlaylist>& playlists = {});

    /// Publishes other songs.
    void publish(const std::vector<TestSong>& songs,
                 const std::vector<TestPlaylist>& playlists = {});
    MPMediaLibrary& library() { return library_; }
    /// The first song of that title, whether in the library or not; its absence fails the process.
    MPMediaItem song(const std::string& title) const;

  private:
    Regional region_{NSTimeZone(), "en_US"};
    std::optional<Port<Regional>::Plug> regionPlug_ = {};
    MPMediaLibrary library_;
    Port<MPMediaLibrary>::Plug libraryPlug_{library_};
};

}  // namespace tavrion
