#include "timeviews/TrendingSums.h"

#include <cmath>
#include <limits>
#include <span>

#include "platform/coredata/IndexKeys.h"
#include "recording/NerindaModel.h"

namespace tavrion {
namespace {

/// Under this part of all plays the way through the index is shorter than the walk over all.
constexpr std::size_t rangeWorthAnIndex = 16;
constexpr double firstPassShare = 0.6;

/// Calls `visit(song)` for each play strictly between the ends; 0 is no song.
template <class Visit>
void forEachPlayIn(const TableVersion& plays, const NSDateInterval& interval, Visit visit) {
    const double low = interval.startDate().timeIntervalSinceReferenceDate();
    const double high = interval.endDate().timeIntervalSinceReferenceDate();
    const SortedIndex& byDate = *plays.indexes()[*nerindaModel()
                                                      ->entity(NerindaEntity::PlayEvent)
                                                      .indexOver({PlayEventKey::eventDate})];
    const std::uint64_t lowKey = IndexKeys::ofDate(interval.startDate());
    const std::uint64_t highKey = IndexKeys::ofDate(interval.endDate());
    if (byDate.countBetween(lowKey, highKey) < plays.size() / rangeWorthAnIndex) {
        byDate.forEachBetween(lowKey, highKey, [&](std::uint64_t key, RecordCounter record) {
            if (key != lowKey && key != highKey) {
                const RowPosition play = *plays.find(record);
                visit(play.leaf->columns[PlayEventKey::parentHistory]->references()[play.row]);
            }
        });
        return;
    }
    for (const auto& leaf : plays.leaves()) {
        const auto dates = leaf->columns[PlayEventKey::eventDate]->reals();
        const auto parents = leaf->columns[PlayEventKey::parentHistory]->references();
        for (std::size_t row = 0; row < dates.size(); ++row) {
            // An absent date is not a number and lies in no span.
            if (dates[row] > low && dates[row] < high) {
                visit(parents[row]);
            }
        }
    }
}

void add(RVTrendingHistory& total, const RVTrendingHistory& sums) {
    total.trendValue += sums.trendValue;
    total.playCount += sums.playCount;
    total.playDuration += sums.playDuration;
}

}  // namespace

RVTrendingHistory& TrendingGroups::at(std::string_view key) {
    if (groups_.size() * 2 >= slots_.size()) {
        grow();
    }
    const std::size_t hash = std::hash<std::string_view>{}(key);
    for (std::size_t slot = hash & (slots_.size() - 1);; slot = (slot + 1) & (slots_.size() - 1)) {
        const std::uint32_t place = slots_[slot];
        if (place == 0) {
            groups_.push_back({key, {}});
            hashes_.push_back(hash);
            slots_[slot] = static_cast<std::uint32_t>(groups_.size());
            return groups_.back().sums;
        }
        if (hashes_[place - 1] == hash && groups_[place - 1].key == key) {
            return groups_[place - 1].sums;
        }
    }
}

void TrendingGroups::grow() {
    constexpr std::size_t smallest = 64;
    slots_.assign(slots_.empty() ? smallest : slots_.size() * 2, 0);
    for (std::size_t i = 0; i < hashes_.size(); ++i) {
        std::size_t slot = hashes_[i] & (slots_.size() - 1);
        while (slots_[slot] != 0) {
            slot = (slot + 1) & (slots_.size() - 1);
        }
        slots_[slot] = static_cast<std::uint32_t>(i + 1);
    }
}

TrendingSums::TrendingSums(const StoreVersion& records, const TrendingRequest& request)
    : request_(request) {
    countPlays(records);
    addSongs(records.table(NerindaEntity::PlaybackHistory));
}

void TrendingSums::countPlays(const StoreVersion& records) {
    const TableVersion& songs = records.table(NerindaEntity::PlaybackHistory);
    if (!songs.leaves().empty()) {
        plays_.resize(std::size_t{songs.leaves().back()->records->back()} + 1, 0);
    }
    bool hasPlaysWithoutSong = false;
    forEachPlayIn(records.table(NerindaEntity::PlayEvent), request_.interval,
                  [&](RecordCounter song) {
                      if (song != 0 && song < plays_.size()) {
                          ++plays_[song];
                      } else {
                          hasPlaysWithoutSong = true;
                      }
                  });
    keptCount_ = hasPlaysWithoutSong ? 1 : 0;
    for (const auto& leaf : songs.leaves()) {
        const auto excluded = leaf->columns[PlaybackHistoryKey::excludeFromTrends]->booleans();
        for (std::size_t row = 0; row < leaf->size(); ++row) {
            std::uint32_t& count = plays_[(*leaf->records)[row]];
            count = excluded[row] != 0 ? 0 : count;
            keptCount_ += count != 0 ? 1U : 0U;
        }
    }
}

void TrendingSums::addSongs(const TableVersion& songs) {
    songs_.reserve(keptCount_);
    for (const auto& leaf : songs.leaves()) {
        const auto durations = leaf->columns[PlaybackHistoryKey::duration]->reals();
        const auto dates = leaf->columns[PlaybackHistoryKey::lastEventDate]->reals();
        for (std::size_t row = 0; row < leaf->size(); ++row) {
            const RecordCounter record = (*leaf->records)[row];
            const std::uint32_t count = plays_[record];
            if (count == 0) {
                continue;
            }
            RVTrendingHistory sums;
            sums.playbackHistory = record;
            sums.playCount = request_.byTime ? 0 : count;
            sums.playDuration = request_.byTime ? count * durations[row] : 0;
            sums.trendValue = request_.byTime ? sums.playDuration : count;
            addToGroups(*leaf, row, sums);
            if (request_.progress) {
                const float part =
                    static_cast<float>(songs_.size()) / static_cast<float>(keptCount_);
                request_.progress(static_cast<float>(part * firstPassShare));
            }
            songs_.push_back({sums, std::isnan(dates[row])
                                        ? -std::numeric_limits<double>::infinity()
                                        : dates[row]});
        }
    }
}

// A song adds to the groups of its own level and of every level below it.
void TrendingSums::addToGroups(const TableLeaf& leaf, std::size_t row,
                               const RVTrendingHistory& sums) {
    const auto addTo = [&](PropertyIndex property) {
        const FieldView field = leaf.columns[property]->at(row);
        if (const auto* key = std::get_if<std::string_view>(&field)) {
            add(groups_.at(*key), sums);
        }
    };
    switch (request_.grouping()) {
        case TrendingGrouping::artists:
            addTo(PlaybackHistoryKey::artist);
            [[fallthrough]];
        case TrendingGrouping::albums:
            addTo(PlaybackHistoryKey::albumID);
            [[fallthrough]];
        case TrendingGrouping::genres:
            addTo(PlaybackHistoryKey::genre);
            break;
    }
}

}  // namespace tavrion
