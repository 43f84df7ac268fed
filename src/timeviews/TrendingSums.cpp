#include "timeviews/TrendingSums.h"

#include <cmath>
#include <limits>

#include "recording/Plays.h"
#include "timeviews/BestFirst.h"

namespace tavrion {
namespace {

constexpr double firstPassShare = 0.6;

/// Tells of the progress when somebody listens. Whether somebody does is asked for a few songs at
/// once, since a screen begins to listen while the songs are walked already.
class SongProgress {
  public:
    SongProgress(const TrendingRequest& request, std::size_t songs)
        : request_(request), songs_(static_cast<float>(songs)) {}

    void tell(std::size_t song) {
        constexpr std::size_t songsBetweenLooks = 64;
        if (song % songsBetweenLooks == 0) {
            isHeard_ = request_.progress && (!request_.isHeard || request_.isHeard());
        }
        if (isHeard_) {
            const float part = static_cast<float>(song) / songs_;
            request_.progress(static_cast<float>(part * firstPassShare));
        }
    }

  private:
    const TrendingRequest& request_;
    const float songs_;
    bool isHeard_ = false;
};

double orderOfDate(double date) {
    return std::isnan(date) ? -std::numeric_limits<double>::infinity() : date;
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

bool isWorseGroup(const TrendingGroup& a, const TrendingGroup& b) {
    return a.sums.trendValue != b.sums.trendValue ? a.sums.trendValue < b.sums.trendValue
                                                  : a.key > b.key;
}

}  // namespace

TrendingSums::TrendingSums(const StoreVersion& records, const TrendingRequest& request,
                           TrendingKeys& keys)
    : request_(request), songs_(records.table(NerindaEntity::PlaybackHistory)), keys_(keys) {
    keys_.follow(songs_);
    countPlays(records);
    keepSongs();
    addSongs();
}

void TrendingSums::countPlays(const StoreVersion& records) {
    const std::size_t songs =
        songs_.leaves().empty() ? 0 : std::size_t{songs_.leaves().back()->records->back()};
    plays_.resize(songs + 1, 0);
    Plays(records, request_.interval.startDate(), request_.interval.endDate())
        .forEachSong([&](RecordCounter song) { ++plays_[song < plays_.size() ? song : 0]; });
}

void TrendingSums::keepSongs() {
    keptCount_ = plays_[0] != 0 ? 1 : 0;
    for (const auto& leaf : songs_.leaves()) {
        const auto excluded = leaf->columns[PlaybackHistoryKey::excludeFromTrends]->booleans();
        for (std::size_t row = 0; row < leaf->size(); ++row) {
            std::uint32_t& count = plays_[(*leaf->records)[row]];
            count = excluded[row] != 0 ? 0 : count;
            keptCount_ += count != 0 ? 1U : 0U;
        }
    }
}

void TrendingSums::addSongs() {
    SongProgress progress(request_, keptCount_);
    std::size_t song = 0;
    for (std::size_t place = 0; place < songs_.leaves().size(); ++place) {
        const TableLeaf& leaf = *songs_.leaves()[place];
        const auto durations = leaf.columns[PlaybackHistoryKey::duration]->reals();
        for (std::size_t row = 0; row < leaf.size(); ++row) {
            const std::uint32_t count = plays_[(*leaf.records)[row]];
            if (count != 0) {
                addToGroups(place, row, trendValue(count, durations[row]));
                progress.tell(song++);
            }
        }
    }
}

// A song adds to the groups of its own level and of every level below it.
void TrendingSums::addToGroups(std::size_t leaf, std::size_t row, double trendValue) {
    const auto addTo = [&](TrendingLevel level) {
        addToGroup(keys_.number(leaf, row, level), trendValue);
    };
    switch (request_.grouping()) {
        case TrendingGrouping::artists:
            addTo(TrendingLevel::artist);
            [[fallthrough]];
        case TrendingGrouping::albums:
            addTo(TrendingLevel::album);
            [[fallthrough]];
        case TrendingGrouping::genres:
            addTo(TrendingLevel::genre);
            break;
    }
}

void TrendingSums::addToGroup(std::uint32_t number, double trendValue) {
    if (number >= groups_.size()) {
        groups_.resize(keys_.end());
    }
    groups_[number].trendValue += trendValue;
    groups_[number].isThere = true;
}

RVTrendingHistory TrendingSums::sumsOf(double trendValue) const {
    RVTrendingHistory sums;
    sums.trendValue = trendValue;
    if (request_.byTime) {
        sums.playDuration = trendValue;
    } else {
        sums.playCount = static_cast<std::uint64_t>(trendValue);
    }
    return sums;
}

std::vector<TrendingSong> TrendingSums::bestSongs(std::size_t most,
                                                  const TrendingSong* after) const {
    BestElements<TrendingSong, decltype(&isWorseSong)> best(most, &isWorseSong);
    for (const auto& leaf : songs_.leaves()) {
        const auto durations = leaf->columns[PlaybackHistoryKey::duration]->reals();
        const auto dates = leaf->columns[PlaybackHistoryKey::lastEventDate]->reals();
        for (std::size_t row = 0; row < leaf->size(); ++row) {
            const RecordCounter record = (*leaf->records)[row];
            const double value = trendValue(plays_[record], durations[row]);
            if (plays_[record] == 0 || (best.isFull() && value < best.worst().sums.trendValue)) {
                continue;
            }
            TrendingSong song{sumsOf(value), orderOfDate(dates[row])};
            song.sums.playbackHistory = record;
            if (after == nullptr || isWorseSong(song, *after)) {
                best.offer(song);
            }
        }
    }
    return best.take();
}

std::vector<TrendingGroup> TrendingSums::bestGroups(std::size_t most,
                                                    const TrendingGroup* after) const {
    BestElements<TrendingGroup, decltype(&isWorseGroup)> best(most, &isWorseGroup);
    for (std::uint32_t number = TrendingKeys::none + 1; number < groups_.size(); ++number) {
        const GroupSum& sum = groups_[number];
        if (!sum.isThere || (best.isFull() && sum.trendValue < best.worst().sums.trendValue)) {
            continue;
        }
        const TrendingGroup group{keys_.text(number), sumsOf(sum.trendValue)};
        if (after == nullptr || isWorseGroup(group, *after)) {
            best.offer(group);
        }
    }
    return best.take();
}

}  // namespace tavrion
