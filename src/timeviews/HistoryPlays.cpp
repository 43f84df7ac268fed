#include "timeviews/HistoryPlays.h"

#include <algorithm>
#include <cmath>

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "recording/NerindaModel.h"

namespace tavrion {
namespace {

/// Under this part of all plays they are found one by one quicker than all side by side.
constexpr std::size_t lookUpsWorthATable = 16;

const SortedIndex& dateIndexOf(const TableVersion& plays) {
    return *plays.indexes()[*nerindaModel()
                                 ->entity(NerindaEntity::PlayEvent)
                                 .indexOver({PlayEventKey::eventDate})];
}

NSDate dateOfKey(std::uint64_t key) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(IndexKeys::numberOfKey(key));
}

using PlayList = std::shared_ptr<const std::vector<RecordCounter>>;

/// Takes plays by rising date and equal ones by rising record, and lists them by falling date and
/// equal ones still by rising record.
class NewestFirst {
  public:
    explicit NewestFirst(std::size_t count) : plays_(count), free_(count) {}

    void add(std::uint64_t key, RecordCounter record) {
        if (key != key_) {
            closeEqual();
            key_ = key;
        }
        plays_[--free_] = record;
    }
    /// How many of the places at the front are still free.
    std::size_t free() const { return free_; }
    /// The key that came last.
    std::uint64_t newest() const { return key_; }
    PlayList finish() {
        closeEqual();
        return std::make_shared<const std::vector<RecordCounter>>(std::move(plays_));
    }

  private:
    void closeEqual() {
        if (equalUpTo_ > free_ + 1) [[unlikely]] {
            std::reverse(plays_.begin() + static_cast<std::ptrdiff_t>(free_),
                         plays_.begin() + static_cast<std::ptrdiff_t>(equalUpTo_));
        }
        equalUpTo_ = free_;
    }

    std::vector<RecordCounter> plays_;
    std::size_t free_;
    /// No date has this key.
    std::uint64_t key_ = 0;
    /// Behind the plays of key_.
    std::size_t equalUpTo_ = 0;
};

/// Plays of one day that follow one another in the list.
struct DayRun {
    CivilDay day;
    /// Behind the oldest one.
    std::size_t end = 0;
    std::uint64_t newest = 0;
};

struct DaySection {
    CivilDay day;
    NSDate newest;
    /// Where its plays are in the list.
    std::size_t first = 0;
    std::size_t count = 0;
    /// All of them, when they do not follow one another there; empty otherwise.
    std::vector<RecordCounter> joined;
};

/// The section of the day among those that were met so far; null when it is a new one.
DaySection* sectionOf(CivilDay day, std::vector<DaySection>& sections) {
    // Days come newest first, but for a day that goes on after the clock was set back over
    // midnight.
    if (sections.empty() || day < sections.back().day) {
        return nullptr;
    }
    const auto found = std::find_if(sections.rbegin(), sections.rend(),
                                    [&](const DaySection& section) { return section.day == day; });
    return found == sections.rend() ? nullptr : &*found;
}

void join(DaySection& section, const std::vector<RecordCounter>& plays, std::size_t first,
          std::size_t end) {
    const auto at = [&](std::size_t place) {
        return plays.begin() + static_cast<std::ptrdiff_t>(place);
    };
    if (section.joined.empty()) {
        section.joined.assign(at(section.first), at(section.first + section.count));
    }
    section.joined.insert(section.joined.end(), at(first), at(end));
}

SnapshotItems itemsOf(DaySection& section, const PlayList& plays) {
    return section.joined.empty()
               ? SnapshotItems(NerindaEntity::PlayEvent, plays, section.first, section.count)
               : SnapshotItems(NerindaEntity::PlayEvent, std::move(section.joined));
}

}  // namespace

HistoryPlays::HistoryPlays(std::shared_ptr<const StoreVersion> records, NSDate start, NSDate end)
    : records_(std::move(records)),
      start_(start),
      end_(end),
      lowKey_(IndexKeys::ofDate(start) + 1),
      highKey_(IndexKeys::ofDate(end) - 1),
      count_(byDate().countBetween(lowKey_, highKey_)) {}

