#include "apps/tavrionctl/HistoryPage.h"

#include "library/RVMetadataManager.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSUserDefaults.h"
#include "recording/MPMediaItem+Nerinda.h"
#include "timeviews/HistoryPlays.h"

namespace tavrion::ctl {

HistoryPage HistoryPage::of(const DateRange& range, NSManagedObjectContext& context) {
    const auto records = context.snapshot();
    const NSDateInterval interval = range.interval();
    const HistoryPlays plays(records, interval.startDate(), interval.endDate());
    HistoryPage page{range,          interval,     plays.byDay([](float) {}),
                     plays.totals(), std::nullopt, false};
    if (plays.count() > 0) {
        page.chart = historyChart(*records, range, interval);
    }
    return page;
}

bool HistoryPage::choose(std::size_t bar, NSManagedObjectContext& context) {
    const HistoryBar& entry = chart->bars[bar];
    if (entry.y == 0 || !entry.data) {
        return false;
    }
    const NSDateInterval span = spanOfHistoryBar(*entry.data, range.isCurrentYear());
    const HistoryPlays plays(context.snapshot(), span.startDate(), span.endDate());
    list = plays.inOneSection(*entry.data);
    totals = plays.totals();
    showsMonthTitles = range.isCurrentYear();
    chart->colors = HistoryBarColors::whileChosen();
    chart->highlightedX = entry.x;
    return true;
}

std::string HistoryPage::songsText() const {
    return RVMetadataManager::formattedCount(totals.songs);
}

std::string HistoryPage::secondsText() const {
    return RVMetadataManager::formattedMinutesForDuration(totals.seconds);
}

std::string HistoryPage::caption() const {
    return NSUserDefaults::standardUserDefaults().boolForKey(RVMetadataManager::expandedTimeKey)
               ? NSLocalizedString("Time Listened")
               : NSLocalizedString("Minutes Listened");
}

std::string HistoryPage::titleOfSection(std::size_t section) const {
    const NSDate date = *list.sectionIdentifier(section).get<NSDate>();
    return showsMonthTitles ? RVMetadataManager::formattedMonth(date)
                            : RVMetadataManager::formattedDate(date, false);
}

HistoryRow HistoryRows::rowOf(NSManagedObjectID play, const std::optional<UIFont>& font) {
    const PlayEvent event(NSManagedObject(context_, play));
    std::optional<PlaybackHistory> song = event.parentHistory();
    if (!song) {
        return RVHistoryTableViewViewController::rowOfEvent(event, std::nullopt, font);
    }
    const auto [found, isNew] = items_.try_emplace(song->objectID().counter);
    if (isNew) {
        found->second = Nerinda::mediaItemForHistory(*song);
    }
    return RVHistoryTableViewViewController::rowOfEvent(event, found->second, font);
}

}  // namespace tavrion::ctl
