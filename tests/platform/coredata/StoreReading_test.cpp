// A store that is opened for reading: nothing of it changes, and its folder need not be writable.

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "tests/platform/coredata/CoreDataFixture.h"

namespace tavrion {
namespace {

namespace fs = std::filesystem;

class StoreReadingTest : public CoreDataTest {
  protected:
    StoreReadingTest() { fs::create_directory(folder); }
    ~StoreReadingTest() override {
        std::error_code ignored;
        fs::permissions(folder, fs::perms::owner_all, ignored);
    }
    const fs::path folder = directory / "a folder";
    fs::path copied() const { return folder / "store.sqlite"; }
    void copyStore(const std::vector<std::string>& endings) const {
        for (const std::string& ending : endings) {
            fs::copy_file(file().string() + ending, copied().string() + ending);
        }
    }
    std::map<std::string, std::string> filesInFolder() const {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::directory_iterator(folder)) {
            std::ifstream stream(entry.path(), std::ios::binary);
            files[entry.path().filename()] = {std::istreambuf_iterator<char>(stream), {}};
        }
        return files;
    }
    static Result<std::shared_ptr<NSPersistentStore>> read(const fs::path& file) {
        return NSPersistentStore::open(file, testModel(), testFormat(), StoreAccess::reading);
    }
    static std::size_t songsIn(const fs::path& file) {
        const auto store = read(file);
        return store ? store.value()->version()->table(TestEntity::Song).size() : 999;
    }
    /// Whether `work` holds for a user who may read the folder and not write there. The superuser
    /// may write everywhere, so that it is asked in a process without that right.
    bool holdsForAnotherUser(const std::function<bool()>& work) const {
        for (const auto& entry : fs::directory_iterator(folder)) {
            ::chmod(entry.path().c_str(), 0444);
        }
        ::chmod(directory.c_str(), 0755);
        ::chmod(folder.c_str(), 0555);
        const pid_t child = ::fork();
        if (child == 0) {
            const bool isOther = ::geteuid() != 0 || ::setuid(65534) == 0;
            ::_exit(isOther && ::access(folder.c_str(), W_OK) != 0 && work() ? 0 : 1);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return status == 0;
    }
};

TEST_F(StoreReadingTest, aMissingStoreHasNoRecordsAndIsNotMade) {
    EXPECT_EQ(songsIn(copied()), 0U);
    EXPECT_TRUE(filesInFolder().empty());
}

TEST_F(StoreReadingTest, whatIsInTheLogIsReadAndNothingIsWritten) {
    Song::insert(*main, "song");
    save(*main);
    copyStore({"", "-wal"});
    const auto before = filesInFolder();
    EXPECT_EQ(songsIn(copied()), 1U);
    auto after = filesInFolder();
    // SQLite's own note of the log; no part of the store.
    after.erase("store.sqlite-shm");
    EXPECT_EQ(after, before);
}

TEST_F(StoreReadingTest, anOlderStoreIsNotBroughtUpToDate) {
    Song::insert(*main, "song");
    save(*main);
    main.reset();
    copyStore({""});
    const auto before = filesInFolder();
    StoreFormat newer = testFormat();
    newer.version = 2;
    newer.steps = {"UPDATE Song SET count = 9"};
    const auto opened = NSPersistentStore::open(copied(), testModel(), newer, StoreAccess::reading);
    ASSERT_FALSE(opened);
    EXPECT_NE(opened.error().localizedDescription.find("run a command that writes"),
              std::string::npos)
        << opened.error().localizedDescription;
    EXPECT_EQ(filesInFolder(), before);
}

TEST_F(StoreReadingTest, aReaderBesideAWriterSeesTheLastSavedState) {
    Song::insert(*main, "saved");
    save(*main);
    Song::insert(*main, "unsaved");
    const auto store = read(file());
    ASSERT_TRUE(store) << store.error().localizedDescription;
    EXPECT_EQ(store.value()->version()->table(TestEntity::Song).size(), 1U);
    save(*main);
    EXPECT_EQ(store.value()->version()->table(TestEntity::Song).size(), 1U);
    EXPECT_EQ(songsIn(file()), 2U) << "each reader reads by itself";
}

TEST_F(StoreReadingTest, whatWasOpenedForReadingIsNotSaved) {
    const auto store = read(file());
    const auto context = NSManagedObjectContext::overStore(store.value(), mainQueue);
    Song::insert(*context, "song");
    const auto saved = context->save();
    ASSERT_FALSE(saved);
    EXPECT_NE(saved.error().localizedDescription.find("opened for reading alone"),
              std::string::npos);
    EXPECT_FALSE(store.value()->executeBatchDelete(TestEntity::Song));
    EXPECT_FALSE(store.value()->copyTo(directory / "copy.sqlite"));
    store.value()->shortenLog();
}

TEST_F(StoreReadingTest, aFolderThatCannotBeWrittenIsReadWithAndWithoutALog) {
    Song::insert(*main, "song");
    save(*main);
    copyStore({"", "-wal"});
    const auto before = filesInFolder();
    EXPECT_TRUE(holdsForAnotherUser([&] { return songsIn(copied()) == 1; }))
        << "with a log and without what SQLite puts beside it";
    EXPECT_EQ(filesInFolder(), before);
    ::chmod(folder.c_str(), 0755);
    fs::copy_file(file().string() + "-shm", copied().string() + "-shm");
    EXPECT_TRUE(holdsForAnotherUser([&] { return songsIn(copied()) == 1; })) << "with both";
    ::chmod(folder.c_str(), 0755);
    for (const char* const ending : {"", "-wal", "-shm"}) {
        fs::remove(copied().string() + ending);
    }
    main.reset();
    copyStore({""});
    EXPECT_TRUE(holdsForAnotherUser([&] { return songsIn(copied()) == 1; })) << "the file alone";
    EXPECT_EQ(filesInFolder().size(), 1U);
}

}  // namespace
}  // namespace tavrion
