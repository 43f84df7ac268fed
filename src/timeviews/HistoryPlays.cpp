#include "timeviews/HistoryPlays.h"

#include <algorithm>
#include <cmath>

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "recording/NerindaModel.h"
#include "timeviews/CalendarDays.h"

namespace tavrion {
namespace {

/// Under this part of all plays they are found one by one quicker than all side by side.
constexpr std::size_t lookUpsWorthATable = 16;

const SortedIndex& dateIndexOf(const TableVersion& plays) {
    return *plays.indexes()[*nerindaModel()
                                 ->entity(NerindaEntity::PlayEvent)
                                 .indexOver({PlayEventKey::eventDate})];
}

/// Takes plays by rising date and equal ones by rising record, and gives them by falling date and
/// equal ones still by rising record.
class NewestFirst {
  public:
    explicit NewestFirst(std::size_t count) { rising_.reserve(count); }

    void add(double date, RecordCounter record) {
        if (date != date_) {
            closeEqual();
            date_ = date;
        }
        rising_.push_back(record);
    }
    void closeEqual() {
        if (rising_.size() - equalFrom_ > 1) {
            std::reverse(rising_.begin() + static_cast<std::ptrdiff_t>(equalFrom_), rising_.end());
        }
        equalFrom_ = rising_.size();
    }
    std::size_t size() const { return rising_.size(); }
    /// Appends the plays that came as number `first` to before `last`, after closeEqual().
    void appendTo(std::vector<RecordCounter>& newestFirst, std::size_t first,
                  std::size_t last) const {
        const auto from = rising_.rend() - static_cast<std::ptrdiff_t>(last);
        const auto to = rising_.rend() - static_cast<std::ptrdiff_t>(first);
        newestFirst.insert(newestFirst.end(), from, to);
    }

  private:
    std::vector<RecordCounter> rising_;
    double date_ = std::nan("");
    /// Where the plays of date_ begin.
    std::size_t equalFrom_ = 0;
};

/// Plays of one day that follow one another.
struct DayRun {
    CivilDay day;
    std::size_t first = 0;
    double newest = 0;
};

struct DaySection {
    CivilDay day;
    NSDate newest;
    std::vector<RecordCounter> plays;
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
    CalendarDays days(NSCalendar::currentCalendar().timeZone());
    NewestFirst plays(count_);
    std::vector<DayRun> runs;
    forEach([&](double date, RecordCounter record) {
        const CivilDay day = days.dayOf(date);
        if (runs.empty() || runs.back().day != day) {
            runs.push_back({day, plays.size(), date});
        }
        runs.back().newest = date;
        plays.add(date, record);
    });
    plays.closeEqual();
    std::vector<DaySection> sections;
    sections.reserve(runs.size());
    std::size_t last = plays.size();
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
        DaySection* section = sectionOf(run->day, sections);
        if (section == nullptr) {
            section = &sections.emplace_back(DaySection{
                run->day, NSDate::dateWithTimeIntervalSinceReferenceDate(run->newest), {}});
            progress(static_cast<float>(count_ - last) / static_cast<float>(count_));
        }
        plays.appendTo(section->plays, run->first, last);
        last = run->first;
    }
    NSDiffableDataSourceSnapshot snapshot = withStatSection();
    snapshot.reserveSections(sections.size() + 1);
    for (DaySection& section : sections) {
        snapshot.appendSection(Extended::endOfDay(section.newest),
                               {NerindaEntity::PlayEvent, std::move(section.plays)});
    }
    return snapshot;
}

NSDiffableDataSourceSnapshot HistoryPlays::inOneSection(NSDate identifier) const {
    NSDiffableDataSourceSnapshot snapshot = withStatSection();
    if (count_ > 0) {
        NewestFirst plays(count_);
        forEach([&](double date, RecordCounter record) { plays.add(date, record); });
        plays.closeEqual();
        std::vector<RecordCounter> newestFirst;
        newestFirst.reserve(count_);
        plays.appendTo(newestFirst, 0, plays.size());
        snapshot.appendSection(identifier, {NerindaEntity::PlayEvent, std::move(newestFirst)});
    }
    return snapshot;
}

PlayDurations::PlayDurations(const StoreVersion& records, std::size_t lookUps)
    : plays_(records.table(NerindaEntity::PlayEvent)) {
    if (!plays_.leaves().empty() && lookUps >= plays_.size() / lookUpsWorthATable) {
        songs_.resize(std::size_t{plays_.leaves().back()->records->back()} + 1, 0);
        for (const auto& leaf : plays_.leaves()) {
            const auto songs = leaf->columns[PlayEventKey::parentHistory]->references();
            for (std::size_t row = 0; row < leaf->size(); ++row) {
                songs_[(*leaf->records)[row]] = songs[row];
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
