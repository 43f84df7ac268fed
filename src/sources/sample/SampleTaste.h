// Which song the listener takes next.
//
// Queue: one caller at a time. A pure function of the catalogue, the day and the row of numbers
// given: asking for other days in between changes nothing. Wherever the listener is, the songs of a
// day are the same.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "sources/sample/SampleCatalogue.h"
#include "sources/sample/SampleRandom.h"

namespace tavrion {

class SampleTaste {
  public:
    explicit SampleTaste(const SampleCatalogue& catalogue);

    /// From now on it is that day, from SampleCalendar::firstDay on, at that hour.
    void moveTo(std::int64_t day, double hour);
    std::uint32_t nextSong(SampleRandom& random) const;
    /// A song of an album that is to be heard whole.
    std::uint32_t songOfNextAlbum(SampleRandom& random) const;
    /// The library's songs that can be heard are those from firstHeardSong() up to this one.
    std::uint32_t endOfSongs() const { return end_; }

  private:
    std::vector<std::uint32_t> favourites(SamplePurpose purpose, std::uint64_t number,
                                          std::uint32_t count, std::uint32_t end) const;
    std::uint32_t bestOf(std::uint32_t draws, std::uint32_t end, SampleRandom& random) const;
    std::optional<std::uint32_t> discovery(SampleRandom& random) const;
    std::optional<std::uint32_t> noticedSong(std::uint32_t week, SampleRandom& random) const;

    const SampleCatalogue& catalogue_;
    std::uint64_t seed_;
    std::vector<std::uint32_t> allTimeFavourites_;
    std::vector<std::uint32_t> seasonFavourites_;
    std::optional<std::uint32_t> season_;
    std::uint32_t week_ = 0;
    std::uint32_t end_ = 0;
};

}  // namespace tavrion
