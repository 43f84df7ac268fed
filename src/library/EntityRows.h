// The rows of a list of the library: songs, albums, artists and the like as a user reads them.
//
// Queue: any; immutable values, cheap to copy. What a row shows at its right may walk all songs of
// its entity, so whole rows are asked for off the main queue; the last thousand that were asked for
// are kept. Absent: see EntityRow.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kit/NSAttributedString.h"
#include "library/RVSortType.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

struct EntityRow {
    MPMediaEntity entity;
    /// With the mark of explicit songs, whose size is that beside a text of size 1. Absent as the
    /// entity's title is.
    std::optional<NSAttributedString> title;
    std::optional<std::string> subtitle;
    /// The place in the list or the track of the album; absent where the list shows none.
    std::optional<std::uint64_t> number;
    /// What stands at the right: what the list is sorted by.
    NSAttributedString property;
    bool operator==(const EntityRow&) const = default;
};

/// A row and its picture, which is read from disk.
struct PicturedRow {
    EntityRow row;
    UIImage artwork;
};

/// What stands in front of a row.
enum class RowNumbers { none, places, tracks };

class EntityRows {
  public:
    EntityRows() : EntityRows({}, RVSortTypeAlphabetical) {}
    EntityRows(std::vector<MPMediaEntity> entities, RVSortType sortType,
               RowNumbers numbers = RowNumbers::none);
    /// Numbered where lists of that sort are.
    static EntityRows ranked(std::vector<MPMediaEntity> entities, RVSortType sortType);
    /// The same entities as the hits of a search: without numbers, with what an alphabetical list
    /// shows.
    EntityRows asHits() const;

    std::size_t size() const { return entities_->size(); }
    bool isEmpty() const { return entities_->empty(); }
    const MPMediaEntity& operator[](std::size_t place) const { return (*entities_)[place]; }
    const std::vector<MPMediaEntity>& entities() const { return *entities_; }
    std::optional<std::uint64_t> number(std::size_t place) const;

    /// The row but for what stands at the right: what can be shown at once.
    EntityRow beginningOfRow(std::size_t place) const;
    EntityRow row(std::size_t place) const;
    /// The same, from the rows that are kept. These go when a setting or the day makes them read
    /// differently.
    EntityRow keptRow(std::size_t place) const;
    /// keptRow() with its picture. Not on the main queue.
    PicturedRow picturedRow(std::size_t place) const;

  private:
    class KeptRows;
    std::shared_ptr<const std::vector<MPMediaEntity>> entities_;
    RVSortType sortType_;
    RowNumbers numbers_;
    std::shared_ptr<KeptRows> kept_;
};

}  // namespace tavrion
