// The SQLite file of a store: how it is made, checked before anything touches it, and brought up to
// date.
//
// Queue: the caller's; each function works on the file alone. Every error is one line that names
// the file and says what to do, and leaves the file as it was.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/coredata/NSPersistentStore.h"

namespace tavrion::StoreFile {

/// A store's file with its connection.
struct Opened {
    /// Null where a reader found no file.
    std::unique_ptr<SQLiteDatabase> database;
    /// How a second connection opens what the first one has open.
    SQLiteDatabase::Mode besideIt = SQLiteDatabase::Mode::readOnly;
    /// The folder of a copy that is read in the place of the file; null mostly. Goes after the
    /// connections.
    std::shared_ptr<const void> folder = nullptr;
};

/// Opens an existing store or makes a new one, checked and of the newest version.
Result<Opened> open(const std::filesystem::path& file, const NSManagedObjectModel& model,
                    const StoreFormat& format);
/// Opens an existing store to be read. Nothing is made and no version changed, and neither the file
/// nor its folder need be writable.
Result<Opened> openForReading(const std::filesystem::path& file, const StoreFormat& format);

/// The version of the tables, as SQLite sees it by the file and its log together. The first bytes
/// of the file alone can be older than the log.
Result<std::int32_t> versionOf(SQLiteDatabase& database);

/// The tables that version `format.version` has.
std::string schema(const NSManagedObjectModel& model);

/// Closes a store that can't be used, and leaves its files as they are.
void closeUntouched(std::unique_ptr<SQLiteDatabase> database);

}  // namespace tavrion::StoreFile
