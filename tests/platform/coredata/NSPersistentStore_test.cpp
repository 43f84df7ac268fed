#include "platform/coredata/NSPersistentStore.h"

#include "tests/platform/coredata/CoreDataFixture.h"

namespace tavrion {
namespace {

class StoreTest : public CoreDataTest {
  protected:
    std::string bytes() const {
        std::ifstream stream(file(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    void writeBytes(const std::string& content) const {
        std::ofstream(file(), std::ios::binary) << content;
    }
    static StoreFormat formatOfVersion(std::int32_t version, std::vector<std::string> steps) {
        StoreFormat format = testFormat();
        format.version = version;
        format.steps = std::move(steps);
        return format;
    }
    /// The message with which the file is refused; the file stays as it was.
    std::string refusal() {
        const std::string before = bytes();
        const auto opened = NSPersistentStore::open(file(), testModel(), testFormat());
        EXPECT_EQ(bytes(), before);
        if (opened) {
            return "it was opened";
        }
        const std::string message = opened.error().localizedDescription;
        EXPECT_EQ(message.find('\n'), std::string::npos) << message;
        EXPECT_NE(message.find(file().string()), std::string::npos) << message;
        return message;
    }
    void fillAndClose(int songs) {
        for (int i = 0; i < songs; ++i) {
            Song::insert(*main, "song " + std::to_string(i));
        }
        save(*main);
        main.reset();
    }
};

TEST_F(StoreTest, aFileThatIsNotAStoreIsRefused) {
    main.reset();
    writeBytes(std::string(5000, 'x'));
    EXPECT_NE(refusal().find("is not a store"), std::string::npos);
}

TEST_F(StoreTest, aDatabaseOfAnotherProgramIsRefused) {
    main.reset();
    std::filesystem::remove(file());
    {
        const auto other = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::create);
        ASSERT_TRUE(other.value()->execute("CREATE TABLE t (x); INSERT INTO t VALUES (1)"));
    }
    EXPECT_NE(refusal().find("is not a store"), std::string::npos);
}

TEST_F(StoreTest, aNewerStoreIsRefusedAndSaysWhatToDo) {
    main.reset();
    {
        const auto database = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readWrite);
        ASSERT_TRUE(database.value()->execute("PRAGMA user_version = 2"));
    }
    const std::string message = refusal();
    EXPECT_NE(message.find("newer"), std::string::npos);
    EXPECT_NE(message.find("update"), std::string::npos);
}

TEST_F(StoreTest, aTruncatedStoreIsRefusedWhereverItWasCut) {
    fillAndClose(2000);
    const std::string whole = bytes();
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{1}, std::size_t{99}, std::size_t{100}, std::size_t{4096},
          whole.size() / 2, whole.size() - 4096, whole.size() - 1}) {
        writeBytes(whole.substr(0, length));
        EXPECT_NE(refusal().find("cut off"), std::string::npos) << length;
    }
}

TEST_F(StoreTest, aPageOfGarbageIsReportedAsDamage) {
    fillAndClose(2000);
    std::string damaged = bytes();
    ASSERT_GT(damaged.size(), 5U * 4096U);
    damaged.replace(4 * 4096, 4096, std::string(4096, '\x5A'));
    writeBytes(damaged);
    EXPECT_NE(refusal().find("damaged"), std::string::npos);
}

TEST_F(StoreTest, aDirectoryInItsPlaceIsRefused) {
    main.reset();
    std::filesystem::remove(file());
    std::filesystem::create_directory(file());
    const auto opened = NSPersistentStore::open(file(), testModel(), testFormat());
    ASSERT_FALSE(opened);
    EXPECT_NE(opened.error().localizedDescription.find("not a file"), std::string::npos);
}

TEST_F(StoreTest, aMissingDirectoryIsReportedInOneLine) {
    const auto opened =
        NSPersistentStore::open(directory / "none" / "store.sqlite", testModel(), testFormat());
    ASSERT_FALSE(opened);
    EXPECT_NE(opened.error().localizedDescription.find("can't be made"), std::string::npos);
}

TEST_F(StoreTest, theTablesAreReadableByTheirNames) {
    Song song = Song::insert(*main, "song", 2.5);
    Play::insert(*main, 100, song);
    save(*main);
    const auto database = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readOnly);
    auto row = database.value()->prepare(
        "SELECT s.title, s.length, p.date FROM Play p JOIN Song s ON s.id = p.song WHERE p.id = 1");
    ASSERT_TRUE(row);
    ASSERT_TRUE(row.value().step().value());
    EXPECT_EQ(row.value().text(0), "song");
    EXPECT_EQ(row.value().real(1), 2.5);
    EXPECT_EQ(row.value().real(2), 100);
}

TEST_F(StoreTest, anOlderStoreIsBroughtUpToDateAfterACopy) {
    fillAndClose(1);
    const auto opened = NSPersistentStore::open(
        file(), testModel(),
        formatOfVersion(3, {"UPDATE Song SET title = title || '!'", "UPDATE Song SET count = 9"}));
    ASSERT_TRUE(opened) << opened.error().localizedDescription;
    const auto context = NSManagedObjectContext::overStore(opened.value(), mainQueue);
    EXPECT_EQ(titles(*context), std::vector<std::string>{"song 0!"});
    EXPECT_EQ(Song(context->executeFetchRequest(NSFetchRequest::fetchRequestWithEntityName("Song"))
                       .value()[0])
                  .count(),
              9);
    const auto copy =
        NSPersistentStore::open(file().string() + ".version-1", testModel(), testFormat());
    ASSERT_TRUE(copy) << copy.error().localizedDescription;
    EXPECT_EQ(titles(*NSManagedObjectContext::overStore(copy.value(), mainQueue)),
              std::vector<std::string>{"song 0"});
}

