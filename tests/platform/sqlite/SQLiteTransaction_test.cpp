#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <utility>

#include "platform/sqlite/SQLiteDatabase.h"
#include "tests/platform/sqlite/SQLiteTest.h"

namespace tavrion {
namespace {

using ::testing::StartsWith;

class SQLiteTransactionTest : public test::SQLiteTest {};

TEST_F(SQLiteTransactionTest, anotherConnectionsTransactionLocksTheFile) {
    const auto first = opened();
    const auto second = opened();
    execute(*first, "CREATE TABLE T(a)");
    {
        auto transaction = SQLiteTransaction::begin(*first);
        ASSERT_TRUE(transaction.ok());
        const auto locked = SQLiteTransaction::begin(*second);
        ASSERT_FALSE(locked.ok());
        EXPECT_EQ(locked.error().localizedDescription, fileFirst() + "database is locked");
    }
    EXPECT_TRUE(SQLiteTransaction::begin(*second).ok());
}

TEST_F(SQLiteTransactionTest, aTransactionIsRolledBackUnlessCommitted) {
    const auto database = opened();
    execute(*database, "CREATE TABLE T(a)");
    {
        auto transaction = SQLiteTransaction::begin(*database);
        ASSERT_TRUE(transaction.ok());
        execute(*database, "INSERT INTO T VALUES (1)");
        const SQLiteTransaction moved(std::move(transaction).value());
        EXPECT_EQ(number(*database, "SELECT count(*) FROM T"), 1);
    }
    EXPECT_EQ(number(*database, "SELECT count(*) FROM T"), 0);
    {
        auto transaction = SQLiteTransaction::begin(*database);
        ASSERT_TRUE(transaction.ok());
        execute(*database, "INSERT INTO T VALUES (1)");
        EXPECT_TRUE(transaction.value().commit().ok());
    }
    EXPECT_EQ(number(*opened(), "SELECT count(*) FROM T"), 1);
}

TEST_F(SQLiteTransactionTest, aMovedTransactionIsRolledBackOnce) {
    const auto database = opened();
    execute(*database, "CREATE TABLE T(a)");
    std::optional begun(SQLiteTransaction::begin(*database));
    ASSERT_TRUE(begun->ok());
    { const SQLiteTransaction moved(std::move(*begun).value()); }
    auto next = SQLiteTransaction::begin(*database);
    ASSERT_TRUE(next.ok());
    execute(*database, "INSERT INTO T VALUES (1)");
    // The object that was moved from goes now, and must leave the new transaction alone.
    begun.reset();
    EXPECT_TRUE(next.value().commit().ok());
    EXPECT_EQ(number(*database, "SELECT count(*) FROM T"), 1);
}

TEST_F(SQLiteTransactionTest, aReadOnlyDatabaseIsRefusedAtOnce) {
    execute(*opened(), "CREATE TABLE T(a)");
    const auto database = opened(SQLiteDatabase::Mode::readOnly);
    const auto begun = SQLiteTransaction::begin(*database);
    ASSERT_FALSE(begun.ok());
    EXPECT_THAT(begun.error().localizedDescription,
                StartsWith(fileFirst() + "the database cannot be written"));
}

TEST_F(SQLiteTransactionTest, aTransactionInsideAnotherIsAnError) {
    const auto database = opened();
    const auto outer = SQLiteTransaction::begin(*database);
    ASSERT_TRUE(outer.ok());
    const auto inner = SQLiteTransaction::begin(*database);
    ASSERT_FALSE(inner.ok());
    EXPECT_THAT(inner.error().localizedDescription, StartsWith(fileFirst()));
}

TEST_F(SQLiteTransactionTest, aFailedCommitIsRolledBack) {
    const auto database = opened();
    execute(*database,
            "PRAGMA foreign_keys = ON; CREATE TABLE Parent(id INTEGER PRIMARY KEY); CREATE TABLE "
            "Child(parent REFERENCES Parent DEFERRABLE INITIALLY DEFERRED)");
    {
        auto transaction = SQLiteTransaction::begin(*database);
        ASSERT_TRUE(transaction.ok());
        execute(*database, "INSERT INTO Child VALUES (1)");
        const auto committed = transaction.value().commit();
        ASSERT_FALSE(committed.ok());
        EXPECT_EQ(committed.error().localizedDescription,
                  fileFirst() + "FOREIGN KEY constraint failed");
    }
    EXPECT_EQ(number(*database, "SELECT count(*) FROM Child"), 0);
    EXPECT_TRUE(SQLiteTransaction::begin(*database).ok());
}

TEST_F(SQLiteTransactionTest, committingTwiceEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto database = opened();
    auto transaction = SQLiteTransaction::begin(*database);
    ASSERT_TRUE(transaction.ok());
    EXPECT_TRUE(transaction.value().commit().ok());
    EXPECT_DEATH(transaction.value().commit().ignore(), "committed once");
}

}  // namespace
}  // namespace tavrion
