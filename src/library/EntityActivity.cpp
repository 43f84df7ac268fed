#include "library/EntityActivity.h"

#include <map>

#include "platform/foundation/Clock.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "recording/MPMediaItem+Nerinda.h"
#include "recording/PlayEvent.h"

namespace tavrion {

namespace {

/// Seconds listened by the start of the day.
using SecondsOfDays = std::map<NSTimeInterval, double>;

class ActivityCount {
  public:
    ActivityCount(NSDate start, NSDate end) : start_(start), end_(end) {}

    void add(const MPMediaItem& song, NSManagedObjectContext& context) {
        const auto history = Nerinda::playbackHistoryInContext(song, context);
        if (!history) {
            return;
        }
        for (const PlayEvent& play : history->plays()) {
            const std::optional<NSDate> date = play.eventDate();
            if (date && *date > start_ && *date < end_) {
                seconds_[Extended::startOfDay(*date).timeIntervalSinceReferenceDate()] +=
                    song.playbackDuration();
            }
        }
    }
    const SecondsOfDays& seconds() const { return seconds_; }

  private:
    NSDate start_;
    NSDate end_;
    SecondsOfDays seconds_;
};

EntityActivity::Days barsOf(const SecondsOfDays& seconds, NSDate firstDay) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    EntityActivity::Days days{};
    for (std::size_t i = 0; i < days.size(); ++i) {
        const NSDate day = calendar.dateByAddingComponents({.day = static_cast<int>(i)}, firstDay);
        const auto found = seconds.find(day.timeIntervalSinceReferenceDate());
        days[i] = found == seconds.end() ? 0 : static_cast<std::int64_t>(found->second);
    }
    return days;
}

}  // namespace

EntityActivity recentActivity(const MPMediaEntity& entity, NSManagedObjectContext& context) {
    const NSDate now = NSDate::date();
    const NSDate firstDay =
        Extended::startOfDay(NSCalendar::currentCalendar().dateByAddingComponents(
            {.day = 1 - static_cast<int>(EntityActivity::dayCount)}, now));
    ActivityCount count(firstDay, Extended::endOfDay(now));
    if (const MPMediaItem* song = entity.item()) {
        count.add(*song, context);
    } else if (const MPMediaItemCollection* collection = entity.collection()) {
        for (const MPMediaItem& each : collection->items()) {
            count.add(each, context);
        }
    }
    if (count.seconds().empty()) {
        return {firstDay, std::nullopt};
    }
    return {firstDay, barsOf(count.seconds(), firstDay)};
}

}  // namespace tavrion
