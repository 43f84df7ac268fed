#include "platform/mediaplayer/Source.h"

namespace tavrion {

Result<void> Source::setLiked(std::uint64_t, std::uint32_t) {
    return NSError{"A library of the kind " + kind() + " cannot be told what you like.",
                   location()};
}

Result<std::uint64_t> Source::createPlaylist(const std::string&, std::span<const std::uint64_t>) {
    return NSError{"A library of the kind " + kind() + " cannot be given a playlist.", location()};
}

Result<void> Source::addToPlaylist(std::uint64_t, std::span<const std::uint64_t>) {
    return NSError{"A library of the kind " + kind() + " cannot be given songs for a playlist.",
                   location()};
}

std::optional<NSData> Source::artwork(std::uint64_t) const {
    return std::nullopt;
}

std::optional<NSData> Source::bestImageFromDisk(MPMediaGrouping, std::uint64_t) const {
    return std::nullopt;
}

Result<Observation> Source::watch(Work) {
    return Observation();
}

}  // namespace tavrion
