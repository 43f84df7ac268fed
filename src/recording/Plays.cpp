#include "recording/Plays.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tavrion {
namespace {

/// Under this part of all plays they are found one by one quicker than all side by side.
constexpr std::size_t lookUpsWorthATable = 16;

const TableVersion& playsOf(const StoreVersion& records) {
    return records.table(NerindaEntity::PlayEvent);
}

const SortedIndex& indexOver(const TableVersion& plays, PropertyIndex property) {
    return *plays
                .indexes()[*nerindaModel()->entity(NerindaEntity::PlayEvent).indexOver({property})];
}

}  // namespace

Plays::Plays(const StoreVersion& records)
    : plays_(playsOf(records)),
      byDate_(indexOver(plays_, PlayEventKey::eventDate)),
      bySong_(indexOver(plays_, PlayEventKey::parentHistory)),
      start_(-std::numeric_limits<double>::infinity()),
      end_(-start_),
      low_(0),
      high_(std::numeric_limits<std::uint64_t>::max()),
      count_(byDate_.size()) {}

Plays::Plays(const StoreVersion& records, NSDate start, NSDate end)
    : plays_(playsOf(records)),
      byDate_(indexOver(plays_, PlayEventKey::eventDate)),
      bySong_(indexOver(plays_, PlayEventKey::parentHistory)),
      start_(start.timeIntervalSinceReferenceDate()),
      end_(end.timeIntervalSinceReferenceDate()),
      low_(IndexKeys::ofDate(start) + 1),
      high_(IndexKeys::ofDate(end) - 1),
      count_(byDate_.countBetween(low_, high_)) {}

std::size_t Plays::countOfSong(const StoreVersion& records, RecordCounter song) {
    return indexOver(playsOf(records), PlayEventKey::parentHistory).countBetween(song, song);
}

std::vector<RecordCounter> Plays::withoutDate(const StoreVersion& records) {
    const TableVersion& plays = playsOf(records);
    std::vector<RecordCounter> without;
    if (indexOver(plays, PlayEventKey::eventDate).size() == plays.size()) {
        return without;
    }
    for (const auto& leaf : plays.leaves()) {
        const auto dates = leaf->columns[PlayEventKey::eventDate]->reals();
        for (std::size_t row = 0; row < dates.size(); ++row) {
            if (std::isnan(dates[row])) {
                without.push_back((*leaf->records)[row]);
            }
        }
    }
    return without;
}

SongDurations::SongDurations(const StoreVersion& records) {
    const TableVersion& songs = records.table(NerindaEntity::PlaybackHistory);
    if (songs.leaves().empty()) {
        return;
    }
    durations_.resize(std::size_t{songs.leaves().back()->records->back()} + 1, 0);
    isSong_.resize(durations_.size(), 0);
    for (const auto& leaf : songs.leaves()) {
        const auto durations = leaf->columns[PlaybackHistoryKey::duration]->reals();
        for (std::size_t row = 0; row < leaf->size(); ++row) {
            durations_[(*leaf->records)[row]] = durations[row];
            isSong_[(*leaf->records)[row]] = 1;
        }
    }
}

PlayDurations::PlayDurations(const StoreVersion& records, const Plays& plays)
    : plays_(plays), durations_(records) {
    const TableVersion& table = playsOf(records);
    if (table.leaves().empty() || plays.count() < table.size() / lookUpsWorthATable) {
        return;
    }
    songs_.resize(std::size_t{table.leaves().back()->records->back()} + 1, 0);
    for (const auto& leaf : table.leaves()) {
        const auto songs = leaf->columns[PlayEventKey::parentHistory]->references();
        const std::vector<RecordCounter>& counters = *leaf->records;
        if (counters.back() - counters.front() + 1 == counters.size()) {
            std::copy(songs.begin(), songs.end(), songs_.begin() + counters.front());
            continue;
        }
        for (std::size_t row = 0; row < counters.size(); ++row) {
            songs_[counters[row]] = songs[row];
        }
    }
}

}  // namespace tavrion
