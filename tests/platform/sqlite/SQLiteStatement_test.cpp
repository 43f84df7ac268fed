#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/sqlite/SQLiteDatabase.h"
#include "tests/platform/sqlite/SQLiteTest.h"

namespace tavrion {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;
using namespace std::string_view_literals;

class SQLiteStatementTest : public test::SQLiteTest {};

TEST_F(SQLiteStatementTest, integersComeBackAsTheyWere) {
    const auto database = opened();
    auto echo = prepared(*database, "SELECT ?1, typeof(?1)");
    for (const std::int64_t value :
         {std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min(),
          std::numeric_limits<std::int64_t>::max()}) {
        echo.bindInteger(1, value);
        ASSERT_TRUE(hasRow(echo));
        EXPECT_EQ(echo.integer(0), value);
        EXPECT_EQ(echo.text(1), "integer");
        EXPECT_FALSE(hasRow(echo));
    }
}

TEST_F(SQLiteStatementTest, realsComeBackToTheLastBit) {
    const auto database = opened();
    auto echo = prepared(*database, "SELECT ?1, typeof(?1)");
    for (const double value :
         {0.1, -0.0, 695217600.123456, std::numeric_limits<double>::max(),
          std::numeric_limits<double>::denorm_min(), std::numeric_limits<double>::infinity()}) {
        echo.bindReal(1, value);
        ASSERT_TRUE(hasRow(echo));
        EXPECT_EQ(echo.real(0), value);
        EXPECT_EQ(echo.text(1), "real");
        EXPECT_FALSE(hasRow(echo));
    }
    echo.bindReal(1, std::numeric_limits<double>::quiet_NaN());
    ASSERT_TRUE(hasRow(echo));
    EXPECT_TRUE(echo.isNull(0));
}

TEST_F(SQLiteStatementTest, textsAndBlobsComeBackByteForByte) {
    const auto database = opened();
    auto echo = prepared(*database, "SELECT ?1, typeof(?1), ?2, typeof(?2)");
    for (const std::string_view value : {"word"sv, "a\0b\0"sv, ""sv, std::string_view(),
                                         "\xE6\x97\xA5\xE6\x9C\xAC"sv, "it's \"quoted\""sv}) {
        echo.bindText(1, value);
        echo.bindBlob(2, value);
        ASSERT_TRUE(hasRow(echo));
        EXPECT_EQ(echo.text(0), value);
        EXPECT_EQ(echo.text(1), "text");
        EXPECT_FALSE(echo.isNull(0));
        EXPECT_EQ(echo.blob(2), value);
        EXPECT_EQ(echo.text(3), "blob");
        EXPECT_FALSE(echo.isNull(2));
        EXPECT_FALSE(hasRow(echo));
    }
    const std::string_view notText = "\xFF\x00\xFE"sv;
    echo.bindBlob(2, notText);
    ASSERT_TRUE(hasRow(echo));
    EXPECT_EQ(echo.blob(2), notText);
}

TEST_F(SQLiteStatementTest, nullsComeBackAsNulls) {
    const auto database = opened();
    auto echo = prepared(*database, "SELECT ?1");
    echo.bindInteger(1, 7);
    echo.bindNull(1);
    ASSERT_TRUE(hasRow(echo));
    EXPECT_TRUE(echo.isNull(0));
    EXPECT_EQ(echo.integer(0), 0);
    EXPECT_EQ(echo.text(0), "");
    EXPECT_EQ(echo.blob(0), "");
}

TEST_F(SQLiteStatementTest, boundBytesAreCopied) {
    const auto database = opened();
    auto rows = prepared(*database, "SELECT ?1 FROM (VALUES (1), (2), (3))");
    std::string value(100, 'x');
    rows.bindText(1, value);
    value.assign(100, 'y');
    while (hasRow(rows)) {
        EXPECT_EQ(rows.text(0), std::string(100, 'x'));
    }
}

TEST_F(SQLiteStatementTest, aStatementIsReadyAgainAfterItsLastRow) {
    const auto database = opened();
    auto rows = prepared(*database,
                         "SELECT value FROM (SELECT 1 AS value UNION SELECT 2) "
                         "WHERE value >= ? ORDER BY value");
    for (const int from : {1, 2, 3}) {
        rows.bindInteger(1, from);
        std::vector<std::int64_t> values;
        while (hasRow(rows)) {
            values.push_back(rows.integer(0));
        }
        EXPECT_EQ(values.size(), static_cast<std::size_t>(3 - from));
    }
}

TEST_F(SQLiteStatementTest, bindingEndsAReadingThatIsUnderWay) {
    const auto database = opened();
    auto rows = prepared(*database, "SELECT ?1 FROM (VALUES (1), (2))");
    rows.bindInteger(1, 1);
    ASSERT_TRUE(hasRow(rows));
    rows.bindInteger(1, 2);
    ASSERT_TRUE(hasRow(rows));
    EXPECT_EQ(rows.integer(0), 2);
    ASSERT_TRUE(hasRow(rows));
    EXPECT_FALSE(hasRow(rows));
}

TEST_F(SQLiteStatementTest, resetGivesTheReadLockBack) {
    const auto database = opened();
    execute(*database, "CREATE TABLE T(a); INSERT INTO T VALUES (1), (2)");
    const auto writer = opened();
    auto rows = prepared(*database, "SELECT a FROM T");
    ASSERT_TRUE(hasRow(rows));
    EXPECT_FALSE(writer->execute("DROP TABLE T").ok());
    rows.reset();
    execute(*writer, "DROP TABLE T");
}

TEST_F(SQLiteStatementTest, runDropsRows) {
    const auto database = opened();
    execute(*database, "CREATE TABLE T(a)");
    auto insert = prepared(*database, "INSERT INTO T VALUES (1), (2) RETURNING a");
    EXPECT_TRUE(insert.run().ok());
    EXPECT_TRUE(insert.run().ok());
    EXPECT_EQ(number(*database, "SELECT count(*) FROM T"), 4);
}

TEST_F(SQLiteStatementTest, statementsMayMove) {
    const auto database = opened();
    auto first = prepared(*database, "SELECT 1");
    auto second = prepared(*database, "SELECT 2");
    first = std::move(second);
    SQLiteStatement third(std::move(first));
    ASSERT_TRUE(hasRow(third));
    EXPECT_EQ(third.integer(0), 2);
}

TEST_F(SQLiteStatementTest, aFailedStepTellsTheReasonAndCanBeRepeated) {
    const auto database = opened();
    execute(*database, "CREATE TABLE T(a INTEGER UNIQUE)");
    auto insert = prepared(*database, "INSERT INTO T VALUES (?)");
    insert.bindInteger(1, 1);
    EXPECT_TRUE(insert.run().ok());
    const auto twice = insert.run();
    ASSERT_FALSE(twice.ok());
    EXPECT_EQ(twice.error().localizedDescription, fileFirst() + "UNIQUE constraint failed: T.a");
    insert.bindInteger(1, 2);
    EXPECT_TRUE(insert.run().ok());
}

TEST_F(SQLiteStatementTest, aFailedBindingIsReportedByTheNextStepOnly) {
    const auto database = opened();
    auto echo = prepared(*database, "SELECT ?1");
    echo.bindInteger(2, 5);
    echo.bindInteger(1, 6);
    const auto failed = echo.step();
    ASSERT_FALSE(failed.ok());
    EXPECT_THAT(failed.error().localizedDescription, StartsWith(fileFirst()));
    EXPECT_THAT(failed.error().localizedDescription, HasSubstr("out of range"));
    ASSERT_TRUE(hasRow(echo));
    EXPECT_EQ(echo.integer(0), 6);
}

TEST_F(SQLiteStatementTest, bytesBoundInPlaceAreReadWhereTheyAre) {
    const auto database = opened();
    auto echo = prepared(*database, "SELECT ?1, ?2, typeof(?1), typeof(?2)");
    std::string text = "one";
    std::string bytes("\0\xFF", 2);
    echo.bindTextInPlace(1, text);
    echo.bindBlobInPlace(2, bytes);
    // A copy would still say "one".
    text = "two";
    ASSERT_TRUE(hasRow(echo));
    EXPECT_EQ(echo.text(0), "two");
    EXPECT_EQ(echo.blob(1), bytes);
    EXPECT_EQ(echo.text(2), "text");
    EXPECT_EQ(echo.text(3), "blob");
}

TEST_F(SQLiteStatementTest, anOptionalTextTellsNullFromAnEmptyOne) {
    const auto database = opened();
    auto values = prepared(*database, "SELECT NULL, '', 'x'");
    ASSERT_TRUE(hasRow(values));
    EXPECT_EQ(values.optionalText(0), std::nullopt);
    EXPECT_EQ(values.optionalText(1), "");
    EXPECT_EQ(values.optionalText(2), "x");
}

}  // namespace
}  // namespace tavrion
