// A store's version is what SQLite sees by the file and its log, and only one program brings it up
// to date, once.

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "platform/coredata/StoreCopy.h"
#include "platform/coredata/StoreFile.h"
#include "tests/platform/coredata/CoreDataFixture.h"

namespace tavrion {
namespace {

namespace fs = std::filesystem;

class StoreVersionTest : public CoreDataTest {
  protected:
    static std::string contentOf(const fs::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static StoreFormat formatOfVersion(std::int32_t version, std::vector<std::string> steps) {
        StoreFormat format = testFormat();
        format.version = version;
        format.steps = std::move(steps);
        return format;
    }
    static StoreFormat secondFormat() {
        return formatOfVersion(2, {"UPDATE Song SET count = count + 1"});
    }
    fs::path left() const { return directory / "left.sqlite"; }
    fs::path leftLog() const { return directory / "left.sqlite-wal"; }
    fs::path leftCopy() const { return directory / "left.sqlite.version-1"; }
    /// The store and its log as they would be found if the process were killed now.
    void copyAsKilled() const {
        for (const char* const ending : {"", "-wal"}) {
            fs::copy_file(file().string() + ending, left().string() + ending,
                          fs::copy_options::overwrite_existing);
        }
        ASSERT_GT(fs::file_size(leftLog()), 0U);
    }
    void execute(const std::string& sql) const {
        const auto database = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readWrite);
        const auto executed = database.value()->execute(sql);
        ASSERT_TRUE(executed) << executed.error().localizedDescription;
    }
    Result<std::shared_ptr<NSPersistentStore>> openLeft(
        const StoreFormat& format, StoreAccess access = StoreAccess::writing) const {
        return NSPersistentStore::open(left(), testModel(), format, access);
    }
    std::vector<std::int64_t> countsOf(const std::shared_ptr<NSPersistentStore>& store) const {
        std::vector<std::int64_t> counts;
        const auto context = NSManagedObjectContext::overStore(store, mainQueue);
        for (const NSManagedObject& object :
             context->executeFetchRequest(NSFetchRequest::fetchRequestWithEntityName("Song"))
                 .value()) {
            counts.push_back(Song(object).count());
        }
        return counts;
    }
    static void expectOneLine(const NSError& error, const std::string& part) {
        EXPECT_NE(error.localizedDescription.find(part), std::string::npos)
            << error.localizedDescription;
        EXPECT_EQ(error.localizedDescription.find('\n'), std::string::npos);
    }
};

TEST_F(StoreVersionTest, aNewerVersionThatIsStillInTheLogIsRefused) {
    Song::insert(*main, "song");
    save(*main);
    execute("PRAGMA user_version = 2");
    copyAsKilled();
    const std::string store = contentOf(left());
    const std::string log = contentOf(leftLog());
    for (const StoreAccess access : {StoreAccess::writing, StoreAccess::reading}) {
        const auto opened = openLeft(testFormat(), access);
        ASSERT_FALSE(opened);
        expectOneLine(opened.error(), "newer");
        EXPECT_EQ(contentOf(left()), store);
        EXPECT_EQ(contentOf(leftLog()), log);
    }
}

TEST_F(StoreVersionTest, stepsWhoseEndIsStillInTheLogAreNotTakenAgain) {
    Song::insert(*main, "song");
    save(*main);
    main.reset();
    const auto migrated = NSPersistentStore::open(file(), testModel(), secondFormat());
    ASSERT_TRUE(migrated) << migrated.error().localizedDescription;
    copyAsKilled();
    const auto opened = openLeft(secondFormat());
    ASSERT_TRUE(opened) << opened.error().localizedDescription;
    EXPECT_EQ(countsOf(opened.value()), std::vector<std::int64_t>{1});
    EXPECT_FALSE(fs::exists(leftCopy())) << "there was nothing to copy";
}

TEST_F(StoreVersionTest, aProcessThatIsKilledDuringTheStepsLeavesTheOldVersionAndItsCopy) {
    Song::insert(*main, "song");
    save(*main);
    main.reset();
    // Ends when the kill comes.
    const StoreFormat endless = formatOfVersion(
        2, {"UPDATE Song SET count = 77; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 "
            "FROM n) SELECT count(*) FROM n"});
    const pid_t child = ::fork();
    if (child == 0) {
        NSPersistentStore::open(file(), testModel(), endless).ok();
        ::_exit(0);
    }
    const fs::path copy = file().string() + ".version-1";
    for (int i = 0; i < 1000 && !fs::exists(copy); ++i) {
        ::usleep(10000);
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ASSERT_TRUE(fs::exists(copy));
    const auto opened = NSPersistentStore::open(file(), testModel(), secondFormat());
    ASSERT_TRUE(opened) << opened.error().localizedDescription;
    EXPECT_EQ(countsOf(opened.value()), std::vector<std::int64_t>{1});
}

TEST_F(StoreVersionTest, stepsThatAnotherProcessTakesMeanwhileAreNotTakenAgain) {
    Song::insert(*main, "song");
    save(*main);
    main.reset();
    // A process must not take over a connection, so that the other one begins before this one has
    // any.
    int isLocked[2];
    ASSERT_EQ(::pipe(isLocked), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        char mark = 0;
        const bool began = ::read(isLocked[0], &mark, 1) == 1;
        // Sees version 1 and waits for the lock.
        ::_exit(began && NSPersistentStore::open(file(), testModel(), secondFormat()) ? 0 : 1);
    }
    const auto other = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readWrite);
    ASSERT_TRUE(other.value()->execute("BEGIN IMMEDIATE"));
    ASSERT_EQ(::write(isLocked[1], "x", 1), 1);
    for (const int end : isLocked) {
        ::close(end);
    }
    constexpr useconds_t timeToBeginWaiting = 500000;
    ::usleep(timeToBeginWaiting);
    ASSERT_TRUE(
        other.value()->execute(secondFormat().steps[0] + "; PRAGMA user_version = 2; COMMIT"));
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    const auto opened = NSPersistentStore::open(file(), testModel(), secondFormat());
    ASSERT_TRUE(opened) << opened.error().localizedDescription;
    EXPECT_EQ(countsOf(opened.value()), std::vector<std::int64_t>{1});
}

TEST_F(StoreVersionTest, theCopyOfAnEarlierAttemptStaysUntilANewOneIsWhole) {
    Song::insert(*main, "song");
    save(*main);
    main.reset();
    const fs::path copy = file().string() + ".version-1";
    std::ofstream(copy) << "of an earlier attempt";
    // What is in the way of the new copy.
    const fs::path draft = copy.string() + ".new-" + std::to_string(::getpid());
    fs::create_directories(draft / "inside");
    const auto refused = NSPersistentStore::open(file(), testModel(), secondFormat());
    ASSERT_FALSE(refused);
    expectOneLine(refused.error(), "can't be brought up to date");
    EXPECT_EQ(contentOf(copy), "of an earlier attempt");
    fs::remove_all(draft);
    const auto opened = NSPersistentStore::open(file(), testModel(), secondFormat());
    ASSERT_TRUE(opened) << opened.error().localizedDescription;
    const auto copied = NSPersistentStore::open(copy, testModel(), testFormat());
    ASSERT_TRUE(copied) << copied.error().localizedDescription;
    EXPECT_EQ(countsOf(copied.value()), std::vector<std::int64_t>{0});
}

TEST_F(StoreVersionTest, nothingIsWrittenIntoAStoreThatBecameANewerOneMeanwhile) {
    Song::insert(*main, "song");
    save(*main);
    execute("PRAGMA user_version = 2");
    Song::insert(*main, "late");
    const auto saved = main->save();
    ASSERT_FALSE(saved);
    expectOneLine(saved.error(), "newer");
    const auto store = NSPersistentStore::open(file(), testModel(), testFormat());
    const auto deleted = store.value()->executeBatchDelete(TestEntity::Song);
    ASSERT_FALSE(deleted);
    expectOneLine(deleted.error(), "newer");
    EXPECT_EQ(titles(*main).size(), 2U) << "what could not be saved is still there";
    execute("PRAGMA user_version = 1");
    save(*main);
    reopen();
    EXPECT_EQ(titles(*main), (std::vector<std::string>{"song", "late"}));
}

class StoreCopyTest : public StoreVersionTest {
  protected:
    StoreCopyTest() {
        for (int i = 0; i < 3; ++i) {
            Song::insert(*main, "song");
        }
        EXPECT_TRUE(main->save());
        database = std::move(SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readWrite)).value();
        EXPECT_TRUE(StoreCopy::make(*database, copy));
    }
    void change(const std::string& sql) const {
        const auto opened = SQLiteDatabase::open(copy, SQLiteDatabase::Mode::readWrite);
        ASSERT_TRUE(opened.value()->execute(sql));
    }
    void expectFault(const std::string& part) const {
        const auto checked = StoreCopy::check(*database, copy);
        ASSERT_FALSE(checked);
        EXPECT_NE(checked.error().localizedDescription.find(part), std::string::npos)
            << checked.error().localizedDescription;
    }
    const fs::path copy = directory / "it's a copy of 100%?.sqlite";
    std::unique_ptr<SQLiteDatabase> database;
};

TEST_F(StoreCopyTest, aCopyIsWholeAndHasTheSameRows) {
    EXPECT_TRUE(StoreCopy::check(*database, copy));
}

TEST_F(StoreCopyTest, aCopyWithoutARowIsNotOne) {
    change("DELETE FROM Song WHERE id = 2");
    expectFault("the number of rows of Song is 2 instead of 3");
}

TEST_F(StoreCopyTest, aCopyWithoutATableIsNotOne) {
    change("DROP TABLE Play");
    expectFault("Play");
}

TEST_F(StoreCopyTest, aCopyOfAnotherVersionIsNotOne) {
    change("PRAGMA user_version = 7");
    expectFault("user_version is 7 instead of 1");
}

TEST_F(StoreCopyTest, aCopyThatIsCutOffIsNotOne) {
    fs::resize_file(copy, fs::file_size(copy) - 4096);
    EXPECT_FALSE(StoreCopy::check(*database, copy));
}

TEST_F(StoreCopyTest, aCopyThatIsNotSoundIsNotMade) {
    // A fault that is copied with the rows.
    execute(
        "UPDATE Song SET title = NULL WHERE id = 2; PRAGMA writable_schema = ON; "
        "UPDATE sqlite_schema SET sql = replace(sql, 'title TEXT', 'title TEXT NOT NULL')");
    const auto faulty = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readWrite);
    const fs::path next = directory / "next.sqlite";
    for (const auto make : {&StoreCopy::make, &StoreCopy::renew}) {
        const auto made = make(*faulty.value(), next);
        ASSERT_FALSE(made);
        expectOneLine(made.error(), "NULL value in Song.title");
        EXPECT_FALSE(fs::exists(next));
    }
}

