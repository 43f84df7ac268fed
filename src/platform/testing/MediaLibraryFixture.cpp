#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {

namespace {

std::optional<std::string_view> present(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional<std::string_view>(text);
}

SongDescription description(const TestSong& song, std::uint64_t place) {
    SongDescription described;
    described.persistentID = song.persistentID == 0 ? place : song.persistentID;
    described.title = present(song.title);
    described.artist = present(song.artist);
    described.albumArtist = present(song.albumArtist);
    described.albumTitle = present(song.albumTitle);
    described.genre = present(song.genre);
    described.composer = present(song.composer);
    described.sortTitle = present(song.sortTitle);
    described.sortArtist = present(song.sortArtist);
    described.sortAlbumArtist = present(song.sortAlbumArtist);
    described.sortAlbumTitle = present(song.sortAlbumTitle);
    described.playbackStoreID = present(song.storeID);
    described.libraryID = present(song.libraryID);
    described.playbackDuration = song.duration;
    described.fileSize = song.fileSize;
    described.playCount = song.playCount;
    described.skipCount = song.skipCount;
    described.lastPlayedDate = song.lastPlayed;
    described.dateAdded = song.added;
    described.releaseDate = song.released;
    described.lastSkippedDate = song.lastSkipped;
    described.trackNumber = song.track;
    described.trackCount = song.trackCount;
    described.discNumber = song.disc;
    described.year = song.year;
    described.likedState = song.likedState;
    described.mediaType = song.mediaType;
    described.isCompilation = song.compilation;
    described.isExplicit = song.explicitContent;
    described.isCloudItem = song.cloud;
    described.existsInLibrary = song.inLibrary;
    return described;
}

}  // namespace

std::shared_ptr<const MediaSnapshot> snapshotOf(const std::vector<TestSong>& songs,
                                                const std::vector<TestPlaylist>& playlists) {
    MediaSnapshotBuilder builder;
    std::uint64_t place = 0;
    for (const TestSong& song : songs) {
        builder.addSong(description(song, ++place));
    }
    for (const TestPlaylist& playlist : playlists) {
        builder.addPlaylist({playlist.name, playlist.persistentID, playlist.parent, playlist.folder,
                             playlist.hidden, playlist.stock, playlist.songs});
    }
    return builder.finish();
}

MediaLibraryFixture::MediaLibraryFixture(const std::vector<TestSong>& songs,
                                         const std::vector<TestPlaylist>& playlists) {
    if (!Port<Regional>::isPlugged()) {
        regionPlug_.emplace(region_);
    }
    library_.setAuthorizationStatus(MPMediaLibraryAuthorizationStatus::authorized);
    publish(songs, playlists);
}

void MediaLibraryFixture::publish(const std::vector<TestSong>& songs,
                                  const std::vector<TestPlaylist>& playlists) {
    library_.publish(snapshotOf(songs, playlists));
}

MPMediaItem MediaLibraryFixture::song(const std::string& title) const {
    const auto snapshot = library_.snapshot();
    std::uint32_t position = 0;
    while (position < snapshot->songs().size() &&
           snapshot->text(position, SongText::title) != title) {
        ++position;
    }
    precondition(position < snapshot->songs().size(), "the made-up library has the song");
    return {snapshot, position};
}

}  // namespace tavrion
