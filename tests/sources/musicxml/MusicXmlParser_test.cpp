#include "sources/musicxml/MusicXmlParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/testing/MediaLibraryFixture.h"
#include "tests/sources/musicxml/LibraryText.h"

namespace tavrion {
namespace {

using testing::ElementsAre;

class MusicXmlParserTest : public testing::Test {
  protected:
    static NSDate at(double secondsSince1970) {
        return NSDate::dateWithTimeIntervalSince1970(secondsSince1970);
    }
    static MPMediaItem song(const std::string& values) {
        return onlySong(library(track(1, values)));
    }

    MediaLibraryFixture region_;
};

TEST_F(MusicXmlParserTest, fillsASong) {
    const MPMediaItem item = onlySong(library(
        "<key>77</key><dict>" + integer("Track ID", "77") + text("Name", "The A &amp; B &#233;") +
        text("Artist", "Art") + text("Album Artist", "Both") + text("Album", "Alb") +
        text("Composer", "Com") + text("Genre", "Gen") + text("Sort Name", "A &amp; B") +
        text("Sort Artist", "SA") + text("Sort Album Artist", "SAA") + text("Sort Album", "SAl") +
        text("Persistent ID", "1ABA8417E4946A32") + text("Location", "file:///x.mp3") +
        text("Track Type", "File") + integer("Size", "9000000000") +
        integer("Total Time", "182674") + integer("Disc Number", "2") +
        integer("Track Number", "3") + integer("Track Count", "12") + integer("Year", "2012") +
        integer("Play Count", "12") + integer("Skip Count", "4") +
        integer("Play Date", "3513593824") + date("Play Date UTC", "2015-05-04T12:00:24Z") +
        date("Skip Date", "2015-02-05T15:41:04Z") + date("Date Added", "2014-04-24T09:28:38Z") +
        date("Release Date", "2012-05-25T07:00:00Z") + yes("Compilation") + yes("Explicit") +
        yes("Loved") + "</dict>"));
    EXPECT_EQ(item.title(), "The A & B é");
    EXPECT_EQ(item.artist(), "Art");
    EXPECT_EQ(item.albumArtist(), "Both");
    EXPECT_EQ(item.albumTitle(), "Alb");
    EXPECT_EQ(item.composer(), "Com");
    EXPECT_EQ(item.genre(), "Gen");
    EXPECT_EQ(item.sortTitle(), "A & B");
    EXPECT_EQ(item.sortArtist(), "SA");
    EXPECT_EQ(item.sortAlbumArtist(), "SAA");
    EXPECT_EQ(item.sortAlbumTitle(), "SAl");
    EXPECT_EQ(item.persistentID(), 0x1ABA8417E4946A32U);
    EXPECT_EQ(item.cloudUniversalLibraryId(), "1ABA8417E4946A32");
    EXPECT_EQ(item.playbackStoreID(), "");
    EXPECT_EQ(item.fileSize(), 9e9);
    EXPECT_EQ(item.playbackDuration(), 182.674);
    EXPECT_EQ(item.discNumber(), 2U);
    EXPECT_EQ(item.albumTrackNumber(), 3U);
    EXPECT_EQ(item.albumTrackCount(), 12U);
    EXPECT_EQ(item.year(), 2012U);
    EXPECT_EQ(item.playCount(), 12U);
    EXPECT_EQ(item.skipCount(), 4U);
    EXPECT_EQ(item.lastPlayedDate(), at(1430740824));
    EXPECT_EQ(item.lastSkippedDate(), at(1423150864));
    EXPECT_EQ(item.dateAdded(), at(1398331718));
    EXPECT_EQ(item.releaseDate(), at(1337929200));
    EXPECT_TRUE(item.isCompilation());
    EXPECT_TRUE(item.isExplicitItem());
    EXPECT_TRUE(item.existsInLibrary());
    EXPECT_FALSE(item.isCloudItem());
    EXPECT_EQ(item.likedState(), 2U);
    EXPECT_EQ(item.mediaType(), 1);
}

TEST_F(MusicXmlParserTest, readsMissingValuesAsZeroOrAbsent) {
    const MPMediaItem item = song("");
    EXPECT_EQ(item.title(), std::nullopt);
    EXPECT_EQ(item.lastPlayedDate(), std::nullopt);
    EXPECT_EQ(item.playCount(), 0U);
    EXPECT_EQ(item.playbackDuration(), 0);
    EXPECT_EQ(item.likedState(), 0U);
    EXPECT_FALSE(item.isCompilation());
}

TEST_F(MusicXmlParserTest, readsNeverAsAbsent) {
    const MPMediaItem item = song(date("Play Date UTC", "2040-02-06T06:28:16Z") +
                                  date("Skip Date", "1904-01-01T00:00:00Z") +
                                  date("Date Added", "2014-04-24T09:28:38Z"));
    EXPECT_EQ(item.lastPlayedDate(), std::nullopt);
    EXPECT_EQ(item.lastSkippedDate(), std::nullopt);
    EXPECT_NE(item.dateAdded(), std::nullopt);
}

TEST_F(MusicXmlParserTest, tellsWhatIsNotMusic) {
    EXPECT_EQ(song(yes("Podcast")).mediaType(), 2);
    EXPECT_EQ(song(yes("Audiobook")).mediaType(), 4);
    EXPECT_EQ(song(yes("Movie") + yes("Has Video")).mediaType(), 256);
    EXPECT_EQ(song(yes("TV Show") + yes("Has Video")).mediaType(), 512);
    EXPECT_EQ(song(yes("Has Video")).mediaType(), 1024);
    EXPECT_EQ(song(yes("Music Video") + yes("Has Video")).mediaType(), 1);
    EXPECT_EQ(song("<key>Podcast</key><false/>").mediaType(), 1);
}

TEST_F(MusicXmlParserTest, readsLikesAndTheirOpposite) {
    EXPECT_EQ(song(yes("Favorited")).likedState(), 2U);
    EXPECT_EQ(song(yes("Disliked")).likedState(), 3U);
    EXPECT_EQ(song("<key>Loved</key><false/>").likedState(), 0U);
}

TEST_F(MusicXmlParserTest, tellsSongsWithoutAFile) {
    EXPECT_TRUE(song(text("Track Type", "Remote")).isCloudItem());
    EXPECT_TRUE(song(yes("Apple Music")).isCloudItem());
    EXPECT_FALSE(song(yes("Apple Music") + text("Location", "file:///a")).isCloudItem());
    EXPECT_FALSE(song(text("Track Type", "URL") + text("Location", "http://a")).isCloudItem());
    EXPECT_FALSE(song("").isCloudItem());
}

TEST_F(MusicXmlParserTest, tellsSongsOutsideOfTheLibrary) {
    EXPECT_FALSE(song(yes("Playlist Only")).existsInLibrary());
}

TEST_F(MusicXmlParserTest, knowsASongWithoutIdentifierByItsPlace) {
    const std::string begin = "<key>1</key><dict>" + integer("Track ID", "1") + text("Name", "N");
    const auto idOf = [&](const std::string& values) {
        return onlySong(library(begin + values + "</dict>")).persistentID();
    };
    EXPECT_EQ(idOf(text("Location", "file:///a")),
              idOf(text("Location", "file:///a") + integer("Play Count", "1")));
    EXPECT_NE(idOf(text("Location", "file:///a")), idOf(text("Location", "file:///b")));
    EXPECT_NE(idOf(text("Album", "A")), idOf(text("Album", "B")));
    EXPECT_NE(idOf(integer("Total Time", "1")), idOf(integer("Total Time", "2")));
    EXPECT_EQ(onlySong(library(begin + "</dict>")).cloudUniversalLibraryId(), std::nullopt);
}

TEST_F(MusicXmlParserTest, countsTracksOfOneIdentifier) {
    const auto outcome = parsed(library(track(1, "") + track(1, "") + track(2, "")));
    ASSERT_TRUE(outcome.ok());
    EXPECT_EQ(outcome.value()->songs().size(), 2U);
    EXPECT_EQ(outcome.value()->droppedSongCount(), 1U);
}

std::string playlist(const std::string& name, const std::string& values,
                     const std::vector<int>& tracks = {}) {
    std::string items;
    for (const int number : tracks) {
        items += "<dict>" + integer("Track ID", std::to_string(number)) + "</dict>\n";
    }
    return "<dict>" + text("Name", name) + values + "<key>Playlist Items</key><array>" + items +
           "</array></dict>\n";
}

TEST_F(MusicXmlParserTest, readsPlaylistsAndFolders) {
    const auto outcome = parsed(library(
        track(30, text("Name", "b")) + track(20, text("Name", "a")),
        playlist("Library", yes("Master") + "<key>Visible</key><false/>", {30, 20}) +
            playlist("Films", integer("Distinguished Kind", "2")) +
            playlist("Folder", yes("Folder") + text("Playlist Persistent ID", "AB")) +
            playlist("Mine",
                     text("Playlist Persistent ID", "CD") + text("Parent Persistent ID", "AB") +
                         "<key>Smart Info</key><data>AQEAAwAAAAIAAAAZ\nAA==</data>",
                     {20, 30, 20, 99})));
    ASSERT_TRUE(outcome.ok()) << outcome.error().localizedDescription;
    const MediaSnapshot& snapshot = *outcome.value();
    const auto playlists = snapshot.playlists();
    ASSERT_EQ(playlists.size(), 4U);
    EXPECT_EQ(playlists[0].flags, PlaylistRecord::stock | PlaylistRecord::hidden);
    EXPECT_EQ(playlists[1].flags, PlaylistRecord::stock);
    EXPECT_EQ(playlists[2].flags, PlaylistRecord::folder);
    EXPECT_EQ(playlists[2].persistentID, 0xABU);
    EXPECT_EQ(playlists[3].flags, 0U);
    EXPECT_EQ(playlists[3].parentPersistentID, 0xABU);
    EXPECT_EQ(snapshot.text(playlists[3].name), "Mine");
    EXPECT_THAT(snapshot.songsOfPlaylist(playlists[0]), ElementsAre(1, 0));
    EXPECT_THAT(snapshot.songsOfPlaylist(playlists[3]), ElementsAre(0, 1, 0));
}

TEST_F(MusicXmlParserTest, anEntryOfAnUnknownTrackIsLeftOutWhereverItStands) {
    const auto outcome = parsed(library(track(20, text("Name", "a")) + track(30, text("Name", "b")),
                                        playlist("P", "", {10, 20, 25, 30, 35, 20})));
    ASSERT_TRUE(outcome.ok()) << outcome.error().localizedDescription;
    const MediaSnapshot& snapshot = *outcome.value();
    EXPECT_THAT(snapshot.songsOfPlaylist(snapshot.playlists()[0]), ElementsAre(0, 1, 0));
}

TEST_F(MusicXmlParserTest, aTrackWithoutItsNumberInsideIsKnownByItsKey) {
    const std::string own =
        "<key>7</key><dict>" + text("Name", "a") + text("Persistent ID", "A") + "</dict>";
    const std::string other = "<key>8</key><dict>" + integer("Track ID", "9") + text("Name", "b") +
                              text("Persistent ID", "B") + "</dict>";
    const auto outcome = parsed(library(own + other, playlist("P", "", {8, 9, 7})));
    ASSERT_TRUE(outcome.ok()) << outcome.error().localizedDescription;
    const MediaSnapshot& snapshot = *outcome.value();
    EXPECT_THAT(snapshot.songsOfPlaylist(snapshot.playlists()[0]), ElementsAre(1, 0))
        << "the number inside goes before the key";
}

TEST_F(MusicXmlParserTest, twoTracksOfOneIdentifierAreListedEachByItsNumber) {
    const auto outcome = parsed(library(
        "<key>1</key><dict>" + integer("Track ID", "1") + text("Persistent ID", "A") +
            text("Name", "a") + text("Location", "file:///a") + "</dict><key>2</key><dict>" +
            integer("Track ID", "2") + text("Persistent ID", "A") + text("Name", "b") +
            text("Location", "file:///b") + "</dict>",
        playlist("P", "", {2, 1})));
    ASSERT_TRUE(outcome.ok()) << outcome.error().localizedDescription;
    const MediaSnapshot& snapshot = *outcome.value();
    ASSERT_EQ(snapshot.songs().size(), 2U);
    EXPECT_THAT(snapshot.songsOfPlaylist(snapshot.playlists()[0]), ElementsAre(1, 0));
    EXPECT_EQ(snapshot.duplicates().size(), 1U);
}

TEST_F(MusicXmlParserTest, readsPlaylistsThatComeBeforeTheTracks) {
    const auto outcome = parsed(plist("<dict><key>Playlists</key><array>" + playlist("P", "", {5}) +
                                      "</array><key>Tracks</key><dict>" +
                                      track(5, text("Name", "x")) + "</dict></dict>"));
    ASSERT_TRUE(outcome.ok());
    EXPECT_THAT(outcome.value()->songsOfPlaylist(outcome.value()->playlists()[0]), ElementsAre(0));
}

TEST_F(MusicXmlParserTest, passesOverWhatIsOfNoUse) {
    const MPMediaItem item =
        onlySong(plist("<dict>" + date("Date", "not read") + integer("Features", "5") +
                       "<key>Extra</key><dict><key>Tracks</key><array><dict><key>Name</"
                       "key><string>no</string></dict>"
                       "<real>1.5</real></array></dict><key>Tracks</key><dict>" +
                       track(1, text("Name", "yes") + integer("Rating", "-3") +
                                    "<key>Artwork</key><array><data/></array>") +
                       "</dict></dict>"));
    EXPECT_EQ(item.title(), "yes");
}

TEST_F(MusicXmlParserTest, readsWindowsLineEndsAndAByteOrderMark) {
    std::string bytes = "\xEF\xBB\xBF";
    for (const char byte : library(track(1, text("Name", "one\ntwo")))) {
        bytes += byte == '\n' ? std::string("\r\n") : std::string(1, byte);
    }
    EXPECT_EQ(onlySong(bytes).title(), "one\ntwo");
}

TEST_F(MusicXmlParserTest, readsALibraryWithoutItsRootElement) {
    EXPECT_EQ(onlySong("<dict><key>Tracks</key><dict>" + track(1, text("Name", "bare")) +
                       "</dict></dict>")
                  .title(),
              "bare");
}

TEST_F(MusicXmlParserTest, readsATextOfAMillionCharacters) {
    const std::string name(1000000, 'x');
    EXPECT_EQ(song(text("Name", name)).title(), name);
}

TEST_F(MusicXmlParserTest, readsAnEmptyLibrary) {
    const auto outcome = parsed(library(""));
    ASSERT_TRUE(outcome.ok());
    EXPECT_TRUE(outcome.value()->songs().empty());
}

TEST_F(MusicXmlParserTest, readsTheSameInPiecesOfAnySize) {
    const std::string bytes =
        library(track(1, text("Name", "héllo &lt;") + integer("Play Count", "3")));
    for (std::size_t size = 1; size < 40; ++size) {
        MusicXmlParser parser("Library.xml", bytes.size());
        for (std::size_t start = 0; start < bytes.size(); start += size) {
            const std::string piece = bytes.substr(start, size);
            std::copy(piece.begin(), piece.end(), parser.buffer().begin());
            ASSERT_TRUE(parser.parseBuffer(piece.size()));
        }
        const auto outcome = parser.finish();
        ASSERT_TRUE(outcome.ok());
        EXPECT_EQ(outcome.value()->text(0, SongText::title), "héllo <");
        EXPECT_EQ(outcome.value()->songs()[0].playCount, 3U);
    }
}

}  // namespace
}  // namespace tavrion