TEST_F(StoreCopyTest, aCopyNeverTakesThePlaceOfAnotherFile) {
    std::ofstream(copy) << "another";
    EXPECT_FALSE(StoreCopy::make(*database, copy));
    EXPECT_EQ(contentOf(copy), "another");
    EXPECT_TRUE(StoreCopy::renew(*database, copy));
    EXPECT_TRUE(StoreCopy::check(*database, copy));
}

class OnlyLogTest : public StoreVersionTest {
  protected:
    OnlyLogTest() {
        Song::insert(*main, "song");
        EXPECT_TRUE(main->save());
        copyAsKilled();
        fs::remove(left());
    }
    fs::path aside(int number) const {
        return leftLog().string() + ".left-" + std::to_string(number);
    }
};

TEST_F(OnlyLogTest, aLogWithoutItsStoreIsPutAsideAndNothingIsMade) {
    const std::string log = contentOf(leftLog());
    const auto opened = openLeft(testFormat());
    ASSERT_FALSE(opened);
    expectOneLine(opened.error(), "left.sqlite-wal.left-1");
    EXPECT_EQ(contentOf(aside(1)), log);
    EXPECT_FALSE(fs::exists(leftLog()));
    EXPECT_FALSE(fs::exists(left()));
}

TEST_F(OnlyLogTest, theNextStoreBeginsEmptyAndASecondLogIsKeptBesideTheFirst) {
    ASSERT_FALSE(openLeft(testFormat()));
    {
        const auto opened = openLeft(testFormat());
        ASSERT_TRUE(opened) << opened.error().localizedDescription;
        EXPECT_TRUE(countsOf(opened.value()).empty());
    }
    fs::remove(left());
    std::ofstream(leftLog()) << "another log";
    ASSERT_FALSE(openLeft(testFormat()));
    EXPECT_EQ(contentOf(aside(2)), "another log");
    EXPECT_TRUE(fs::exists(aside(1)));
}

TEST_F(OnlyLogTest, theStorePutBackTakesItsLogAgain) {
    ASSERT_FALSE(openLeft(testFormat()));
    fs::copy_file(file(), left());
    fs::rename(aside(1), leftLog());
    const auto opened = openLeft(testFormat());
    ASSERT_TRUE(opened) << opened.error().localizedDescription;
    EXPECT_EQ(countsOf(opened.value()).size(), 1U);
}

TEST_F(OnlyLogTest, anEmptyLogIsNothingToKeep) {
    fs::resize_file(leftLog(), 0);
    EXPECT_TRUE(openLeft(testFormat()));
    EXPECT_FALSE(fs::exists(aside(1)));
}

TEST_F(OnlyLogTest, aReaderLeavesTheLogWhereItIs) {
    const std::string log = contentOf(leftLog());
    const auto opened = openLeft(testFormat(), StoreAccess::reading);
    ASSERT_FALSE(opened);
    expectOneLine(opened.error(), "only its log left.sqlite-wal is left");
    EXPECT_EQ(contentOf(leftLog()), log);
}

}  // namespace
}  // namespace tavrion
