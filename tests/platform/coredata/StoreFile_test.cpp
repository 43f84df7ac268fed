// How the file of a new store comes to be.

#include "platform/coredata/StoreFile.h"

#include <sys/wait.h>
#include <unistd.h>

#include "tests/platform/coredata/CoreDataFixture.h"

namespace tavrion {
namespace {

namespace fs = std::filesystem;

class NewStoreTest : public CoreDataTest {
  protected:
    NewStoreTest() {
        main.reset();
        fs::remove(file());
    }
    fs::path draftOf(pid_t process) const {
        return file().string() + ".new-" + std::to_string(process);
    }
    /// The id of a process that has ended.
    static pid_t deadProcess() {
        const pid_t child = ::fork();
        if (child == 0) {
            ::_exit(0);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return child;
    }
    std::ptrdiff_t filesInFolder() const {
        return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
    }
};

TEST_F(NewStoreTest, nothingButTheStoreStays) {
    openMain();
    main.reset();
    EXPECT_TRUE(fs::exists(file()));
    EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(NewStoreTest, whatKilledProcessesLeftGoesAndWhatOthersMakeStays) {
    const fs::path dead = draftOf(deadProcess());
    const fs::path alive = draftOf(::getppid());
    const fs::path own = draftOf(::getpid());
    for (const fs::path& draft : {dead, fs::path(dead.string() + "-journal"), alive, own}) {
        std::ofstream(draft) << "half";
    }
    openMain();
    EXPECT_FALSE(fs::exists(dead));
    EXPECT_FALSE(fs::exists(dead.string() + "-journal"));
    EXPECT_FALSE(fs::exists(own));
    EXPECT_TRUE(fs::exists(alive));
}

TEST_F(NewStoreTest, aDraftThatCouldNotBeRemovedGoesWhenTheStoreIsOpened) {
    openMain();
    main.reset();
    const fs::path dead = draftOf(deadProcess());
    fs::create_hard_link(file(), dead);
    openMain();
    EXPECT_FALSE(fs::exists(dead));
}

TEST_F(NewStoreTest, itKeepsALog) {
    openMain();
    const auto database = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readWrite);
    auto mode = database.value()->prepare("PRAGMA journal_mode");
    ASSERT_TRUE(mode.value().step().value());
    EXPECT_EQ(mode.value().text(0), "wal");
}

TEST_F(NewStoreTest, aFolderThatCantBeWrittenIsReportedWithWhatToDo) {
    const auto opened =
        NSPersistentStore::open(directory / "none" / "store.sqlite", testModel(), testFormat());
    ASSERT_FALSE(opened);
    EXPECT_NE(opened.error().localizedDescription.find("; check the directory"), std::string::npos);
}

}  // namespace
}  // namespace tavrion
