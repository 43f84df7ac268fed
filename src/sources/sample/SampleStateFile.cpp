#include "sources/sample/SampleStateFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <system_error>

#include "platform/foundation/FileReplacement.h"

namespace tavrion {

namespace {

std::string messageOf(int code) {
    return std::generic_category().message(code);
}

std::filesystem::path beside(std::filesystem::path file, const char* ending) {
    file += ending;
    return file;
}

/// Absent, with errno, when the file cannot be read.
std::optional<std::string> allOf(const OpenFile& file) {
    std::string bytes;
    std::array<char, 16384> buffer{};
    while (true) {
        const ssize_t count = ::read(file.descriptor(), buffer.data(), buffer.size());
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
    const OpenFile file(file_, O_RDONLY | O_NONBLOCK);
    if (!file) {
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
    const OpenFile lock(beside(file_, ".lock"), O_RDWR | O_CREAT);
    if (!lock || !lock.lock()) {
        return unwritable(file_, errno);
    }
    Result<SampleState> state = read();
    if (!state) {
        return state.error();
    }
    const SampleState before = state.value();
    change(state.value());
    if (state.value() == before) {
        return {};
    }
    const auto failure = FileReplacement::replace(file_, state.value().text());
    return failure ? Result<void>(unwritable(file_, failure.value())) : Result<void>();
}

}  // namespace tavrion
