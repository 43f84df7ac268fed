#include "platform/foundation/FileReplacement.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

namespace tavrion {
namespace {

/// Whether the open file is still the one of that name: the writer before may have renamed it while
/// this one waited for its lock.
bool isStillNamed(const OpenFile& open, const std::filesystem::path& name) {
    struct stat ours {};
    struct stat named {};
    return ::fstat(open.descriptor(), &ours) == 0 && ::lstat(name.c_str(), &named) == 0 &&
           ours.st_dev == named.st_dev && ours.st_ino == named.st_ino;
}

/// Brings a renaming to the disk. Its failure is not the write's: the new file is in place, and
/// whole.
void synchronizeFolderOf(const std::filesystem::path& file) {
    const std::filesystem::path folder = file.parent_path();
    const OpenFile open(folder.empty() ? std::filesystem::path(".") : folder,
                        O_RDONLY | O_DIRECTORY);
    if (open) {
        ::fsync(open.descriptor());
    }
}

}  // namespace

FileReplacement::FileReplacement(std::filesystem::path file, mode_t mode)
    : file_(std::move(file)), draftName_(file_.string() + ".new") {
    openDraft(mode);
}

FileReplacement::~FileReplacement() {
    if (draft_ && !isInPlace_) {
        ::unlink(draftName_.c_str());
    }
}

void FileReplacement::fail() {
    error_ = std::error_code(errno, std::generic_category());
}

void FileReplacement::openDraft(mode_t mode) {
    while (!draft_) {
        // Not waiting: a pipe of that name would otherwise hold the program up for ever.
        OpenFile open(draftName_, O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK);
        if (!open || !open.lock()) {
            fail();
            return;
        }
        if (isStillNamed(open, draftName_)) {
            draft_ = std::move(open);
        }
    }
    if (::ftruncate(draft_.descriptor(), 0) != 0 || ::fchmod(draft_.descriptor(), mode) != 0) {
        fail();
    }
}

void FileReplacement::write(std::string_view bytes) {
    while (!error_ && !bytes.empty()) {
        const ssize_t count = ::write(draft_.descriptor(), bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            fail();
        }
    }
}

std::error_code FileReplacement::finish(Durability durability) {
    const bool lasts = durability == Durability::lasting;
    if (error_) {
        return error_;
    }
    if ((lasts && ::fsync(draft_.descriptor()) != 0) ||
        ::rename(draftName_.c_str(), file_.c_str()) != 0) {
        fail();
        return error_;
    }
    isInPlace_ = true;
    // The next writer makes a draft of its own.
    ::flock(draft_.descriptor(), LOCK_UN);
    if (lasts) {
        synchronizeFolderOf(file_);
    }
    return {};
}

std::error_code FileReplacement::replace(const std::filesystem::path& file, std::string_view bytes,
                                         mode_t mode) {
    FileReplacement replacement(file, mode);
    replacement.write(bytes);
    return replacement.finish();
}

}  // namespace tavrion
