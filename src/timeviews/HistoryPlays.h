// The plays of a span of time: how many they are, what they come to, and the list that they make.
//
// Queue: any; walks the columns of an immutable version, which it keeps. A play within a span lies
// strictly between its ends. Units: seconds. A play without a song counts and adds no time; a play
// without a date lies in no span.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "kit/NSDiffableDataSourceSnapshot.h"
#include "platform/coredata/IndexKeys.h"
#include "platform/coredata/StoreVersion.h"
#include "recording/PlayTotals.h"
#include "timeviews/CalendarDays.h"

namespace tavrion {

/// The first section of the list: the totals and the chart.
inline const char* const historyStatSection = "StatSection";

class HistoryPlays {
  public:
    HistoryPlays(std::shared_ptr<const StoreVersion> records, NSDate start, NSDate end);

    /// Costs no walk over them.
    std::size_t count() const { return count_; }
    PlayTotals totals() const { return playTotalsBetween(*records_, start_, end_); }

    /// Called for each new section: how far the walk is, from 0 to 1.
    using Progress = std::function<void(float)>;
    /// The stat section, and one for each day with plays, the newest first, under the end of the
    /// day; nothing without plays.
    NSDiffableDataSourceSnapshot byDay(const Progress& progress) const;
    /// The stat section and one with all plays, the newest first; nothing without plays.
    NSDiffableDataSourceSnapshot inOneSection(NSDate identifier) const;

    /// Calls `visit(key, record)` for each play, the oldest first, with the key of its date; equal
    /// dates by their records.
    template <class Visit>
    void forEach(Visit visit) const {
        if (count_ > 0) {
            byDate().forEachBetween(lowKey_, highKey_, visit);
        }
    }
    /// The same, with `beginsDay(day)` before the first play of a day. A day may begin again, also
    /// after the one that follows it, where the clock was set back.
    template <class BeginsDay, class Visit>
    void forEachByDay(const NSTimeZone& zone, BeginsDay beginsDay, Visit visit) const {
        CalendarDays days(zone);
        std::uint64_t endOfStretch = 0;
        forEach([&](std::uint64_t key, RecordCounter record) {
            if (key >= endOfStretch) [[unlikely]] {
                beginsDay(days.dayOf(IndexKeys::numberOfKey(key)));
                endOfStretch = IndexKeys::ofNumber(days.endOfStretch());
            }
            visit(key, record);
        });
    }

  private:
    const SortedIndex& byDate() const;
    NSDiffableDataSourceSnapshot withStatSection() const;

    const std::shared_ptr<const StoreVersion> records_;
    const NSDate start_;
    const NSDate end_;
    /// The keys between the ends, both included.
    std::uint64_t lowKey_;
    std::uint64_t highKey_;
    std::size_t count_ = 0;
};

/// How long the songs of plays last.
///
/// Lives no longer than the version.
class PlayDurations {
  public:
    /// For looking up so many plays of the version.
    PlayDurations(const StoreVersion& records, std::size_t lookUps);

    /// 0 without a song.
    double of(RecordCounter play) const {
        const RecordCounter song = songs_.empty() ? songOf(play) : songs_[play];
        return song < durations_.size() ? durations_[song] : 0;
    }

  private:
    RecordCounter songOf(RecordCounter play) const;

    const TableVersion& plays_;
    /// By the play's counter; empty when few plays are looked up.
    std::vector<RecordCounter> songs_;
    /// By the song's counter; 0 is no song.
    std::vector<double> durations_;
};

/// The plays that have no date, in identifier order.
std::vector<RecordCounter> playsWithoutDate(const StoreVersion& records);

}  // namespace tavrion
