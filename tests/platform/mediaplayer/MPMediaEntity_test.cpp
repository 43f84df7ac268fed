#include "platform/mediaplayer/MPMediaEntity.h"

#include <gtest/gtest.h>

#include "platform/mediaplayer/MPMediaQuery.h"
#include "platform/mediaplayer/Source.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

TEST(MPMediaEntity, isASongOrACollectionOrNothing) {
    MediaLibraryFixture fixture({{.title = "a", .persistentID = 7}},
                                {{.name = "Mix", .persistentID = 9, .songs = {7}}});
    const MPMediaEntity song = fixture.song("a");
    ASSERT_NE(song.item(), nullptr);
    EXPECT_EQ(song.collection(), nullptr);
    EXPECT_EQ(song.persistentID(), 7U);
    EXPECT_EQ(song.groupingType(), MPMediaGrouping::title);
    EXPECT_EQ(song.representativeItem(), fixture.song("a"));
    EXPECT_EQ(song.valueForKey("title"), Value("a"));
    EXPECT_EQ(song.playlist(), std::nullopt);

    const MPMediaEntity album = MPMediaQuery::albumsQuery().collections().front();
    EXPECT_EQ(album.item(), nullptr);
    ASSERT_NE(album.collection(), nullptr);
    EXPECT_EQ(album.groupingType(), MPMediaGrouping::album);
    EXPECT_EQ(album.persistentID(), album.collection()->persistentID());
    EXPECT_EQ(album.representativeItem(), fixture.song("a"));
    EXPECT_EQ(album.valueForKey("count"), Value(1));
    EXPECT_EQ(album.playlist(), std::nullopt);

    const MPMediaEntity nothing;
    EXPECT_TRUE(nothing.isEmpty());
    EXPECT_FALSE(song.isEmpty());
    EXPECT_EQ(nothing.item(), nullptr);
    EXPECT_EQ(nothing.collection(), nullptr);
    EXPECT_EQ(nothing.representativeItem(), std::nullopt);
    EXPECT_EQ(nothing.persistentID(), 0U);
    EXPECT_EQ(nothing.valueForKey("title"), Value());
}

TEST(MPMediaEntity, aPlaylistIsACollectionToo) {
    MediaLibraryFixture fixture({{.title = "a", .persistentID = 7}},
                                {{.name = "Mix", .persistentID = 9, .songs = {7}}});
    const MPMediaEntity mix = MPMediaQuery::playlistsQuery().collections().front();
    ASSERT_NE(mix.collection(), nullptr);
    ASSERT_TRUE(mix.playlist());
    EXPECT_EQ(mix.playlist()->name(), "Mix");
    EXPECT_EQ(mix.groupingType(), MPMediaGrouping::playlist);
    EXPECT_EQ(mix.persistentID(), 9U);
}

TEST(MPMediaEntity, equalsTheSameOfTheSameSnapshot) {
    MediaLibraryFixture fixture({{.title = "a"}, {.title = "b"}});
    const MPMediaEntity song = fixture.song("a");
    EXPECT_EQ(song, MPMediaEntity(fixture.song("a")));
    EXPECT_NE(song, MPMediaEntity(fixture.song("b")));
    EXPECT_NE(song, MPMediaEntity());
    EXPECT_NE(song, MPMediaEntity(MPMediaItemCollection({fixture.song("a")})));
    EXPECT_EQ(MPMediaEntity(MPMediaItemCollection({fixture.song("a")})),
              MPMediaEntity(MPMediaItemCollection({fixture.song("a")})));
}

class PictureSource : public Source {
  public:
    std::string kind() const override { return "pictures"; }
    std::string location() const override { return "here"; }
    Result<std::shared_ptr<const MediaSnapshot>> read() override { return MediaSnapshot::empty(); }
    std::optional<NSData> artwork(std::uint64_t persistentID) const override {
        return persistentID == 7 ? std::optional(NSData{"song 7"}) : std::nullopt;
    }
    std::optional<NSData> bestImageFromDisk(MPMediaGrouping grouping,
                                            std::uint64_t persistentID) const override {
        return grouping == MPMediaGrouping::playlist && persistentID == 9
                   ? std::optional(NSData{"playlist 9"})
                   : std::nullopt;
    }
};

TEST(MPMediaEntity, itsPicturesComeFromTheSource) {
    MediaLibraryFixture fixture(
        {{.title = "a", .persistentID = 7}, {.title = "b", .albumTitle = "B", .persistentID = 8}},
        {{.name = "Mix", .persistentID = 9, .songs = {7}}, {.name = "Bare", .persistentID = 10}});
    const auto source = std::make_shared<PictureSource>();
    const auto playlists = MPMediaQuery::playlistsQuery().collections();
    EXPECT_EQ(MPMediaEntity(fixture.song("a")).artwork(), std::nullopt);
    EXPECT_EQ(MPMediaEntity(playlists[0]).bestImageFromDisk(), std::nullopt);
    fixture.library().setSource(source);
    EXPECT_EQ(MPMediaEntity(fixture.song("a")).artwork(), NSData{"song 7"});
    EXPECT_EQ(MPMediaEntity(fixture.song("b")).artwork(), std::nullopt);
    EXPECT_EQ(MPMediaEntity(playlists[0]).artwork(), NSData{"song 7"});
    EXPECT_EQ(MPMediaEntity(playlists[1]).artwork(), std::nullopt);
    EXPECT_EQ(MPMediaEntity(playlists[0]).bestImageFromDisk(), NSData{"playlist 9"});
    EXPECT_EQ(MPMediaEntity(playlists[1]).bestImageFromDisk(), std::nullopt);
    EXPECT_EQ(MPMediaEntity(fixture.song("a")).bestImageFromDisk(), std::nullopt);
    EXPECT_EQ(MPMediaEntity().artwork(), std::nullopt);
    EXPECT_EQ(MPMediaEntity().bestImageFromDisk(), std::nullopt);
}

}  // namespace
}  // namespace tavrion
