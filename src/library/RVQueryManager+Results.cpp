#include <algorithm>
#include <unordered_map>

#include "library/CollectionValues.h"
#include "library/RVQueryManager+Results.h"
#include "library/SortedEntities.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaItemCollection+Extended.h"
#include "recording/MPMediaItem+Nerinda.h"

namespace tavrion::RVQueryManager {

namespace {

using Songs = std::vector<MPMediaItem>;
using Collections = std::vector<MPMediaItemCollection>;

MPMediaPropertyPredicate flagIs(bool value, std::string_view property) {
    return MPMediaPropertyPredicate::predicateWithValue(Value(value), property);
}

template <class Entity>
std::vector<MPMediaEntity> inOrder(std::vector<Entity> entities,
                                   const std::vector<std::uint32_t>& places) {
    std::vector<MPMediaEntity> ordered;
    ordered.reserve(entities.size());
    for (const std::uint32_t place : places) {
        ordered.emplace_back(std::move(entities[place]));
    }
    return ordered;
}

template <class Entity>
std::vector<MPMediaEntity> asTheyCome(std::vector<Entity> entities, bool isBackwards) {
    if (isBackwards) {
        std::reverse(entities.begin(), entities.end());
    }
    return {std::make_move_iterator(entities.begin()), std::make_move_iterator(entities.end())};
}

template <class Entity, class KeyOfEntity>
std::vector<MPMediaEntity> sortedBy(std::vector<Entity> entities, bool ascending,
                                    const KeyOfEntity& keyOfEntity) {
    std::vector<SortedEntities::Key> keys;
    keys.reserve(entities.size());
    for (const Entity& entity : entities) {
        keys.push_back(SortedEntities::keyOf(keyOfEntity(entity)));
    }
    return inOrder(std::move(entities), SortedEntities::order(keys, ascending));
}

/// One song can be in a playlist twice.
Songs withoutDuplicates(Songs songs) {
    std::vector<bool> isTaken;
    std::erase_if(songs, [&](const MPMediaItem& song) {
        isTaken.resize(std::max<std::size_t>(isTaken.size(), song.position() + 1));
        const bool isSecond = isTaken[song.position()];
        isTaken[song.position()] = true;
        return isSecond;
    });
    return songs;
}

/// The release keys of many songs. Most have a year alone, and a year's first instant is asked of
/// the calendar once.
class ReleaseKeys {
  public:
    std::optional<NSDate> operator()(const MPMediaItem& song) {
        if (song.releaseDate() || song.year() == 0) {
            return Nerinda::sortReleaseKey(song);
        }
        const auto [found, isNew] = byYear_.try_emplace(song.year());
        if (isNew) {
            found->second = Nerinda::sortReleaseKey(song);
        }
        return found->second;
    }
    std::optional<NSDate> latest(const Songs& songs) {
        std::optional<NSDate> found;
        for (const MPMediaItem& song : songs) {
            found = laterDate(found, (*this)(song));
        }
        return found;
    }

