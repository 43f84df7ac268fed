#include "platform/sqlite/SQLiteDatabase.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <cctype>
#include <limits>
#include <system_error>
#include <utility>

#include "platform/foundation/OpenFile.h"
#include "platform/foundation/Precondition.h"

namespace tavrion {
namespace {

SQLiteFailure failureOf(int code) {
    switch (code & 0xff) {
        case SQLITE_OK:
            return SQLiteFailure::none;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_FORMAT:
            return SQLiteFailure::damage;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
        case SQLITE_PROTOCOL:
            return SQLiteFailure::inUse;
        case SQLITE_IOERR:
        case SQLITE_FULL:
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
        case SQLITE_READONLY:
        case SQLITE_NOMEM:
            return SQLiteFailure::disk;
        default:
            return SQLiteFailure::statement;
    }
}

/// The name under which SQLite opens the file as one that never changes.
std::string unchangingName(const std::filesystem::path& file) {
    std::string name = "file:";
    for (const char c : file.string()) {
        // Everything else could end the path or stand for another sign.
        if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '/' || c == '.' || c == '-') {
            name += c;
        } else {
            name += fmt::format("%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return name + "?immutable=1";
}

}  // namespace

SQLiteStatement::SQLiteStatement(SQLiteStatement&& other) noexcept
    : database_(other.database_),
      statement_(std::exchange(other.statement_, nullptr)),
      isReading_(std::exchange(other.isReading_, false)),
      bindingError_(std::move(other.bindingError_)) {}

SQLiteStatement& SQLiteStatement::operator=(SQLiteStatement&& other) noexcept {
    std::swap(database_, other.database_);
    std::swap(statement_, other.statement_);
    std::swap(isReading_, other.isReading_);
    std::swap(bindingError_, other.bindingError_);
    return *this;
}

SQLiteStatement::~SQLiteStatement() {
    sqlite3_finalize(statement_);
}

void SQLiteStatement::getReadyToBind() {
    if (isReading_) {
        reset();
    }
}

void SQLiteStatement::noteBinding(int code) {
    if (code != SQLITE_OK && !bindingError_) {
        bindingError_ = database_->lastError(code);
    }
}

void SQLiteStatement::bindNull(int parameter) {
    getReadyToBind();
    noteBinding(sqlite3_bind_null(statement_, parameter));
}

void SQLiteStatement::bindInteger(int parameter, std::int64_t value) {
    getReadyToBind();
    noteBinding(sqlite3_bind_int64(statement_, parameter, value));
}

void SQLiteStatement::bindReal(int parameter, double value) {
    getReadyToBind();
    noteBinding(sqlite3_bind_double(statement_, parameter, value));
}

void SQLiteStatement::bindText(int parameter, std::string_view value) {
    getReadyToBind();
    const char* bytes = value.data() != nullptr ? value.data() : "";
    noteBinding(sqlite3_bind_text64(statement_, parameter, bytes, value.size(), SQLITE_TRANSIENT,
                                    SQLITE_UTF8));
}

void SQLiteStatement::bindBlob(int parameter, std::string_view value) {
    getReadyToBind();
    const char* bytes = value.data() != nullptr ? value.data() : "";
    noteBinding(sqlite3_bind_blob64(statement_, parameter, bytes, value.size(), SQLITE_TRANSIENT));
}

void SQLiteStatement::bindTextInPlace(int parameter, std::string_view value) {
    getReadyToBind();
    const char* bytes = value.data() != nullptr ? value.data() : "";
    noteBinding(sqlite3_bind_text64(statement_, parameter, bytes, value.size(), SQLITE_STATIC,
                                    SQLITE_UTF8));
}

void SQLiteStatement::bindBlobInPlace(int parameter, std::string_view value) {
    getReadyToBind();
    const char* bytes = value.data() != nullptr ? value.data() : "";
    noteBinding(sqlite3_bind_blob64(statement_, parameter, bytes, value.size(), SQLITE_STATIC));
}

Result<bool> SQLiteStatement::step() {
    if (bindingError_) {
        return *std::exchange(bindingError_, std::nullopt);
    }
    const int code = sqlite3_step(statement_);
    isReading_ = code == SQLITE_ROW;
    if (isReading_) {
        return true;
    }
    // The error is read before the reset, which would report the same failure as its own.
    if (code != SQLITE_DONE) {
        NSError error = database_->lastError(code);
        sqlite3_reset(statement_);
        return error;
    }
    sqlite3_reset(statement_);
    return false;
}

void SQLiteStatement::reset() {
    sqlite3_reset(statement_);
    isReading_ = false;
}

Result<void> SQLiteStatement::run() {
    const Result<bool> row = step();
    if (!row) {
        return row.error();
    }
    if (row.value()) {
        reset();
    }
    return {};
}

bool SQLiteStatement::isNull(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

std::int64_t SQLiteStatement::integer(int column) const {
    return sqlite3_column_int64(statement_, column);
}

double SQLiteStatement::real(int column) const {
    return sqlite3_column_double(statement_, column);
}

std::string_view SQLiteStatement::text(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    const auto length = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return bytes == nullptr ? std::string_view() : std::string_view(bytes, length);
}

std::optional<std::string_view> SQLiteStatement::optionalText(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return bytes == nullptr
               ? std::nullopt
               : std::optional(std::string_view(
                     bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))));
}

std::string_view SQLiteStatement::blob(int column) const {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_, column));
    const auto length = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return bytes == nullptr ? std::string_view() : std::string_view(bytes, length);
}

