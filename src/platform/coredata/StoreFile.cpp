#include "platform/coredata/StoreFile.h"

#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <optional>
#include <system_error>
#include <utility>

#include "platform/coredata/StoreCheck.h"
#include "platform/coredata/StoreCopy.h"
#include "platform/coredata/StoreMessages.h"

namespace tavrion::StoreFile {
namespace {

namespace fs = std::filesystem;

/// Seconds that a connection waits for another process.
constexpr double patience = 10;

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
    std::int32_t applicationID() const { return static_cast<std::int32_t>(number(68)); }
};

bool isThere(const fs::path& file) {
    std::error_code failure;
    return fs::exists(fs::symlink_status(file, failure));
}

Result<Header> readHeader(const fs::path& file, const StoreFormat& format) {
    Header header;
    std::error_code failure;
    if (!fs::is_regular_file(file, failure)) {
        return StoreMessages::about(
            file,
            fmt::format(
                "this is not a file; {} keeps its records in a file of that name, so move the "
                "other thing away",
                format.programName));
    }
    header.fileSize = fs::file_size(file, failure);
    std::ifstream stream(file, std::ios::binary);
    if (failure || !stream) {
        return StoreMessages::about(file, "the file can't be read; check its permissions");
    }
    stream.read(reinterpret_cast<char*>(header.bytes.data()), Header::length);
    if (static_cast<std::size_t>(stream.gcount()) < Header::length) {
        return StoreMessages::cutOff(
            file, format, fmt::format("the file is cut off after {} bytes", header.fileSize));
    }
    return header;
}

/// What forbids opening the file; absent when it is ours and has all its pages.
std::optional<NSError> objection(const fs::path& file, const StoreFormat& format) {
    const auto read = readHeader(file, format);
    if (!read) {
        return read.error();
    }
    const Header& header = read.value();
    if (!header.isSQLite() || header.applicationID() != format.applicationID) {
        return StoreMessages::about(
            file, fmt::format(
                      "the file is not a store of {}; move it away or name another data directory",
                      format.programName));
    }
    // With a log beside it the file may rightly be shorter than it says; SQLite then judges by
    // both.
    if (!StoreMessages::hasLog(file) && header.fileSize < header.expectedSize()) {
        return StoreMessages::cutOff(file, format,
                                     fmt::format("the store is cut off: {} of {} bytes are there",
                                                 header.fileSize, header.expectedSize()));
    }
    return std::nullopt;
}

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
        return StoreMessages::about(
            file, fmt::format("the store can't be made ({}); check the directory and the "
                              "space on its disk",
                              why));
    };
    const StoreDraft draft(file);
    {
        auto database = SQLiteDatabase::open(draft.file(), SQLiteDatabase::Mode::create);
        if (!database) {
            return failed(
                StoreMessages::withoutName(draft.file(), database.error().localizedDescription));
        }
        if (const auto filled = fill(*database.value(), model, format); !filled) {
            return failed(
                StoreMessages::withoutName(draft.file(), filled.error().localizedDescription));
        }
    }
    const auto placed = draft.putInPlace();
    return placed ? Result<void>() : failed(placed.error().localizedDescription);
}

/// A log without its store is kept under another name: SQLite would take it for one of the new
/// store. What the user is told of it; absent when there is none.
std::optional<NSError> putLogAside(const fs::path& file) {
    if (!StoreMessages::hasLog(file)) {
        return std::nullopt;
    }
    int number = 1;
    const auto name = [&] {
        return fs::path(fmt::format("{}-wal.left-{}", file.string(), number));
    };
    while (isThere(name())) {
        ++number;
    }
    std::error_code failure;
    fs::rename(file.string() + "-wal", name(), failure);
    return failure ? StoreMessages::onlyLogIsLeft(file)
                   : StoreMessages::logWasPutAside(file, name());
}

