#include <gtest/gtest.h>

#include "platform/mediaplayer/MPMediaItemCollection+Extended.h"
#include "platform/mediaplayer/MPMediaQuery.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using Text = std::optional<std::string>;

class CollectionKeys : public testing::Test {
  protected:
    static MPMediaItemCollection first(MPMediaGrouping grouping) {
        MPMediaQuery query = MPMediaQuery::songsQuery();
        query.setGroupingType(grouping);
        return query.collections().front();
    }
    static Text key(MPMediaGrouping grouping) { return Extended::sortKey(first(grouping)); }
    static Text artistKey(MPMediaGrouping grouping) {
        return Extended::sortArtistKey(first(grouping));
    }

    MediaLibraryFixture fixture_{{{.artist = "The Band",
                                   .albumArtist = "The Album Band",
                                   .albumTitle = "The Album",
                                   .genre = "Rock",
                                   .composer = "Someone"}},
                                 {{.name = "Mix", .persistentID = 9}}};
};

TEST_F(CollectionKeys, withoutSortNamesTheNamesCount) {
    EXPECT_EQ(key(MPMediaGrouping::album), "The Album");
    EXPECT_EQ(key(MPMediaGrouping::albumArtist), "The Album Band");
    EXPECT_EQ(key(MPMediaGrouping::genre), "Rock");
    EXPECT_EQ(artistKey(MPMediaGrouping::albumArtist), "The Album Band");
    EXPECT_EQ(artistKey(MPMediaGrouping::artist), "The Band");
}

TEST_F(CollectionKeys, sortNamesComeFirst) {
    fixture_.publish({{.artist = "The Band",
                       .albumArtist = "The Album Band",
                       .albumTitle = "The Album",
                       .sortArtist = "Band",
                       .sortAlbumArtist = "Album Band",
                       .sortAlbumTitle = "Album"}});
    EXPECT_EQ(key(MPMediaGrouping::album), "Album");
    EXPECT_EQ(key(MPMediaGrouping::albumArtist), "Album Band");
    EXPECT_EQ(artistKey(MPMediaGrouping::albumArtist), "Album Band");
    EXPECT_EQ(artistKey(MPMediaGrouping::artist), "Band");
}

TEST_F(CollectionKeys, aPlaylistFilesUnderItsName) {
    EXPECT_EQ(key(MPMediaGrouping::playlist), "Mix");
    EXPECT_EQ(artistKey(MPMediaGrouping::playlist), "");
}

TEST_F(CollectionKeys, otherKindsHaveNone) {
    EXPECT_EQ(key(MPMediaGrouping::artist), std::nullopt);
    EXPECT_EQ(key(MPMediaGrouping::composer), std::nullopt);
    EXPECT_EQ(Extended::sortKey(MPMediaItemCollection({fixture_.song("Song")})), std::nullopt);
    EXPECT_EQ(artistKey(MPMediaGrouping::album), "");
    EXPECT_EQ(artistKey(MPMediaGrouping::genre), "");
    EXPECT_EQ(Extended::sortArtistKey(MPMediaItemCollection({fixture_.song("Song")})), "");
}

TEST_F(CollectionKeys, aNamelessArtistHasNoKey) {
    fixture_.publish({{.artist = "", .albumTitle = ""}});
    EXPECT_EQ(artistKey(MPMediaGrouping::artist), std::nullopt);
    EXPECT_EQ(artistKey(MPMediaGrouping::albumArtist), std::nullopt);
    EXPECT_EQ(key(MPMediaGrouping::albumArtist), std::nullopt);
    EXPECT_EQ(key(MPMediaGrouping::album), std::nullopt);
}

}  // namespace
}  // namespace tavrion