namespace {

/// SQLite would let everybody read what it makes. The files that it puts beside a database follow
/// the database's own rights.
void makeForTheUserAlone(const std::filesystem::path& file) {
    const OpenFile made(file, O_RDWR | O_CREAT | O_EXCL);
}

}  // namespace

Result<std::unique_ptr<SQLiteDatabase>> SQLiteDatabase::open(const std::filesystem::path& file,
                                                             Mode mode) {
    // SQLite would take a file without a name for a temporary one.
    if (file.empty()) {
        return NSError{"the name of the database file is empty; give a file", {}};
    }
    int flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    std::string name = file.string();
    switch (mode) {
        case Mode::readOnly:
            flags |= SQLITE_OPEN_READONLY;
            break;
        case Mode::unchanging:
            flags |= SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
            name = unchangingName(file);
            break;
        case Mode::readWrite:
            flags |= SQLITE_OPEN_READWRITE;
            break;
        case Mode::create:
            makeForTheUserAlone(file);
            flags |= SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
            break;
    }
    sqlite3* connection = nullptr;
    const int code = sqlite3_open_v2(name.c_str(), &connection, flags, nullptr);
    std::unique_ptr<SQLiteDatabase> database(new SQLiteDatabase(file, connection));
    if (code != SQLITE_OK) {
        return database->lastError(code);
    }
    // In the place of the checkpoint within a commit.
    sqlite3_wal_hook(connection, noteCommit, database.get());
    return database;
}

SQLiteDatabase::~SQLiteDatabase() {
    sqlite3_close_v2(connection_);
}

Result<SQLiteStatement> SQLiteDatabase::prepare(std::string_view sql) {
    constexpr auto longest = static_cast<std::size_t>(std::numeric_limits<int>::max());
    sqlite3_stmt* statement = nullptr;
    const char* rest = nullptr;
    const int code =
        sqlite3_prepare_v3(connection_, sql.data(), static_cast<int>(std::min(sql.size(), longest)),
                           SQLITE_PREPARE_PERSISTENT, &statement, &rest);
    if (code != SQLITE_OK) {
        return lastError(code);
    }
    SQLiteStatement prepared(*this, statement);
    if (statement == nullptr) {
        return NSError{fmt::format("{}: there is no statement to run", file_.string()), {}};
    }
    const std::string_view unread = sql.substr(static_cast<std::size_t>(rest - sql.data()));
    if (unread.find_first_not_of(" \t\r\n;") != std::string_view::npos) {
        return NSError{fmt::format("{}: there is more than one statement to run", file_.string()),
                       std::string(unread)};
    }
    return Result<SQLiteStatement>(std::move(prepared));
}

