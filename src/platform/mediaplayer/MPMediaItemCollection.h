// Songs that belong together: an album, an artist, a playlist, or any list of songs.
//
// Queue: any; an immutable value, cheap to copy.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/mediaplayer/MPMediaItem.h"

namespace tavrion {

class MPMediaQuery;

/// How a query groups its songs; the number is also a collection's "groupingType".
enum class MPMediaGrouping : std::int64_t {
    title = 0,
    album = 1,
    artist = 2,
    albumArtist = 3,
    composer = 4,
    genre = 5,
    playlist = 6,
};

class MPMediaItemCollection {
  public:
    /// A collection of just these songs; its grouping reads as 0.
    explicit MPMediaItemCollection(std::vector<MPMediaItem> items);

    const std::vector<MPMediaItem>& items() const;
    std::size_t count() const { return items().size(); }
    /// A song that stands for the others; none in an empty collection.
    std::optional<MPMediaItem> representativeItem() const;
    MPMediaGrouping groupingType() const;
    /// Of the album, artist, genre or playlist; 0 when there is none.
    std::uint64_t persistentID() const;
    /// The query that finds the songs of this collection again, also with one more filter (private
    /// key "_itemsQuery").
    MPMediaQuery itemsQuery() const;

    /// "groupingType", "persistentID", "count"; a playlist's properties too. Absent for an unknown
    /// name.
    Value valueForKey(std::string_view key) const;
    Value valueForProperty(std::string_view property) const { return valueForKey(property); }
    bool isPlaylist() const;

    /// The same songs of the same snapshot under the same grouping.
    bool operator==(const MPMediaItemCollection& other) const;

  protected:
    friend class MPMediaQuery;
    struct State;
    explicit MPMediaItemCollection(std::shared_ptr<const State> state);
    std::shared_ptr<const State> state_;
};

}  // namespace tavrion
