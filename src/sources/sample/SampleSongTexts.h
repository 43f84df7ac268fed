// What the library says about a song, apart from how often it was played.
//
// Queue: one caller at a time; a describer is made for one reading and goes through the songs in
// order. The views of a description last until the next one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/mediaplayer/MediaSnapshotBuilder.h"
#include "sources/sample/SampleCatalogue.h"

namespace tavrion {

class SampleSongTexts {
  public:
    explicit SampleSongTexts(const SampleCatalogue& catalogue) : catalogue_(catalogue) {}

    /// Counts and dates of plays and skips are left out.
    SongDescription descriptionOf(std::uint32_t song);

  private:
    void takeAlbum(const SampleAlbum& album);
    void fillTexts(const SampleAlbum& album, std::uint32_t song);
    void leaveOut(SongDescription& description, std::uint32_t song) const;

    const SampleCatalogue& catalogue_;
    const SampleAlbum* album_ = nullptr;
    std::uint32_t songsADisc_ = 0;
    // Of the album.
    std::string albumTitle_;
    std::optional<std::string> sortAlbumTitle_;
    SampleArtistName albumArtist_;
    // Of the song.
    std::string title_;
    std::optional<std::string> sortTitle_;
    SampleArtistName artist_;
    std::string composer_;
    std::string libraryID_;
    std::string storeID_;
};

}  // namespace tavrion