Result<void> SQLiteDatabase::execute(const std::string& sql) {
    const int code = sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) {
        return lastError(code);
    }
    return {};
}

std::int64_t SQLiteDatabase::changes() const {
    return sqlite3_changes64(connection_);
}

void SQLiteDatabase::setBusyTimeout(double seconds) {
    constexpr double longest = std::numeric_limits<int>::max();
    sqlite3_busy_timeout(connection_, static_cast<int>(std::clamp(seconds * 1000, 0.0, longest)));
}

int SQLiteDatabase::noteCommit(void* database, sqlite3* /*connection*/, const char* /*name*/,
                               int pages) {
    static_cast<SQLiteDatabase*>(database)->logPages_ = pages;
    return SQLITE_OK;
}

void SQLiteDatabase::shortenLog() {
    // SQLite's own measure.
    constexpr int longLog = 1000;
    if (logPages_ >= longLog) {
        sqlite3_wal_checkpoint_v2(connection_, "main", SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
    }
}

bool SQLiteDatabase::isReadOnly() const {
    return sqlite3_db_readonly(connection_, "main") != 0;
}

Result<std::optional<std::string>> SQLiteDatabase::quickCheck() {
    auto check = prepare("PRAGMA quick_check(1)");
    if (!check) {
        return check.error();
    }
    const Result<bool> row = check.value().step();
    if (!row) {
        return row.error();
    }
    std::string finding(row.value() ? check.value().text(0) : "ok");
    if (finding == "ok") {
        return std::optional<std::string>();
    }
    // A headline that names the database comes first.
    if (const std::size_t end = finding.find('\n');
        finding.starts_with("***") && end != std::string::npos) {
        finding.erase(0, end + 1);
    }
    std::replace(finding.begin(), finding.end(), '\n', ' ');
    lastFailure_ = SQLiteFailure::damage;
    return std::optional(finding);
}

bool SQLiteDatabase::isInTransaction() const {
    return sqlite3_get_autocommit(connection_) == 0;
}

void SQLiteDatabase::leaveLogWhenClosing() {
    sqlite3_db_config(connection_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

NSError SQLiteDatabase::lastError(int code) {
    lastFailure_ = failureOf(code);
    const char* message =
        connection_ != nullptr ? sqlite3_errmsg(connection_) : sqlite3_errstr(code);
    std::string reason = message;
    const int systemError = connection_ != nullptr ? sqlite3_system_errno(connection_) : 0;
    if ((code & 0xff) == SQLITE_CANTOPEN && systemError != 0) {
        reason += fmt::format(" ({})", std::generic_category().message(systemError));
    }
    return NSError{fmt::format("{}: {}", file_.string(), reason),
                   fmt::format("SQLite error {}", code)};
}

Result<SQLiteTransaction> SQLiteTransaction::begin(SQLiteDatabase& database) {
    // SQLite would begin a reading transaction and refuse the first write.
    if (database.isReadOnly()) {
        database.lastFailure_ = SQLiteFailure::disk;
        return NSError{fmt::format("{}: the database cannot be written; check the rights of the "
                                   "file and its folder",
                                   database.file().string()),
                       {}};
    }
    const Result<void> begun = database.execute("BEGIN IMMEDIATE");
    if (!begun) {
        return begun.error();
    }
    return SQLiteTransaction(database);
}

SQLiteTransaction::SQLiteTransaction(SQLiteTransaction&& other) noexcept
    : database_(std::exchange(other.database_, nullptr)) {}

SQLiteTransaction::~SQLiteTransaction() {
    if (database_ != nullptr && database_->isInTransaction()) {
        database_->execute("ROLLBACK").ignore();
    }
}

Result<void> SQLiteTransaction::commit() {
    precondition(database_ != nullptr, "a transaction is committed once");
    Result<void> committed = database_->execute("COMMIT");
    if (committed) {
        database_ = nullptr;
    }
    return committed;
}

}  // namespace tavrion
