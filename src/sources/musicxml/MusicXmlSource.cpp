#include "sources/musicxml/MusicXmlSource.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/dispatch/FileWatch.h"
#include "sources/musicxml/MusicXmlParser.h"
#include "sources/musicxml/SettledReading.h"

namespace tavrion {

namespace {

/// Beyond this, positions in the snapshot's text would not fit their 32 bits.
constexpr std::uint64_t mostBytes = 4000ULL * 1000 * 1000;

NSError fileError(const std::string& name, int code) {
    const std::string reason = std::generic_category().message(code);
    return {name + ": the file cannot be read (" + reason +
                "); check that it exists and that you may read it",
            {}};
}

Result<FileStamp> stampOf(const std::filesystem::path& file) {
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) {
        return fileError(file.string(), errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return NSError{file.string() + ": this is a directory; choose the Library.xml in it", {}};
    }
    if (!S_ISREG(status.st_mode)) {
        return NSError{
            file.string() + ": this is not a file; choose the Library.xml that the player exports",
            {}};
    }
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (size > mostBytes) {
        return NSError{
            file.string() +
                ": the file is larger than 4 GB; choose the Library.xml that the player exports",
            {}};
    }
    return FileStamp{static_cast<std::uint64_t>(status.st_dev),
                     static_cast<std::uint64_t>(status.st_ino), size, status.st_mtim.tv_sec,
                     status.st_mtim.tv_nsec};
}

/// An open file, closed at the end of the scope.
class OpenFile {
  public:
    explicit OpenFile(const std::filesystem::path& file)
        : descriptor_(open(file.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~OpenFile() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }
    /// The number of bytes read, 0 at the end, -1 on failure.
    ssize_t readInto(std::span<char> room) const {
        ssize_t count = -1;
        do {
            count = ::read(descriptor_, room.data(), room.size());
        } while (count < 0 && errno == EINTR);
        return count;
    }

  private:
    int descriptor_;
};

Result<std::shared_ptr<const MediaSnapshot>> readFile(const std::filesystem::path& file) {
    const OpenFile open(file);
    if (!open.isOpen()) {
        return fileError(file.string(), errno);
    }
    std::error_code failure;
    const auto size = std::filesystem::file_size(file, failure);
    if (failure) {
        return fileError(file.string(), failure.value());
    }
    MusicXmlParser parser(file.string(), size);
    std::uint64_t total = 0;
    for (std::span<char> room = parser.buffer(); !room.empty(); room = parser.buffer()) {
        const ssize_t count = open.readInto(room);
        if (count < 0) {
            return fileError(file.string(), errno);
        }
        total += static_cast<std::uint64_t>(count);
        if (count == 0 || total > mostBytes ||
            !parser.parseBuffer(static_cast<std::size_t>(count))) {
            break;
        }
    }
    return parser.finish();
}

}  // namespace

std::optional<std::string> MusicXmlSource::stamp() const {
    const Result<FileStamp> stamp = stampOf(file_);
    if (!stamp) {
        return std::nullopt;
    }
    const FileStamp& is = stamp.value();
    return fmt::format("{} {} {} {}.{:09}", is.device, is.file, is.size, is.modifiedSeconds,
                       is.modifiedNanoseconds);
}

Result<std::shared_ptr<const MediaSnapshot>> MusicXmlSource::read() {
    try {
        return readSettled(
            file_.string(), [this] { return stampOf(file_); }, [this] { return readFile(file_); });
    } catch (const std::exception&) {
        return NSError{
            file_.string() + ": there is not enough memory to read it; close other programs", {}};
    }
}

Result<Observation> MusicXmlSource::watch(Work changed) {
    return watchFile(file_, std::move(changed));
}

void registerMusicXmlSource(SourceRegistry& registry) {
    registry.registerKind(
        {MusicXmlSource::kindName,
         "reads the Library.xml that a player exports; the location is that file",
         [](std::string location) -> Result<std::unique_ptr<Source>> {
             if (location.empty()) {
                 return NSError{
                     "A library of the kind music-xml needs the path of its Library.xml.", {}};
             }
             return std::unique_ptr<Source>(std::make_unique<MusicXmlSource>(std::move(location)));
         }});
}

}  // namespace tavrion
