// Reads a file that its owner may be replacing at the same time.
//
// Queue: any. A reading counts when the file is the same before and after it; otherwise it is done
// once more.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/foundation/Result.h"
#include "platform/mediaplayer/MediaSnapshot.h"

namespace tavrion {

/// What tells one state of a file from another.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t file = 0;
    std::uint64_t size = 0;
    std::int64_t modifiedSeconds = 0;
    std::int64_t modifiedNanoseconds = 0;
    bool operator==(const FileStamp&) const = default;
};

using ReadSnapshot = std::function<Result<std::shared_ptr<const MediaSnapshot>>()>;
using ReadStamp = std::function<Result<FileStamp>()>;

/// What `read` gives once `stamp` is the same before and after it, also when that is an error;
/// after two readings of a changing file an error that names it.
Result<std::shared_ptr<const MediaSnapshot>> readSettled(const std::string& name,
                                                         const ReadStamp& stamp,
                                                         const ReadSnapshot& read);

}  // namespace tavrion
