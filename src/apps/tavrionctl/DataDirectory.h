// The directory in which a user's data lies, and the lock that lets one writer in.
//
// Queue: the main thread. Errors are one line that names the path and says what to do.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/foundation/Result.h"

namespace tavrion::ctl {

class DataDirectory {
  public:
    /// The directory named by the option, else by TAVRION_DATA_DIR, else tavrion in the user's data
    /// home; made when missing, for the user alone.
    static Result<DataDirectory> open(const std::optional<std::string>& option);

    std::filesystem::path store() const { return path_ / "Nerinda.sqlite"; }
    std::filesystem::path defaults() const { return path_ / "defaults.plist"; }
    std::filesystem::path libraryChoice() const { return path_ / "library.json"; }
    /// What the user changes in the sample library.
    std::filesystem::path sampleLibrary() const { return path_ / "sample-library.json"; }
    std::filesystem::path backups() const { return path_ / "backups"; }
    std::filesystem::path lock() const { return path_ / "lock"; }

  private:
    explicit DataDirectory(std::filesystem::path path) : path_(std::move(path)) {}
    std::filesystem::path path_;
};

/// Where the program keeps what it can make again: tavrion in the user's cache home; absent when
/// there is none.
std::optional<std::filesystem::path> cacheDirectory();

/// Held by the one process that writes; the file names its process id.
class WriterLock {
  public:
    enum class Failure { inUse, impossible };
    struct Refusal {
        Failure failure;
        std::string message;
    };
    WriterLock() = default;
    ~WriterLock();
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;

    /// Absent when the lock is taken; taking it twice is taking it once.
    std::optional<Refusal> take(const std::filesystem::path& file);

  private:
    int descriptor_ = -1;
};

/// Replaces the file by one with this content, whole or not at all.
Result<void> replaceFile(const std::filesystem::path& file, const std::string& content);

}  // namespace tavrion::ctl
