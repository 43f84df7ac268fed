// The plays of a span of time, by their dates and with the durations of their songs: what every
// page, total, list and export of plays stands on.
//
// Queue: any; walks the columns of an immutable version and lives no longer than it. A play within
// a span is strictly between its ends. Units: seconds since 2001-01-01 UTC, and seconds. Absent:
// a play without a date is in no span; a play without a song counts and lasts no time, and song 0
// is none.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/coredata/IndexKeys.h"
#include "platform/coredata/StoreVersion.h"
#include "platform/foundation/CalendarDays.h"
#include "recording/NerindaModel.h"

namespace tavrion {

/// When something was played, as the index keeps it: dates are compared by it without being worked
/// out.
struct PlayDate {
    std::uint64_t key = 0;

    static PlayDate of(double seconds) { return {IndexKeys::ofNumber(seconds)}; }
    double seconds() const { return IndexKeys::numberOfKey(key); }
    NSDate date() const { return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds()); }
    auto operator<=>(const PlayDate&) const = default;
};

class Plays {
  public:
    /// All plays that have a date.
    explicit Plays(const StoreVersion& records);
    /// Those of a span.
    Plays(const StoreVersion& records, NSDate start, NSDate end);

    /// Costs no walk over them.
    std::size_t count() const { return count_; }

    /// Calls `visit(date, play)` for each play, the oldest first, equal dates by their records.
    template <class Visit>
    void forEachByDate(Visit visit) const {
        if (count_ > 0) {
            byDate_.forEachBetween(low_, high_, [&](std::uint64_t key, RecordCounter play) {
                visit(PlayDate{key}, play);
            });
        }
    }
    /// The same, with `beginsDay(day)` before the first play of a day. A day may begin again, also
    /// after the one that follows it, where the clock was set back.
    template <class BeginsDay, class Visit>
    void forEachByDay(const NSTimeZone& zone, BeginsDay beginsDay, Visit visit) const {
        CalendarDays days(zone);
        PlayDate endOfStretch;
        forEachByDate([&](PlayDate date, RecordCounter play) {
            if (date >= endOfStretch) [[unlikely]] {
                beginsDay(days.dayOf(date.seconds()));
                endOfStretch = PlayDate::of(days.endOfStretch());
            }
            visit(date, play);
        });
    }
    /// Calls `visit(song)` for each play, in no set order; the quickest way to all of their songs.
    template <class Visit>
    void forEachSong(Visit visit) const {
        // Under this part of all plays the way through the index is shorter than the walk over all.
        constexpr std::size_t rangeWorthAnIndex = 16;
        if (count_ < plays_.size() / rangeWorthAnIndex) {
            forEachByDate([&](PlayDate, RecordCounter play) { visit(songOf(play)); });
            return;
        }
        for (const auto& leaf : plays_.leaves()) {
            const auto dates = leaf->columns[PlayEventKey::eventDate]->reals();
            const auto songs = leaf->columns[PlayEventKey::parentHistory]->references();
            for (std::size_t row = 0; row < dates.size(); ++row) {
                // An absent date is not a number and is in no span.
                if (dates[row] > start_ && dates[row] < end_) {
                    visit(songs[row]);
                }
            }
        }
    }
    /// Calls `visit(date)` for each play of the song, by their records.
    template <class Visit>
    void forEachOfSong(RecordCounter song, Visit visit) const {
        bySong_.forEachEqual(song, [&](RecordCounter play) {
            const RowPosition position = *plays_.find(play);
            const double date =
                position.leaf->columns[PlayEventKey::eventDate]->reals()[position.row];
            if (date > start_ && date < end_) {
                visit(date);
            }
        });
    }
    RecordCounter songOf(RecordCounter play) const {
        const RowPosition position = *plays_.find(play);
        return position.leaf->columns[PlayEventKey::parentHistory]->references()[position.row];
    }

    /// How many plays a song has, those without a date too.
    static std::size_t countOfSong(const StoreVersion& records, RecordCounter song);
    /// The plays that have no date, in identifier order.
    static std::vector<RecordCounter> withoutDate(const StoreVersion& records);

  private:
    const TableVersion& plays_;
    const SortedIndex& byDate_;
    const SortedIndex& bySong_;
    double start_;
    double end_;
    /// The keys between the ends, both included.
    std::uint64_t low_;
    std::uint64_t high_;
    std::size_t count_;
};

/// How long each song lasts, and whether there is such a song, by its counter.
class SongDurations {
  public:
    explicit SongDurations(const StoreVersion& records);

    bool has(RecordCounter song) const { return song < isSong_.size() && isSong_[song] != 0; }
    /// 0 where there is no such song.
    double of(RecordCounter song) const { return song < durations_.size() ? durations_[song] : 0; }
    /// All counters of songs are less.
    std::size_t end() const { return durations_.size(); }

  private:
    std::vector<double> durations_;
    std::vector<std::uint8_t> isSong_;
};

/// How long the songs of plays last.
class PlayDurations {
  public:
    /// For looking up all plays of the span.
    PlayDurations(const StoreVersion& records, const Plays& plays);

    /// 0 without a song.
    double of(RecordCounter play) const {
        return durations_.of(songs_.empty() ? plays_.songOf(play) : songs_[play]);
    }

  private:
    const Plays& plays_;
    /// By the play's counter; empty when few plays are looked up.
    std::vector<RecordCounter> songs_;
    SongDurations durations_;
};

}  // namespace tavrion
