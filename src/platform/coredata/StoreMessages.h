// What is said of a store that can't be used: one line that names the file and says what to do.
//
// Queue: any; the functions look at the folder and change nothing.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "platform/coredata/NSPersistentStore.h"

namespace tavrion::StoreMessages {

/// `what`, said of the file.
NSError about(const std::filesystem::path& file, const std::string& what);
/// The text of an error about the file without the file's name.
std::string withoutName(const std::filesystem::path& file, const std::string& text);
/// Whether a write-ahead log with content is beside the file.
bool hasLog(const std::filesystem::path& file);

/// The file ends too early: `what` says where.
NSError cutOff(const std::filesystem::path& file, const StoreFormat& format,
               const std::string& what);
/// `what` was found, in a few words.
NSError damaged(const std::filesystem::path& file, const StoreFormat& format,
                const std::string& what);
/// The store has a version that this program does not know yet.
NSError newer(const std::filesystem::path& file, const StoreFormat& format, std::int32_t version);
/// The store has a version that only a writer brings up to date.
NSError older(const std::filesystem::path& file, const StoreFormat& format, std::int32_t version);
/// The file is gone and its log is still there, where a reader leaves it.
NSError onlyLogIsLeft(const std::filesystem::path& file);
/// The same, after the log was renamed to `aside`.
NSError logWasPutAside(const std::filesystem::path& file, const std::filesystem::path& aside);
/// The store was opened for reading alone and shall be written.
NSError forReadingAlone(const std::filesystem::path& file);

/// What a failed read of a store's tables means: damage, or a disk or another process that stands
/// in the way.
NSError unreadable(const SQLiteDatabase& database, const StoreFormat& format, const NSError& cause);
/// What a failed write means. What was saved before is still there.
NSError unsaved(const SQLiteDatabase& database, const StoreFormat& format, const NSError& cause);

}  // namespace tavrion::StoreMessages
