#include "timeviews/TrendingRanking.h"

#include <algorithm>

#include "recording/MPMediaItem+Nerinda.h"
#include "recording/PlaybackHistory.h"
#include "recording/RVQueryManager.h"
#include "timeviews/BestFirst.h"
#include "timeviews/TrendingSums.h"

namespace tavrion {
namespace {

constexpr std::string_view albumKeySeparator = "\u2014\u2014";
constexpr double firstPassShare = 0.6;
constexpr double secondPassShare = 0.4;

TrendingRow rowOf(MPMediaEntity entity, const RVTrendingHistory& sums) {
    return std::make_shared<const RVTrendingEntity>(
        RVTrendingEntity{std::move(entity), sums.playCount, sums.playDuration});
}

/// The parts of an album's key: album artist and album title. Absent when there are not two.
std::optional<std::pair<std::string, std::string>> albumParts(std::string_view key) {
    const std::size_t first = key.find(albumKeySeparator);
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view title = key.substr(first + albumKeySeparator.size());
    if (title.find(albumKeySeparator) != std::string_view::npos) {
        return std::nullopt;
    }
    return std::pair(std::string(key.substr(0, first)), std::string(title));
}

/// The collection of a group; absent when the library has none of that name.
std::optional<MPMediaItemCollection> collectionOf(std::string_view key, TrendingGrouping grouping) {
    MPMediaQuery query = RVQueryManager::defaultQuery();
    query.setValueForKey(true, "shouldIncludeNonLibraryEntities");
    const auto require = [&](std::string_view property, std::string value) {
        query.addFilterPredicate(
            MPMediaPropertyPredicate::predicateWithValue(std::move(value), property));
    };
    switch (grouping) {
        case TrendingGrouping::artists:
            query.setGroupingType(MPMediaGrouping::albumArtist);
            require(MPMediaItemPropertyAlbumArtist, std::string(key));
            break;
        case TrendingGrouping::albums: {
            auto parts = albumParts(key);
            if (!parts) {
                return std::nullopt;
            }
            query.setGroupingType(MPMediaGrouping::album);
            require(MPMediaItemPropertyAlbumArtist, std::move(parts->first));
            require(MPMediaItemPropertyAlbumTitle, std::move(parts->second));
            break;
        }
        case TrendingGrouping::genres:
            query.setGroupingType(MPMediaGrouping::genre);
            require(MPMediaItemPropertyGenre, std::string(key));
            break;
        default:
            return std::nullopt;
    }
    const std::vector<MPMediaItemCollection> collections = query.collections();
    return collections.empty() ? std::nullopt : std::optional(collections.front());
}

std::vector<TrendingRow> collectionRows(const TrendingSums& sums, TrendingGrouping grouping) {
    // Several keys in a row can be of groups of another kind, which give no row.
    constexpr std::size_t fewGroups = 8 * TrendingRanking::mostCollections;
    std::vector<TrendingRow> rows;
    auto best =
        bestFirst<TrendingGroup>(fewGroups, [&sums](std::size_t most, const TrendingGroup* after) {
            return sums.bestGroups(most, after);
        });
    while (rows.size() < TrendingRanking::mostCollections) {
        const TrendingGroup* group = best.next();
        if (group == nullptr) {
            break;
        }
        if (auto collection = collectionOf(group->key, grouping)) {
            rows.push_back(rowOf(*std::move(collection), group->sums));
        }
    }
    return rows;
}

std::vector<TrendingRow> songRows(NSManagedObjectContext& context, const TrendingSums& sums,
                                  const TrendingRequest& request) {
    const std::size_t limit = std::min(sums.keptCount(), TrendingRanking::mostSongs);
    std::vector<TrendingRow> rows;
    auto best = bestFirst<TrendingSong>(TrendingRanking::mostSongs,
                                        [&sums](std::size_t most, const TrendingSong* after) {
                                            return sums.bestSongs(most, after);
                                        });
    for (std::size_t i = 0; rows.size() < limit; ++i) {
        const TrendingSong* song = best.next();
        if (song == nullptr) {
            break;
        }
        PlaybackHistory history(
            NSManagedObject(context, {NerindaEntity::PlaybackHistory, song->sums.playbackHistory}));
        if (const auto item = Nerinda::mediaItemForHistory(history)) {
            rows.push_back(rowOf(*item, song->sums));
        }
        if (request.progress && (!request.isHeard || request.isHeard())) {
            const float part = static_cast<float>(i) / static_cast<float>(limit);
            request.progress(static_cast<float>(firstPassShare + secondPassShare * part));
        }
    }
    return rows;
}

}  // namespace

std::vector<int> TrendingSnapshot::sectionIdentifiers() const {
    std::vector<int> identifiers{dateSection};
    if (!collections.empty()) {
        identifiers.push_back(collectionsSection);
    }
    if (!songs.empty()) {
        identifiers.push_back(songsSection);
    }
    return identifiers;
}

TrendingSnapshot TrendingRanking::rank(NSManagedObjectContext& context,
                                       const TrendingRequest& request) {
    TrendingKeys keys;
    return rank(context, request, keys);
}

TrendingSnapshot TrendingRanking::rank(NSManagedObjectContext& context,
                                       const TrendingRequest& request, TrendingKeys& keys) {
    const std::shared_ptr<const StoreVersion> records = context.snapshot();
    const TrendingSums sums(*records, request, keys);
    TrendingSnapshot snapshot;
    snapshot.collections = collectionRows(sums, request.grouping());
    snapshot.songs = songRows(context, sums, request);
    return snapshot;
}

}  // namespace tavrion
