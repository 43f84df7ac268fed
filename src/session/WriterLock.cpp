#include "session/WriterLock.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <system_error>
#include <utility>

namespace tavrion {
namespace {

/// Who holds the lock. Until a new owner has written its id, the last one's stands there.
std::string ownerNamedIn(const std::filesystem::path& file) {
    std::ifstream stream(file);
    pid_t process = 0;
    stream >> process;
    const bool lives = process > 0 && (::kill(process, 0) == 0 || errno == EPERM);
    return lives ? fmt::format("process {}", process) : "another process";
}

}  // namespace

std::optional<WriterLock::Refusal> WriterLock::take(const std::filesystem::path& file) {
    OpenFile open(file, O_RDWR | O_CREAT);
    if (!open) {
        return Refusal{
            Failure::impossible,
            fmt::format("{}: the lock file can't be opened ({}); check the directory's permissions",
                        file.string(), std::generic_category().message(errno))};
    }
    if (::flock(open.descriptor(), LOCK_EX | LOCK_NB) != 0) {
        return Refusal{Failure::inUse,
                       fmt::format("the store is in use by {}; try again when it is done",
                                   ownerNamedIn(file))};
    }
    const std::string process = fmt::format("{}\n", ::getpid());
    if (::ftruncate(open.descriptor(), 0) != 0 ||
        ::pwrite(open.descriptor(), process.data(), process.size(), 0) !=
            static_cast<ssize_t>(process.size())) {
        return Refusal{
            Failure::impossible,
            fmt::format("{}: the lock file can't be written; check the disk", file.string())};
    }
    held_ = std::move(open);
    return std::nullopt;
}

}  // namespace tavrion
