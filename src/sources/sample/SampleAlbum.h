// One album of the sample library, and the library's outlines, of which each album follows.
//
// Queue: any; values and pure functions. Songs are counted in the order in which they come.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/foundation/NSDate.h"
#include "sources/sample/SampleNames.h"

namespace tavrion {

/// How many there are of what.
struct SampleOutlines {
    SampleOutlines(std::uint64_t seed, std::uint32_t songs);

    /// Another one for every library size, so that no two sizes share a song.
    std::uint64_t seed;
    /// Songs in the library once it is full.
    std::uint32_t size;
    /// Of the first songs: as many are given away as come once the library is full.
    std::uint32_t givenAwayCount;
    /// Songs that came before the listener's first week.
    std::uint32_t initialCount;
    /// All songs that are ever in the library.
    std::uint32_t libraryCount;
    std::uint32_t artistCount;

    /// 0 for the songs that were there from the first; the others come evenly.
    std::uint32_t weekOfSong(std::uint32_t song) const;
    SampleStyle styleOfArtist(std::uint32_t artist) const;
    /// What an artist of the style of works performs.
    SampleForces forcesOfArtist(std::uint32_t artist) const;
    SampleArtistName nameOfArtist(std::uint32_t artist) const;
};

struct SampleAlbum {
    enum class Sound : std::uint8_t { lossy, lossless, highResolution };

    std::uint64_t seed = 0;
    std::uint32_t firstSong = 0;
    std::uint32_t songCount = 1;
    /// Whose album it is; counts for nothing on a compilation.
    std::uint32_t artist = 0;
    /// Which of sampleWorks(); counts for the style of works only.
    std::uint32_t work = 0;
    /// When its first song was added.
    NSDate added = {};
    /// The day of Greenwich on which it came out, as CivilDay counts.
    std::optional<std::int64_t> releaseDay = {};
    std::uint32_t year = 0;
    SampleStyle style = SampleStyle::rock;
    Sound sound = Sound::lossy;
    bool isCompilation = false;
    /// Not on the computer.
    bool isCloudAlbum = false;
    /// Heard, but not added to the library.
    bool isStreamed = false;
};

/// The album of that number, whose first song is `firstSong`.
SampleAlbum libraryAlbum(const SampleOutlines& outlines, std::uint32_t number,
                         std::uint32_t firstSong);
/// The single of that number, from 0, among those that the listener streams.
SampleAlbum streamedSingle(const SampleOutlines& outlines, std::uint32_t number,
                           std::uint32_t song);

/// Who plays a song; on a compilation somebody else than on the songs beside it.
std::uint32_t artistOfSong(const SampleOutlines& outlines, const SampleAlbum& album,
                           std::uint32_t song);
/// A tune handed down that the song is; absent for one with a title of its own or a part of a work.
const SampleTune* tuneOfSong(const SampleAlbum& album, std::uint32_t song);
std::string titleOfSong(const SampleOutlines& outlines, const SampleAlbum& album,
                        std::uint32_t song);
std::string titleOfAlbum(const SampleAlbum& album);

}  // namespace tavrion
