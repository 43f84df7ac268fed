#include "platform/coredata/StoreMessages.h"

#include <fmt/format.h>

#include <system_error>

namespace tavrion::StoreMessages {
namespace {

namespace fs = std::filesystem;

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
        return fmt::format("{}, then put back a safety copy from {} as {}, or start again", away,
                           copies.string(), name);
    }
    return away + " to start again, or put back a copy of your own";
}

/// What an error of the database means for the user, and what to do about it.
NSError explained(const SQLiteDatabase& database, const StoreFormat& format, const NSError& cause,
                  const std::string& headline) {
    const fs::path& file = database.file();
    const std::string what = withoutName(file, cause.localizedDescription);
    switch (database.lastFailure()) {
        case SQLiteFailure::inUse:
            return about(file, fmt::format("{} because another process uses the store ({}); try "
                                           "again when it is done",
                                           headline, what));
        case SQLiteFailure::disk:
            return about(file, fmt::format("{} ({}); check the disk, its free space and the "
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

NSError about(const fs::path& file, const std::string& what) {
    return NSError{fmt::format("{}: {}", file.string(), what), {}};
}

std::string withoutName(const fs::path& file, const std::string& text) {
    const std::string name = file.string() + ": ";
    return text.starts_with(name) ? text.substr(name.size()) : text;
}

bool hasLog(const fs::path& file) {
    std::error_code none;
    const fs::path log = file.string() + "-wal";
    return fs::exists(log, none) && fs::file_size(log, none) > 0;
}

NSError cutOff(const fs::path& file, const StoreFormat& format, const std::string& what) {
    return about(file, fmt::format("{}; {}", what, advice(file, format)));
}

NSError damaged(const fs::path& file, const StoreFormat& format, const std::string& what) {
    return about(file, fmt::format("the store is damaged ({}); {}", withoutName(file, what),
                                   advice(file, format)));
}

NSError newer(const fs::path& file, const StoreFormat& format, std::int32_t version) {
    return about(
        file,
        fmt::format(
            "the store was made by a newer {} (version {}, this one knows up to {}); update {}",
            format.programName, version, format.version, format.programName));
}

NSError older(const fs::path& file, const StoreFormat& format, std::int32_t version) {
    return about(file, fmt::format("the store is of an older version ({}, this {} reads {}); run a "
                                   "command that writes, which brings it up to date",
                                   version, format.programName, format.version));
}

NSError onlyLogIsLeft(const fs::path& file) {
    return about(file, fmt::format("the store is gone, and only its log {}-wal is left; put the "
                                   "store back beside it, or run a command that writes, which puts "
                                   "the log aside",
                                   file.filename().string()));
}

NSError logWasPutAside(const fs::path& file, const fs::path& aside) {
    const std::string name = file.filename().string();
    return about(
        file,
        fmt::format("the store is gone, and only its log was left, which now is {0} and holds "
                    "the latest changes; put the store back and rename {0} to {1}-wal, or "
                    "run the command again to start a new store",
                    aside.filename().string(), name));
}

NSError forReadingAlone(const fs::path& file) {
    return about(file, "the records can't be saved, since the store was opened for reading alone");
}

NSError unreadable(const SQLiteDatabase& database, const StoreFormat& format,
                   const NSError& cause) {
    return explained(database, format, cause, "the store can't be read");
}

NSError unsaved(const SQLiteDatabase& database, const StoreFormat& format, const NSError& cause) {
    return explained(database, format, cause, "the records can't be saved");
}

}  // namespace tavrion::StoreMessages
