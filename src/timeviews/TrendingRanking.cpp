#include "timeviews/TrendingRanking.h"

#include <algorithm>

#include "recording/MPMediaItem+Nerinda.h"
#include "recording/PlaybackHistory.h"
#include "recording/RVQueryManager.h"
#include "timeviews/TrendingSums.h"

namespace tavrion {
namespace {

constexpr std::string_view albumKeySeparator = "\u2014\u2014";
constexpr double firstPassShare = 0.6;
constexpr double secondPassShare = 0.4;

/// Hands out the best of what is left, one after the other: few are asked for.
template <class Element, class IsWorse>
class BestFirst {
  public:
    BestFirst(std::vector<Element>& elements, IsWorse isWorse)
        : elements_(elements), isWorse_(isWorse), left_(elements.size()) {
        std::make_heap(elements_.begin(), elements_.end(), isWorse_);
    }
    /// Null when nothing is left.
    const Element* next() {
        if (left_ == 0) {
            return nullptr;
        }
        const auto end = elements_.begin() + static_cast<std::ptrdiff_t>(left_);
        std::pop_heap(elements_.begin(), end, isWorse_);
        return &elements_[--left_];
    }

  private:
    std::vector<Element>& elements_;
    IsWorse isWorse_;
    std::size_t left_;
};

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

std::vector<TrendingRow> collectionRows(std::vector<TrendingGroup>& groups,
                                        TrendingGrouping grouping) {
    std::vector<TrendingRow> rows;
    BestFirst best(groups, [](const TrendingGroup& a, const TrendingGroup& b) {
        return a.sums.trendValue != b.sums.trendValue ? a.sums.trendValue < b.sums.trendValue
                                                      : a.key > b.key;
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

bool isWorseSong(const TrendingSong& a, const TrendingSong& b) {
    if (a.sums.trendValue != b.sums.trendValue) {
        return a.sums.trendValue < b.sums.trendValue;
    }
    if (a.lastEventDate != b.lastEventDate) {
        return a.lastEventDate < b.lastEventDate;
    }
    return a.sums.playbackHistory > b.sums.playbackHistory;
}

std::vector<TrendingRow> songRows(NSManagedObjectContext& context, TrendingSums& sums,
                                  const TrendingRequest& request) {
    const std::size_t limit = std::min(sums.keptCount(), TrendingRanking::mostSongs);
    std::vector<TrendingRow> rows;
    BestFirst best(sums.songs(), &isWorseSong);
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
        if (request.progress) {
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
    // The names of the groups lie in the version.
    const std::shared_ptr<const StoreVersion> records = context.snapshot();
    TrendingSums sums(*records, request);
    TrendingSnapshot snapshot;
    snapshot.collections = collectionRows(sums.groups(), request.grouping());
    snapshot.songs = songRows(context, sums, request);
    return snapshot;
}

}  // namespace tavrion
