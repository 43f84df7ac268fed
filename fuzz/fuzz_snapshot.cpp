// Changes bytes of a kept snapshot, lengthens it or cuts it off: what was not written whole is
// read as no snapshot, so that the library is read again.
//
// The input is a list of changes of three bytes each: where (two, from the front) and what is
// written there; behind the last whole one a byte cuts as many bytes off the end.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/ScratchFile.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/mediaplayer/MediaSnapshotBuilder.h"
#include "platform/mediaplayer/MediaSnapshotFile.h"

using namespace tavrion;
using fuzz::require;

namespace {

constexpr std::string_view key = "a library";

/// A snapshot of three songs and a playlist, as its file.
std::string wholeFile(const fuzz::ScratchFile& file) {
    MediaSnapshotBuilder builder;
    for (std::uint64_t song = 1; song <= 3; ++song) {
        const std::string title = "Song " + std::to_string(song);
        builder.addSong({.persistentID = song,
                         .title = title,
                         .artist = "An Artist",
                         .playbackDuration = 200,
                         .playCount = song});
    }
    const std::uint64_t songs[] = {3, 1};
    builder.addPlaylist({.name = "Both", .persistentID = 9, .songs = songs});
    require(MediaSnapshotFile::write(file.path(), key, *builder.finish()).ok());
    return file.content();
}

std::string changed(std::string bytes, const std::uint8_t* data, std::size_t size) {
    std::size_t at = 0;
    for (; at + 3 <= size; at += 3) {
        const std::size_t where = data[at] * std::size_t{256} + data[at + 1];
        bytes.resize(std::max(bytes.size(), where + 1));
        bytes[where] = static_cast<char>(data[at + 2]);
    }
    if (at < size) {
        bytes.resize(bytes.size() - std::min<std::size_t>(bytes.size(), data[at]));
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Regional region(NSTimeZone(), "en_US");
    static const Port<Regional>::Plug plug(region);
    static const fuzz::ScratchFile file("snapshot");
    static const std::string whole = wholeFile(file);
    const std::string bytes = changed(whole, data, size);
    file.write(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    const auto read = MediaSnapshotFile::read(file.path(), key);
    require((read != nullptr) == (bytes == whole));
    require(read == nullptr || read->songs().size() == 3);
    require(MediaSnapshotFile::read(file.path(), "another library") == nullptr);
    return 0;
}
