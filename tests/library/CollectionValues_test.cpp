#include "library/CollectionValues.h"

#include <gtest/gtest.h>

#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

NSDate at(double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

std::vector<MPMediaItem> allSongs(MediaLibraryFixture& library) {
    const auto snapshot = library.library().snapshot();
    std::vector<MPMediaItem> songs;
    for (std::uint32_t position = 0; position < snapshot->songs().size(); ++position) {
        songs.emplace_back(snapshot, position);
    }
    return songs;
}

TEST(CollectionValues, areThoseOfAllSongsTogether) {
    MediaLibraryFixture library(
        {{.title = "a",
          .albumTitle = "A",
          .duration = 100.5,
          .playCount = 2,
          .added = at(-5),
          .year = 1999},
         {.title = "b",
          .albumTitle = "B",
          .duration = 10,
          .playCount = 3,
          .lastPlayed = at(7),
          .added = at(-9)},
         {.title = "c", .albumTitle = "A", .duration = 1000, .year = 2001}});
    const auto songs = allSongs(library);
    EXPECT_EQ(CollectionValues::playCount(songs), 5U);
    EXPECT_EQ(CollectionValues::secondsListened(songs), 231.0);
    EXPECT_EQ(CollectionValues::latest(songs, &MPMediaItem::lastPlayedDate), at(7));
    EXPECT_EQ(CollectionValues::latest(songs, &MPMediaItem::dateAdded), at(-5));
    EXPECT_EQ(CollectionValues::latest(songs, &MPMediaItem::releaseDate), std::nullopt);
    EXPECT_EQ(CollectionValues::latestYear(songs), 2001U);
    EXPECT_EQ(CollectionValues::distinctCount(songs, &MPMediaItem::albumPersistentID), 2U);
    EXPECT_EQ(CollectionValues::distinctCount(songs, &MPMediaItem::persistentID), 3U);
}

TEST(CollectionValues, ofNoSongsAreNothing) {
    EXPECT_EQ(CollectionValues::playCount({}), 0U);
    EXPECT_EQ(CollectionValues::secondsListened({}), 0.0);
    EXPECT_EQ(CollectionValues::latest({}, &MPMediaItem::dateAdded), std::nullopt);
    EXPECT_EQ(CollectionValues::latestYear({}), std::nullopt);
    EXPECT_EQ(CollectionValues::distinctCount({}, &MPMediaItem::albumPersistentID), 0U);
}

TEST(CollectionValues, aYearOfZeroIsAYearAndNoIdentifierIsOneToo) {
    MediaLibraryFixture library(std::vector<TestSong>{{.title = "a", .artist = ""}});
    EXPECT_EQ(CollectionValues::latestYear(allSongs(library)), 0U);
    EXPECT_EQ(
        CollectionValues::distinctCount(allSongs(library), &MPMediaItem::albumArtistPersistentID),
        1U);
}

}  // namespace
}  // namespace tavrion
