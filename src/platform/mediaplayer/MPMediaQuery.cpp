#include "platform/mediaplayer/MPMediaQuery.h"

#include <algorithm>
#include <tuple>

#include "platform/foundation/NSPredicate.h"
#include "platform/foundation/Precondition.h"
#include "platform/foundation/SearchFolding.h"
#include "platform/mediaplayer/MPMediaItemCollectionState.h"
#include "platform/mediaplayer/MPMediaLibrary.h"
#include "platform/mediaplayer/SongFilter.h"

namespace tavrion {

namespace {

using Snapshot = std::shared_ptr<const MediaSnapshot>;

/// How songs of one grouping are told apart.
struct GroupingKind {
    SongGroup group;
    std::string_view persistentIDProperty;
};

std::optional<GroupingKind> kindOfGrouping(MPMediaGrouping grouping) {
    switch (grouping) {
        case MPMediaGrouping::album:
            return GroupingKind{SongGroup::album, MPMediaItemPropertyAlbumPersistentID};
        case MPMediaGrouping::artist:
            return GroupingKind{SongGroup::artist, MPMediaItemPropertyArtistPersistentID};
        case MPMediaGrouping::albumArtist:
            return GroupingKind{SongGroup::albumArtist, MPMediaItemPropertyAlbumArtistPersistentID};
        case MPMediaGrouping::composer:
            return GroupingKind{SongGroup::composer, "composerPersistentID"};
        case MPMediaGrouping::genre:
            return GroupingKind{SongGroup::genre, MPMediaItemPropertyGenrePersistentID};
        case MPMediaGrouping::title:
        case MPMediaGrouping::playlist:
            break;
    }
    return std::nullopt;
}

/// The positions cut into groups, the groups by rank and each in the order of the positions.
std::vector<std::vector<std::uint32_t>> cutIntoGroups(const MediaSnapshot& snapshot,
                                                      const std::vector<std::uint32_t>& positions,
                                                      SongGroup group) {
    const auto rank = [&](std::uint32_t position) {
        return snapshot.songs()[position].groupRanks[static_cast<std::size_t>(group)];
    };
    std::vector<std::uint32_t> sizes;
    for (const std::uint32_t position : positions) {
        const std::uint32_t own = rank(position);
        if (own != SongRecord::noGroup) {
            sizes.resize(std::max<std::size_t>(sizes.size(), own + std::size_t{1}));
            ++sizes[own];
        }
    }
    std::vector<std::vector<std::uint32_t>> groups(sizes.size());
    for (std::size_t own = 0; own < groups.size(); ++own) {
        groups[own].reserve(sizes[own]);
    }
    for (const std::uint32_t position : positions) {
        if (rank(position) != SongRecord::noGroup) {
            groups[rank(position)].push_back(position);
        }
    }
    std::erase_if(groups, [](const auto& members) { return members.empty(); });
    return groups;
}

void sortByDiscAndTrack(const MediaSnapshot& snapshot, std::vector<std::uint32_t>& positions) {
    const auto place = [&](std::uint32_t position) {
        const SongRecord& song = snapshot.songs()[position];
        return std::tuple(song.discNumber, song.trackNumber, position);
    };
    std::sort(positions.begin(), positions.end(),
              [&](std::uint32_t a, std::uint32_t b) { return place(a) < place(b); });
}

/// Whether the filters let one album through at most.
bool isOfOneAlbum(const std::vector<MPMediaPropertyPredicate>& predicates) {
    return std::any_of(
        predicates.begin(), predicates.end(), [](const MPMediaPropertyPredicate& predicate) {
            return predicate.property() == MPMediaItemPropertyAlbumPersistentID &&
                   predicate.comparisonType() == MPMediaPredicateComparison::equalTo &&
                   predicate.value().get<std::int64_t>() != nullptr;
        });
}

std::vector<MPMediaItem> itemsAt(const Snapshot& snapshot,
                                 const std::vector<std::uint32_t>& positions) {
    std::vector<MPMediaItem> items;
    items.reserve(positions.size());
    for (const std::uint32_t position : positions) {
        items.emplace_back(snapshot, position);
    }
    return items;
}

bool playlistPasses(const MediaSnapshot& snapshot, const PlaylistRecord& playlist,
                    const MPMediaPropertyPredicate& predicate) {
    const Value value = valueOfPlaylist(snapshot, playlist, predicate.property());
    if (predicate.comparisonType() == MPMediaPredicateComparison::equalTo) {
        return NSPredicate::compare(value, NSPredicate::Operator::equal, predicate.value());
    }
    const auto* text = value.get<std::string>();
    const auto* needle = predicate.value().get<std::string>();
    return text != nullptr && needle != nullptr && localizedStandardContainsString(*text, *needle);
}

/// The chosen playlists, each with the positions of its matching songs.
std::vector<std::pair<const PlaylistRecord*, std::vector<std::uint32_t>>> playlistsOf(
    const Snapshot& snapshot, const std::vector<MPMediaPropertyPredicate>& predicates,
    bool includesNonLibrary) {
    const SongFilter songs(snapshot, predicates, includesNonLibrary, true);
    std::vector<std::pair<const PlaylistRecord*, std::vector<std::uint32_t>>> chosen;
    for (const PlaylistRecord& playlist : snapshot->playlists()) {
        const bool passes = std::all_of(predicates.begin(), predicates.end(),
                                        [&](const MPMediaPropertyPredicate& predicate) {
                                            return !isPlaylistProperty(predicate.property()) ||
                                                   playlistPasses(*snapshot, playlist, predicate);
                                        });
        if (!passes) {
            continue;
        }
        std::vector<std::uint32_t> positions;
        for (const std::uint32_t position : snapshot->songsOfPlaylist(playlist)) {
            if (songs.matches(position)) {
                positions.push_back(position);
            }
        }
        chosen.emplace_back(&playlist, std::move(positions));
    }
    return chosen;
}

}  // namespace

MPMediaPropertyPredicate MPMediaPropertyPredicate::predicateWithValue(Value value,
                                                                      std::string_view property) {
    return predicateWithValue(std::move(value), property, MPMediaPredicateComparison::equalTo);
}

MPMediaPropertyPredicate MPMediaPropertyPredicate::predicateWithValue(
    Value value, std::string_view property, MPMediaPredicateComparison comparisonType) {
    MPMediaPropertyPredicate predicate;
    predicate.value_ = std::move(value);
    predicate.property_ = property;
    predicate.comparisonType_ = comparisonType;
    return predicate;
}

void MPMediaQuery::addFilterPredicate(const MPMediaPropertyPredicate& predicate) {
    if (std::find(predicates_.begin(), predicates_.end(), predicate) == predicates_.end()) {
        predicates_.push_back(predicate);
    }
}

void MPMediaQuery::removeFilterPredicate(const MPMediaPropertyPredicate& predicate) {
    std::erase(predicates_, predicate);
}

void MPMediaQuery::setValueForKey(const Value& value, std::string_view key) {
    precondition(key == "shouldIncludeNonLibraryEntities", "a query was given a key that it knows");
    includesNonLibrary_ = NSPredicate::compare(value, NSPredicate::Operator::equal, true);
}

std::vector<MPMediaItem> MPMediaQuery::items() const {
    const Snapshot snapshot = MPMediaLibrary::defaultMediaLibrary().snapshot();
    if (grouping_ != MPMediaGrouping::playlist) {
        const SongFilter filter(snapshot, predicates_, includesNonLibrary_, false);
        std::vector<std::uint32_t> positions = filter.matches();
        if (grouping_ == MPMediaGrouping::album && isOfOneAlbum(predicates_)) {
            sortByDiscAndTrack(*snapshot, positions);
        }
        return itemsAt(snapshot, positions);
    }
    std::vector<std::uint32_t> positions;
    for (const auto& [playlist, songs] : playlistsOf(snapshot, predicates_, includesNonLibrary_)) {
        positions.insert(positions.end(), songs.begin(), songs.end());
    }
    return itemsAt(snapshot, positions);
}

std::vector<MPMediaItemCollection> MPMediaQuery::collections() const {
    const Snapshot snapshot = MPMediaLibrary::defaultMediaLibrary().snapshot();
    if (grouping_ == MPMediaGrouping::playlist) {
        return playlists(snapshot);
    }
    const SongFilter filter(snapshot, predicates_, includesNonLibrary_, false);
    std::vector<std::uint32_t> positions = filter.matches();
    const auto kind = kindOfGrouping(grouping_);
    std::vector<MPMediaItemCollection> collections;
    if (!kind) {
        for (const std::uint32_t position : positions) {
            collections.push_back(collectionOf(snapshot, {position}));
        }
        return collections;
    }
    for (std::vector<std::uint32_t>& group : cutIntoGroups(*snapshot, positions, kind->group)) {
        if (kind->group == SongGroup::album) {
            sortByDiscAndTrack(*snapshot, group);
        }
        collections.push_back(collectionOf(snapshot, group));
    }
    return collections;
}

MPMediaItemCollection MPMediaQuery::collectionOf(
    const Snapshot& snapshot, const std::vector<std::uint32_t>& positions) const {
    const SongRecord& first = snapshot->songs()[positions.front()];
    const auto kind = kindOfGrouping(grouping_);
    return kind ? collection(snapshot, positions,
                             first.groupPersistentIDs[static_cast<std::size_t>(kind->group)],
                             kind->persistentIDProperty)
                : collection(snapshot, positions, first.persistentID,
                             MPMediaItemPropertyPersistentID);
}

std::vector<MPMediaItemCollection> MPMediaQuery::playlists(const Snapshot& snapshot) const {
    std::vector<MPMediaItemCollection> collections;
    for (const auto& [playlist, positions] :
         playlistsOf(snapshot, predicates_, includesNonLibrary_)) {
        collections.push_back(collection(snapshot, positions, playlist->persistentID,
                                         MPMediaPlaylistPropertyPersistentID, playlist));
    }
    return collections;
}

MPMediaItemCollection MPMediaQuery::collection(const Snapshot& snapshot,
                                               const std::vector<std::uint32_t>& positions,
                                               std::uint64_t persistentID,
                                               std::string_view persistentIDProperty,
                                               const PlaylistRecord* playlist) const {
    auto state = std::make_shared<MPMediaItemCollection::State>();
    state->items = itemsAt(snapshot, positions);
    state->grouping = grouping_;
    state->persistentID = persistentID;
    state->query = *this;
    state->query.addFilterPredicate(
        MPMediaPropertyPredicate::predicateWithValue(persistentID, persistentIDProperty));
    state->snapshot = snapshot;
    state->playlist = playlist;
    return MPMediaItemCollection(std::move(state));
}

}  // namespace tavrion
