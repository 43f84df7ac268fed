// What is wrong with a store is found before it is used, reported with what to do, and left as it
// is.

#include "platform/coredata/StoreCheck.h"

#include "platform/coredata/StoreMessages.h"
#include "tests/platform/coredata/CoreDataFixture.h"

namespace tavrion {
namespace {

namespace fs = std::filesystem;

class StoreCheckTest : public CoreDataTest {
  protected:
    static std::string contentOf(const fs::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    fs::path log() const { return file().string() + "-wal"; }
    void fill(int songs) {
        for (int i = 0; i < songs; ++i) {
            Song::insert(*main, "song " + std::to_string(i));
        }
        save(*main);
    }
    void closeMain() { main.reset(); }
    /// Where the table's first page begins.
    std::size_t offsetOfTable(const std::string& table) const {
        const auto database = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readWrite);
        auto row = database.value()->prepare(
            "SELECT (rootpage - 1) * 4096 FROM sqlite_schema WHERE name = '" + table + "'");
        EXPECT_TRUE(row.value().step().value());
        return static_cast<std::size_t>(row.value().integer(0));
    }
    static void changeByte(const fs::path& file, std::size_t offset, char value) {
        std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(static_cast<std::streamoff>(offset));
        stream.put(value);
    }
    void execute(const std::string& sql) const {
        const auto database = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readWrite);
        ASSERT_TRUE(database.value()->execute(sql));
    }
    static StoreFormat formatWithCopies() {
        StoreFormat format = testFormat();
        format.safetyCopies = "copies";
        return format;
    }
    std::string refusal(const StoreFormat& format = testFormat()) const {
        const auto opened = NSPersistentStore::open(file(), testModel(), format);
        return opened ? "it was opened" : opened.error().localizedDescription;
    }
    /// A byte of the file's header that no reading of the records looks at: how many pages are
    /// free.
    static constexpr std::size_t freePageCount = 39;
};

TEST_F(StoreCheckTest, aSoundStoreHasNoDamage) {
    fill(10);
    EXPECT_EQ(StoreCheck(file()).damage(), std::nullopt);
}

TEST_F(StoreCheckTest, damageThatReadingDoesNotMeetIsFoundToo) {
    fill(10);
    closeMain();
    changeByte(file(), freePageCount, 7);
    const std::string before = contentOf(file());
    EXPECT_NE(refusal().find("the store is damaged ("), std::string::npos) << refusal();
    EXPECT_EQ(contentOf(file()), before);
}

TEST_F(StoreCheckTest, anOlderStoreIsLookedThroughBeforeItIsBroughtUpToDate) {
    fill(10);
    closeMain();
    changeByte(file(), freePageCount, 7);
    const std::string before = contentOf(file());
    StoreFormat newer = testFormat();
    newer.version = 2;
    newer.steps = {"UPDATE Song SET count = 9"};
    EXPECT_NE(refusal(newer).find("damaged"), std::string::npos);
    EXPECT_EQ(contentOf(file()), before);
    EXPECT_FALSE(fs::exists(file().string() + ".version-1"));
}

TEST_F(StoreCheckTest, aDamagedStoreKeepsItsLog) {
    fill(10);
    // As a killed process would leave them: the records are in the log only.
    const fs::path left = directory / "left.sqlite";
    const fs::path leftLog = directory / "left.sqlite-wal";
    fs::copy_file(file(), left);
    fs::copy_file(log(), leftLog);
    changeByte(left, offsetOfTable("Play"), 0x55);
    const std::string damaged = contentOf(left);
    const std::string logged = contentOf(leftLog);
    ASSERT_FALSE(logged.empty());
    const auto opened = NSPersistentStore::open(left, testModel(), testFormat());
    ASSERT_FALSE(opened);
    const std::string told = opened.error().localizedDescription;
    EXPECT_NE(told.find("damaged"), std::string::npos) << told;
    EXPECT_NE(told.find("move left.sqlite and left.sqlite-wal away"), std::string::npos)
        << "the log would be taken for one of the copy that is put back: " << told;
    EXPECT_EQ(contentOf(left), damaged);
    EXPECT_EQ(contentOf(leftLog), logged);
}

TEST_F(StoreCheckTest, whatToDoNamesTheSafetyCopiesThatThereAre) {
    closeMain();
    changeByte(file(), freePageCount, 7);
    const fs::path copies = directory / "copies";
    EXPECT_EQ(refusal(formatWithCopies()).find(copies.string()), std::string::npos);
    EXPECT_NE(refusal(formatWithCopies()).find("move it away to start again"), std::string::npos);
    fs::create_directory(copies);
    EXPECT_EQ(refusal(formatWithCopies()).find(copies.string()), std::string::npos);
    std::ofstream(copies / "one.sqlite") << "x";
    EXPECT_NE(refusal(formatWithCopies()).find("put back a safety copy from " + copies.string()),
              std::string::npos)
        << refusal(formatWithCopies());
}

TEST_F(StoreCheckTest, aVersionThatNeverWasIsDamage) {
    for (const char* const version : {"0", "-1", "-2147483648"}) {
        closeMain();
        execute(std::string("PRAGMA user_version = ") + version);
        EXPECT_NE(refusal().find("damaged"), std::string::npos) << version;
        execute("PRAGMA user_version = 1");
        openMain();
    }
}

TEST_F(StoreCheckTest, aCounterThatIsMissingOrCannotBeIsDamage) {
    closeMain();
    for (const char* const next : {"0", "-1", "4294967295", "4294967296"}) {
        execute(std::string("UPDATE Counter SET next = ") + next + " WHERE entity = 'Play'");
        EXPECT_NE(refusal().find("the next identifier of table Play"), std::string::npos) << next;
    }
    execute("DELETE FROM Counter WHERE entity = 'Play'");
    EXPECT_NE(refusal().find("the next identifier of table Play"), std::string::npos);
}

TEST_F(StoreCheckTest, anIdentifierThatCannotBeIsDamage) {
    closeMain();
    for (const char* const id : {"0", "-1", "4294967295"}) {
        execute(std::string("INSERT INTO Play VALUES (") + id + ", 1, 0, NULL)");
        EXPECT_NE(refusal().find("table Play has a record"), std::string::npos) << id;
        execute("DELETE FROM Play");
    }
}

TEST_F(StoreCheckTest, aReferenceThatCannotBePointsNowhere) {
    fill(1);
    closeMain();
    execute("INSERT INTO Play VALUES (1, 1, 0, 1), (2, 1, 0, 4294967297), (3, 1, 0, -4294967295)");
    openMain();
    const auto plays =
        main->executeFetchRequest(NSFetchRequest::fetchRequestWithEntityName("Play")).value();
    ASSERT_EQ(plays.size(), 3U);
    EXPECT_TRUE(Play(plays[0]).song().has_value());
    EXPECT_FALSE(Play(plays[1]).song().has_value());
    EXPECT_FALSE(Play(plays[2]).song().has_value());
}

TEST_F(StoreCheckTest, aStoreThatIsLockedOrADiskThatFailsIsNotCalledDamaged) {
    const auto holder = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readWrite);
    ASSERT_TRUE(holder.value()->execute("BEGIN IMMEDIATE"));
    const auto other = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readWrite);
    const auto refused = other.value()->execute("BEGIN IMMEDIATE");
    ASSERT_FALSE(refused);
    const NSError busy = StoreMessages::unreadable(*other.value(), testFormat(), refused.error());
    EXPECT_NE(busy.localizedDescription.find("another process uses the store"), std::string::npos);
    const auto readOnly = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readOnly);
    const auto unwritten = readOnly.value()->execute("DELETE FROM Song");
    ASSERT_FALSE(unwritten);
    const NSError disk =
        StoreMessages::unreadable(*readOnly.value(), testFormat(), unwritten.error());
    EXPECT_NE(disk.localizedDescription.find("check the disk"), std::string::npos);
    const auto absent = other.value()->execute("SELECT * FROM Absent");
    const NSError table = StoreMessages::unreadable(*other.value(), testFormat(), absent.error());
    EXPECT_NE(table.localizedDescription.find("damaged (no such table: Absent)"), std::string::npos)
        << table.localizedDescription;
}

}  // namespace
}  // namespace tavrion
