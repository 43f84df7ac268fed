// A snapshot as a file, and the cache that keeps it while the library stays the same.

#include "platform/mediaplayer/MediaSnapshotFile.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "platform/mediaplayer/MediaSnapshotCache.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

/// A library that a test changes at will, and that counts how often it was read.
class CountedSource final : public Source {
  public:
    std::string kind() const override { return "counted"; }
    std::string location() const override { return place; }
    std::optional<std::string> stamp() const override { return look; }
    Result<std::shared_ptr<const MediaSnapshot>> read() override {
        ++readings;
        if (changesWhileRead) {
            look = *look + "+";
        }
        if (fails) {
            return NSError{"it can't be read", {}};
        }
        return snapshotOf({{.title = title}});
    }

    std::string place = "here";
    std::optional<std::string> look = "1";
    std::string title = "Song";
    bool changesWhileRead = false;
    bool fails = false;
    int readings = 0;
};

class MediaSnapshotFileTest : public testing::Test {
  protected:
    MediaSnapshotFileTest() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tavrion-snapshot-XXXXXX").string();
        directory = ::mkdtemp(pattern.data());
    }
    ~MediaSnapshotFileTest() override { std::filesystem::remove_all(directory); }

    std::filesystem::path file() const { return directory / "library.snapshot"; }
    std::string content() const {
        std::ifstream stream(file(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    void setContent(const std::string& bytes) const {
        std::ofstream(file(), std::ios::binary) << bytes;
    }
    static std::shared_ptr<const MediaSnapshot> made() {
        return snapshotOf(
            {{.title = "Élan",
              .lastPlayed = NSDate::dateWithTimeIntervalSinceReferenceDate(12.5),
              .storeID = "store",
              .libraryID = "one",
              .sortTitle = "Elan",
              .track = 3},
             {.title = "", .artist = "", .albumTitle = "", .persistentID = 77},
             {.title = "Out", .playCount = 9, .inLibrary = false},
             {.title = "Left out", .persistentID = 77}},
            {{.name = "Mine", .persistentID = 5, .songs = {1, 77, 1}}, {.hidden = true}});
    }
    static std::string titleIn(const MediaSnapshot& snapshot) {
        return std::string(snapshot.text(0, SongText::title).value_or("(none)"));
    }

    MediaLibraryFixture fixture;
    std::filesystem::path directory;
};

template <class T>
bool sameBytes(std::span<const T> a, std::span<const T> b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size_bytes()) == 0);
}

TEST_F(MediaSnapshotFileTest, everyArrayComesBackAsItWas) {
    const auto snapshot = made();
    ASSERT_TRUE(MediaSnapshotFile::write(file(), "key", *snapshot));
    const auto back = MediaSnapshotFile::read(file(), "key");
    ASSERT_TRUE(back);
    const MediaSnapshotParts& was = snapshot->parts();
    const MediaSnapshotParts& is = back->parts();
    EXPECT_EQ(is.texts, was.texts);
    EXPECT_TRUE(sameBytes(is.songs, was.songs));
    EXPECT_TRUE(sameBytes(is.playlists, was.playlists));
    EXPECT_TRUE(sameBytes(is.playlistSongs, was.playlistSongs));
    ASSERT_FALSE(was.duplicates.empty());
    EXPECT_TRUE(sameBytes(is.duplicates, was.duplicates));
    EXPECT_EQ(is.droppedSongCount, was.droppedSongCount);
    const auto sameIndex = [](const PositionIndex& a, const PositionIndex& b) {
        return sameBytes(a.starts, b.starts) && sameBytes(a.entries, b.entries);
    };
    EXPECT_TRUE(sameIndex(is.byPersistentID, was.byPersistentID));
    EXPECT_TRUE(sameIndex(is.byTitle, was.byTitle));
    EXPECT_TRUE(sameIndex(is.byAlbumTitle, was.byAlbumTitle));
    for (std::size_t group = 0; group < songGroupCount; ++group) {
        EXPECT_TRUE(sameIndex(is.byGroup[group], was.byGroup[group]));
    }
}

TEST_F(MediaSnapshotFileTest, anEmptyLibraryComesBackToo) {
    ASSERT_TRUE(MediaSnapshotFile::write(file(), "key", *snapshotOf({})));
    const auto back = MediaSnapshotFile::read(file(), "key");
    ASSERT_TRUE(back);
    EXPECT_TRUE(back->songs().empty());
}

TEST_F(MediaSnapshotFileTest, aSnapshotOutlivesItsFile) {
    ASSERT_TRUE(MediaSnapshotFile::write(file(), "key", *made()));
    const auto back = MediaSnapshotFile::read(file(), "key");
    ASSERT_TRUE(MediaSnapshotFile::write(file(), "key", *snapshotOf({{.title = "Other"}})));
    std::filesystem::remove(file());
    EXPECT_EQ(back->songs().size(), 3U);
    EXPECT_EQ(back->text(*back->positionOfPersistentID(1), SongText::title), "Élan");
}

TEST_F(MediaSnapshotFileTest, anotherKeyReadsAsNoSnapshot) {
    ASSERT_TRUE(MediaSnapshotFile::write(file(), "key", *made()));
    EXPECT_FALSE(MediaSnapshotFile::read(file(), "another"));
    EXPECT_FALSE(MediaSnapshotFile::read(file(), "ke"));
}

