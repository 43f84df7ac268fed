#include "platform/mediaplayer/MPMediaItem.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/foundation/NSLog.h"
#include "platform/mediaplayer/Source.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

NSDate at(double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

TestSong fullSong() {
    return {.title = "The Title",
            .artist = "The Artist",
            .albumArtist = "Album Artist",
            .albumTitle = "Album",
            .genre = "Genre",
            .duration = 201.5,
            .playCount = 7,
            .skipCount = 3,
            .lastPlayed = at(400),
            .added = at(100),
            .released = at(50),
            .lastSkipped = at(300),
            .persistentID = 0xFFFFFFFFFFFFFFF0U,
            .storeID = "1234",
            .libraryID = "LIB",
            .sortTitle = "Title, The",
            .composer = "Composer",
            .track = 4,
            .disc = 2,
            .year = 1999,
            .likedState = 2,
            .fileSize = 5e9,
            .compilation = true,
            .explicitContent = true,
            .cloud = true,
            .inLibrary = false,
            .trackCount = 12};
}

TEST(MPMediaItem, readsEveryPropertyByName) {
    const MediaLibraryFixture fixture({fullSong()});
    const MPMediaItem item = fixture.song("The Title");
    const std::pair<const char*, Value> expected[] = {
        {"title", "The Title"},
        {"artist", "The Artist"},
        {"albumArtist", "Album Artist"},
        {"albumTitle", "Album"},
        {"genre", "Genre"},
        {"composer", "Composer"},
        {"sortTitle", "Title, The"},
        {"playbackDuration", 201.5},
        {"playCount", 7},
        {"skipCount", 3},
        {"lastPlayedDate", at(400)},
        {"dateAdded", at(100)},
        {"releaseDate", at(50)},
        {"lastSkippedDate", at(300)},
        {"dateAccessed", at(400)},
        {"persistentID", std::uint64_t{0xFFFFFFFFFFFFFFF0U}},
        {"albumPersistentID", item.albumPersistentID()},
        {"artistPersistentID", item.artistPersistentID()},
        {"albumArtistPersistentID", item.albumArtistPersistentID()},
        {"genrePersistentID", item.genrePersistentID()},
        {"composerPersistentID", item.composerPersistentID()},
        {"playbackStoreID", "1234"},
        {"cloudUniversalLibraryId", "LIB"},
        {"multiverseIdentifier", Value::Dictionary{{"cloudUniversalLibraryId", "LIB"}}},
        {"albumTrackCount", 12},
        {"albumTrackNumber", 4},
        {"discNumber", 2},
        {"year", 1999},
        {"likedState", 2},
        {"fileSize", 5e9},
        {"isCompilation", true},
        {"isExplicitItem", true},
        {"explicitItem", true},
        {"isCloudItem", true},
        {"existsInLibrary", false},
        {"mediaType", 1},
    };
    for (const auto& [name, value] : expected) {
        EXPECT_EQ(item.valueForProperty(name), value) << name;
        EXPECT_EQ(item.valueForKey(name), value) << name;
    }
}

TEST(MPMediaItem, readsMissingValuesAsAbsent) {
    const MediaLibraryFixture fixture(std::vector<TestSong>{{.title = "Bare", .artist = ""}});
    const MPMediaItem item = fixture.song("Bare");
    for (const char* name :
         {"artist", "albumArtist", "composer", "sortTitle", "lastPlayedDate", "dateAdded",
          "lastSkippedDate", "dateAccessed", "noSuchProperty", ""}) {
        EXPECT_TRUE(item.valueForProperty(name).isAbsent()) << name;
        EXPECT_TRUE(item.valueForKey(name).isAbsent()) << name;
    }
    EXPECT_EQ(item.playbackStoreID(), "");
    EXPECT_EQ(item.valueForKey("multiverseIdentifier"), Value(Value::Dictionary()));
    EXPECT_EQ(item.valueForKey("existsInLibrary"), Value(true));
}

TEST(MPMediaItem, consultsComputedKeysByKeyOnly) {
    const MediaLibraryFixture fixture({{.title = "Loud"}});
    MPMediaItem::registerComputedKey("testKey", [](const MPMediaItem& item) {
        return Value(std::string(item.title().value()) + "!");
    });
    EXPECT_EQ(fixture.song("Loud").valueForKey("testKey"), Value("Loud!"));
    EXPECT_TRUE(fixture.song("Loud").valueForProperty("testKey").isAbsent());
    MPMediaItem::registerComputedKey("testKey", [](const MPMediaItem&) { return Value(2); });
    EXPECT_EQ(fixture.song("Loud").valueForKey("testKey"), Value(2));
}

TEST(MPMediaItem, registersComputedKeysWhileOthersRead) {
    const MediaLibraryFixture fixture({{.title = "Song"}});
    const MPMediaItem item = fixture.song("Song");
    std::thread writer([] {
        for (int i = 0; i < 200; ++i) {
            MPMediaItem::registerComputedKey("busyKey",
                                             [i](const MPMediaItem&) { return Value(i); });
        }
    });
    for (int i = 0; i < 200; ++i) {
        item.valueForKey("busyKey");
    }
    writer.join();
    EXPECT_EQ(item.valueForKey("busyKey"), Value(199));
}

TEST(MPMediaItem, isTheSameWithinOneSnapshotOnly) {
    MediaLibraryFixture fixture({{.title = "a"}, {.title = "b"}});
    const MPMediaItem before = fixture.song("a");
    EXPECT_EQ(before, fixture.song("a"));
    EXPECT_NE(before, fixture.song("b"));
    fixture.publish({{.title = "a"}, {.title = "b"}});
    EXPECT_NE(before, fixture.song("a"));
    EXPECT_EQ(before.title(), "a");
}

class LikableSource : public Source {
  public:
    std::string kind() const override { return "likable"; }
    std::string location() const override { return "here"; }
    SourceCapabilities capabilities() const override { return {.canWriteLikes = able}; }
    Result<std::shared_ptr<const MediaSnapshot>> read() override { return MediaSnapshot::empty(); }
    Result<void> setLiked(std::uint64_t persistentID, std::uint32_t likedState) override {
        if (broken) {
            return NSError{"the player is gone", {}};
        }
        written.emplace_back(persistentID, likedState);
        return {};
    }
    bool able = true;
    bool broken = false;
    std::vector<std::pair<std::uint64_t, std::uint32_t>> written;
};

class Lines : public LogSink {
  public:
    void line(std::string_view text) override { lines.emplace_back(text); }
    std::vector<std::string> lines;
};

TEST(MPMediaItem, writesTheLikedStateThroughTheSource) {
    MediaLibraryFixture fixture({{.title = "a", .persistentID = 77}});
    const auto source = std::make_shared<LikableSource>();
    fixture.library().setSource(source);
    const MPMediaItem item = fixture.song("a");
    EXPECT_TRUE(item.respondsToSetValueForProperty());
    item.setValueForProperty(2, "likedState");
    item.setValueForProperty("2", "likedState");
    item.setValueForProperty(-1, "likedState");
    item.setValueForProperty(5, "playCount");
    EXPECT_EQ(source->written, (std::vector<std::pair<std::uint64_t, std::uint32_t>>{{77, 2}}));
}

TEST(MPMediaItem, writesNothingWhereNobodyCan) {
    MediaLibraryFixture fixture({{.title = "a"}});
    const MPMediaItem item = fixture.song("a");
    EXPECT_FALSE(item.respondsToSetValueForProperty());
    item.setValueForProperty(2, "likedState");
    const auto source = std::make_shared<LikableSource>();
    source->able = false;
    fixture.library().setSource(source);
    EXPECT_FALSE(item.respondsToSetValueForProperty());
    item.setValueForProperty(2, "likedState");
    EXPECT_TRUE(source->written.empty());
}

TEST(MPMediaItem, logsALikeThatWasNotWritten) {
    MediaLibraryFixture fixture({{.title = "Tune"}});
    Lines lines;
    const Port<LogSink>::Plug plug(lines);
    const auto source = std::make_shared<LikableSource>();
    source->broken = true;
    fixture.library().setSource(source);
    fixture.song("Tune").setValueForProperty(3, "likedState");
    ASSERT_EQ(lines.lines.size(), 1U);
    EXPECT_NE(lines.lines[0].find("Tune"), std::string::npos);
    EXPECT_NE(lines.lines[0].find("the player is gone"), std::string::npos);
}

}  // namespace
}  // namespace tavrion
