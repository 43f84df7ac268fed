#include "platform/coredata/StoreFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <optional>
#include <system_error>
#include <vector>

#include "platform/coredata/StoreCheck.h"

namespace tavrion::StoreFile {
namespace {

namespace fs = std::filesystem;

/// What the first 100 bytes of an SQLite file tell.
struct Header {
    static constexpr std::size_t length = 100;
    std::array<unsigned char, length> bytes{};
    std::uint64_t fileSize = 0;

    std::uint32_t number(std::size_t offset) const {
        return (std::uint32_t{bytes[offset]} << 24U) | (std::uint32_t{bytes[offset + 1]} << 16U) |
               (std::uint32_t{bytes[offset + 2]} << 8U) | std::uint32_t{bytes[offset + 3]};
    }
    bool isSQLite() const { return std::memcmp(bytes.data(), "SQLite format 3", 16) == 0; }
    std::uint64_t pageSize() const {
        const std::uint32_t size = (std::uint32_t{bytes[16]} << 8U) | bytes[17];
        return size == 1 ? 65536 : size;
    }
    std::uint64_t expectedSize() const { return pageSize() * number(28); }
    std::int32_t userVersion() const { return static_cast<std::int32_t>(number(60)); }
    std::int32_t applicationID() const { return static_cast<std::int32_t>(number(68)); }
};

NSError error(const fs::path& file, const std::string& what) {
    return NSError{fmt::format("{}: {}", file.string(), what), {}};
}

/// Whether a write-ahead log with content lies beside the file.
bool hasLog(const fs::path& file) {
    std::error_code none;
    const fs::path log = file.string() + "-wal";
    return fs::exists(log, none) && fs::file_size(log, none) > 0;
}

/// What to do about a file whose content can't be used. A log of the old file would be taken for
/// one of the file that is put in its place.
std::string advice(const fs::path& file, const StoreFormat& format) {
    const std::string name = file.filename().string();
    const std::string away =
        hasLog(file) ? fmt::format("move {0} and {0}-wal away", name) : "move it away";
    const fs::path copies = file.parent_path() / format.safetyCopies;
    std::error_code none;
    if (!format.safetyCopies.empty() && fs::is_directory(copies, none) &&
        !fs::is_empty(copies, none)) {
        return fmt::format("{}, then put back a safety copy from {} as {}, or start anew", away,
                           copies.string(), name);
    }
    return away + " to start anew, or put back a copy of your own";
}

/// The text of an error about the file without the file's name.
std::string withoutName(const fs::path& file, const std::string& text) {
    const std::string name = file.string() + ": ";
    return text.starts_with(name) ? text.substr(name.size()) : text;
}

Result<Header> readHeader(const fs::path& file, const StoreFormat& format) {
    Header header;
    std::error_code failure;
    if (!fs::is_regular_file(file, failure)) {
        return error(
            file,
            fmt::format(
                "this is not a file; {} keeps its records in a file of that name, so move the "
                "other thing away",
                format.programName));
    }
    header.fileSize = fs::file_size(file, failure);
    std::ifstream stream(file, std::ios::binary);
    if (failure || !stream) {
        return error(file, "the file can't be read; check its permissions");
    }
    stream.read(reinterpret_cast<char*>(header.bytes.data()), Header::length);
    if (static_cast<std::size_t>(stream.gcount()) < Header::length) {
        return error(file, fmt::format("the file is cut off after {} bytes; {}", header.fileSize,
                                       advice(file, format)));
    }
    return header;
}

/// What forbids touching the file; absent when it is ours, whole and of a known version.
std::optional<NSError> objection(const fs::path& file, const Header& header,
                                 const StoreFormat& format) {
    if (!header.isSQLite() || header.applicationID() != format.applicationID) {
        return error(
            file, fmt::format(
                      "the file is not a store of {}; move it away or name another data directory",
                      format.programName));
    }
    if (header.userVersion() > format.version) {
        return error(
            file,
            fmt::format(
                "the store was made by a newer {} (version {}, this one knows up to {}); update {}",
                format.programName, header.userVersion(), format.version, format.programName));
    }
    if (header.userVersion() < 1) {
        return damaged(file, format, fmt::format("it says version {}", header.userVersion()));
    }
    // With a log beside it the file may rightly be shorter than it says; SQLite then judges by
    // both.
    if (!hasLog(file) && header.fileSize < header.expectedSize()) {
        return error(
            file, fmt::format("the store is cut off: {} of {} bytes are there; {}", header.fileSize,
                              header.expectedSize(), advice(file, format)));
    }
    return std::nullopt;
}

void syncDirectory(const fs::path& directory) {
    const int descriptor = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

/// Brings a file that is whole to the disk; false, with errno, when that fails.
bool synchronize(const fs::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool done = ::fsync(descriptor) == 0;
    const int code = errno;
    ::close(descriptor);
    errno = code;
    return done;
}

/// What stands in the name of a draft between the file's name and the process that makes it.
constexpr std::string_view draftMark = ".new-";

/// Removes the drafts of files that killed processes left behind in the folder. Another process
/// that makes a file just now keeps its own.
void removeDraftsOfTheDead(const fs::path& folder) {
    std::error_code failure;
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(folder, failure)) {
        const std::string name = entry.path().filename().string();
        if (const std::size_t mark = name.find(draftMark); mark != std::string::npos) {
            const int process = std::atoi(name.c_str() + mark + draftMark.size());
            if (process > 0 && ::kill(process, 0) != 0 && errno == ESRCH) {
                found.push_back(entry.path());
            }
        }
    }
    for (const fs::path& draft : found) {
        fs::remove(draft, failure);
    }
}

/// A database under way, in a file of the process's own beside the one that it shall be.
class Draft {
  public:
    explicit Draft(const fs::path& file)
        : file_(fmt::format("{}{}{}", file.string(), draftMark, ::getpid())) {
        remove();
    }
    ~Draft() { remove(); }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    const fs::path& file() const { return file_; }

