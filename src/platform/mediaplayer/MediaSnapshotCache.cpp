#include "platform/mediaplayer/MediaSnapshotCache.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <system_error>

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSLog.h"
#include "platform/mediaplayer/MediaSnapshotFile.h"

namespace tavrion {
namespace {

/// What a snapshot of the source depends on; absent when the source can't tell.
std::optional<std::string> keyOf(const Source& source) {
    const std::optional<std::string> stamp = source.stamp();
    return stamp ? std::optional(fmt::format("{}\n{}\n{}\n{}", source.kind(), source.location(),
                                             *stamp, Port<Regional>::current().orderLocale()))
                 : std::nullopt;
}

}  // namespace

std::filesystem::path MediaSnapshotCache::fileOf(const Source& source) const {
    return *directory_ / fmt::format("library-{:016x}.snapshot",
                                     mediaTextHash(source.kind() + "\n" + source.location()));
}

Result<std::shared_ptr<const MediaSnapshot>> MediaSnapshotCache::read(Source& source) const {
    if (directory_) {
        if (const auto key = keyOf(source)) {
            if (auto kept = MediaSnapshotFile::read(fileOf(source), *key)) {
                return kept;
            }
        }
    }
    return readAnew(source);
}

Result<std::shared_ptr<const MediaSnapshot>> MediaSnapshotCache::readAnew(Source& source) const {
    const std::optional<std::string> before = directory_ ? keyOf(source) : std::nullopt;
    auto snapshot = source.read();
    // A library that changed while it was read might be kept under the wrong key.
    if (snapshot && before && keyOf(source) == before) {
        keep(source, *before, *snapshot.value());
    }
    return snapshot;
}

void MediaSnapshotCache::keep(const Source& source, const std::string& key,
                              const MediaSnapshot& snapshot) const {
    std::error_code ignored;
    std::filesystem::create_directories(directory_->parent_path(), ignored);
    ::mkdir(directory_->c_str(), S_IRWXU);
    if (const auto written = MediaSnapshotFile::write(fileOf(source), key, snapshot); !written) {
        NSLog("{}", written.error().localizedDescription);
    }
}

}  // namespace tavrion