/// What forbids using a store of that version; absent when it is known.
std::optional<NSError> objectionToVersion(const fs::path& file, std::int32_t version,
                                          const StoreFormat& format) {
    if (version > format.version) {
        return StoreMessages::newer(file, format, version);
    }
    if (version < 1) {
        return StoreMessages::damaged(file, format, fmt::format("it says version {}", version));
    }
    return std::nullopt;
}

/// The steps from version `from` on, and the mark that they were done.
Result<void> runSteps(SQLiteDatabase& database, std::int32_t from, const StoreFormat& format) {
    for (std::int32_t version = from; version < format.version; ++version) {
        const auto stepped = database.execute(format.steps[static_cast<std::size_t>(version) - 1]);
        if (!stepped) {
            return stepped.error();
        }
    }
    return database.execute(fmt::format("PRAGMA user_version = {}", format.version));
}

/// Brings an older file up to date in one transaction, after a copy. The transaction has the write
/// lock before the copy is made, so that the copy is exactly what the steps find, and of two
/// processes only one takes them.
Result<void> migrate(SQLiteDatabase& database, const StoreFormat& format) {
    auto transaction = SQLiteTransaction::begin(database);
    if (!transaction) {
        return transaction.error();
    }
    const auto version = versionOf(database);
    if (!version) {
        return version.error();
    }
    if (version.value() >= format.version) {
        return {};
    }
    // A copy can't be made within a transaction; beside this one it is one of what was committed.
    auto beside = SQLiteDatabase::open(database.file(), SQLiteDatabase::Mode::readWrite);
    if (!beside) {
        return beside.error();
    }
    const fs::path copy = fmt::format("{}.version-{}", database.file().string(), version.value());
    if (auto copied = StoreCopy::renew(*beside.value(), copy); !copied) {
        return copied;
    }
    if (auto stepped = runSteps(database, version.value(), format); !stepped) {
        return stepped;
    }
    return transaction.value().commit();
}

/// Sets the connection up and brings the store to the newest version; what forbids it.
std::optional<NSError> prepareToWrite(SQLiteDatabase& database, const StoreFormat& format) {
    database.setBusyTimeout(patience);
    // A main save that is reported as done survives a power cut.
    if (const auto set =
            database.execute("PRAGMA synchronous = FULL; PRAGMA cell_size_check = ON;");
        !set) {
        return StoreMessages::unreadable(database, format, set.error());
    }
    const auto version = versionOf(database);
    if (!version) {
        return StoreMessages::unreadable(database, format, version.error());
    }
    if (auto objected = objectionToVersion(database.file(), version.value(), format)) {
        return objected;
    }
    if (version.value() == format.version) {
        return std::nullopt;
    }
    // Nothing is written into a file that was not looked through.
    if (const auto found = StoreCheck(database.file()).damage()) {
        return StoreMessages::damaged(database.file(), format, *found);
    }
    if (const auto migrated = migrate(database, format); !migrated) {
        return StoreMessages::about(
            database.file(),
            fmt::format("the store can't be brought up to date ({}); it stays as it was",
                        migrated.error().localizedDescription));
    }
    return std::nullopt;
}

/// What forbids reading; absent when the store is of the version that this program reads.
std::optional<NSError> objectionToRead(SQLiteDatabase& database, const fs::path& file,
                                       const StoreFormat& format) {
    database.setBusyTimeout(patience);
    const auto version = versionOf(database);
    if (!version) {
        return StoreMessages::unreadable(database, format, version.error());
    }
    if (version.value() >= 1 && version.value() < format.version) {
        return StoreMessages::older(file, format, version.value());
    }
    return objectionToVersion(file, version.value(), format);
}

Result<Opened> openAs(const fs::path& file, SQLiteDatabase::Mode mode,
                      SQLiteDatabase::Mode besideIt) {
    auto database = SQLiteDatabase::open(file, mode);
    if (!database) {
        return database.error();
    }
    return Opened{std::move(database).value(), besideIt};
}

