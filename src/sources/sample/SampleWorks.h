// Works that nobody owns any more: what the players of the sample library play.
//
// Queue: any; constants.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tavrion {

/// Who performs a work.
enum class SampleForces : std::uint8_t { keyboard, orchestra, chamber, voice, choir };
inline constexpr std::uint32_t sampleForcesCount = 5;

/// A set of pieces that fills an album.
struct SampleWork {
    std::string_view composer;
    /// Of the album that holds it.
    std::string_view title;
    std::string_view genre;
    SampleForces forces;
    std::uint16_t pieceCount;
    /// Seconds.
    std::uint16_t shortest;
    std::uint16_t longest;
    /// The titles, separated by "|"; or one title with "#" for the number of the piece, or with "@"
    /// for the key it stands in, up through the keys by semitones, major before minor.
    std::string_view pieces;
};

std::span<const SampleWork> sampleWorks();
/// The title of the piece of that number, from 0; it is below the work's pieceCount.
std::string titleOfPiece(const SampleWork& work, std::uint32_t number);

/// A tune handed down or old enough to be anybody's.
struct SampleTune {
    std::string_view title;
    /// Whoever wrote it, or "Traditional".
    std::string_view composer;
};

std::span<const SampleTune> sampleFolkTunes();
/// Rags, marches, blues and parlour songs.
std::span<const SampleTune> sampleOldTunes();

}  // namespace tavrion
