// Finds songs and collections of the media library by filters, grouped and ordered.
//
// Queue: any; a value that one owner changes. Each items() and collections() reads the library's
// current snapshot again. Songs come in library order. Albums come by album title, artists,
// composers and genres by name, songs within an album by disc and track, playlists and their songs
// in their own order. Songs that the user played but did not add come only with the key
// "shouldIncludeNonLibraryEntities".
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Value.h"
#include "platform/mediaplayer/MPMediaItem.h"
#include "platform/mediaplayer/MPMediaItemCollection.h"
#include "platform/mediaplayer/MPMediaPlaylist.h"

namespace tavrion {

enum class MPMediaPredicateComparison : std::int64_t { equalTo = 0, contains = 1 };

/// A filter on one property. Playlist properties choose among playlists, all others among songs.
class MPMediaPropertyPredicate {
  public:
    /// The property equals the value; an absent value asks for songs without the property, an array
    /// for any of its members.
    static MPMediaPropertyPredicate predicateWithValue(Value value, std::string_view property);
    /// `contains` ignores case and accents, and finds nothing for an empty text.
    static MPMediaPropertyPredicate predicateWithValue(Value value, std::string_view property,
                                                       MPMediaPredicateComparison comparisonType);

    const Value& value() const { return value_; }
    const std::string& property() const { return property_; }
    MPMediaPredicateComparison comparisonType() const { return comparisonType_; }
    bool operator==(const MPMediaPropertyPredicate&) const = default;

  private:
    MPMediaPropertyPredicate() = default;
    Value value_;
    std::string property_;
    MPMediaPredicateComparison comparisonType_ = MPMediaPredicateComparison::equalTo;
};

class MPMediaQuery {
  public:
    /// All songs, whatever their media type.
    static MPMediaQuery songsQuery() { return MPMediaQuery(MPMediaGrouping::title); }
    static MPMediaQuery albumsQuery() { return MPMediaQuery(MPMediaGrouping::album); }
    static MPMediaQuery artistsQuery() { return MPMediaQuery(MPMediaGrouping::artist); }
    static MPMediaQuery genresQuery() { return MPMediaQuery(MPMediaGrouping::genre); }
    static MPMediaQuery playlistsQuery() { return MPMediaQuery(MPMediaGrouping::playlist); }

    MPMediaGrouping groupingType() const { return grouping_; }
    void setGroupingType(MPMediaGrouping grouping) { grouping_ = grouping; }
    /// Songs must match all filters. Adding a filter twice is adding it once.
    void addFilterPredicate(const MPMediaPropertyPredicate& predicate);
    void removeFilterPredicate(const MPMediaPropertyPredicate& predicate);
    const std::vector<MPMediaPropertyPredicate>& filterPredicates() const { return predicates_; }
    /// Knows "shouldIncludeNonLibraryEntities"; any other key is a mistake in the program.
    void setValueForKey(const Value& value, std::string_view key);
    bool includesNonLibraryEntities() const { return includesNonLibrary_; }

    /// The songs, in library order; those of one album by disc and track, and then as the library
    /// has them; for playlists, those of each playlist in turn.
    std::vector<MPMediaItem> items() const;
    /// The groups that have a song, or the playlists, also empty ones. Songs without an album title
    /// form one album for each album artist, songs without an artist one nameless collection, the
    /// last; songs without a genre or a composer are in no collection of these.
    std::vector<MPMediaItemCollection> collections() const;
    /// The collection that these songs of a snapshot form under the query's grouping, for callers
    /// that found it by themselves. There is at least one song; not for playlists.
    MPMediaItemCollection collectionOf(const std::shared_ptr<const MediaSnapshot>& snapshot,
                                       const std::vector<std::uint32_t>& positions) const;

  private:
    explicit MPMediaQuery(MPMediaGrouping grouping) : grouping_(grouping) {}
    std::vector<MPMediaItemCollection> playlists(
        const std::shared_ptr<const MediaSnapshot>& snapshot) const;
    MPMediaItemCollection collection(const std::shared_ptr<const MediaSnapshot>& snapshot,
                                     const std::vector<std::uint32_t>& positions,
                                     std::uint64_t persistentID,
                                     std::string_view persistentIDProperty,
                                     const PlaylistRecord* playlist = nullptr) const;

    MPMediaGrouping grouping_;
    bool includesNonLibrary_ = false;
    std::vector<MPMediaPropertyPredicate> predicates_;
};

}  // namespace tavrion
