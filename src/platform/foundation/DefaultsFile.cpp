#include "platform/foundation/DefaultsFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/foundation/FileReplacement.h"
#include "platform/foundation/PropertyList.h"

namespace tavrion {

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

std::filesystem::path beside(std::filesystem::path file, const char* ending) {
    file += ending;
    return file;
}

/// The rights of the file that is replaced; a first one is for its user alone.
mode_t modeFor(const std::filesystem::path& file) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 ? status.st_mode & 07777 : 0600;
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
    version.file = OpenFile(file, O_RDONLY | O_NONBLOCK);
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
    OpenFile held(beside(file, ".lock"), O_RDWR | O_CREAT);
    if (!held || !held.lock()) {
        return unwritable(file, errno);
    }
    return held;
}

Result<DefaultsFileVersion> replace(const std::filesystem::path& file, Value::Dictionary values) {
    FileReplacement replacement(file, modeFor(file));
    replacement.write(PropertyList::binaryOf(values));
    if (const std::error_code failure = replacement.finish()) {
        return unwritable(file, failure.value());
    }
    DefaultsFileVersion version;
    version.file = replacement.takeFile();
    struct stat status {};
    if (::fstat(version.file.descriptor(), &status) != 0) {
        return unwritable(file, errno);
    }
    version.stamp = stampOfStatus(status);
    version.values = std::move(values);
    return version;
}

}  // namespace DefaultsFile
}  // namespace tavrion