  private:
    std::unordered_map<unsigned, std::optional<NSDate>> byYear_;
};

std::vector<MPMediaEntity> sortedSongs(Songs songs, RVSortType sortType, bool reverse) {
    ReleaseKeys releaseKeys;
    switch (sortType) {
        case RVSortTypePlayCount:
            return sortedBy(std::move(songs), reverse,
                            [](const MPMediaItem& song) { return song.playCount(); });
        case RVSortTypeLastPlayed:
            return sortedBy(std::move(songs), reverse,
                            [](const MPMediaItem& song) { return song.lastPlayedDate(); });
        case RVSortTypeTimeListened:
            return sortedBy(std::move(songs), reverse, [](const MPMediaItem& song) {
                return static_cast<double>(song.playCount()) * song.playbackDuration();
            });
        case RVSortTypeDateAdded:
            return sortedBy(std::move(songs), reverse,
                            [](const MPMediaItem& song) { return song.dateAdded(); });
        case RVSortTypeReleaseDate:
            return sortedBy(std::move(songs), reverse,
                            [&](const MPMediaItem& song) { return releaseKeys(song); });
        default:
            return asTheyCome(std::move(songs), false);
    }
}

/// The query's songs, each once. Read backwards, a song of a playlist that holds it twice comes
/// where it is met first that way.
Songs songsOf(const MPMediaQuery& query, RVSortType sortType, bool reverse) {
    Songs songs = query.items();
    if (sortType == RVSortTypeAlphabetical && reverse) {
        std::reverse(songs.begin(), songs.end());
    }
    return withoutDuplicates(std::move(songs));
}

template <class NameOfCollection>
std::vector<MPMediaEntity> sortedByName(Collections collections, bool ascending,
                                        const NameOfCollection& nameOfCollection) {
    std::vector<std::optional<std::string>> names;
    names.reserve(collections.size());
    for (const MPMediaItemCollection& collection : collections) {
        names.push_back(nameOfCollection(collection));
    }
    return inOrder(std::move(collections), SortedEntities::alphabeticalOrder(names, ascending));
}

std::vector<MPMediaEntity> inAlphabeticalOrder(Collections collections, MPMediaGrouping groupType,
                                               bool reverse) {
    switch (groupType) {
        case MPMediaGrouping::playlist:
            return sortedByName(std::move(collections), !reverse, Extended::sortKey);
        case MPMediaGrouping::albumArtist:
            return sortedByName(std::move(collections), !reverse, Extended::sortArtistKey);
        default:
            return asTheyCome(std::move(collections), reverse);
    }
}

std::vector<MPMediaEntity> sortedCollections(Collections collections, MPMediaGrouping groupType,
                                             RVSortType sortType, bool reverse) {
    using Collection = MPMediaItemCollection;
    ReleaseKeys releaseKeys;
    switch (sortType) {
        case RVSortTypeAlphabetical:
            return inAlphabeticalOrder(std::move(collections), groupType, reverse);
        case RVSortTypePlayCount:
            return sortedBy(std::move(collections), reverse, [](const Collection& collection) {
                return CollectionValues::playCount(collection.items());
            });
        case RVSortTypeLastPlayed:
            return sortedBy(std::move(collections), reverse, [](const Collection& collection) {
                return CollectionValues::latest(collection.items(), &MPMediaItem::lastPlayedDate);
            });
        case RVSortTypeTimeListened:
            return sortedBy(std::move(collections), reverse, [](const Collection& collection) {
                return CollectionValues::secondsListened(collection.items());
            });
        case RVSortTypeDateAdded:
            return sortedBy(std::move(collections), reverse, [](const Collection& collection) {
                return CollectionValues::latest(collection.items(), &MPMediaItem::dateAdded);
            });
        case RVSortTypeReleaseDate:
            return sortedBy(std::move(collections), reverse, [&](const Collection& collection) {
                return releaseKeys.latest(collection.items());
            });
        default:
            return asTheyCome(std::move(collections), false);
    }
}

/// The album artists without their compilations, then the artists of the songs of compilations.
Collections splitArtists(MPMediaQuery& query) {
    query.addFilterPredicate(flagIs(false, MPMediaItemPropertyIsCompilation));
    Collections artists = query.collections();
    MPMediaQuery compilations = defaultQuery();
    compilations.addFilterPredicate(flagIs(true, MPMediaItemPropertyIsCompilation));
    compilations.setGroupingType(MPMediaGrouping::artist);
    Collections added = compilations.collections();
    artists.insert(artists.end(), std::make_move_iterator(added.begin()),
                   std::make_move_iterator(added.end()));
    return artists;
}

Collections collectionsOf(MPMediaQuery& query, MPMediaGrouping groupType) {
    query.setGroupingType(groupType);
    if (groupType == MPMediaGrouping::playlist) {
        query.addFilterPredicate(flagIs(false, "isHidden"));
        query.addFilterPredicate(flagIs(false, "isFolder"));
    }
    const bool isSplit = groupType == MPMediaGrouping::albumArtist &&
                         NSUserDefaults::standardUserDefaults().boolForKey(splitCompilationsKey);
    return isSplit ? splitArtists(query) : query.collections();
}

}  // namespace

std::vector<MPMediaEntity> resultsForQuery(MPMediaQuery* query, MPMediaGrouping groupType,
                                           RVSortType sortType, bool reverse) {
    MPMediaQuery music = defaultQuery();
    MPMediaQuery& asked = query == nullptr ? music : *query;
    if (groupType == MPMediaGrouping::title) {
        return sortedSongs(songsOf(asked, sortType, reverse), sortType, reverse);
    }
    return sortedCollections(collectionsOf(asked, groupType), groupType, sortType, reverse);
}

}  // namespace tavrion::RVQueryManager
