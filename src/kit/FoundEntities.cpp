#include "kit/FoundEntities.h"

#include <algorithm>

namespace tavrion {

FoundEntities::FoundEntities(std::vector<MPMediaEntity> entities) : size_(entities.size()) {
    make_ = std::make_shared<const Maker>(
        [list = std::move(entities)](std::size_t place) { return list[place]; });
}

std::vector<MPMediaEntity> FoundEntities::first(std::size_t count) const {
    std::vector<MPMediaEntity> entities;
    entities.reserve(std::min(count, size_));
    for (std::size_t place = 0; place < std::min(count, size_); ++place) {
        entities.push_back((*this)[place]);
    }
    return entities;
}

}  // namespace tavrion
