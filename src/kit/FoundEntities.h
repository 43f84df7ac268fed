// The hits of a search, best first, each made into an entity when it is looked at: a page shows a
// few of many thousands.
//
// Queue: any; an immutable value, cheap to copy. Who owns: the list keeps the snapshot it came
// from.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

class FoundEntities {
  public:
    using Maker = std::function<MPMediaEntity(std::size_t)>;

    /// No hits.
    FoundEntities() = default;
    /// `make` gives the entity at a place below `size`, on any queue.
    FoundEntities(std::size_t size, Maker make)
        : size_(size), make_(std::make_shared<const Maker>(std::move(make))) {}
    explicit FoundEntities(std::vector<MPMediaEntity> entities);

    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    MPMediaEntity operator[](std::size_t place) const { return (*make_)(place); }
    /// All when there are fewer.
    std::vector<MPMediaEntity> first(std::size_t count) const;

    class Iterator {
      public:
        Iterator(const FoundEntities& entities, std::size_t place)
            : entities_(&entities), place_(place) {}
        MPMediaEntity operator*() const { return (*entities_)[place_]; }
        Iterator& operator++() {
            ++place_;
            return *this;
        }
        bool operator==(const Iterator&) const = default;

      private:
        const FoundEntities* entities_;
        std::size_t place_;
    };
    Iterator begin() const { return {*this, 0}; }
    Iterator end() const { return {*this, size_}; }

  private:
    std::size_t size_ = 0;
    std::shared_ptr<const Maker> make_;
};

}  // namespace tavrion
