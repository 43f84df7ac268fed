// The directory in which a user's data is kept. Nobody else may look into it.
//
// Queue: the main thread. Errors are one line that names the path and says what to do.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/Result.h"

namespace tavrion {

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

    /// Takes from everybody but the user what they were allowed to do with the directory, with the
    /// files that the program keeps in it, and with its cache. The lines say what others could do
    /// until now, and what they can still do where it can't be changed; none when all was well.
    std::vector<std::string> closeToOthers() const;

  private:
    explicit DataDirectory(std::filesystem::path path) : path_(std::move(path)) {}
    std::filesystem::path path_;
};

/// Where the program keeps what it can make again: tavrion in the user's cache home; absent when
/// there is none.
std::optional<std::filesystem::path> cacheDirectory();

}  // namespace tavrion
