#include "sources/sample/SampleTaste.h"

#include <algorithm>
#include <cmath>

#include "sources/sample/SampleCalendar.h"

namespace tavrion {

namespace {

constexpr std::uint32_t weeksASeason = 13;
constexpr std::uint32_t weeksOfDiscovery = 10;
/// Of the songs of a week the listener notices about an album.
constexpr std::uint32_t noticedSongs = 14;
constexpr std::uint32_t allTimeFavouriteCount = 120;
constexpr std::uint32_t seasonFavouriteCount = 60;

/// Shares of all songs that are not heard as part of an album; the rest is anything.
constexpr double discoveryShare = 0.22;
constexpr double seasonShare = 0.34;
constexpr double allTimeShare = 0.22;
/// Of the albums that are heard whole.
constexpr double newAlbumShare = 0.4;

/// The front of a list is taken far more often than its end.
std::uint32_t oneOf(const std::vector<std::uint32_t>& songs, SampleRandom& random) {
    const double place = random.unit();
    return songs[static_cast<std::size_t>(static_cast<double>(songs.size()) * place *
                                          std::sqrt(place))];
}

}  // namespace

SampleTaste::SampleTaste(const SampleCatalogue& catalogue)
    : catalogue_(catalogue),
      seed_(catalogue.outlines().seed),
      allTimeFavourites_(favourites(SamplePurpose::allTimeFavourites, 0, allTimeFavouriteCount,
                                    catalogue.endOfWeek(0))) {}

/// Every song is liked in its own degree, and the best liked of several draws is taken.
std::uint32_t SampleTaste::bestOf(std::uint32_t draws, std::uint32_t end,
                                  SampleRandom& random) const {
    const std::uint32_t first = catalogue_.firstHeardSong();
    std::uint32_t best = first;
    std::uint64_t bestAffinity = 0;
    for (std::uint32_t i = 0; i < draws; ++i) {
        const std::uint32_t song = first + random.below(end - first);
        const std::uint64_t affinity = sampleHash(seed_, SamplePurpose::affinity, song);
        if (affinity >= bestAffinity) {
            best = song;
            bestAffinity = affinity;
        }
    }
    return best;
}

std::vector<std::uint32_t> SampleTaste::favourites(SamplePurpose purpose, std::uint64_t number,
                                                   std::uint32_t count, std::uint32_t end) const {
    SampleRandom random(sampleHash(seed_, purpose, number));
    std::vector<std::uint32_t> songs;
    for (std::uint32_t i = 0; i < count; ++i) {
        songs.push_back(bestOf(6, end, random));
    }
    return songs;
}

void SampleTaste::moveTo(std::int64_t day, double hour) {
    const std::int64_t days = day - SampleCalendar::firstDay;
    week_ = static_cast<std::uint32_t>(days / 7);
    const bool isBeforeFirstHearing = days % 7 == 0 && hour < SampleCalendar::firstHearingHour;
    if (isBeforeFirstHearing && week_ > 0) {
        --week_;
    }
    end_ = catalogue_.endOfWeek(week_);
    const std::uint32_t season = week_ / weeksASeason;
    if (season_ != season) {
        season_ = season;
        seasonFavourites_ =
            favourites(SamplePurpose::seasonFavourites, season, seasonFavouriteCount,
                       catalogue_.endOfWeek(season * weeksASeason));
    }
}

std::optional<std::uint32_t> SampleTaste::noticedSong(std::uint32_t week,
                                                      SampleRandom& random) const {
    const std::optional<std::uint32_t> streamed = catalogue_.streamedSongOfWeek(week);
    const std::uint32_t first =
        week == 0 ? catalogue_.endOfWeek(0) : catalogue_.endOfWeek(week - 1);
    const std::uint32_t count = catalogue_.endOfWeek(week) - first;
    if (streamed && (count == 0 || random.chance(0.2))) {
        return streamed;
    }
    if (count == 0) {
        return std::nullopt;
    }
    const std::uint32_t noticed = std::min(count, noticedSongs);
    SampleRandom attention(sampleHash(seed_, SamplePurpose::noticed, week));
    const std::uint32_t start = first + attention.below(count - noticed + 1);
    const double place = random.unit();
    return start + static_cast<std::uint32_t>(noticed * place * place);
}

std::optional<std::uint32_t> SampleTaste::discovery(SampleRandom& random) const {
    for (int tries = 0; tries < 4; ++tries) {
        const double age = random.unit();
        const auto weeks = static_cast<std::uint32_t>(weeksOfDiscovery * age * age);
        if (weeks <= week_) {
            if (const auto song = noticedSong(week_ - weeks, random)) {
                return song;
            }
        }
    }
    return std::nullopt;
}

std::uint32_t SampleTaste::nextSong(SampleRandom& random) const {
    const double kind = random.unit();
    if (kind < discoveryShare) {
        if (const auto song = discovery(random)) {
            return *song;
        }
    }
    if (kind < discoveryShare + seasonShare) {
        return oneOf(seasonFavourites_, random);
    }
    if (kind < discoveryShare + seasonShare + allTimeShare) {
        return oneOf(allTimeFavourites_, random);
    }
    return bestOf(2, end_, random);
}

std::uint32_t SampleTaste::songOfNextAlbum(SampleRandom& random) const {
    if (random.chance(newAlbumShare)) {
        if (const auto song = discovery(random)) {
            return *song;
        }
    }
    return bestOf(4, end_, random);
}

}  // namespace tavrion
