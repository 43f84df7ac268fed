#include "platform/mediaplayer/Source.h"

namespace tavrion {

Result<void> Source::setLiked(std::uint64_t, std::uint32_t) {
    return NSError{"A library of the kind " + kind() + " cannot be told what you like.",
                   location()};
}

}  // namespace tavrion
