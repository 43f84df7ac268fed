// A thin wrapper around SQLite: a connection and its prepared statements.
//
// Queue: a connection and its statements belong to one queue at a time; nothing here locks. Who
// owns: the statement must not outlive its connection. Errors name the file and give SQLite's own
// words.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/foundation/Result.h"

struct sqlite3;
struct sqlite3_stmt;

namespace tavrion {

class SQLiteDatabase;
class SQLiteTransaction;

/// What an error was about, for whoever says what to do about it.
enum class SQLiteFailure {
    none,
    /// The file is not as SQLite left it.
    damage,
    /// Another connection holds a lock.
    inUse,
    /// The file system refuses: no space, no rights, a broken disk.
    disk,
    /// The statement: a table that is not there, a constraint that does not hold.
    statement
};

/// A prepared statement. Parameters count from 1, columns from 0.
class SQLiteStatement {
  public:
    SQLiteStatement(SQLiteStatement&&) noexcept;
    SQLiteStatement& operator=(SQLiteStatement&&) noexcept;
    ~SQLiteStatement();

    /// Binding ends a reading that is under way. A failure, such as a parameter that is not there,
    /// is reported by the next step().
    void bindNull(int parameter);
    void bindInteger(int parameter, std::int64_t value);
    /// NaN becomes NULL.
    void bindReal(int parameter, double value);
    /// The bytes are copied. They may contain NUL, and empty ones are not NULL.
    void bindText(int parameter, std::string_view value);
    void bindBlob(int parameter, std::string_view value);
    /// The same without a copy: the bytes stay until the statement is stepped to its end or bound
    /// again.
    void bindTextInPlace(int parameter, std::string_view value);
    void bindBlobInPlace(int parameter, std::string_view value);

    /// Goes to the next row: true when there is one, false at the end (the statement is then ready
    /// to be bound again).
    Result<bool> step();
    /// Runs a statement whose rows, if it gives any, do not matter.
    Result<void> run();
    /// Ends a reading before its last row, and with it the lock on the file. What was bound stays.
    void reset();

    bool isNull(int column) const;
    std::int64_t integer(int column) const;
    double real(int column) const;
    /// Valid until the next step().
    std::string_view text(int column) const;
    std::string_view blob(int column) const;
    /// The text, or nothing for NULL.
    std::optional<std::string_view> optionalText(int column) const;

  private:
    friend class SQLiteDatabase;
    SQLiteStatement(SQLiteDatabase& database, sqlite3_stmt* statement)
        : database_(&database), statement_(statement) {}
    void getReadyToBind();
    void noteBinding(int code);
    SQLiteDatabase* database_;
    sqlite3_stmt* statement_;
    /// Between a row and the end of the reading.
    bool isReading_ = false;
    /// The first binding since the last step() that failed.
    std::optional<NSError> bindingError_;
};

class SQLiteDatabase {
  public:
    enum class Mode {
        /// The file must exist and is never written.
        readOnly,
        /// As readOnly, in a folder where SQLite can't put its own files beside it. The file must
        /// have no log and must not change meanwhile.
        unchanging,
        /// The file must exist.
        readWrite,
        /// The file is made when missing.
        create
    };
    /// Opens without reading a page; the first statement finds out whether the file is a database
    /// at all.
    static Result<std::unique_ptr<SQLiteDatabase>> open(const std::filesystem::path& file,
                                                        Mode mode);
    ~SQLiteDatabase();
    SQLiteDatabase(const SQLiteDatabase&) = delete;
    SQLiteDatabase& operator=(const SQLiteDatabase&) = delete;

    /// Exactly one statement.
    Result<SQLiteStatement> prepare(std::string_view sql);
    /// Runs one or more statements and drops their rows.
    Result<void> execute(const std::string& sql);
    /// How many rows the last insert, update or delete changed.
    std::int64_t changes() const;
    /// Seconds that a statement waits for another process's lock.
    void setBusyTimeout(double seconds);
    /// Whether writes are refused: opened so, or the file is write-protected.
    bool isReadOnly() const;
    /// Whether a transaction is open. Some failures end it on their own.
    bool isInTransaction() const;
    /// Looks through the file for damage: the first finding, in one line, or nothing. It sees what
    /// breaks the file's order; a value that was changed in place looks like any other. An error
    /// when the file is too damaged to be looked through, or can't be read.
    Result<std::optional<std::string>> quickCheck();
    /// What the last error of this connection or its statements was about.
    SQLiteFailure lastFailure() const { return lastFailure_; }
    /// Brings what a long write-ahead log holds into the file. Commits do not do that themselves:
    /// what they wrote is safe in the log, and nobody need wait for more. Does nothing while the
    /// log is short. What can't be brought over now stays in the log.
    void shortenLog();
    /// Closing then leaves the write-ahead log as it is there, and writes nothing into the file.
    void leaveLogWhenClosing();
    const std::filesystem::path& file() const { return file_; }

  private:
    friend class SQLiteStatement;
    friend class SQLiteTransaction;
    SQLiteDatabase(std::filesystem::path file, sqlite3* connection)
        : file_(std::move(file)), connection_(connection) {}
    NSError lastError(int code);
    static int noteCommit(void* database, sqlite3* connection, const char* name, int pages);
    std::filesystem::path file_;
    sqlite3* connection_;
    /// In the log, as of the last commit.
    int logPages_ = 0;
    SQLiteFailure lastFailure_ = SQLiteFailure::none;
};

/// A transaction that is rolled back unless committed.
class SQLiteTransaction {
  public:
    /// Takes the write lock at once; an error when the database is read-only.
    static Result<SQLiteTransaction> begin(SQLiteDatabase& database);
    SQLiteTransaction(SQLiteTransaction&& other) noexcept;
    SQLiteTransaction& operator=(SQLiteTransaction&&) = delete;
    ~SQLiteTransaction();
    /// Once. After a failure the transaction is rolled back with this object.
    Result<void> commit();

  private:
    explicit SQLiteTransaction(SQLiteDatabase& database) : database_(&database) {}
    SQLiteDatabase* database_;
};

}  // namespace tavrion
