#include "platform/foundation/DefaultsFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/foundation/PropertyList.h"

namespace tavrion {

OpenFile::~OpenFile() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

OpenFile::OpenFile(OpenFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

OpenFile& OpenFile::operator=(OpenFile&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

namespace DefaultsFile {

namespace {

NSError unreadable(const std::filesystem::path& file, const std::string& reason) {
    return {fmt::format("The user defaults in {} cannot be read: {}. Repair the file, or move it "
                        "away to start with empty ones.",
                        file.string(), reason),
            {}};
}

NSError unwritable(const std::filesystem::path& file, int code) {
    return {
        fmt::format("The user defaults in {} cannot be written: {}. See that the folder exists, "
                    "is writable and has space.",
                    file.string(), std::generic_category().message(code)),
        {}};
}

FileStamp stampOfStatus(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec};
}

OpenFile openFile(const std::filesystem::path& file, int flags, mode_t mode) {
    int descriptor = -1;
    do {
        descriptor = ::open(file.c_str(), flags | O_CLOEXEC, mode);
    } while (descriptor < 0 && errno == EINTR);
    return OpenFile(descriptor);
}

/// False, with errno, when the file cannot be read.
bool readAll(int descriptor, std::string& bytes) {
    std::array<char, 16384> buffer{};
    while (true) {
        const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
        if (count == 0) {
            return true;
        }
        if (count > 0) {
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
}

/// False, with errno, when not all could be brought to the disk.
bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return ::fsync(descriptor) == 0;
}

std::filesystem::path beside(std::filesystem::path file, const char* ending) {
    file += ending;
    return file;
}

/// The rights of the file that is replaced; a first one is for its user alone.
mode_t modeFor(const std::filesystem::path& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 ? status.st_mode & 07777 : 0600;
}

/// Brings the renaming to the disk. Its failure is not the write's: the new file is in place, and
/// whole.
void synchronizeFolderOf(const std::filesystem::path& file) {
    const OpenFile folder = openFile(file.parent_path(), O_RDONLY | O_DIRECTORY, 0);
    if (folder) {
        ::fsync(folder.descriptor());
    }
}

}  // namespace

std::optional<FileStamp> stampOf(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) == 0) {
        return stampOfStatus(status);
    }
    return errno == ENOENT ? std::optional<FileStamp>(FileStamp{}) : std::nullopt;
}

std::variant<DefaultsFileVersion, DamagedDefaultsFile> read(const std::filesystem::path& file) {
    DefaultsFileVersion version;
    // A pipe of that name would otherwise hold the program up for ever.
    version.file = openFile(file, O_RDONLY | O_NONBLOCK, 0);
    if (!version.file && errno == ENOENT) {
        return version;
    }
    struct stat status {};
    if (!version.file || ::fstat(version.file.descriptor(), &status) != 0) {
        return DamagedDefaultsFile{unreadable(file, std::generic_category().message(errno)), {}};
    }
    version.stamp = stampOfStatus(status);
    if (!S_ISREG(status.st_mode)) {
        return DamagedDefaultsFile{unreadable(file, "it is not a plain file"), version.stamp};
    }
    std::string bytes;
    if (!readAll(version.file.descriptor(), bytes)) {
        return DamagedDefaultsFile{unreadable(file, std::generic_category().message(errno)), {}};
    }
    Result<Value::Dictionary> values = PropertyList::dictionaryOf(bytes);
    if (!values) {
        return DamagedDefaultsFile{unreadable(file, values.error().localizedDescription),
                                   version.stamp};
    }
    version.values = std::move(values).value();
    return version;
}

Result<OpenFile> lock(const std::filesystem::path& file) {
    OpenFile held = openFile(beside(file, ".lock"), O_RDWR | O_CREAT, 0600);
    if (!held) {
        return unwritable(file, errno);
    }
    while (::flock(held.descriptor(), LOCK_EX) != 0) {
        if (errno != EINTR) {
            return unwritable(file, errno);
        }
    }
    return held;
}

// The new file always has the same name: the lock leaves it to one writer, and what a killed writer
// left behind is overwritten by the next.
Result<DefaultsFileVersion> replace(const std::filesystem::path& file, Value::Dictionary values) {
    const std::filesystem::path fresh = beside(file, ".new");
    const std::string bytes = PropertyList::binaryOf(values);
    DefaultsFileVersion version;
    version.file = openFile(fresh, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, 0600);
    struct stat status {};
    // The status is taken after the last write, since a write changes the time.
    const bool isInPlace = version.file &&
                           ::fchmod(version.file.descriptor(), modeFor(file)) == 0 &&
                           writeAll(version.file.descriptor(), bytes) &&
                           ::fstat(version.file.descriptor(), &status) == 0 &&
                           ::rename(fresh.c_str(), file.c_str()) == 0;
    if (!isInPlace) {
        const int code = errno;
        ::unlink(fresh.c_str());
        return unwritable(file, code);
    }
    synchronizeFolderOf(file);
    version.stamp = stampOfStatus(status);
    version.values = std::move(values);
    return version;
}

}  // namespace DefaultsFile
}  // namespace tavrion
