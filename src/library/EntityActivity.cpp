#include "library/EntityActivity.h"

#include <algorithm>

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "recording/MPMediaItem+Nerinda.h"
#include "recording/Plays.h"

namespace tavrion {

namespace {

/// A song's record, and how long the song is known to last.
struct PlayedSong {
    RecordCounter history = 0;
    double duration = 0;
};

/// The songs of the entity that were ever seen playing.
std::vector<PlayedSong> playedSongs(const MPMediaEntity& entity, NSManagedObjectContext& context) {
    std::vector<PlayedSong> songs;
    const auto add = [&](const MPMediaItem& song) {
        if (const auto history = Nerinda::playbackHistoryInContext(song, context)) {
            songs.push_back({history->objectID().counter, song.playbackDuration()});
        }
    };
    if (const MPMediaItem* song = entity.item()) {
        add(*song);
    } else if (const MPMediaItemCollection* collection = entity.collection()) {
        for (const MPMediaItem& each : collection->items()) {
            add(each);
        }
    }
    return songs;
}

}  // namespace

EntityActivity recentActivity(const MPMediaEntity& entity, NSManagedObjectContext& context) {
    const NSDate now = NSDate::date();
    const NSTimeZone zone = NSCalendar::currentCalendar().timeZone();
    constexpr auto daysBack = static_cast<std::int64_t>(EntityActivity::dayCount) - 1;
    const CivilDay firstDay{zone.civilDay(now).number - daysBack};
    EntityActivity activity{zone.startOfDay(firstDay), std::nullopt};
    // Looking a song up can bring records together, so that all are looked up before any is read.
    const std::vector<PlayedSong> songs = playedSongs(entity, context);
    const auto records = context.snapshot();
    const Plays plays(*records, activity.firstDay, Extended::endOfDay(now));
    CalendarDays days(zone);
    std::array<double, EntityActivity::dayCount> seconds{};
    bool isPlayed = false;
    for (const PlayedSong& song : songs) {
        plays.forEachOfSong(song.history, [&](double date) {
            // Where the clock was set back over midnight, the day before goes on behind it.
            const auto day = static_cast<std::size_t>(days.dayOf(date).number - firstDay.number);
            if (day < seconds.size()) {
                seconds[day] += song.duration;
                isPlayed = true;
            }
        });
    }
    if (isPlayed) {
        activity.days.emplace();
        std::transform(seconds.begin(), seconds.end(), activity.days->begin(),
                       [](double sum) { return static_cast<std::int64_t>(sum); });
    }
    return activity;
}

}  // namespace tavrion
