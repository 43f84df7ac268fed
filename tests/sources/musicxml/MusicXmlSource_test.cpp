#include "sources/musicxml/MusicXmlSource.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <future>

#include "platform/foundation/FileReplacement.h"
#include "platform/mediaplayer/MPMediaQuery.h"
#include "platform/testing/MediaLibraryFixture.h"
#include "sources/musicxml/SettledReading.h"
#include "tests/sources/musicxml/LibraryText.h"
#include "tests/support/RealData.h"
#include "tests/support/TestFolder.h"

namespace tavrion {
namespace {

class MusicXmlSourceTest : public testing::Test {
  protected:
    MusicXmlSourceTest() {
        std::string form = (std::filesystem::temp_directory_path() / "tavrion-XXXXXX").string();
        directory_ = mkdtemp(form.data());
    }
    ~MusicXmlSourceTest() override { std::filesystem::remove_all(directory_); }

    std::filesystem::path write(const std::string& bytes) const {
        const auto file = directory_ / "Library.xml";
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }
    static std::string problemOfFile(const std::filesystem::path& file) {
        const auto outcome = MusicXmlSource(file).read();
        return outcome ? std::string() : outcome.error().localizedDescription;
    }

    MediaLibraryFixture fixture_;
    std::filesystem::path directory_;
};

TEST_F(MusicXmlSourceTest, readsAFile) {
    MusicXmlSource source(write(library(track(1, text("Name", "x")))));
    const auto outcome = source.read();
    ASSERT_TRUE(outcome.ok()) << outcome.error().localizedDescription;
    EXPECT_EQ(outcome.value()->text(0, SongText::title), "x");
}

TEST_F(MusicXmlSourceTest, namesTheFileInErrors) {
    const auto file = write("<dict>");
    EXPECT_EQ(problemOfFile(file),
              file.string() + ", line 1: the file ends too early; export the library again");
    write("");
    EXPECT_EQ(problemOfFile(file),
              file.string() + ", line 1: the file is empty; export the library again");
}

TEST_F(MusicXmlSourceTest, saysWhyAFileCannotBeRead) {
    const auto missing = directory_ / "none.xml";
    EXPECT_EQ(problemOfFile(missing),
              missing.string() +
                  ": the file cannot be read (No such file or directory); check that it exists "
                  "and that you may read it");
    EXPECT_EQ(problemOfFile(directory_),
              directory_.string() + ": this is a directory; choose the Library.xml in it");
    EXPECT_EQ(problemOfFile("/dev/null"),
              "/dev/null: this is not a file; choose the Library.xml that the player exports");
}

TEST_F(MusicXmlSourceTest, saysThatAFileMayNotBeRead) {
    const auto file = write(library(""));
    std::filesystem::permissions(file, std::filesystem::perms::none);
    if (std::ifstream(file).is_open()) {
        GTEST_SKIP() << "this user may read every file, whatever its permissions";
    }
    EXPECT_NE(problemOfFile(file).find("Permission denied"), std::string::npos);
}

TEST_F(MusicXmlSourceTest, saysThatReadingBrokeOff) {
    // Opens like a file, but its first bytes cannot be read.
    EXPECT_NE(problemOfFile("/proc/self/mem").find("the file cannot be read (Input/output error)"),
              std::string::npos);
}

TEST_F(MusicXmlSourceTest, registersItsKind) {
    SourceRegistry registry;
    registerMusicXmlSource(registry);
    const auto source = registry.create("music-xml", "/music/Library.xml");
    ASSERT_TRUE(source.ok());
    EXPECT_EQ(source.value()->kind(), "music-xml");
    EXPECT_EQ(source.value()->location(), "/music/Library.xml");
    EXPECT_FALSE(source.value()->capabilities().canWriteLikes);
    EXPECT_EQ(source.value()->player(), nullptr);
    EXPECT_FALSE(registry.create("music-xml", "").ok());
}

TEST_F(MusicXmlSourceTest, noticesThatItsFileWasReplaced) {
    const TestFolder folder;
    const auto file = folder.path() / "Library.xml";
    ASSERT_FALSE(FileReplacement::replace(file, "old"));
    MusicXmlSource source(file);
    std::promise<void> changed;
    auto watching = source.watch([&] { changed.set_value(); });
    ASSERT_TRUE(watching.ok());
    ASSERT_FALSE(FileReplacement::replace(file, "new"));
    EXPECT_EQ(changed.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
}

class Settling : public testing::Test {
  protected:
    Result<std::shared_ptr<const MediaSnapshot>> readWith(const std::vector<std::uint64_t>& sizes) {
        std::size_t asked = 0;
        return readSettled(
            "Library.xml",
            [&]() -> Result<FileStamp> {
                return FileStamp{.size = sizes[std::min(asked++, sizes.size() - 1)]};
            },
            [this]() -> Result<std::shared_ptr<const MediaSnapshot>> {
                ++readings;
                if (readings <= brokenReadings) {
                    return NSError{"broken", {}};
                }
                return MediaSnapshot::empty();
            });
    }
    int readings = 0;
    int brokenReadings = 0;
};

TEST_F(Settling, readsAQuietFileOnce) {
    EXPECT_TRUE(readWith({5, 5}).ok());
    EXPECT_EQ(readings, 1);
}

TEST_F(Settling, readsAChangedFileAgain) {
    brokenReadings = 1;
    EXPECT_TRUE(readWith({5, 6, 6, 6}).ok());
    EXPECT_EQ(readings, 2);
}

TEST_F(Settling, givesUpOnAFileThatKeepsChanging) {
    const auto outcome = readWith({5, 6, 6, 7});
    ASSERT_FALSE(outcome.ok());
    EXPECT_EQ(outcome.error().localizedDescription,
              "Library.xml: the file keeps changing while it is read; wait until the player has "
              "written it, then try "
              "again");
    EXPECT_EQ(readings, 2);
}

TEST_F(Settling, reportsAQuietBrokenFile) {
    brokenReadings = 9;
    EXPECT_EQ(readWith({5, 5}).error().localizedDescription, "broken");
    EXPECT_EQ(readings, 1);
}

class RealLibraries : public MusicXmlSourceTest {
  protected:
    std::shared_ptr<const MediaSnapshot> read(const char* name) {
        const auto outcome =
            MusicXmlSource(realDataDirectory().value() / "music-xml" / name).read();
        EXPECT_TRUE(outcome.ok()) << outcome.error().localizedDescription;
        return outcome ? outcome.value() : MediaSnapshot::empty();
    }
};

TEST_F(RealLibraries, holdTheSongsOfThreeDays) {
    TAVRION_SKIP_WITHOUT_REAL_DATA();
    const auto first = read("one-library-2021-12-19.xml");
    const auto second = read("one-library-2021-12-20.xml");
    const auto third = read("one-library-2021-12-22.xml");
    EXPECT_EQ(first->songs().size(), 764U);
    EXPECT_EQ(second->songs().size(), 762U);
    EXPECT_EQ(third->songs().size(), 762U);
    std::uint64_t risen = 0;
    std::uint64_t plays = 0;
    for (const SongRecord& song : second->songs()) {
        const auto before = first->positionOfPersistentID(song.persistentID);
        ASSERT_TRUE(before.has_value());
        const std::uint64_t rise = song.playCount - first->songs()[*before].playCount;
        risen += rise > 0 ? 1U : 0U;
        plays += rise;
        const auto after = third->positionOfPersistentID(song.persistentID);
        ASSERT_TRUE(after.has_value());
        EXPECT_EQ(third->songs()[*after].playCount, song.playCount);
    }
    EXPECT_EQ(risen, 22U);
    EXPECT_EQ(plays, 25U);
}

TEST_F(RealLibraries, leavePodcastsFilmsAndNeverOut) {
    TAVRION_SKIP_WITHOUT_REAL_DATA();
    const auto snapshot = read("podcasts-films-and-never-dates.xml");
    EXPECT_EQ(snapshot->songs().size() + snapshot->droppedSongCount(), 402U);
    fixture_.library().publish(snapshot);
    MPMediaQuery query = MPMediaQuery::songsQuery();
    query.setValueForKey(true, "shouldIncludeNonLibraryEntities");
    const std::size_t all = query.items().size();
    query.addFilterPredicate(
        MPMediaPropertyPredicate::predicateWithValue(1, MPMediaItemPropertyMediaType));
    EXPECT_LT(query.items().size(), all);
    const NSDate soundest = NSDate::dateWithTimeIntervalSince1970(0);
    for (const MPMediaItem& item : query.items()) {
        EXPECT_GT(item.lastPlayedDate().value_or(NSDate()), soundest);
        EXPECT_LT(item.lastPlayedDate().value_or(NSDate()),
                  NSDate::dateWithTimeIntervalSince1970(2e9));
    }
}

TEST_F(RealLibraries, readTheSmallestExports) {
    TAVRION_SKIP_WITHOUT_REAL_DATA();
    for (const char* name : {"three-tracks-1.xml", "three-tracks-2.xml"}) {
        EXPECT_EQ(read(name)->songs().size(), 3U) << name;
    }
}

}  // namespace
}  // namespace tavrion