TEST_F(StoreTest, aFailedStepLeavesTheStoreInItsOldVersion) {
    fillAndClose(1);
    const auto opened = NSPersistentStore::open(
        file(), testModel(),
        formatOfVersion(3, {"UPDATE Song SET title = 'half'", "UPDATE Nothing SET x = 1"}));
    ASSERT_FALSE(opened);
    openMain();
    EXPECT_EQ(titles(*main), std::vector<std::string>{"song 0"});
}

TEST_F(StoreTest, twoContainersOfOneFileShareWhatIsSaved) {
    const auto second = NSPersistentStore::open(file(), testModel(), testFormat());
    const auto secondMain = NSManagedObjectContext::overStore(second.value(), mainQueue);
    Song::insert(*main, "song");
    EXPECT_TRUE(titles(*secondMain).empty());
    save(*main);
    EXPECT_EQ(titles(*secondMain), std::vector<std::string>{"song"});
}

TEST_F(StoreTest, aFailedMainSaveKeepsTheChangesForTheNext) {
    Song::insert(*main, "song");
    const auto blocker = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readWrite);
    ASSERT_TRUE(blocker.value()->execute("DROP TABLE Play; CREATE TABLE Keep (x)"));
    Play::insert(*main, 1);
    EXPECT_FALSE(main->save());
    EXPECT_TRUE(main->hasChanges());
    ASSERT_TRUE(blocker.value()->execute(
        "CREATE TABLE Play (id INTEGER PRIMARY KEY, date REAL, estimated INTEGER, song "
        "INTEGER)"));
    save(*main);
    reopen();
    EXPECT_EQ(titles(*main), std::vector<std::string>{"song"});
    EXPECT_EQ(countOf(*main, "Play"), 1U);
}

TEST_F(StoreTest, savingNothingWritesNothing) {
    Song::insert(*main, "song");
    save(*main);
    const auto log = [&] {
        std::ifstream stream(file().string() + "-wal", std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(stream), {});
    };
    const std::string before = log();
    ASSERT_FALSE(before.empty());
    save(*main);
    EXPECT_EQ(log(), before);
}

class BatchDeleteTest : public StoreTest {
  protected:
    void deleteAll(EntityIndex entity) const {
        const auto store = NSPersistentStore::open(file(), testModel(), testFormat());
        ASSERT_TRUE(store.value()->executeBatchDelete(entity));
    }
};

TEST_F(BatchDeleteTest, itEmptiesTheFileAtOnceAndFetchesSeeIt) {
    Song::insert(*main, "song");
    save(*main);
    deleteAll(TestEntity::Song);
    EXPECT_TRUE(titles(*main).empty());
    EXPECT_FALSE(main->hasChanges());
    reopen();
    EXPECT_TRUE(titles(*main).empty());
}

TEST_F(BatchDeleteTest, anAbstractEntityStandsForItsDerivedOnes) {
    Play::insert(*main, 1);
    Song::insert(*main, "stays");
    save(*main);
    deleteAll(TestEntity::Event);
    EXPECT_EQ(countOf(*main, "Play"), 0U);
    EXPECT_EQ(countOf(*main, "Song"), 1U);
}

TEST_F(BatchDeleteTest, existingHandlesKeepTheirValues) {
    const Song song = Song::insert(*main, "song", 3);
    save(*main);
    deleteAll(TestEntity::Song);
    deleteAll(TestEntity::Play);
    EXPECT_TRUE(titles(*main).empty());
    EXPECT_EQ(song.title(), "song");
    EXPECT_EQ(song.length(), 3);
    EXPECT_TRUE(song.isDeleted());
}

TEST_F(BatchDeleteTest, unsavedChangesToRemovedRowsAreDroppedAndUnsavedInsertsStay) {
    Song song = Song::insert(*main, "song");
    save(*main);
    song.setCount(5);
    Song::insert(*main, "unsaved");
    deleteAll(TestEntity::Song);
    EXPECT_EQ(titles(*main), std::vector<std::string>{"unsaved"});
    song.setCount(6);
    save(*main);
    reopen();
    EXPECT_EQ(titles(*main), std::vector<std::string>{"unsaved"});
}

TEST_F(BatchDeleteTest, removedRowsDoNotComeBackWithASaveThatKnewOfThem) {
    Song::insert(*main, "removed");
    save(*main);
    Song::insert(*main, "unsaved");
    // The context has worked out how the records are with its change before the rows go.
    ASSERT_EQ(main->snapshot()->table(TestEntity::Song).size(), 2U);
    deleteAll(TestEntity::Song);
    save(*main);
    EXPECT_EQ(titles(*main), std::vector<std::string>{"unsaved"});
    reopen();
    EXPECT_EQ(titles(*main), std::vector<std::string>{"unsaved"});
}

TEST_F(BatchDeleteTest, identifiersOfRemovedRowsAreNotUsedAgain) {
    const NSManagedObjectID id = Song::insert(*main, "song").objectID();
    save(*main);
    deleteAll(TestEntity::Song);
    reopen();
    EXPECT_GT(Song::insert(*main, "next").objectID(), id);
}

}  // namespace
}  // namespace tavrion
