// Who may look at what the program keeps.

#include "session/DataDirectory.h"

#include <gmock/gmock.h>

#include "tests/session/SessionFixture.h"

namespace tavrion {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DataDirectoryTest : public test::SessionTest {
  protected:
    /// A directory as an older version left it, or as a user copied it.
    void makeOpenDirectory() const {
        std::filesystem::create_directories(data() / "backups");
        std::ofstream(data() / "library.json") << R"({"kind":"sample","location":"50"})";
        std::ofstream(data() / "lock") << "";
        std::ofstream(data() / "backups" / "old.sqlite") << "copy";
        std::ofstream(data() / "notes.txt") << "the user's own";
        for (const auto& entry : std::filesystem::recursive_directory_iterator(data())) {
            ::chmod(entry.path().c_str(), entry.is_directory() ? 0755 : 0644);
        }
        ::chmod(data().c_str(), 0755);
    }
};

TEST_F(DataDirectoryTest, aNewOneIsForTheUserAlone) {
    const mode_t before = ::umask(0);
    {
        const auto session = opened();
        EXPECT_THAT(session->notices(), IsEmpty());
        choose(*session, "sample", "50");
        ASSERT_TRUE(session->openStore());
        session->defaults().setObject("key", true);
        ASSERT_TRUE(MPMediaLibrary::defaultMediaLibrary().source()->setLiked(1, 2));
        ASSERT_TRUE(writerOf(*session).makeSafetyCopy("test"));
        ASSERT_TRUE(writerOf(*session).resignActive());
    }
    ::umask(before);
    EXPECT_EQ(modeOf(data()), 0700U);
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(data())) {
        EXPECT_EQ(modeOf(entry.path()), entry.is_directory() ? 0700U : 0600U) << entry.path();
        files += entry.is_regular_file() ? 1 : 0;
    }
    EXPECT_GE(files, 5U);
}

TEST_F(DataDirectoryTest, anOpenOneIsClosedAndTheUserIsReported) {
    makeOpenDirectory();
    {
        const auto session = opened();
        EXPECT_THAT(session->notices(),
                    ElementsAre(HasSubstr("look into the data directory; now"), HasSubstr("(4)")));
    }
    EXPECT_EQ(modeOf(data()), 0700U);
    EXPECT_EQ(modeOf(data() / "library.json"), 0600U);
    EXPECT_EQ(modeOf(data() / "backups"), 0700U);
    EXPECT_EQ(modeOf(data() / "backups" / "old.sqlite"), 0600U);
    EXPECT_EQ(modeOf(data() / "notes.txt"), 0644U) << "not the program's";
    EXPECT_THAT(opened()->notices(), IsEmpty()) << "once";
}

TEST_F(DataDirectoryTest, theCacheIsClosedToo) {
    std::filesystem::create_directories(cache());
    ::chmod(cache().c_str(), 0755);
    std::ofstream(cache() / "library-0.snapshot") << "songs";
    ::chmod((cache() / "library-0.snapshot").c_str(), 0644);
    EXPECT_THAT(opened()->notices(),
                ElementsAre(HasSubstr("the cache directory; now"), HasSubstr("(1)")));
    EXPECT_EQ(modeOf(cache()), 0700U);
    EXPECT_EQ(modeOf(cache() / "library-0.snapshot"), 0600U);
}

TEST_F(DataDirectoryTest, aFolderThatBelongsToAllIsNotTakenAway) {
    std::filesystem::create_directory(data());
    ::chmod(data().c_str(), 01777);
    EXPECT_THAT(opened()->notices(), ElementsAre(HasSubstr("other users can look into")));
    EXPECT_EQ(modeOf(data()), 01777U);
}

TEST_F(DataDirectoryTest, aLinkIsNotFollowed) {
    std::filesystem::create_directory(data());
    ::chmod(data().c_str(), 0700);
    const auto elsewhere = folder.path() / "elsewhere.json";
    std::ofstream(elsewhere) << "{}";
    ::chmod(elsewhere.c_str(), 0644);
    std::filesystem::create_symlink(elsewhere, data() / "sample-library.json");
    EXPECT_THAT(opened()->notices(), IsEmpty());
    EXPECT_EQ(modeOf(elsewhere), 0644U);
}

}  // namespace
}  // namespace tavrion
