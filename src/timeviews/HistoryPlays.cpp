#include "timeviews/HistoryPlays.h"

#include <algorithm>

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"

namespace tavrion {
namespace {

using PlayList = std::shared_ptr<const std::vector<RecordCounter>>;

/// Takes plays by rising date and equal ones by rising record, and lists them by falling date and
/// equal ones still by rising record.
class NewestFirst {
  public:
    explicit NewestFirst(std::size_t count) : plays_(count), free_(count) {}

    void add(PlayDate date, RecordCounter record) {
        if (date != date_) {
            closeEqual();
            date_ = date;
        }
        plays_[--free_] = record;
    }
    /// How many of the places at the front are still free.
    std::size_t free() const { return free_; }
    /// The date that came last.
    PlayDate newest() const { return date_; }
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
    /// None at first, since no date is this one.
    PlayDate date_;
    /// Behind the plays of date_.
    std::size_t equalUpTo_ = 0;
};

/// Plays of one day that follow one another in the list.
struct DayRun {
    CivilDay day;
    /// Behind the oldest one.
    std::size_t end = 0;
    PlayDate newest;
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

NSDiffableDataSourceSnapshot HistoryPlays::withStatSection() const {
    NSDiffableDataSourceSnapshot snapshot;
    if (count() > 0) {
        snapshot.appendSection(historyStatSection, SnapshotItems(std::vector<Value>{Value()}));
    }
    return snapshot;
}

NSDiffableDataSourceSnapshot HistoryPlays::byDay(const Progress& progress) const {
    NewestFirst list(count());
    std::vector<DayRun> runs;
    const auto endRun = [&] {
        if (!runs.empty()) {
            runs.back().newest = list.newest();
        }
    };
    plays_.forEachByDay(
        NSCalendar::currentCalendar().timeZone(),
        [&](CivilDay day) {
            endRun();
            if (runs.empty() || runs.back().day != day) {
                runs.push_back({day, list.free(), {}});
            }
        },
        [&](PlayDate date, RecordCounter play) { list.add(date, play); });
    endRun();
    const PlayList listed = list.finish();
    std::vector<DaySection> sections;
    sections.reserve(runs.size());
    std::size_t first = 0;
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
        if (DaySection* section = sectionOf(run->day, sections)) {
            join(*section, *listed, first, run->end);
        } else {
            sections.push_back({run->day, run->newest.date(), first, run->end - first, {}});
            progress(static_cast<float>(first) / static_cast<float>(count()));
        }
        first = run->end;
    }
    NSDiffableDataSourceSnapshot snapshot = withStatSection();
    snapshot.reserveSections(sections.size() + 1);
    for (DaySection& section : sections) {
        snapshot.appendSection(Extended::endOfDay(section.newest), itemsOf(section, listed));
    }
    return snapshot;
}

NSDiffableDataSourceSnapshot HistoryPlays::inOneSection(NSDate identifier) const {
    NSDiffableDataSourceSnapshot snapshot = withStatSection();
    if (count() > 0) {
        NewestFirst list(count());
        plays_.forEachByDate([&](PlayDate date, RecordCounter play) { list.add(date, play); });
        snapshot.appendSection(identifier, {NerindaEntity::PlayEvent, list.finish(), 0, count()});
    }
    return snapshot;
}

}  // namespace tavrion
