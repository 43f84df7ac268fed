// Keeps the latest snapshot of each library in the cache directory, for as long as the library
// looks the same from outside.
//
// Queue: one caller at a time. What can't be kept is only logged: the next reading is slower, and
// nothing is lost. A snapshot is kept for one locale, because songs stand in the order of its
// collation.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "platform/mediaplayer/Source.h"

namespace tavrion {

class MediaSnapshotCache {
  public:
    /// The directory is made when something is to be kept; without one nothing is.
    explicit MediaSnapshotCache(std::optional<std::filesystem::path> directory)
        : directory_(std::move(directory)) {}

    /// The kept snapshot when it is still right, else what the source reads, which is then kept.
    Result<std::shared_ptr<const MediaSnapshot>> read(Source& source) const;
    /// What the source reads now, which is then kept.
    Result<std::shared_ptr<const MediaSnapshot>> readAnew(Source& source) const;

  private:
    std::filesystem::path fileOf(const Source& source) const;
    void keep(const Source& source, const std::string& key, const MediaSnapshot& snapshot) const;

    std::optional<std::filesystem::path> directory_;
};

}  // namespace tavrion
