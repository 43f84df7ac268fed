#include "recording/PlayTotals.h"

#include <span>
#include <vector>

#include "platform/coredata/IndexKeys.h"
#include "recording/NerindaModel.h"

namespace tavrion {
namespace {

/// Under this part of all plays the way through the index is shorter than the walk over all.
constexpr std::size_t rangeWorthAnIndex = 16;

/// Every song's duration at its counter, so that a play costs one access.
class SongDurations {
  public:
    explicit SongDurations(const TableVersion& songs) {
        if (songs.leaves().empty()) {
            return;
        }
        durations_.resize(std::size_t{songs.leaves().back()->records->back()} + 1, 0);
        seen_.resize(durations_.size(), 0);
        isSong_.resize(durations_.size(), 0);
        for (const auto& leaf : songs.leaves()) {
            const std::span<const double> durations =
                leaf->columns[PlaybackHistoryKey::duration]->reals();
            for (std::size_t row = 0; row < leaf->size(); ++row) {
                durations_[(*leaf->records)[row]] = durations[row];
                isSong_[(*leaf->records)[row]] = 1;
            }
        }
    }

    /// The duration of a play's song, 0 without one; notes that the song was played.
    double note(RecordCounter song) {
        if (song >= durations_.size()) {
            return 0;
        }
        seen_[song] = 1;
        return durations_[song];
    }
    std::size_t songs() const {
        std::size_t count = 0;
        for (std::size_t i = 1; i < seen_.size(); ++i) {
            count += static_cast<std::size_t>(seen_[i] & isSong_[i]);
        }
        return count;
    }

  private:
    std::vector<double> durations_;
    std::vector<std::uint8_t> seen_;
    std::vector<std::uint8_t> isSong_;
};

}  // namespace

PlayTotals playTotalsBetween(const StoreVersion& records, NSDate start, NSDate end) {
    const TableVersion& plays = records.table(NerindaEntity::PlayEvent);
    const double low = start.timeIntervalSinceReferenceDate();
    const double high = end.timeIntervalSinceReferenceDate();
    SongDurations songs(records.table(NerindaEntity::PlaybackHistory));
    PlayTotals totals;
    const SortedIndex& byDate = *plays.indexes()[*nerindaModel()
                                                      ->entity(NerindaEntity::PlayEvent)
                                                      .indexOver({PlayEventKey::eventDate})];
    const std::uint64_t lowKey = IndexKeys::ofDate(start);
    const std::uint64_t highKey = IndexKeys::ofDate(end);
    const auto add = [&](double date, RecordCounter song) {
        // An absent date is not a number and lies in no span.
        if (date > low && date < high) {
            ++totals.plays;
            totals.seconds += songs.note(song);
        }
    };
    if (byDate.countBetween(lowKey, highKey) < plays.size() / rangeWorthAnIndex) {
        byDate.forEachBetween(lowKey, highKey, [&](std::uint64_t, RecordCounter record) {
            const RowPosition play = *plays.find(record);
            add(play.leaf->columns[PlayEventKey::eventDate]->reals()[play.row],
                play.leaf->columns[PlayEventKey::parentHistory]->references()[play.row]);
        });
    } else {
        for (const auto& leaf : plays.leaves()) {
            const auto dates = leaf->columns[PlayEventKey::eventDate]->reals();
            const auto parents = leaf->columns[PlayEventKey::parentHistory]->references();
            for (std::size_t row = 0; row < dates.size(); ++row) {
                add(dates[row], parents[row]);
            }
        }
    }
    totals.songs = songs.songs();
    return totals;
}

}  // namespace tavrion