/// A copy of the store and its log, in a folder where SQLite can put its own file beside them.
Result<Opened> openCopy(const fs::path& file) {
    const auto failed = [&file](const std::string& why) {
        return StoreMessages::about(
            file, fmt::format("the store's folder can't be written, and what is in its log can't "
                              "be read from a copy ({}); check the folder for temporary files",
                              why));
    };
    std::error_code failure;
    std::string pattern = (fs::temp_directory_path(failure) / "tavrion-reading-XXXXXX").string();
    if (failure || ::mkdtemp(pattern.data()) == nullptr) {
        return failed(failure ? failure.message() : std::strerror(errno));
    }
    const std::shared_ptr<const fs::path> folder(new fs::path(pattern), [](const fs::path* made) {
        std::error_code ignored;
        fs::remove_all(*made, ignored);
        delete made;
    });
    const fs::path copy = *folder / file.filename();
    for (const char* const ending : {"", "-wal"}) {
        if (!fs::copy_file(file.string() + ending, copy.string() + ending, failure)) {
            return failed(failure.message());
        }
        fs::permissions(copy.string() + ending, fs::perms::owner_read | fs::perms::owner_write,
                        failure);
    }
    auto opened = openAs(copy, SQLiteDatabase::Mode::readWrite, SQLiteDatabase::Mode::readOnly);
    if (opened) {
        opened.value().folder = folder;
    }
    return opened;
}

/// Opens the file by whichever way its folder allows. SQLite shares a store with a log through a
/// file beside it, which it makes where it may.
Result<Opened> openReadable(const fs::path& file) {
    using Mode = SQLiteDatabase::Mode;
    const bool isWritable =
        ::access(file.c_str(), W_OK) == 0 && ::access(file.parent_path().c_str(), W_OK) == 0;
    if (isWritable) {
        return openAs(file, Mode::readWrite, Mode::readOnly);
    }
    if (isThere(file.string() + "-shm")) {
        return openAs(file, Mode::readOnly, Mode::readOnly);
    }
    return StoreMessages::hasLog(file) ? openCopy(file)
                                       : openAs(file, Mode::unchanging, Mode::unchanging);
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

}  // namespace

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

Result<std::int32_t> versionOf(SQLiteDatabase& database) {
    auto mark = database.prepare("PRAGMA user_version");
    if (!mark) {
        return mark.error();
    }
    const Result<bool> row = mark.value().step();
    if (!row) {
        return row.error();
    }
    return static_cast<std::int32_t>(mark.value().integer(0));
}

void closeUntouched(std::unique_ptr<SQLiteDatabase> database) {
    // The last connection would copy a log into the file. Where there is none it only takes away
    // what opening has put beside the file.
    if (StoreMessages::hasLog(database->file())) {
        database->leaveLogWhenClosing();
    }
}

Result<Opened> open(const fs::path& file, const NSManagedObjectModel& model,
                    const StoreFormat& format) {
    if (!isThere(file)) {
        if (auto putAside = putLogAside(file)) {
            return *putAside;
        }
        if (const auto made = create(file, model, format); !made) {
            return made.error();
        }
    }
    if (auto objected = objection(file, format)) {
        return *objected;
    }
    StoreDraft::removeThoseOfTheDead(file.parent_path());
    auto opened = openAs(file, SQLiteDatabase::Mode::readWrite, SQLiteDatabase::Mode::readOnly);
    if (!opened) {
        return opened.error();
    }
    if (auto objected = prepareToWrite(*opened.value().database, format)) {
        closeUntouched(std::move(opened.value().database));
        return *objected;
    }
    return opened;
}

Result<Opened> openForReading(const fs::path& file, const StoreFormat& format) {
    if (!isThere(file)) {
        return StoreMessages::hasLog(file) ? Result<Opened>(StoreMessages::onlyLogIsLeft(file))
                                           : Result<Opened>(Opened{});
    }
    if (auto objected = objection(file, format)) {
        return *objected;
    }
    auto opened = openReadable(file);
    if (!opened) {
        return opened.error();
    }
    if (auto objected = objectionToRead(*opened.value().database, file, format)) {
        closeUntouched(std::move(opened.value().database));
        return *objected;
    }
    return opened;
}

}  // namespace tavrion::StoreFile