  private:
    void remove() const {
        std::error_code ignored;
        for (const char* const ending : {"", "-journal", "-wal", "-shm"}) {
            fs::remove(file_.string() + ending, ignored);
        }
    }

    const fs::path file_;
};

/// Makes the tables of an empty store. They are in the file itself, and synchronized, before the
/// log begins: what a log holds could fail to reach the file when it is closed.
Result<void> fill(SQLiteDatabase& database, const NSManagedObjectModel& model,
                  const StoreFormat& format) {
    if (auto made = database.execute(
            fmt::format("PRAGMA page_size = 4096; BEGIN; PRAGMA application_id = {}; "
                        "PRAGMA user_version = {}; {} COMMIT;",
                        format.applicationID, format.version, schema(model)));
        !made) {
        return made;
    }
    auto mode = database.prepare("PRAGMA journal_mode = WAL");
    if (!mode) {
        return mode.error();
    }
    const Result<bool> set = mode.value().step();
    if (!set) {
        return set.error();
    }
    if (mode.value().text(0) != "wal") {
        return NSError{"the file system can't keep a write-ahead log", {}};
    }
    return {};
}

/// A new store appears under its name only when it is whole; of two processes that make one, the
/// first wins.
Result<void> create(const fs::path& file, const NSManagedObjectModel& model,
                    const StoreFormat& format) {
    const auto failed = [&file](const std::string& why) {
        return error(file, fmt::format("the store can't be made ({}); check the directory and the "
                                       "space on its disk",
                                       why));
    };
    const Draft draft(file);
    {
        auto database = SQLiteDatabase::open(draft.file(), SQLiteDatabase::Mode::create);
        if (!database) {
            return failed(withoutName(draft.file(), database.error().localizedDescription));
        }
        if (const auto filled = fill(*database.value(), model, format); !filled) {
            return failed(withoutName(draft.file(), filled.error().localizedDescription));
        }
    }
    if (::link(draft.file().c_str(), file.c_str()) != 0 && errno != EEXIST) {
        return failed(std::strerror(errno));
    }
    syncDirectory(file.parent_path());
    return {};
}

/// Brings an older file up to date in one transaction, after a copy.
Result<void> migrate(SQLiteDatabase& database, int from, const StoreFormat& format) {
    const fs::path copy = fmt::format("{}.version-{}", database.file().string(), from);
    std::error_code ignored;
    fs::remove(copy, ignored);
    if (auto copied = StoreFile::copy(database, copy); !copied) {
        return copied;
    }
    auto transaction = SQLiteTransaction::begin(database);
    if (!transaction) {
        return transaction.error();
    }
    for (int version = from; version < format.version; ++version) {
        const auto stepped = database.execute(format.steps[static_cast<std::size_t>(version) - 1]);
        if (!stepped) {
            return stepped.error();
        }
    }
    const auto marked = database.execute(fmt::format("PRAGMA user_version = {}", format.version));
    if (!marked) {
        return marked.error();
    }
    return transaction.value().commit();
}

const char* columnType(NSAttributeType type) {
    switch (type) {
        case NSAttributeType::boolean:
        case NSAttributeType::integer:
            return "INTEGER NOT NULL";
        case NSAttributeType::real:
        case NSAttributeType::date:
            // A number that is not one is stored as NULL by SQLite, so there is no NOT NULL here.
            return "REAL";
        case NSAttributeType::string:
            return "TEXT";
        case NSAttributeType::binaryData:
            return "BLOB";
        case NSAttributeType::reference:
            return "INTEGER";
    }
    return "";
}

/// What an error of the database means for the user, and what to do about it.
NSError explained(const SQLiteDatabase& database, const StoreFormat& format, const NSError& cause,
                  const std::string& headline) {
    const fs::path& file = database.file();
    const std::string what = withoutName(file, cause.localizedDescription);
    switch (database.lastFailure()) {
        case SQLiteFailure::inUse:
            return error(file, fmt::format("{} because another process uses the store ({}); try "
                                           "again when it is done",
                                           headline, what));
        case SQLiteFailure::disk:
            return error(file, fmt::format("{} ({}); check the disk, its free space and the "
                                           "permissions, then try again",
                                           headline, what));
        case SQLiteFailure::none:
        case SQLiteFailure::damage:
        case SQLiteFailure::statement:
            break;
    }
    return damaged(file, format, what);
}

}  // namespace

Result<void> copy(SQLiteDatabase& database, const fs::path& copy) {
    removeDraftsOfTheDead(copy.parent_path());
    const Draft draft(copy);
    auto copying = database.prepare("VACUUM INTO ?1");
    if (!copying) {
        return copying.error();
    }
    const std::string name = draft.file().string();
    copying.value().bindText(1, name);
    if (auto copied = copying.value().run(); !copied) {
        return copied;
    }
    // SQLite leaves the copy in the system's memory.
    if (!synchronize(draft.file()) || ::link(name.c_str(), copy.c_str()) != 0) {
        return error(copy, fmt::format("the copy can't be made ({})", std::strerror(errno)));
    }
    syncDirectory(copy.parent_path());
    return {};
}

std::string schema(const NSManagedObjectModel& model) {
    std::string sql =
        "CREATE TABLE Counter (entity TEXT PRIMARY KEY, next INTEGER NOT NULL) WITHOUT ROWID;";
    for (const NSEntityDescription& entity : model.entities()) {
        if (entity.isAbstract) {
            continue;
        }
        sql += fmt::format("CREATE TABLE {} (id INTEGER PRIMARY KEY", entity.name);
        for (const NSPropertyDescription& property : entity.properties) {
            sql += fmt::format(", {} {}", property.name, columnType(property.type));
        }
        sql += fmt::format("); INSERT INTO Counter VALUES ('{}', 1);", entity.name);
    }
    return sql;
}

NSError damaged(const fs::path& file, const StoreFormat& format, const std::string& what) {
    return error(file, fmt::format("the store is damaged ({}); {}", withoutName(file, what),
                                   advice(file, format)));
}

NSError unreadable(const SQLiteDatabase& database, const StoreFormat& format,
                   const NSError& cause) {
    return explained(database, format, cause, "the store can't be read");
}

NSError unsaved(const SQLiteDatabase& database, const StoreFormat& format, const NSError& cause) {
    return explained(database, format, cause, "the records can't be saved");
}

void closeUntouched(std::unique_ptr<SQLiteDatabase> database) {
    // The last connection would copy a log into the file. Where there is none it only takes away
    // what opening has put beside the file.
    if (hasLog(database->file())) {
        database->leaveLogWhenClosing();
    }
}

Result<std::unique_ptr<SQLiteDatabase>> open(const fs::path& file,
                                             const NSManagedObjectModel& model,
                                             const StoreFormat& format) {
    std::error_code failure;
    if (!fs::exists(fs::symlink_status(file, failure))) {
        if (const auto made = create(file, model, format); !made) {
            return made.error();
        }
    }
    auto header = readHeader(file, format);
    if (!header) {
        return header.error();
    }
    if (auto objected = objection(file, header.value(), format)) {
        return *objected;
    }
    removeDraftsOfTheDead(file.parent_path());
    auto database = SQLiteDatabase::open(file, SQLiteDatabase::Mode::readWrite);
    if (!database) {
        return database.error();
    }
    database.value()->setBusyTimeout(10);
    // A main save that is reported as done survives a power cut.
    if (const auto set =
            database.value()->execute("PRAGMA synchronous = FULL; PRAGMA cell_size_check = ON;");
        !set) {
        const NSError refusal = unreadable(*database.value(), format, set.error());
        closeUntouched(std::move(database).value());
        return refusal;
    }
    if (header.value().userVersion() < format.version) {
        // Nothing is written into a file that was not looked through.
        if (const auto found = StoreCheck(file).damage()) {
            closeUntouched(std::move(database).value());
            return damaged(file, format, *found);
        }
        const auto migrated = migrate(*database.value(), header.value().userVersion(), format);
        if (!migrated) {
            return error(
                file, fmt::format("the store can't be brought up to date ({}); it stays as it was",
                                  migrated.error().localizedDescription));
        }
    }
    return database;
}

}  // namespace tavrion::StoreFile
