#include "platform/mediaplayer/Source.h"

namespace tavrion {

Result<void> Source::setLiked(std::uint64_t, std::uint32_t) {
    return NSError{"A library of the kind " + kind() + " cannot be told what you like.",
                   location()};
}

std::optional<NSData> Source::artwork(std::uint64_t) const {
    return std::nullopt;
}

std::optional<NSData> Source::bestImageFromDisk(MPMediaGrouping, std::uint64_t) const {
    return std::nullopt;
}

}  // namespace tavrion
