#include "platform/mediaplayer/MediaSnapshotFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <array>
#include <cstring>
#include <type_traits>
#include <vector>

#include "platform/foundation/FileReplacement.h"

namespace tavrion::MediaSnapshotFile {
namespace {

/// Of the arrays in the file; every record begins on such a boundary.
constexpr std::size_t alignment = 64;
/// texts, songs, playlists, playlist songs, duplicates, and two arrays for each index.
constexpr std::size_t partCount = 5 + 2 * (3 + songGroupCount);
/// Changes with every change of what the arrays hold.
constexpr std::uint32_t layoutVersion = 3;

struct Part {
    std::uint64_t offset = 0;
    std::uint64_t bytes = 0;
};

struct Header {
    std::array<char, 8> magic{'T', 'v', 'r', 'S', 'n', 'a', 'p', '\n'};
    std::uint32_t version = layoutVersion;
    /// A machine of the other byte order reads another number.
    std::uint32_t byteOrder = 0x01020304;
    std::uint64_t fileBytes = 0;
    /// Of everything behind the header.
    std::uint32_t checksum = 0;
    /// Of the header, this field being 0.
    std::uint32_t headerChecksum = 0;
    std::uint32_t songBytes = sizeof(SongRecord);
    std::uint32_t playlistBytes = sizeof(PlaylistRecord);
    std::uint64_t droppedSongCount = 0;
    Part key;
    std::array<Part, partCount> parts{};
};
static_assert(std::is_trivially_copyable_v<Header>);

std::uint32_t checksumOf(const char* bytes, std::size_t count) {
    return static_cast<std::uint32_t>(
        ::crc32_z(0, reinterpret_cast<const unsigned char*>(bytes), count));
}

std::uint32_t checksumOf(Header header) {
    header.headerChecksum = 0;
    return checksumOf(reinterpret_cast<const char*>(&header), sizeof header);
}

template <class T>
std::string_view bytesOf(std::span<const T> values) {
    return {reinterpret_cast<const char*>(values.data()), values.size_bytes()};
}

std::vector<std::string_view> arraysOf(const MediaSnapshotParts& parts) {
    std::vector<std::string_view> arrays{parts.texts, bytesOf(parts.songs),
                                         bytesOf(parts.playlists), bytesOf(parts.playlistSongs),
                                         bytesOf(parts.duplicates)};
    const auto add = [&](const PositionIndex& index) {
        arrays.push_back(bytesOf(index.starts));
        arrays.push_back(bytesOf(index.entries));
    };
    add(parts.byPersistentID);
    add(parts.byTitle);
    add(parts.byAlbumTitle);
    for (const PositionIndex& index : parts.byGroup) {
        add(index);
    }
    return arrays;
}

/// The arrays one after the other, each on its boundary.
std::string bodyOf(std::string_view key, const MediaSnapshot& snapshot, Header& header) {
    std::string body;
    const auto add = [&](std::string_view bytes) {
        body.resize((sizeof(Header) + body.size() + alignment - 1) / alignment * alignment -
                    sizeof(Header));
        const Part part{sizeof(Header) + body.size(), bytes.size()};
        body.append(bytes);
        return part;
    };
    header.key = add(key);
    std::size_t number = 0;
    for (const std::string_view array : arraysOf(snapshot.parts())) {
        header.parts[number++] = add(array);
    }
    return body;
}

/// A whole file in memory, for as long as somebody holds it.
class Mapping {
  public:
    explicit Mapping(const std::filesystem::path& file) {
        const OpenFile open(file, O_RDONLY);
        struct stat status {};
        if (!open || ::fstat(open.descriptor(), &status) != 0 || status.st_size <= 0) {
            return;
        }
        const auto size = static_cast<std::size_t>(status.st_size);
        void* const place =
            ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, open.descriptor(), 0);
        if (place != MAP_FAILED) {
            bytes_ = {static_cast<const char*>(place), size};
        }
    }
    ~Mapping() {
        if (!bytes_.empty()) {
            ::munmap(const_cast<char*>(bytes_.data()), bytes_.size());
        }
    }
    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;
    std::string_view bytes() const { return bytes_; }

  private:
    std::string_view bytes_;
};

bool isWhole(std::string_view bytes, const Header& header) {
    const Header expected;
    return header.magic == expected.magic && header.version == expected.version &&
           header.byteOrder == expected.byteOrder && header.songBytes == expected.songBytes &&
           header.playlistBytes == expected.playlistBytes && header.fileBytes == bytes.size() &&
           header.headerChecksum == checksumOf(header) &&
           header.checksum ==
               checksumOf(bytes.data() + sizeof(Header), bytes.size() - sizeof(Header));
}

template <class T>
std::span<const T> arrayAt(std::string_view bytes, const Part& part) {
    return {reinterpret_cast<const T*>(bytes.data() + part.offset), part.bytes / sizeof(T)};
}

MediaSnapshotParts partsOf(std::string_view bytes, const Header& header) {
    const Part* next = header.parts.data();
    MediaSnapshotParts parts;
    parts.texts = bytes.substr(next->offset, next->bytes);
    parts.songs = arrayAt<SongRecord>(bytes, *++next);
    parts.playlists = arrayAt<PlaylistRecord>(bytes, *++next);
    parts.playlistSongs = arrayAt<std::uint32_t>(bytes, *++next);
    parts.duplicates = arrayAt<DuplicateSongRecord>(bytes, *++next);
    const auto index = [&] {
        const Part& starts = *++next;
        const Part& entries = *++next;
        return PositionIndex{arrayAt<std::uint32_t>(bytes, starts),
                             arrayAt<std::uint32_t>(bytes, entries)};
    };
    parts.byPersistentID = index();
    parts.byTitle = index();
    parts.byAlbumTitle = index();
    for (PositionIndex& each : parts.byGroup) {
        each = index();
    }
    parts.droppedSongCount = header.droppedSongCount;
    return parts;
}

}  // namespace

Result<void> write(const std::filesystem::path& file, std::string_view key,
                   const MediaSnapshot& snapshot) {
    Header header;
    const std::string body = bodyOf(key, snapshot, header);
    header.fileBytes = sizeof(Header) + body.size();
    header.droppedSongCount = snapshot.droppedSongCount();
    header.checksum = checksumOf(body.data(), body.size());
    header.headerChecksum = checksumOf(header);
    FileReplacement replacement(file);
    replacement.write({reinterpret_cast<const char*>(&header), sizeof header});
    replacement.write(body);
    if (const auto failure = replacement.finish(FileReplacement::Durability::remakeable)) {
        return NSError{
            fmt::format("{}: the snapshot can't be written ({})", file.string(), failure.message()),
            {}};
    }
    return {};
}

std::shared_ptr<const MediaSnapshot> read(const std::filesystem::path& file, std::string_view key) {
    const auto mapping = std::make_shared<const Mapping>(file);
    const std::string_view bytes = mapping->bytes();
    Header header;
    if (bytes.size() < sizeof header) {
        return nullptr;
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    if (!isWhole(bytes, header) || bytes.substr(header.key.offset, header.key.bytes) != key) {
        return nullptr;
    }
    return std::make_shared<const MediaSnapshot>(partsOf(bytes, header), mapping);
}

}  // namespace tavrion::MediaSnapshotFile
