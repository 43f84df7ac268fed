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

/// Opens an existing store or makes a new one, checked and of the newest version.
Result<std::unique_ptr<SQLiteDatabase>> open(const std::filesystem::path& file,
                                             const NSManagedObjectModel& model,
                                             const StoreFormat& format);

/// Writes a compact copy to a file that does not exist yet; it appears there when it is whole and
/// on the disk.
Result<void> copy(SQLiteDatabase& database, const std::filesystem::path& copy);

/// The tables that version `format.version` has.
std::string schema(const NSManagedObjectModel& model);

/// The store is damaged: `what` was found, in a few words. One line, with what to do.
NSError damaged(const std::filesystem::path& file, const StoreFormat& format,
                const std::string& what);
/// What a failed read of a store's tables means: damage, or a disk or another process that stands
/// in the way.
NSError unreadable(const SQLiteDatabase& database, const StoreFormat& format, const NSError& cause);
/// What a failed write means. What was saved before is still there.
NSError unsaved(const SQLiteDatabase& database, const StoreFormat& format, const NSError& cause);
/// Closes a store that can't be used, and leaves its files as they are.
void closeUntouched(std::unique_ptr<SQLiteDatabase> database);

}  // namespace tavrion::StoreFile
