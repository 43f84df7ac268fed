#include "sources/sample/SampleCatalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "sources/sample/SampleCalendar.h"
#include "sources/sample/SampleSongTexts.h"
#include "tests/sources/sample/SampleFixture.h"

namespace tavrion {
namespace {

std::uint32_t songsAt(const SampleCatalogue& catalogue, NSDate instant, bool isStreamed = false) {
    std::uint32_t count = 0;
    for (std::uint32_t song = 0; song < catalogue.songCount(); ++song) {
        count +=
            catalogue.hasSong(song, instant) && catalogue.albumOfSong(song).isStreamed == isStreamed
                ? 1
                : 0;
    }
    return count;
}

TEST(SampleCatalogue, hasAsManySongsAsAskedForOnceItIsFull) {
    for (const std::uint32_t size : {1U, 2U, 7U, 10U, 99U, 500U, 3000U}) {
        const SampleCatalogue catalogue(1, size);
        for (const char* const when :
             {"2026-02-27T06:00:00Z", "2026-03-01T12:00:00Z", "2026-11-20T04:30:10Z",
              "2031-07-01T00:00:00Z", "2150-01-01T00:00:00Z"}) {
            EXPECT_EQ(songsAt(catalogue, instant(when)), size) << size << " at " << when;
        }
    }
}

TEST(SampleCatalogue, growsUntilThen) {
    const SampleCatalogue catalogue(1, 3000);
    std::uint32_t before = 0;
    for (const char* const when :
         {"2006-01-01T00:00:00Z", "2011-01-01T00:00:00Z", "2016-01-01T00:00:00Z",
          "2019-01-01T00:00:00Z", "2023-01-01T00:00:00Z", "2026-01-01T00:00:00Z"}) {
        const std::uint32_t now = songsAt(catalogue, instant(when));
        EXPECT_GT(now, before) << when;
        before = now;
    }
    EXPECT_LT(before, 3000U);
    EXPECT_EQ(songsAt(catalogue, instant("2004-12-31T00:00:00Z")), 0U);
}

TEST(SampleCatalogue, newMusicKeepsComingAndUnheardMusicGoesForIt) {
    const SampleCatalogue catalogue(1, 3000);
    const NSDate first = instant("2026-08-23T00:00:00Z");
    const NSDate last = instant("2026-11-21T00:00:00Z");
    std::uint32_t come = 0;
    std::uint32_t gone = 0;
    for (std::uint32_t song = 0; song < catalogue.songCount(); ++song) {
        const bool before = catalogue.hasSong(song, first);
        const bool after = catalogue.hasSong(song, last);
        come += !before && after && !catalogue.albumOfSong(song).isStreamed ? 1 : 0;
        gone += before && !after ? 1 : 0;
        EXPECT_FALSE(before && !after && song >= catalogue.firstHeardSong());
    }
    EXPECT_GT(come, 5U);
    EXPECT_EQ(come, gone);
    EXPECT_EQ(songsAt(catalogue, last, true) - songsAt(catalogue, first, true), 7U)
        << "the streamed singles of every other week";
}

TEST(SampleCatalogue, musicOfAWeekIsThereForItsFirstHearingEverywhere) {
    const SampleCatalogue catalogue(1, 20000);
    const double furthestAhead = 14 * 3600;
    for (std::uint32_t song = catalogue.endOfWeek(0); song < catalogue.songCount(); ++song) {
        const SampleAlbum& album = catalogue.albumOfSong(song);
        const NSTimeZone greenwich;
        const std::int64_t day = greenwich.civilDay(album.added).number;
        EXPECT_EQ((day - SampleCalendar::firstDay) % 7, 0);
        const NSDate firstHearing = SampleCalendar::instantOfDay(
            day, SampleCalendar::firstHearingHour * 3600 - furthestAhead);
        EXPECT_LE(catalogue.dateAddedOfSong(song), firstHearing);
        if (album.isStreamed) {
            const auto week = static_cast<std::uint32_t>((day - SampleCalendar::firstDay) / 7);
            EXPECT_EQ(catalogue.streamedSongOfWeek(week), song);
        } else {
            const auto week = static_cast<std::uint32_t>((day - SampleCalendar::firstDay) / 7);
            EXPECT_LT(song, catalogue.endOfWeek(week));
            EXPECT_GE(song, catalogue.endOfWeek(week - 1));
        }
    }
}

TEST(SampleCatalogue, albumsFollowOneAnotherWithoutGapsInTheOrderOfTheirComing) {
    const SampleCatalogue catalogue(5, 4000);
    std::uint32_t next = 0;
    for (const SampleAlbum& album : catalogue.albums()) {
        EXPECT_EQ(album.firstSong, next);
        EXPECT_GT(album.songCount, 0U);
        next += album.songCount;
    }
    EXPECT_EQ(next, catalogue.songCount());
}

TEST(SampleCatalogue, identifiersAreTheSongsOwn) {
    const SampleCatalogue catalogue(1, 5000);
    std::set<std::uint64_t> seen{0};
    for (std::uint32_t song = 0; song < catalogue.songCount(); ++song) {
        const std::uint64_t persistentID = catalogue.persistentIDOfSong(song);
        EXPECT_TRUE(seen.insert(persistentID).second);
        EXPECT_EQ(catalogue.songOfPersistentID(persistentID), song);
    }
    EXPECT_EQ(catalogue.songOfPersistentID(0), std::nullopt);
    EXPECT_EQ(catalogue.songOfPersistentID(12345), std::nullopt);
    EXPECT_EQ(SampleCatalogue(1, 5001).songOfPersistentID(catalogue.persistentIDOfSong(3)),
              std::nullopt)
        << "another size is another library";
    EXPECT_EQ(SampleCatalogue(2, 5000).songOfPersistentID(catalogue.persistentIDOfSong(3)),
              std::nullopt);
}

TEST(SampleCatalogue, noTwoSongsShareTitleAndDuration) {
    const SampleCatalogue catalogue(1, 100000);
    std::set<std::pair<std::string, double>> seen;
    for (std::uint32_t song = 0; song < catalogue.songCount(); ++song) {
        EXPECT_TRUE(
            seen.emplace(titleOfSong(catalogue.outlines(), catalogue.albumOfSong(song), song),
                         catalogue.durationOfSong(song))
                .second)
            << song;
    }
}

TEST(SampleCatalogueDeathTest, refusesImpossibleSizes) {
    EXPECT_DEATH(SampleCatalogue(1, 0), "1 to 2,000,000");
    EXPECT_DEATH(SampleCatalogue(1, SampleCatalogue::mostSongs + 1), "1 to 2,000,000");
}

/// Everything a description tells, counted.
struct Tally {
    std::map<std::string, std::uint32_t> counts;
    void note(const char* what, bool isSo) { counts[what] += isSo ? 1 : 0; }
    std::uint32_t of(const char* what) const { return counts.at(what); }
};

Tally tallyOf(const SampleCatalogue& catalogue) {
    Tally tally;
    SampleSongTexts texts(catalogue);
    for (std::uint32_t song = 0; song < catalogue.outlines().size; ++song) {
        const SongDescription told = texts.descriptionOf(song);
        tally.note("compilation", told.isCompilation);
        tally.note("explicit", told.isExplicit);
        tally.note("cloud", told.isCloudItem);
        tally.note("released", told.releaseDate.has_value());
        tally.note("year", told.year != 0);
        tally.note("above CD rate", told.fileSize > told.playbackDuration * 176400.0);
        tally.note("below CD rate",
                   told.fileSize > 0 && told.fileSize <= told.playbackDuration * 176400.0);
        tally.note("liked", told.likedState == 2);
        tally.note("disliked", told.likedState == 3);
        tally.note("composer", told.composer && !told.composer->empty());
        tally.note("sort title", told.sortTitle.has_value());
        tally.note("sort artist", told.sortArtist.has_value());
        tally.note("sort album", told.sortAlbumTitle.has_value());
        tally.note("no genre", !told.genre);
        tally.note("no album", !told.albumTitle);
        tally.note("no artist", !told.artist);
        tally.note("no library identifier", !told.libraryID);
        tally.note("store identifier", told.playbackStoreID.has_value());
        tally.note("second disc", told.discNumber == 2);
        tally.note("not ASCII", told.title && std::any_of(told.title->begin(), told.title->end(),
                                                          [](char c) { return (c & 0x80) != 0; }));
        EXPECT_TRUE(told.title && !told.title->empty());
        EXPECT_TRUE(told.existsInLibrary);
        EXPECT_GT(told.playbackDuration, 20);
        EXPECT_TRUE(!told.isCompilation || told.albumArtist == "Various Artists");
    }
    return tally;
}

TEST(SampleSongTexts, aLibraryHasAllKindsOfSongs) {
    const Tally tally = tallyOf(SampleCatalogue(1, 3000));
    for (const auto& [what, count] : tally.counts) {
        EXPECT_GT(count, 0U) << what;
        EXPECT_LT(count, 3000U) << what;
    }
    EXPECT_LT(tally.of("above CD rate"), 300U);
    EXPECT_GT(tally.of("below CD rate"), 2000U);
    EXPECT_GT(tally.of("year"), 2800U);
    for (const char* const gap : {"no genre", "no album", "no artist"}) {
        EXPECT_LT(tally.of(gap), 60U) << gap;
    }
}

/// A number of the text, the same in every process and on every computer.
std::uint64_t mixed(std::uint64_t sum, std::optional<std::string_view> text) {
    for (const char c : text.value_or("-")) {
        sum = (sum ^ static_cast<unsigned char>(c)) * 0x0000'0100'0000'01B3;
    }
    return sum * 31;
}

/// Records of a sample library are kept from version to version.
TEST(SampleSongTexts, theMusicIsTheSameInEveryVersion) {
    const SampleCatalogue catalogue(1, 5000);
    SampleSongTexts texts(catalogue);
    std::uint64_t sum = 0;
    for (std::uint32_t song = 0; song < catalogue.outlines().size; ++song) {
        const SongDescription found = texts.descriptionOf(song);
        for (const auto& text : {found.title, found.artist, found.albumTitle, found.albumArtist,
                                 found.genre, found.composer, found.sortArtist}) {
            sum = mixed(sum, text);
        }
        sum = sum * 31 + static_cast<std::uint64_t>(found.playbackDuration * 1000);
    }
    // The arguments of a call draw in the compiler's own order, so that each one has its music.
#ifdef __clang__
    EXPECT_EQ(sum, 17829555778243645411U);
#else
    EXPECT_EQ(sum, 17245237932949619157U);
#endif
}

TEST(SampleSongTexts, aCompilationHasManyArtistsAndAnAlbumOne) {
    const SampleCatalogue catalogue(1, 3000);
    std::uint32_t compilations = 0;
    for (const SampleAlbum& album : catalogue.albums()) {
        std::set<std::uint32_t> artists;
        for (std::uint32_t i = 0; i < album.songCount; ++i) {
            artists.insert(artistOfSong(catalogue.outlines(), album, album.firstSong + i));
        }
        compilations += album.isCompilation ? 1 : 0;
        EXPECT_EQ(artists.size() > 1, album.isCompilation && album.songCount > 1)
            << titleOfAlbum(album);
    }
    EXPECT_GT(compilations, 3U);
}

TEST(SampleSongTexts, tracksCountUpDiscByDisc) {
    const SampleCatalogue catalogue(1, 3000);
    SampleSongTexts texts(catalogue);
    std::set<std::uint32_t> discs;
    for (const SampleAlbum& album : catalogue.albums()) {
        std::optional<std::pair<std::uint32_t, std::uint32_t>> last{{1, 0}};
        for (std::uint32_t song = album.firstSong; song < album.firstSong + album.songCount;
             ++song) {
            const SongDescription told = texts.descriptionOf(song);
            if (told.trackNumber == 0) {
                // A song that lost its album; where the next one stands can't be told from it.
                last.reset();
                continue;
            }
            const std::pair<std::uint32_t, std::uint32_t> place{told.discNumber, told.trackNumber};
            EXPECT_TRUE(!last || place == std::pair(last->first, last->second + 1) ||
                        place == std::pair(last->first + 1, 1U))
                << titleOfAlbum(album) << " " << told.trackNumber;
            last = place;
            discs.insert(told.discNumber);
        }
    }
    EXPECT_EQ(discs, (std::set<std::uint32_t>{1, 2}));
}

TEST(SampleSongTexts, nothingComesOutAfterItWasAdded) {
    const SampleCatalogue catalogue(1, 3000);
    SampleSongTexts texts(catalogue);
    const NSTimeZone greenwich;
    std::uint32_t addedOnReleaseDay = 0;
    for (std::uint32_t song = 0; song < catalogue.songCount(); ++song) {
        const SongDescription told = texts.descriptionOf(song);
        ASSERT_TRUE(told.dateAdded);
        EXPECT_LE(told.year, greenwich.civilTime(*told.dateAdded).year);
        if (told.releaseDate) {
            EXPECT_EQ(told.year, greenwich.civilTime(*told.releaseDate).year);
            const CivilDay released = greenwich.civilDay(*told.releaseDate);
            const CivilDay added = greenwich.civilDay(*told.dateAdded);
            EXPECT_LE(released, added);
            addedOnReleaseDay += released == added ? 1 : 0;
        }
    }
    EXPECT_GT(addedOnReleaseDay, 100U);
}

TEST(SampleSongTexts, streamedSinglesAreOutsideTheLibrary) {
    const SampleCatalogue catalogue(1, 10);
    const std::uint32_t single = catalogue.streamedSongOfWeek(470).value();
    SampleSongTexts texts(catalogue);
    const SongDescription told = texts.descriptionOf(single);
    EXPECT_FALSE(told.existsInLibrary);
    EXPECT_TRUE(told.isCloudItem);
    EXPECT_TRUE(told.playbackStoreID);
    EXPECT_EQ(told.fileSize, 0);
    EXPECT_TRUE(told.albumTitle->ends_with(" - Single"));
    EXPECT_EQ(catalogue.streamedSongOfWeek(471), std::nullopt);
    EXPECT_EQ(catalogue.streamedSongOfWeek(468), std::nullopt);
}

}  // namespace
}  // namespace tavrion
