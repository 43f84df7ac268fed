#include "sources/sample/SampleCatalogue.h"

#include <algorithm>
#include <unordered_set>

#include "platform/foundation/Precondition.h"
#include "platform/mediaplayer/MediaSnapshot.h"
#include "sources/sample/SampleCalendar.h"
#include "sources/sample/SampleRandom.h"

namespace tavrion {

namespace {

double shortestOf(const SampleAlbum& album) {
    return album.style == SampleStyle::works ? sampleWorks()[album.work].shortest
                                             : traitsOf(album.style).shortest;
}

double longestOf(const SampleAlbum& album) {
    return album.style == SampleStyle::works ? sampleWorks()[album.work].longest
                                             : traitsOf(album.style).longest;
}

}  // namespace

SampleCatalogue::SampleCatalogue(std::uint64_t seed, std::uint32_t songs)
    : outlines_(seed, songs), identifierKey_(sampleMix(outlines_.seed | 1ULL << 63U)) {
    precondition(songs > 0 && songs <= mostSongs, "a sample library has 1 to 2,000,000 songs");
    albumOfSong_.reserve(outlines_.libraryCount + SampleCalendar::streamedCount);
    while (albumOfSong_.size() < outlines_.libraryCount) {
        addAlbum(libraryAlbum(outlines_, static_cast<std::uint32_t>(albums_.size()),
                              static_cast<std::uint32_t>(albumOfSong_.size())));
    }
    findWeekEnds();
    for (std::uint32_t number = 0; number < SampleCalendar::streamedCount; ++number) {
        addAlbum(streamedSingle(outlines_, number, outlines_.libraryCount + number));
    }
    makeLengths();
}

void SampleCatalogue::addAlbum(const SampleAlbum& album) {
    albumOfSong_.insert(albumOfSong_.end(), album.songCount,
                        static_cast<std::uint32_t>(albums_.size()));
    albums_.push_back(album);
}

void SampleCatalogue::findWeekEnds() {
    for (const SampleAlbum& album : albums_) {
        const std::uint32_t week = outlines_.weekOfSong(album.firstSong);
        weekEnds_.resize(week + 1, album.firstSong);
        weekEnds_[week] = album.firstSong + album.songCount;
    }
}

/// No two songs may share title and duration: their histories would be one.
void SampleCatalogue::makeLengths() {
    std::unordered_set<std::uint64_t> taken;
    taken.reserve(albumOfSong_.size());
    milliseconds_.reserve(albumOfSong_.size());
    for (std::uint32_t song = 0; song < albumOfSong_.size(); ++song) {
        const SampleAlbum& album = albumOfSong(song);
        SampleRandom random(sampleHash(outlines_.seed, SamplePurpose::song, song));
        auto length =
            static_cast<std::uint32_t>(1000 * random.between(shortestOf(album), longestOf(album)));
        const std::uint64_t title = mediaTextHash(titleOfSong(outlines_, album, song));
        while (!taken.insert(sampleMix(title + length)).second) {
            ++length;
        }
        milliseconds_.push_back(length);
    }
}

NSDate SampleCatalogue::dateAddedOfSong(std::uint32_t song) const {
    const SampleAlbum& album = albumOfSong(song);
    return album.added.dateByAddingTimeInterval((song - album.firstSong) *
                                                SampleCalendar::secondsBetweenAddedSongs);
}

bool SampleCatalogue::hasSong(std::uint32_t song, NSDate instant) const {
    return dateAddedOfSong(song) <= instant &&
           (song >= outlines_.givenAwayCount || dateAddedOfSong(outlines_.size + song) > instant);
}

std::uint64_t SampleCatalogue::persistentIDOfSong(std::uint32_t song) const {
    return sampleMix(sampleMix(song + 1ULL) ^ identifierKey_);
}

std::optional<std::uint32_t> SampleCatalogue::songOfPersistentID(std::uint64_t persistentID) const {
    const std::uint64_t number = sampleUnmix(sampleUnmix(persistentID) ^ identifierKey_);
    return number > 0 && number <= songCount()
               ? std::optional(static_cast<std::uint32_t>(number - 1))
               : std::nullopt;
}

std::uint32_t SampleCatalogue::endOfWeek(std::uint32_t week) const {
    return week < weekEnds_.size() ? weekEnds_[week] : weekEnds_.back();
}

std::optional<std::uint32_t> SampleCatalogue::streamedSongOfWeek(std::uint32_t week) const {
    if (week < SampleCalendar::firstStreamedWeek) {
        return std::nullopt;
    }
    const std::uint32_t later = week - SampleCalendar::firstStreamedWeek;
    const std::uint32_t number = later / SampleCalendar::weeksBetweenStreamed;
    if (later % SampleCalendar::weeksBetweenStreamed != 0 ||
        number >= SampleCalendar::streamedCount) {
        return std::nullopt;
    }
    return outlines_.libraryCount + number;
}

}  // namespace tavrion
