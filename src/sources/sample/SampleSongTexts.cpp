#include "sources/sample/SampleSongTexts.h"

#include <fmt/format.h>

#include <cmath>

#include "sources/sample/SampleCalendar.h"
#include "sources/sample/SampleRandom.h"

namespace tavrion {

namespace {

/// More songs than this do not go on one disc.
constexpr std::uint32_t mostSongsADisc = 20;
/// The first year of which an explicit song is known to be one.
constexpr std::uint32_t firstExplicitYear = 1990;
constexpr std::uint64_t firstStoreID = 1'400'000'000;
constexpr double noonOfGreenwich = 43200;

SampleRandom aspects(const SampleCatalogue& catalogue, std::uint32_t song) {
    return SampleRandom(sampleHash(catalogue.outlines().seed, SamplePurpose::aspects, song));
}

/// Bytes a second: 16-bit stereo at 44.1 kHz is 176,400 before it is compressed.
double byteRate(SampleAlbum::Sound sound, SampleRandom& random) {
    switch (sound) {
        case SampleAlbum::Sound::highResolution:
            return random.between(190'000, 340'000);
        case SampleAlbum::Sound::lossless:
            return random.between(70'000, 125'000);
        case SampleAlbum::Sound::lossy:
            break;
    }
    return random.chance(0.7) ? 32'000 : 16'000;
}

/// 2 liked, 3 disliked, 0 never said.
std::uint32_t likedStateFrom(double number) {
    if (number < 0.025) {
        return 2;
    }
    return number < 0.03 ? 3 : 0;
}

std::optional<std::string_view> viewOf(const std::optional<std::string>& text) {
    return text ? std::optional<std::string_view>(*text) : std::nullopt;
}

std::optional<NSDate> releaseDateOf(const SampleAlbum& album) {
    // Noon of Greenwich is on the same day nearly everywhere.
    return album.releaseDay
               ? std::optional(SampleCalendar::instantOfDay(*album.releaseDay, noonOfGreenwich))
               : std::nullopt;
}

std::string_view composerOf(const SampleAlbum& album, std::uint32_t song) {
    if (album.style == SampleStyle::works) {
        return sampleWorks()[album.work].composer;
    }
    const SampleTune* tune = tuneOfSong(album, song);
    return tune != nullptr ? tune->composer : std::string_view();
}

}  // namespace

void SampleSongTexts::takeAlbum(const SampleAlbum& album) {
    if (album_ == &album) {
        return;
    }
    album_ = &album;
    albumTitle_ = album.isStreamed
                      ? titleOfSong(catalogue_.outlines(), album, album.firstSong) + " - Single"
                      : titleOfAlbum(album);
    sortAlbumTitle_ = sortTitleOf(albumTitle_);
    albumArtist_ = album.isCompilation ? SampleArtistName{"Various Artists", std::nullopt}
                                       : catalogue_.outlines().nameOfArtist(album.artist);
    const std::uint32_t discs = (album.songCount + mostSongsADisc - 1) / mostSongsADisc;
    songsADisc_ = (album.songCount + discs - 1) / discs;
}

void SampleSongTexts::fillTexts(const SampleAlbum& album, std::uint32_t song) {
    title_ = titleOfSong(catalogue_.outlines(), album, song);
    sortTitle_ = sortTitleOf(title_);
    artist_ =
        album.isCompilation
            ? catalogue_.outlines().nameOfArtist(artistOfSong(catalogue_.outlines(), album, song))
            : albumArtist_;
    composer_ = composerOf(album, song);
    libraryID_ = fmt::format("{:016X}", catalogue_.persistentIDOfSong(song));
    storeID_ = std::to_string(firstStoreID + song);
}

/// Libraries have gaps.
void SampleSongTexts::leaveOut(SongDescription& description, std::uint32_t song) const {
    SampleRandom random(sampleHash(catalogue_.outlines().seed, SamplePurpose::gaps, song));
    if (random.chance(1 / 150.0)) {
        description.genre.reset();
    }
    if (random.chance(1 / 200.0)) {
        description.albumTitle.reset();
        description.sortAlbumTitle.reset();
        description.trackNumber = 0;
        description.trackCount = 0;
        description.discNumber = 0;
    }
    if (random.chance(1 / 250.0)) {
        description.artist.reset();
        description.sortArtist.reset();
    }
    if (random.chance(1 / 40.0)) {
        description.libraryID.reset();
    }
    if (random.chance(1 / 40.0)) {
        description.year = 0;
        description.releaseDate.reset();
    }
}

SongDescription SampleSongTexts::descriptionOf(std::uint32_t song) {
    const SampleAlbum& album = catalogue_.albumOfSong(song);
    takeAlbum(album);
    fillTexts(album, song);
    SampleRandom random = aspects(catalogue_, song);
    const std::uint32_t place = song - album.firstSong;
    SongDescription description;
    description.persistentID = catalogue_.persistentIDOfSong(song);
    description.title = title_;
    description.artist = artist_.name;
    description.albumArtist = albumArtist_.name;
    description.albumTitle = albumTitle_;
    description.genre = album.style == SampleStyle::works ? sampleWorks()[album.work].genre
                                                          : genreOf(album.style, album.seed);
    description.composer = composer_;
    description.sortTitle = viewOf(sortTitle_);
    description.sortArtist = viewOf(artist_.sortName);
    description.sortAlbumArtist = viewOf(albumArtist_.sortName);
    description.sortAlbumTitle = viewOf(sortAlbumTitle_);
    description.libraryID = libraryID_;
    description.playbackDuration = catalogue_.durationOfSong(song);
    description.dateAdded = catalogue_.dateAddedOfSong(song);
    description.releaseDate = releaseDateOf(album);
    description.year = album.year;
    description.trackNumber = place % songsADisc_ + 1;
    description.trackCount = album.songCount;
    description.discNumber = place / songsADisc_ + 1;
    description.isCompilation = album.isCompilation;
    description.isCloudItem = album.isCloudAlbum;
    description.existsInLibrary = !album.isStreamed;
    description.likedState = likedStateFrom(random.unit());
    description.isExplicit = album.year >= firstExplicitYear &&
                             random.chance(traitsOf(album.style).explicitShare / 100.0);
    if (album.isCloudAlbum || random.chance(0.3)) {
        description.playbackStoreID = storeID_;
    }
    if (!album.isCloudAlbum) {
        description.fileSize =
            std::floor(description.playbackDuration * byteRate(album.sound, random));
    }
    leaveOut(description, song);
    return description;
}

}  // namespace tavrion
