#include "session/DataDirectory.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>

namespace tavrion {
namespace {

namespace fs = std::filesystem;

std::optional<std::string> environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<fs::path> chosenPath(const std::optional<std::string>& option) {
    if (option) {
        return fs::path(*option);
    }
    if (const auto directory = environment("TAVRION_DATA_DIR")) {
        return fs::path(*directory);
    }
    if (const auto dataHome = environment("XDG_DATA_HOME")) {
        return fs::path(*dataHome) / "tavrion";
    }
    if (const auto home = environment("HOME")) {
        return fs::path(*home) / ".local" / "share" / "tavrion";
    }
    return std::nullopt;
}

/// What others than the owner may do is in these bits.
constexpr mode_t ofOthers = S_IRWXG | S_IRWXO;

/// The mode of a file or folder that others may do something with; absent when they may not, when
/// there is none, and for a link, which has no mode of its own.
std::optional<mode_t> modeOpenToOthers(const fs::path& path) {
    struct stat status {};
    const bool isOpen = ::lstat(path.c_str(), &status) == 0 && !S_ISLNK(status.st_mode) &&
                        (status.st_mode & ofOthers) != 0;
    return isOpen ? std::optional(status.st_mode & 07777) : std::nullopt;
}

bool close(const fs::path& path, mode_t mode) {
    return ::chmod(path.c_str(), mode & ~ofOthers) == 0;
}

/// The folder alone. A folder that everybody may write into is not the user's to close.
std::vector<std::string> closeFolder(const fs::path& folder, const char* what) {
    const auto mode = modeOpenToOthers(folder);
    if (!mode) {
        return {};
    }
    if ((*mode & S_ISVTX) == 0 && close(folder, *mode)) {
        return {fmt::format("{}: other users could look into the {}; now it is for you alone",
                            folder.string(), what)};
    }
    return {
        fmt::format("{}: other users can look into the {}; use one that is yours alone "
                    "(chmod 700)",
                    folder.string(), what)};
}

/// Those in the folder whose names begin like that.
std::vector<fs::path> filesBeginningWith(const fs::path& folder, const std::string& name) {
    std::vector<fs::path> files;
    std::error_code failure;
    for (const auto& entry : fs::directory_iterator(folder, failure)) {
        if (entry.path().filename().string().starts_with(name)) {
            files.push_back(entry.path());
        }
    }
    return files;
}

std::vector<std::string> closeFiles(const fs::path& folder, const std::vector<fs::path>& files) {
    std::size_t closed = 0;
    std::size_t open = 0;
    for (const fs::path& file : files) {
        if (const auto mode = modeOpenToOthers(file)) {
            ++(close(file, *mode) ? closed : open);
        }
    }
    std::vector<std::string> lines;
    if (closed > 0) {
        lines.push_back(
            fmt::format("{}: other users could read files of the program in it ({}); "
                        "now they are for you alone",
                        folder.string(), closed));
    }
    if (open > 0) {
        lines.push_back(
            fmt::format("{}: other users can read files of the program in it ({}); "
                        "their owner can change that with chmod 600",
                        folder.string(), open));
    }
    return lines;
}

}  // namespace

std::optional<fs::path> cacheDirectory() {
    if (const auto cacheHome = environment("XDG_CACHE_HOME")) {
        return fs::path(*cacheHome) / "tavrion";
    }
    if (const auto home = environment("HOME")) {
        return fs::path(*home) / ".cache" / "tavrion";
    }
    return std::nullopt;
}

Result<DataDirectory> DataDirectory::open(const std::optional<std::string>& option) {
    const std::optional<fs::path> chosen = chosenPath(option);
    if (!chosen || chosen->empty()) {
        return NSError{"no data directory is known; name one with --data-dir", {}};
    }
    std::error_code failure;
    const fs::path path = fs::absolute(*chosen, failure);
    if (!fs::exists(path, failure)) {
        fs::create_directories(path.parent_path(), failure);
        if (::mkdir(path.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
            return NSError{
                fmt::format(
                    "{}: the data directory can't be made ({}); name another one with --data-dir",
                    path.string(), std::strerror(errno)),
                {}};
        }
    }
    if (!fs::is_directory(path, failure)) {
        return NSError{fmt::format("{}: this is not a directory; name another one with --data-dir",
                                   path.string()),
                       {}};
    }
    return DataDirectory(path);
}

std::vector<std::string> DataDirectory::closeToOthers() const {
    std::vector<fs::path> files{defaults(), libraryChoice(), sampleLibrary(), lock(), backups()};
    std::vector<std::string> lines = closeFolder(path_, "data directory");
    const auto add = [](auto& list, const auto& more) {
        list.insert(list.end(), more.begin(), more.end());
    };
    // With its log, what SQLite keeps beside it, and copies of older versions.
    add(files, filesBeginningWith(path_, store().filename().string()));
    add(files, filesBeginningWith(backups(), ""));
    add(lines, closeFiles(path_, files));
    if (const auto cache = cacheDirectory()) {
        add(lines, closeFolder(*cache, "cache directory"));
        add(lines, closeFiles(*cache, filesBeginningWith(*cache, "library-")));
    }
    return lines;
}

}  // namespace tavrion
