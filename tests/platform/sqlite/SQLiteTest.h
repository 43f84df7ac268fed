// What the tests of the database share: a folder that goes away, and calls that are expected to
// succeed.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/sqlite/SQLiteDatabase.h"

namespace tavrion::test {

class SQLiteTest : public ::testing::Test {
  protected:
    SQLiteTest() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "tavrion-sqlite-XXXXXX").string();
        const char* made = mkdtemp(pattern.data());
        EXPECT_NE(made, nullptr);
        folder = std::filesystem::canonical(pattern);
        file = folder / "test.sqlite";
    }
    ~SQLiteTest() override {
        std::error_code error;
        std::filesystem::remove_all(folder, error);
    }

    std::unique_ptr<SQLiteDatabase> opened(
        SQLiteDatabase::Mode mode = SQLiteDatabase::Mode::create) const {
        auto database = SQLiteDatabase::open(file, mode);
        EXPECT_TRUE(database.ok()) << (database.ok() ? "" : database.error().localizedDescription);
        return std::move(database).value();
    }
    static SQLiteStatement prepared(SQLiteDatabase& database, std::string_view sql) {
        auto statement = database.prepare(sql);
        EXPECT_TRUE(statement.ok())
            << (statement.ok() ? "" : statement.error().localizedDescription);
        return std::move(statement).value();
    }
    static void execute(SQLiteDatabase& database, const std::string& sql) {
        const auto done = database.execute(sql);
        EXPECT_TRUE(done.ok()) << (done.ok() ? "" : done.error().localizedDescription);
    }
    static bool hasRow(SQLiteStatement& statement) {
        const auto row = statement.step();
        EXPECT_TRUE(row.ok()) << (row.ok() ? "" : row.error().localizedDescription);
        return row.ok() && row.value();
    }
    static std::int64_t number(SQLiteDatabase& database, std::string_view sql) {
        auto statement = prepared(database, sql);
        EXPECT_TRUE(hasRow(statement));
        return statement.integer(0);
    }
    /// The start of every error about the file.
    std::string fileFirst() const { return file.string() + ": "; }

    std::filesystem::path folder;
    std::filesystem::path file;
};

}  // namespace tavrion::test
