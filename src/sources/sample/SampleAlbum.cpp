#include "sources/sample/SampleAlbum.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "platform/foundation/NSTimeZone.h"
#include "sources/sample/SampleCalendar.h"
#include "sources/sample/SampleRandom.h"

namespace tavrion {

namespace {

constexpr std::uint32_t songsAnArtist = 38;
/// So that even a library of one song streams more than one artist.
constexpr std::uint32_t streamedArtists = 20;

std::uint32_t tenthsOf(std::uint32_t songs, std::uint32_t tenths) {
    return static_cast<std::uint32_t>(std::uint64_t{songs} * tenths / 10);
}

std::uint32_t yearOfDay(std::int64_t day) {
    return static_cast<std::uint32_t>(
        NSTimeZone().civilTime(SampleCalendar::instantOfDay(day, 0)).year);
}

/// The work of that number among those for `forces`, from the front again behind the last.
std::uint32_t workFor(SampleForces forces, std::uint32_t number) {
    const std::span<const SampleWork> works = sampleWorks();
    for (std::uint32_t passed = 0;; ++passed) {
        const auto work = static_cast<std::uint32_t>(passed % works.size());
        if (works[work].forces == forces && number-- == 0) {
            return work;
        }
    }
}

SampleAlbum::Sound soundOf(double number) {
    if (number < 0.03) {
        return SampleAlbum::Sound::highResolution;
    }
    return number < 0.3 ? SampleAlbum::Sound::lossless : SampleAlbum::Sound::lossy;
}

std::uint32_t songsOnAlbum(SampleRandom& random) {
    const double form = random.unit();
    if (form < 0.12) {
        return 1 + random.below(5);
    }
    return form < 0.95 ? 8 + random.below(8) : 18 + random.below(12);
}

void fill(SampleAlbum& album, const SampleOutlines& outlines, SampleRandom& random) {
    // Half of the albums are mostly of the well-known artists, who come first.
    const double place = random.unit();
    const double known = random.chance(0.5) ? place : place * std::sqrt(place);
    album.artist = static_cast<std::uint32_t>(outlines.artistCount * known);
    album.style = outlines.styleOfArtist(album.artist);
    album.songCount = songsOnAlbum(random);
    if (album.style == SampleStyle::works) {
        album.work = workFor(outlines.forcesOfArtist(album.artist), random.below(64));
        album.songCount = sampleWorks()[album.work].pieceCount;
    } else if (random.chance(0.07)) {
        album.isCompilation = true;
        album.songCount = 12 + random.below(14);
    }
    album.songCount = std::min(album.songCount, outlines.libraryCount - album.firstSong);
    album.sound = soundOf(random.unit());
    album.isCloudAlbum = random.chance(0.06);
}

std::int64_t addedDayOf(const SampleOutlines& outlines, std::uint32_t song) {
    const std::uint32_t week = outlines.weekOfSong(song);
    if (week > 0) {
        return SampleCalendar::fridayOfWeek(week);
    }
    constexpr std::int64_t days = SampleCalendar::firstDay - SampleCalendar::firstAddedDay - 1;
    return SampleCalendar::firstAddedDay + days * song / outlines.initialCount;
}

void date(SampleAlbum& album, const SampleOutlines& outlines, SampleRandom& random) {
    const std::int64_t day = addedDayOf(outlines, album.firstSong);
    const bool isOfTheWeek = outlines.weekOfSong(album.firstSong) > 0;
    const double hour =
        isOfTheWeek ? random.between(2, SampleCalendar::latestAddedHour) : random.between(0, 23.5);
    album.added = SampleCalendar::instantOfDay(day, std::floor(hour * 3600));
    const std::uint32_t thisYear = yearOfDay(day);
    const std::uint32_t span = thisYear - std::min(traitsOf(album.style).earliestYear, thisYear);
    album.year = thisYear - static_cast<std::uint32_t>(span * random.unit() * random.unit());
    const bool hasFullDate = random.chance(0.4);
    if (isOfTheWeek && random.chance(0.5)) {
        album.year = thisYear;
        album.releaseDay = day;
    } else if (hasFullDate && album.year < thisYear) {
        const int month = 1 + static_cast<int>(random.below(12));
        album.releaseDay = CivilDay::fromDate(album.year, month, 1).number + random.below(28);
    }
}

std::uint32_t artistOnCompilation(const SampleOutlines& outlines, SampleStyle style,
                                  std::uint32_t song) {
    SampleRandom random(sampleHash(outlines.seed, SamplePurpose::compilationArtist, song));
    std::uint32_t artist = random.below(outlines.artistCount);
    for (int i = 0; i < 12 && outlines.styleOfArtist(artist) != style; ++i) {
        artist = random.below(outlines.artistCount);
    }
    return artist;
}

}  // namespace

SampleOutlines::SampleOutlines(std::uint64_t librarySeed, std::uint32_t songs)
    : seed(sampleHash(librarySeed, SamplePurpose::identifiers, songs)),
      size(songs),
      givenAwayCount(tenthsOf(songs, 3)),
      initialCount(std::max(1U, tenthsOf(songs, 6))),
      libraryCount(songs + givenAwayCount),
      artistCount(1 + libraryCount / songsAnArtist) {}

std::uint32_t SampleOutlines::weekOfSong(std::uint32_t song) const {
    if (song < initialCount) {
        return 0;
    }
    const std::uint64_t later = song - initialCount;
    return static_cast<std::uint32_t>(1 + later * SampleCalendar::fullWeek / (size - initialCount));
}

SampleStyle SampleOutlines::styleOfArtist(std::uint32_t artist) const {
    std::uint32_t share = SampleRandom(sampleHash(seed, SamplePurpose::artist, artist)).below(100);
    for (std::uint32_t number = 0; number < sampleStyleCount; ++number) {
        const auto style = static_cast<SampleStyle>(number);
        if (share < traitsOf(style).share) {
            return style;
        }
        share -= traitsOf(style).share;
    }
    return SampleStyle::rock;
}

SampleForces SampleOutlines::forcesOfArtist(std::uint32_t artist) const {
    SampleRandom random(sampleHash(seed, SamplePurpose::forces, artist));
    return static_cast<SampleForces>(random.below(sampleForcesCount));
}

SampleArtistName SampleOutlines::nameOfArtist(std::uint32_t artist) const {
    return artistNamed(styleOfArtist(artist), forcesOfArtist(artist),
                       sampleHash(seed, SamplePurpose::artistName, artist));
}

SampleAlbum libraryAlbum(const SampleOutlines& outlines, std::uint32_t number,
                         std::uint32_t firstSong) {
    SampleAlbum album;
    album.seed = sampleHash(outlines.seed, SamplePurpose::album, number);
    album.firstSong = firstSong;
    SampleRandom random(album.seed);
    fill(album, outlines, random);
    date(album, outlines, random);
    return album;
}

SampleAlbum streamedSingle(const SampleOutlines& outlines, std::uint32_t number,
                           std::uint32_t song) {
    SampleAlbum album;
    album.seed = sampleHash(outlines.seed, SamplePurpose::streamed, number);
    album.firstSong = song;
    SampleRandom random(album.seed);
    album.artist = random.below(outlines.artistCount + streamedArtists);
    for (int i = 0; i < 12 && outlines.styleOfArtist(album.artist) == SampleStyle::works; ++i) {
        album.artist = random.below(outlines.artistCount + streamedArtists);
    }
    album.style = outlines.styleOfArtist(album.artist);
    const std::int64_t friday = SampleCalendar::fridayOfWeek(
        SampleCalendar::firstStreamedWeek + number * SampleCalendar::weeksBetweenStreamed);
    const double hour = random.between(2, SampleCalendar::latestAddedHour);
    album.added = SampleCalendar::instantOfDay(friday, std::floor(hour * 3600));
    album.releaseDay = friday;
    album.year = yearOfDay(friday);
    album.isCloudAlbum = true;
    album.isStreamed = true;
    return album;
}

std::uint32_t artistOfSong(const SampleOutlines& outlines, const SampleAlbum& album,
                           std::uint32_t song) {
    return album.isCompilation ? artistOnCompilation(outlines, album.style, song) : album.artist;
}

const SampleTune* tuneOfSong(const SampleAlbum& album, std::uint32_t song) {
    if (album.style != SampleStyle::folk && album.style != SampleStyle::oldTunes) {
        return nullptr;
    }
    const std::span<const SampleTune> tunes =
        album.style == SampleStyle::folk ? sampleFolkTunes() : sampleOldTunes();
    const auto count = static_cast<std::uint32_t>(tunes.size());
    SampleRandom random(sampleMix(album.seed));
    const std::uint32_t first = random.below(count);
    // A step that shares no divisor with the count comes to every tune before it comes to one
    // again.
    std::uint32_t step = 1 + random.below(count - 1);
    while (std::gcd(step, count) != 1) {
        step = step % (count - 1) + 1;
    }
    return &tunes[(first + (song - album.firstSong) * step) % count];
}

std::string titleOfSong(const SampleOutlines& outlines, const SampleAlbum& album,
                        std::uint32_t song) {
    if (album.style == SampleStyle::works) {
        return titleOfPiece(sampleWorks()[album.work], song - album.firstSong);
    }
    if (const SampleTune* tune = tuneOfSong(album, song)) {
        return std::string(tune->title);
    }
    return songTitleNamed(album.style, sampleHash(outlines.seed, SamplePurpose::songTitle, song));
}

std::string titleOfAlbum(const SampleAlbum& album) {
    const std::uint64_t seed = sampleMix(album.seed + 1);
    if (album.isCompilation) {
        return compilationTitleNamed(genreOf(album.style, album.seed), seed);
    }
    if (album.style == SampleStyle::works) {
        return std::string(sampleWorks()[album.work].title);
    }
    return albumTitleNamed(album.style, seed);
}

}  // namespace tavrion
