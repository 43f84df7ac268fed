#include "apps/tavrionctl/DataDirectory.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <system_error>

namespace tavrion::ctl {
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

/// Who holds the lock. Until a new owner has written its id, the last one's stands there.
std::string ownerNamedIn(const fs::path& file) {
    std::ifstream stream(file);
    pid_t process = 0;
    stream >> process;
    const bool lives = process > 0 && (::kill(process, 0) == 0 || errno == EPERM);
    return lives ? fmt::format("process {}", process) : "another process";
}

/// Brings a renaming to the disk. Its failure is not the write's: the new file is in place, and
/// whole.
void synchronizeFolder(const fs::path& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
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

WriterLock::~WriterLock() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

std::optional<WriterLock::Refusal> WriterLock::take(const fs::path& file) {
    if (descriptor_ >= 0) {
        return std::nullopt;
    }
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0) {
        return Refusal{
            Failure::impossible,
            fmt::format("{}: the lock file can't be opened ({}); check the directory's permissions",
                        file.string(), std::strerror(errno))};
    }
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        const std::string who = ownerNamedIn(file);
        ::close(descriptor);
        return Refusal{Failure::inUse,
                       fmt::format("the store is in use by {}; try again when it is done", who)};
    }
    const std::string process = fmt::format("{}\n", ::getpid());
    if (::ftruncate(descriptor, 0) != 0 || ::pwrite(descriptor, process.data(), process.size(),
                                                    0) != static_cast<ssize_t>(process.size())) {
        ::close(descriptor);
        return Refusal{
            Failure::impossible,
            fmt::format("{}: the lock file can't be written; check the disk", file.string())};
    }
    descriptor_ = descriptor;
    return std::nullopt;
}

Result<void> replaceFile(const fs::path& file, const std::string& content) {
    // Always the same name: the one writer that there is overwrites what a killed one left behind.
    const fs::path draft = file.string() + ".new";
    const int descriptor =
        ::open(draft.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR);
    bool good = descriptor >= 0 &&
                ::write(descriptor, content.data(), content.size()) ==
                    static_cast<ssize_t>(content.size()) &&
                ::fsync(descriptor) == 0;
    good = good && ::rename(draft.c_str(), file.c_str()) == 0;
    const std::string why = good ? "" : std::strerror(errno);
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    if (good) {
        synchronizeFolder(file.parent_path());
    } else {
        ::unlink(draft.c_str());
        return NSError{
            fmt::format("{}: the file can't be written ({}); check the disk and the permissions",
                        file.string(), why),
            {}};
    }
    return {};
}

}  // namespace tavrion::ctl
