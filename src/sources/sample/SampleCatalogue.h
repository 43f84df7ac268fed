// What the sample library consists of: albums and their songs, a pure function of a seed and a
// size.
//
// Queue: any; immutable. Songs are counted in the order in which they come into the library. Those
// before firstHeardSong() are never listened to; once the library is full, one of them is given
// away for each song that comes, the first first. So from the week SampleCalendar::fullWeek on
// there are exactly as many songs as asked for. Behind all of them stand the singles that the
// listener streams: songs outside the library. Units: durations in seconds.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "sources/sample/SampleAlbum.h"

namespace tavrion {

class SampleCatalogue {
  public:
    static constexpr std::uint32_t mostSongs = 2'000'000;

    /// `songs` is from 1 to mostSongs.
    SampleCatalogue(std::uint64_t seed, std::uint32_t songs);

    const SampleOutlines& outlines() const { return outlines_; }
    /// All songs that ever come, the streamed ones included.
    std::uint32_t songCount() const { return static_cast<std::uint32_t>(milliseconds_.size()); }
    /// In the order of their songs.
    std::span<const SampleAlbum> albums() const { return albums_; }
    const SampleAlbum& albumOfSong(std::uint32_t song) const { return albums_[albumOfSong_[song]]; }

    double durationOfSong(std::uint32_t song) const { return milliseconds_[song] / 1000.0; }
    NSDate dateAddedOfSong(std::uint32_t song) const;
    /// Whether the song is there at that instant.
    bool hasSong(std::uint32_t song, NSDate instant) const;
    /// Never 0, and of one song only.
    std::uint64_t persistentIDOfSong(std::uint32_t song) const;
    /// Absent for an identifier of no song.
    std::optional<std::uint32_t> songOfPersistentID(std::uint64_t persistentID) const;

    std::uint32_t firstHeardSong() const { return outlines_.givenAwayCount; }
    /// The library's songs that have come by that week are those before this one.
    std::uint32_t endOfWeek(std::uint32_t week) const;
    std::optional<std::uint32_t> streamedSongOfWeek(std::uint32_t week) const;

  private:
    void addAlbum(const SampleAlbum& album);
    void findWeekEnds();
    void makeLengths();

    SampleOutlines outlines_;
    std::uint64_t identifierKey_;
    std::vector<SampleAlbum> albums_;
    std::vector<std::uint32_t> albumOfSong_;
    std::vector<std::uint32_t> milliseconds_;
    /// By week; see endOfWeek().
    std::vector<std::uint32_t> weekEnds_;
};

}  // namespace tavrion
