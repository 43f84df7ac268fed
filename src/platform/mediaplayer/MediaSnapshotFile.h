// A snapshot as a file that is mapped back as it is, so that a command need not read a whole
// library again.
//
// Queue: any; stateless. The file is of one machine and one build of the program: another layout,
// another key, a wrong length or a wrong checksum read as no snapshot. Writers replace the file
// whole, so that a snapshot that is in use keeps its own.
#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

#include "platform/foundation/Result.h"
#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion::MediaSnapshotFile {

/// `key` names what the snapshot was read from.
Result<void> write(const std::filesystem::path& file, std::string_view key,
                   const MediaSnapshot& snapshot);

/// Null when there is no such file, or none that was written whole with that key.
std::shared_ptr<const MediaSnapshot> read(const std::filesystem::path& file, std::string_view key);

}  // namespace tavrion::MediaSnapshotFile
