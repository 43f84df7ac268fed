// Names for artists, albums and songs that nobody bears, put together from plain words.
//
// Queue: any; pure functions of the seed given.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "sources/sample/SampleWorks.h"

namespace tavrion {

enum class SampleStyle : std::uint8_t {
    works,
    folk,
    oldTunes,
    jazz,
    rock,
    pop,
    electronic,
    hipHop,
    country,
    quiet,
};
inline constexpr std::uint32_t sampleStyleCount = 10;

/// What all music of a style has in common.
struct SampleStyleTraits {
    /// Out of a hundred artists.
    std::uint32_t share;
    std::uint32_t earliestYear;
    /// Seconds.
    double shortest;
    double longest;
    /// Of a hundred songs.
    std::uint32_t explicitShare;
    /// Separated by "|".
    std::string_view genres;
};

const SampleStyleTraits& traitsOf(SampleStyle style);
std::string_view genreOf(SampleStyle style, std::uint64_t seed);

struct SampleArtistName {
    std::string name;
    /// Absent where it would be the name.
    std::optional<std::string> sortName;
};

/// `forces` counts for the style of works only.
SampleArtistName artistNamed(SampleStyle style, SampleForces forces, std::uint64_t seed);
/// Of an album or a song in a style whose songs have invented titles.
std::string albumTitleNamed(SampleStyle style, std::uint64_t seed);
std::string songTitleNamed(SampleStyle style, std::uint64_t seed);
std::string compilationTitleNamed(std::string_view genre, std::uint64_t seed);
/// The title without a leading article; absent where there is none.
std::optional<std::string> sortTitleOf(std::string_view title);

}  // namespace tavrion
