#include "sources/sample/SampleStateFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <system_error>

namespace tavrion {

namespace {

/// A file descriptor, closed at the end of the scope.
class Descriptor {
  public:
    Descriptor(const std::filesystem::path& file, int flags) {
        do {
            descriptor_ = ::open(file.c_str(), flags | O_CLOEXEC, S_IRUSR | S_IWUSR);
        } while (descriptor_ < 0 && errno == EINTR);
    }
    ~Descriptor() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }
    int number() const { return descriptor_; }

  private:
    int descriptor_ = -1;
};

std::string messageOf(int code) {
    return std::generic_category().message(code);
}

std::filesystem::path beside(std::filesystem::path file, const char* ending) {
    file += ending;
    return file;
}

/// Absent, with errno, when the file cannot be read.
std::optional<std::string> allOf(const Descriptor& file) {
    std::string bytes;
    std::array<char, 16384> buffer{};
    while (true) {
        const ssize_t count = ::read(file.number(), buffer.data(), buffer.size());
        if (count == 0) {
            return bytes;
        }
        if (count > 0) {
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return std::nullopt;
        }
    }
}

/// False, with errno, when not all could be brought to the disk.
bool writeAll(const Descriptor& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.number(), bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return ::fsync(file.number()) == 0;
}

bool lockForThisWriter(const Descriptor& file) {
    int outcome = -1;
    do {
        outcome = ::flock(file.number(), LOCK_EX);
    } while (outcome != 0 && errno == EINTR);
    return outcome == 0;
}

NSError unreadable(const std::filesystem::path& file, const std::string& reason) {
    return {fmt::format("{}: your likes, playlists and plays of the sample library can't be read "
                        "({}); repair the file, or move it away to start without them",
                        file.string(), reason),
            {}};
}

NSError unwritable(const std::filesystem::path& file, int code) {
    return {fmt::format("{}: the sample library can't keep this ({}); check the disk and the "
                        "permissions",
                        file.string(), messageOf(code)),
            {}};
}

}  // namespace

Result<SampleState> SampleStateFile::read() const {
    // A pipe of that name would otherwise hold the program up for ever.
    const Descriptor file(file_, O_RDONLY | O_NONBLOCK);
    if (!file.isOpen()) {
        return errno == ENOENT ? Result<SampleState>(SampleState())
                               : unreadable(file_, messageOf(errno));
    }
    const std::optional<std::string> bytes = allOf(file);
    if (!bytes) {
        return unreadable(file_, messageOf(errno));
    }
    auto state = SampleState::fromText(*bytes);
    return state ? std::move(state) : unreadable(file_, state.error().localizedDescription);
}

Result<void> SampleStateFile::change(const std::function<void(SampleState&)>& change) const {
    const Descriptor lock(beside(file_, ".lock"), O_RDWR | O_CREAT);
    if (!lock.isOpen() || !lockForThisWriter(lock)) {
        return unwritable(file_, errno);
    }
    Result<SampleState> state = read();
    if (!state) {
        return state.error();
    }
    const SampleState before = state.value();
    change(state.value());
    return state.value() == before ? Result<void>() : replace(state.value());
}

/// The lock leaves the name of the new file to one writer; what a killed one left behind is
/// overwritten by the next.
Result<void> SampleStateFile::replace(const SampleState& state) const {
    const std::filesystem::path fresh = beside(file_, ".new");
    bool isInPlace = false;
    {
        const Descriptor file(fresh, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
        isInPlace = file.isOpen() && writeAll(file, state.text()) &&
                    ::rename(fresh.c_str(), file_.c_str()) == 0;
    }
    if (!isInPlace) {
        const int code = errno;
        ::unlink(fresh.c_str());
        return unwritable(file_, code);
    }
    const Descriptor folder(file_.parent_path(), O_RDONLY | O_DIRECTORY);
    if (folder.isOpen()) {
        // The new file is in place and whole, whether or not its name is on the disk by now.
        ::fsync(folder.number());
    }
    return {};
}

}  // namespace tavrion