TEST_F(MediaSnapshotFileTest, aMissingOrShortFileReadsAsNoSnapshot) {
    EXPECT_FALSE(MediaSnapshotFile::read(file(), "key"));
    ASSERT_TRUE(MediaSnapshotFile::write(file(), "key", *made()));
    const std::string whole = content();
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{8}, std::size_t{300}, whole.size() / 2, whole.size() - 1}) {
        setContent(whole.substr(0, length));
        EXPECT_FALSE(MediaSnapshotFile::read(file(), "key")) << length;
    }
    setContent(whole + "x");
    EXPECT_FALSE(MediaSnapshotFile::read(file(), "key"));
}

TEST_F(MediaSnapshotFileTest, aFlippedByteAnywhereReadsAsNoSnapshot) {
    ASSERT_TRUE(MediaSnapshotFile::write(file(), "key", *made()));
    const std::string whole = content();
    for (std::size_t place = 0; place < whole.size(); ++place) {
        std::string broken = whole;
        broken[place] = static_cast<char>(broken[place] ^ 0x20);
        setContent(broken);
        ASSERT_FALSE(MediaSnapshotFile::read(file(), "key")) << place;
    }
}

TEST_F(MediaSnapshotFileTest, whatCantBeWrittenIsAnErrorThatNamesTheFile) {
    const auto written = MediaSnapshotFile::write(directory / "missing" / "file", "key", *made());
    ASSERT_FALSE(written);
    EXPECT_NE(written.error().localizedDescription.find("missing/file"), std::string::npos);
    EXPECT_TRUE(std::filesystem::is_empty(directory));
}

TEST_F(MediaSnapshotFileTest, anUnchangedLibraryIsReadOnce) {
    CountedSource source;
    const MediaSnapshotCache cache(directory / "cache" / "tavrion");
    EXPECT_EQ(titleIn(*cache.read(source).value()), "Song");
    EXPECT_EQ(titleIn(*cache.read(source).value()), "Song");
    EXPECT_EQ(source.readings, 1);
}

TEST_F(MediaSnapshotFileTest, aChangedLibraryIsReadAgain) {
    CountedSource source;
    const MediaSnapshotCache cache(directory);
    ASSERT_TRUE(cache.read(source));
    source.look = "2";
    source.title = "Newer";
    EXPECT_EQ(titleIn(*cache.read(source).value()), "Newer");
    EXPECT_EQ(titleIn(*cache.read(source).value()), "Newer");
    EXPECT_EQ(source.readings, 2);
}

TEST_F(MediaSnapshotFileTest, twoLibrariesAreKeptApart) {
    CountedSource first;
    CountedSource second;
    second.place = "there";
    second.title = "Other";
    const MediaSnapshotCache cache(directory);
    ASSERT_TRUE(cache.read(first));
    ASSERT_TRUE(cache.read(second));
    EXPECT_EQ(titleIn(*cache.read(first).value()), "Song");
    EXPECT_EQ(titleIn(*cache.read(second).value()), "Other");
    EXPECT_EQ(first.readings + second.readings, 2);
}

TEST_F(MediaSnapshotFileTest, anotherLocaleReadsAgain) {
    CountedSource source;
    const MediaSnapshotCache cache(directory);
    ASSERT_TRUE(cache.read(source));
    Regional swedish(NSTimeZone(), "sv_SE");
    const Port<Regional>::Plug plug(swedish);
    ASSERT_TRUE(cache.read(source));
    EXPECT_EQ(source.readings, 2);
}

TEST_F(MediaSnapshotFileTest, aLibraryThatChangesWhileItIsReadIsNotKept) {
    CountedSource source;
    source.changesWhileRead = true;
    const MediaSnapshotCache cache(directory);
    ASSERT_TRUE(cache.read(source));
    source.changesWhileRead = false;
    ASSERT_TRUE(cache.read(source));
    EXPECT_EQ(source.readings, 2);
}

TEST_F(MediaSnapshotFileTest, aLibraryThatCantTellItsLookIsAlwaysRead) {
    CountedSource source;
    source.look = std::nullopt;
    const MediaSnapshotCache cache(directory);
    ASSERT_TRUE(cache.read(source));
    ASSERT_TRUE(cache.read(source));
    EXPECT_EQ(source.readings, 2);
    EXPECT_TRUE(std::filesystem::is_empty(directory));
}

TEST_F(MediaSnapshotFileTest, aFailedReadingIsReportedAndNotKept) {
    CountedSource source;
    source.fails = true;
    const MediaSnapshotCache cache(directory);
    EXPECT_FALSE(cache.read(source));
    EXPECT_TRUE(std::filesystem::is_empty(directory));
}

TEST_F(MediaSnapshotFileTest, whereNothingCanBeKeptTheLibraryIsReadAllTheSame) {
    CountedSource source;
    setContent("a file where the directory should be");
    for (const auto& place : {std::optional(file()), std::optional<std::filesystem::path>()}) {
        const MediaSnapshotCache cache(place);
        EXPECT_TRUE(cache.read(source));
    }
    EXPECT_EQ(source.readings, 2);
}

}  // namespace
}  // namespace tavrion