const SortedIndex& HistoryPlays::byDate() const {
    return dateIndexOf(records_->table(NerindaEntity::PlayEvent));
}

NSDiffableDataSourceSnapshot HistoryPlays::withStatSection() const {
    NSDiffableDataSourceSnapshot snapshot;
    if (count_ > 0) {
        snapshot.appendSection(historyStatSection, SnapshotItems(std::vector<Value>{Value()}));
    }
    return snapshot;
}

NSDiffableDataSourceSnapshot HistoryPlays::byDay(const Progress& progress) const {
    NewestFirst list(count_);
    std::vector<DayRun> runs;
    const auto endRun = [&] {
        if (!runs.empty()) {
            runs.back().newest = list.newest();
        }
    };
    forEachByDay(
        NSCalendar::currentCalendar().timeZone(),
        [&](CivilDay day) {
            endRun();
            if (runs.empty() || runs.back().day != day) {
                runs.push_back({day, list.free(), 0});
            }
        },
        [&](std::uint64_t key, RecordCounter record) { list.add(key, record); });
    endRun();
    const PlayList plays = list.finish();
    std::vector<DaySection> sections;
    sections.reserve(runs.size());
    std::size_t first = 0;
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
        if (DaySection* section = sectionOf(run->day, sections)) {
            join(*section, *plays, first, run->end);
        } else {
            sections.push_back({run->day, dateOfKey(run->newest), first, run->end - first, {}});
            progress(static_cast<float>(first) / static_cast<float>(count_));
        }
        first = run->end;
    }
    NSDiffableDataSourceSnapshot snapshot = withStatSection();
    snapshot.reserveSections(sections.size() + 1);
    for (DaySection& section : sections) {
        snapshot.appendSection(Extended::endOfDay(section.newest), itemsOf(section, plays));
    }
    return snapshot;
}

NSDiffableDataSourceSnapshot HistoryPlays::inOneSection(NSDate identifier) const {
    NSDiffableDataSourceSnapshot snapshot = withStatSection();
    if (count_ > 0) {
        NewestFirst list(count_);
        forEach([&](std::uint64_t key, RecordCounter record) { list.add(key, record); });
        snapshot.appendSection(identifier, {NerindaEntity::PlayEvent, list.finish(), 0, count_});
    }
    return snapshot;
}

PlayDurations::PlayDurations(const StoreVersion& records, std::size_t lookUps)
    : plays_(records.table(NerindaEntity::PlayEvent)) {
    if (!plays_.leaves().empty() && lookUps >= plays_.size() / lookUpsWorthATable) {
        songs_.resize(std::size_t{plays_.leaves().back()->records->back()} + 1, 0);
        for (const auto& leaf : plays_.leaves()) {
            const auto songs = leaf->columns[PlayEventKey::parentHistory]->references();
            const std::vector<RecordCounter>& plays = *leaf->records;
            if (plays.back() - plays.front() + 1 == plays.size()) {
                std::copy(songs.begin(), songs.end(), songs_.begin() + plays.front());
                continue;
            }
            for (std::size_t row = 0; row < plays.size(); ++row) {
                songs_[plays[row]] = songs[row];
            }
        }
    }
    const TableVersion& songs = records.table(NerindaEntity::PlaybackHistory);
    if (!songs.leaves().empty()) {
        durations_.resize(std::size_t{songs.leaves().back()->records->back()} + 1, 0);
    }
    for (const auto& leaf : songs.leaves()) {
        const auto durations = leaf->columns[PlaybackHistoryKey::duration]->reals();
        for (std::size_t row = 0; row < leaf->size(); ++row) {
            durations_[(*leaf->records)[row]] = durations[row];
        }
    }
}

RecordCounter PlayDurations::songOf(RecordCounter play) const {
    const RowPosition position = *plays_.find(play);
    return position.leaf->columns[PlayEventKey::parentHistory]->references()[position.row];
}

std::vector<RecordCounter> playsWithoutDate(const StoreVersion& records) {
    const TableVersion& plays = records.table(NerindaEntity::PlayEvent);
    std::vector<RecordCounter> without;
    if (dateIndexOf(plays).size() == plays.size()) {
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

}  // namespace tavrion
