// The file of the user defaults: which version of it is there, its values, the lock of its
// writers, and how it is replaced.
//
// Queue: any. Stateless but for the file itself. Foundation's own, not for other rooms. Errors name
// the file and say what to do.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <variant>

#include "platform/foundation/OpenFile.h"
#include "platform/foundation/Result.h"
#include "platform/foundation/Value.h"

namespace tavrion {

/// Which version of a file it is. The inode number of a file that is kept open is not given to
/// another one, so while it is open an equal stamp means the same version, even when the clock of
/// the file system did not tick between two writes. A missing file has the stamp of zeros.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;
    bool operator==(const FileStamp&) const = default;
};

/// One version of the file, kept open; nothing is open where the file is missing.
struct DefaultsFileVersion {
    OpenFile file;
    FileStamp stamp;
    Value::Dictionary values;
};

/// A version that cannot be read.
struct DamagedDefaultsFile {
    NSError error;
    /// Absent when not even that could be found out.
    std::optional<FileStamp> stamp;
};

namespace DefaultsFile {

/// The stamp of the file as it is now. Absent when it cannot be asked for; reading says why.
std::optional<FileStamp> stampOf(const std::filesystem::path& file);
/// Reads the file; a missing one is an empty list.
std::variant<DefaultsFileVersion, DamagedDefaultsFile> read(const std::filesystem::path& file);
/// Waits for the lock of all writers in all processes; it is held until the returned file is
/// closed.
Result<OpenFile> lock(const std::filesystem::path& file);
/// Puts a new file in the place of the old one, whole or not at all, and through to the disk. To be
/// called under lock().
Result<DefaultsFileVersion> replace(const std::filesystem::path& file, Value::Dictionary values);

}  // namespace DefaultsFile
}  // namespace tavrion
