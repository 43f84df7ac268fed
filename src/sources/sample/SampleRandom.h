// Numbers that look thrown and are the same at every run.
//
// Queue: any; values. Only whole numbers and plain arithmetic, so that the library does not hang on
// how somebody's mathematics rounds.
#pragma once

#include <cstdint>

namespace tavrion {

/// Mixes the bits of a number; no two numbers give the same.
constexpr std::uint64_t sampleMix(std::uint64_t number) {
    number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
    number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
    return number ^ (number >> 31U);
}

/// The number that sampleMix() made this of.
constexpr std::uint64_t sampleUnmix(std::uint64_t number) {
    number ^= (number >> 31U) ^ (number >> 62U);
    number *= 0x319642B2D24D8EC3U;
    number ^= (number >> 27U) ^ (number >> 54U);
    number *= 0x96DE1B173F119089U;
    return number ^ (number >> 30U) ^ (number >> 60U);
}
static_assert(sampleUnmix(sampleMix(0x0123456789ABCDEFU)) == 0x0123456789ABCDEFU);

/// What a number is thrown for, so that one seed gives unrelated numbers for unrelated questions.
enum class SamplePurpose : std::uint64_t {
    identifiers = 1,
    artist,
    artistName,
    forces,
    album,
    compilationArtist,
    song,
    aspects,
    gaps,
    songTitle,
    streamed,
    playlist,
    quietDay,
    session,
    choice,
    allTimeFavourites,
    seasonFavourites,
    affinity,
    noticed,
    shuffle,
};

constexpr std::uint64_t sampleHash(std::uint64_t seed, SamplePurpose purpose,
                                   std::uint64_t number = 0) {
    constexpr std::uint64_t odd = 0x9E3779B97F4A7C15U;
    return sampleMix(sampleMix(seed + odd * static_cast<std::uint64_t>(purpose)) + odd * number);
}

/// A row of numbers.
class SampleRandom {
  public:
    constexpr explicit SampleRandom(std::uint64_t seed) : state_(seed) {}

    constexpr std::uint64_t next() {
        state_ += 0x9E3779B97F4A7C15U;
        return sampleMix(state_);
    }
    /// From 0 up to, not including, 1.
    constexpr double unit() { return static_cast<double>(next() >> 11U) * 0x1.0p-53; }
    constexpr double between(double low, double high) { return low + (high - low) * unit(); }
    constexpr bool chance(double probability) { return unit() < probability; }
    /// From 0 up to, not including, `count`, which is not 0.
    constexpr std::uint32_t below(std::uint32_t count) {
        return static_cast<std::uint32_t>(((next() >> 32U) * count) >> 32U);
    }

  private:
    std::uint64_t state_;
};

}  // namespace tavrion
