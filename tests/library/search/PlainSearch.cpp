#include "tests/library/search/PlainSearch.h"

#include <algorithm>

#include "library/search/MergeSort.h"
#include "library/search/SearchOrder.h"
#include "library/search/SearchTerm.h"
#include "platform/foundation/NSString+Entended.h"
#include "platform/mediaplayer/MPMediaQuery.h"

namespace tavrion {

namespace {

using Entities = std::vector<MPMediaEntity>;

MPMediaPropertyPredicate contains(std::string_view term, std::string_view property) {
    return MPMediaPropertyPredicate::predicateWithValue(Value(std::string(term)), property,
                                                        MPMediaPredicateComparison::contains);
}

template <class Found>
void add(Entities& entities, const std::vector<Found>& found) {
    for (const Found& each : found) {
        const MPMediaEntity entity(each);
        const auto isSame = [&](const MPMediaEntity& other) {
            return other.persistentID() == entity.persistentID();
        };
        if (std::none_of(entities.begin(), entities.end(), isSame)) {
            entities.push_back(entity);
        }
    }
}

Entities ranked(Entities entities, std::string_view key, std::string_view term) {
    return mergeSorted(std::move(entities), [&](const MPMediaEntity& a, const MPMediaEntity& b) {
        const std::string left = stringOfEntity(a, key);
        const std::string right = stringOfEntity(b, key);
        const unsigned leftFlags = searchFlags(left, term);
        const unsigned rightFlags = searchFlags(right, term);
        if ((leftFlags & ~rightFlags) != 0) {
            return NSComparisonResult::ascending;
        }
        if ((rightFlags & ~leftFlags) != 0) {
            return NSComparisonResult::descending;
        }
        return Entended::smartAlphabeticalCompare(left, right);
    });
}

}  // namespace

PlainResults plainSearch(std::string_view term) {
    PlainResults results;
    MPMediaQuery artistQuery = MPMediaQuery::songsQuery();
    artistQuery.setGroupingType(MPMediaGrouping::albumArtist);
    artistQuery.addFilterPredicate(contains(term, MPMediaItemPropertyAlbumArtist));
    add(results.artists, artistQuery.collections());
    results.artists = ranked(std::move(results.artists), "artistSearchKey", term);

    artistQuery.setGroupingType(MPMediaGrouping::album);
    MPMediaQuery albumQuery = MPMediaQuery::albumsQuery();
    albumQuery.addFilterPredicate(contains(term, MPMediaItemPropertyAlbumTitle));
    add(results.albums, albumQuery.collections());
    add(results.albums, artistQuery.collections());
    results.albums = ranked(std::move(results.albums), "albumTitle", term);

    const EntityTest hasWords = substringPredicateForKeyPath("title", term);
    std::vector<MPMediaItem> songs = MPMediaQuery::songsQuery().items();
    std::erase_if(songs, [&](const MPMediaItem& song) { return !hasWords(song); });
    add(results.songs, songs);
    add(results.songs, artistQuery.items());
    add(results.songs, albumQuery.items());
    results.songs = ranked(std::move(results.songs), "title", term);

    MPMediaQuery playlistQuery = MPMediaQuery::playlistsQuery();
    playlistQuery.addFilterPredicate(contains(term, "name"));
    add(results.playlists, playlistQuery.collections());
    results.playlists = ranked(std::move(results.playlists), "name", term);
    return results;
}

}  // namespace tavrion
