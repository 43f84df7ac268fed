#include "platform/sqlite/SQLiteDatabase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <string_view>

#include "tests/platform/sqlite/SQLiteTest.h"

namespace tavrion {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;
using namespace std::string_view_literals;

class SQLiteDatabaseTest : public test::SQLiteTest {};

TEST_F(SQLiteDatabaseTest, valuesStayInTheFile) {
    {
        const auto database = opened();
        execute(*database, "CREATE TABLE Song(title TEXT, art BLOB, plays INTEGER, rating REAL)");
        auto insert = prepared(*database, "INSERT INTO Song VALUES(?, ?, ?, ?)");
        insert.bindText(1, "a\0b"sv);
        insert.bindBlob(2, ""sv);
        insert.bindInteger(3, 12);
        insert.bindReal(4, 0.5);
        EXPECT_TRUE(insert.run().ok());
        EXPECT_EQ(database->changes(), 1);
    }
    const auto database = opened(SQLiteDatabase::Mode::readOnly);
    auto rows = prepared(*database, "SELECT title, art, plays, rating FROM Song");
    ASSERT_TRUE(hasRow(rows));
    EXPECT_EQ(rows.text(0), "a\0b"sv);
    EXPECT_FALSE(rows.isNull(1));
    EXPECT_EQ(rows.blob(1), "");
    EXPECT_EQ(rows.integer(2), 12);
    EXPECT_EQ(rows.real(3), 0.5);
    EXPECT_FALSE(hasRow(rows));
    EXPECT_EQ(database->file(), file);
}

TEST_F(SQLiteDatabaseTest, executeRunsSeveralStatements) {
    const auto database = opened();
    execute(*database, "CREATE TABLE T(a); INSERT INTO T VALUES (1), (2), (3); SELECT * FROM T;");
    EXPECT_EQ(number(*database, "SELECT sum(a) FROM T"), 6);
    execute(*database, "DELETE FROM T WHERE a > 1");
    EXPECT_EQ(database->changes(), 2);
}

TEST_F(SQLiteDatabaseTest, prepareTakesExactlyOneStatement) {
    const auto database = opened();
    EXPECT_TRUE(database->prepare("SELECT 1 ;\n ").ok());
    const auto two = database->prepare("SELECT 1; DROP TABLE T");
    ASSERT_FALSE(two.ok());
    EXPECT_EQ(two.error().localizedDescription,
              fileFirst() + "there is more than one statement to run");
    for (const std::string_view nothing : {""sv, "  "sv, "-- only a comment"sv}) {
        const auto none = database->prepare(nothing);
        ASSERT_FALSE(none.ok());
        EXPECT_EQ(none.error().localizedDescription, fileFirst() + "there is no statement to run");
    }
}

TEST_F(SQLiteDatabaseTest, errorsNameTheFileAndTheReason) {
    const auto database = opened();
    const auto executed = database->execute("SELECT * FROM Missing");
    ASSERT_FALSE(executed.ok());
    EXPECT_EQ(executed.error().localizedDescription, fileFirst() + "no such table: Missing");
    EXPECT_EQ(executed.error().userInfo, "SQLite error 1");
    const auto statement = database->prepare("SELEC 1");
    ASSERT_FALSE(statement.ok());
    EXPECT_THAT(statement.error().localizedDescription, StartsWith(fileFirst()));
    EXPECT_THAT(statement.error().localizedDescription, HasSubstr("syntax error"));
}

TEST_F(SQLiteDatabaseTest, aMissingFileIsMadeOnlyWhenReported) {
    for (const auto mode : {SQLiteDatabase::Mode::readOnly, SQLiteDatabase::Mode::readWrite}) {
        const auto database = SQLiteDatabase::open(file, mode);
        ASSERT_FALSE(database.ok());
        EXPECT_EQ(database.error().localizedDescription,
                  fileFirst() + "unable to open database file (No such file or directory)");
        EXPECT_FALSE(std::filesystem::exists(file));
    }
    execute(*opened(), "CREATE TABLE T(a)");
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(number(*opened(SQLiteDatabase::Mode::readWrite), "SELECT count(*) FROM T"), 0);
}

TEST_F(SQLiteDatabaseTest, aMissingFolderAndANamelessFileAreErrors) {
    const auto nowhere = folder / "missing" / "test.sqlite";
    const auto database = SQLiteDatabase::open(nowhere, SQLiteDatabase::Mode::create);
    ASSERT_FALSE(database.ok());
    EXPECT_THAT(database.error().localizedDescription, StartsWith(nowhere.string() + ": "));
    const auto nameless = SQLiteDatabase::open({}, SQLiteDatabase::Mode::create);
    ASSERT_FALSE(nameless.ok());
    EXPECT_THAT(nameless.error().localizedDescription, HasSubstr("empty"));
}

TEST_F(SQLiteDatabaseTest, aFileOfAnotherKindIsFoundByTheFirstStatement) {
    std::ofstream(file) << std::string(4096, 'x');
    const auto database = opened();
    const auto read = database->execute("SELECT * FROM sqlite_master");
    ASSERT_FALSE(read.ok());
    EXPECT_EQ(read.error().localizedDescription, fileFirst() + "file is not a database");
}

TEST_F(SQLiteDatabaseTest, readOnlyRefusesWrites) {
    execute(*opened(), "CREATE TABLE T(a)");
    const auto database = opened(SQLiteDatabase::Mode::readOnly);
    const auto written = database->execute("INSERT INTO T VALUES (1)");
    ASSERT_FALSE(written.ok());
    EXPECT_EQ(written.error().localizedDescription,
              fileFirst() + "attempt to write a readonly database");
    EXPECT_TRUE(database->isReadOnly());
    EXPECT_FALSE(opened()->isReadOnly());
    EXPECT_EQ(number(*database, "SELECT count(*) FROM T"), 0);
}

TEST_F(SQLiteDatabaseTest, theBusyTimeoutIsSet) {
    const auto database = opened();
    EXPECT_EQ(number(*database, "PRAGMA busy_timeout"), 0);
    database->setBusyTimeout(2.5);
    EXPECT_EQ(number(*database, "PRAGMA busy_timeout"), 2500);
    database->setBusyTimeout(-1);
    EXPECT_EQ(number(*database, "PRAGMA busy_timeout"), 0);
    database->setBusyTimeout(1e12);
    EXPECT_EQ(number(*database, "PRAGMA busy_timeout"), std::numeric_limits<int>::max());
}

TEST_F(SQLiteDatabaseTest, theQuickCheckFindsDamageInOneLine) {
    {
        const auto database = opened();
        execute(*database, "CREATE TABLE T(a); INSERT INTO T VALUES (1);");
        EXPECT_EQ(database->quickCheck().value(), std::nullopt);
        EXPECT_EQ(database->lastFailure(), SQLiteFailure::none);
    }
    constexpr std::streamoff freePageCount = 39;
    std::fstream(file, std::ios::binary | std::ios::in | std::ios::out)
        .seekp(freePageCount)
        .put('\7');
    const auto database = opened();
    const auto found = database->quickCheck();
    ASSERT_TRUE(found.ok() && found.value().has_value());
    EXPECT_THAT(*found.value(), HasSubstr("size is 0 but should be 7"));
    EXPECT_THAT(*found.value(), Not(HasSubstr("\n")));
    EXPECT_THAT(*found.value(), Not(StartsWith("*")));
    EXPECT_EQ(database->lastFailure(), SQLiteFailure::damage);
}

TEST_F(SQLiteDatabaseTest, aFileThatIsNoDatabaseCannotBeLookedThrough) {
    std::ofstream(file) << std::string(4096, 'x');
    const auto database = opened();
    EXPECT_FALSE(database->quickCheck().ok());
    EXPECT_EQ(database->lastFailure(), SQLiteFailure::damage);
}

TEST_F(SQLiteDatabaseTest, theLastFailureSaysWhatItWasAbout) {
    const auto holder = opened();
    execute(*holder, "CREATE TABLE T(a); BEGIN IMMEDIATE");
    const auto other = opened();
    EXPECT_FALSE(other->execute("BEGIN IMMEDIATE").ok());
    EXPECT_EQ(other->lastFailure(), SQLiteFailure::inUse);
    EXPECT_FALSE(other->execute("SELECT * FROM Absent").ok());
    EXPECT_EQ(other->lastFailure(), SQLiteFailure::statement);
    const auto reader = opened(SQLiteDatabase::Mode::readOnly);
    EXPECT_FALSE(reader->execute("DELETE FROM T").ok());
    EXPECT_EQ(reader->lastFailure(), SQLiteFailure::disk);
}

TEST_F(SQLiteDatabaseTest, theLogIsLeftWhenClosingIfAsked) {
    const std::filesystem::path log = file.string() + "-wal";
    for (const bool leaves : {true, false}) {
        const auto database = opened();
        execute(*database,
                "PRAGMA journal_mode = WAL; CREATE TABLE IF NOT EXISTS T(a); "
                "INSERT INTO T VALUES (1)");
        if (leaves) {
            database->leaveLogWhenClosing();
        }
        EXPECT_TRUE(std::filesystem::exists(log));
    }
    EXPECT_FALSE(std::filesystem::exists(log));
}

TEST_F(SQLiteDatabaseTest, aCommitLeavesALongLogToWhoeverShortensIt) {
    const auto database = opened();
    execute(*database, "PRAGMA journal_mode = WAL; CREATE TABLE T(a)");
    database->shortenLog();
    const auto small = std::filesystem::file_size(file);
    constexpr std::size_t large = 6 << 20;
    execute(*database, "INSERT INTO T VALUES (zeroblob(6 << 20))");
    EXPECT_EQ(std::filesystem::file_size(file), small);
    database->shortenLog();
    EXPECT_GT(std::filesystem::file_size(file), large);
    // The log begins again, and grows no further however much is written.
    for (int i = 0; i < 5; ++i) {
        execute(*database, "UPDATE T SET a = zeroblob(6 << 20)");
        database->shortenLog();
    }
    EXPECT_LT(std::filesystem::file_size(file.string() + "-wal"), 2 * large);
}

}  // namespace
}  // namespace tavrion
