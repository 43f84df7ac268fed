// The History screen: what was played in the chosen range, as totals, a chart and a list.
//
// Queue: main, but for updateDataSource(), which may be called from any. Plays are read and deleted
// on one private context, so that list, chart and deletions never overlap; the notifications of an
// update are posted on its queue. Who owns: the screen, by shared pointer; work under way keeps
// nothing alive. Updates are not cancelled, and the one that is applied last wins. Absent: without
// a screen everything is kept as state, and the first row is on hand whenever it is in the list.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kit/NSAttributedString.h"
#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/dispatch/TimerService.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaEntity.h"
#include "recording/PlayEvent.h"
#include "timeviews/HistoryScreen.h"
#include "timeviews/RVHistoryTableViewDiffableDataSource.h"

namespace tavrion {

namespace HistoryDefaults {
inline const char* const onboardingDateRange = "OnboardingDateRange";
inline const char* const didShowPullToRefresh = "DidShowHistoryPullToRefresh";
}  // namespace HistoryDefaults

namespace HistoryNotification {
/// Only when there are more than a thousand plays.
inline const std::string didBegin = "RVHistoryUpdateDidBegin";
/// With the user info "progress", a float; once for each day.
inline const std::string didChange = "RVHistoryUpdateDidChange";
/// At the end of every update.
inline const std::string didEnd = "RVHistoryUpdateDidEnd";
/// Observed: the records or the range have changed; the library may be read from now on.
inline const std::string dateRangeDidChange = "HistoryDateRangeObjectDidChange";
inline const std::string libraryAuthorizationGranted = "LibraryAuthorizationGranted";
}  // namespace HistoryNotification

/// A play as a row shows it.
struct HistoryRow {
    NSAttributedString title;
    std::optional<std::string> subtitle;
    /// When it was played; absent for a song that left the library.
    std::optional<NSAttributedString> property;
    /// The song; absent likewise.
    std::optional<MPMediaItem> item;
};

/// The one-time hint about ranges.
struct HistoryHint {
    std::string title;
    std::string text;
};

class RVHistoryTableViewViewController
    : public std::enable_shared_from_this<RVHistoryTableViewViewController> {
  public:
    /// From so many plays on an update tells of its progress.
    static constexpr std::size_t playsWorthProgress = 1001;

    static std::shared_ptr<RVHistoryTableViewViewController> make(HistoryScreen* screen = nullptr);
    void screenDidGo() { screen_ = nullptr; }

    void viewDidLoad();
    /// Shows the hint about ranges to who has not seen it.
    void viewDidAppear() { showOnboardingTooltips(); }
    void showOnboardingTooltips();
    static HistoryHint dateRangeHint();

    void updateDataSource() { updateDataSource(nullptr, false); }
    /// The object is not looked at. With `preserveChart` the chart stays as it is.
    void updateDataSource(const void* object, bool preserveChart);
    /// Makes the chart anew.
    void layoutStatViews();
    /// The user pulled: a scan, and what it found.
    void refreshDataSource();
    void changeDateInterval();
    void createPlaylist();

    /// A bar was tapped. An empty one, or one that cannot be chosen, takes the choice back.
    void chartValueSelected(const HistoryBar& entry);
    void chartValueNothingSelected();

    const NSDiffableDataSourceSnapshot& snapshot() const { return dataSource_->snapshot(); }
    RVHistoryTableViewDiffableDataSource& dataSource() { return *dataSource_; }
    const RVHistoryStatCell& statCell() const { return statCell_; }
    bool isBackgroundViewHidden() const { return isBackgroundViewHidden_; }
    /// Above the list, for the rest of the run in which it was first shown.
    const std::optional<std::string>& prompt() const { return prompt_; }
    NSAttributedString dateRangeTitle() const;
    /// Any queue.
    bool shouldDisplayMonthTitles() const { return shouldDisplayMonthTitles_; }

    /// The list as it was before a bar was chosen, and the totals; absent while none is.
    const std::optional<NSDiffableDataSourceSnapshot>& deselectSnapshot() const {
        return deselectSnapshot_;
    }
    const std::optional<std::string>& deselectCount() const { return deselectCount_; }
    const std::optional<std::string>& deselectMinutes() const { return deselectMinutes_; }

    /// Absent for the section of the totals and for empty ones, which have no header.
    std::optional<std::string> titleForHeaderInSection(std::size_t section) const;
    /// "New Playlist" stands beside the first title alone.
    static bool hasActionButtonInSection(std::size_t section) { return section == 1; }
    /// Absent for the totals, and for a play that is no longer there.
    std::optional<HistoryRow> rowAtIndexPath(NSIndexPath indexPath,
                                             const std::optional<UIFont>& font) const;
    /// The row of a play whose song is that item of the library.
    static HistoryRow rowOfEvent(const PlayEvent& event, std::optional<MPMediaItem> item,
                                 const std::optional<UIFont>& font);
    /// Finds the picture on a queue of its own and hands it over on the main queue.
    void loadArtwork(const MPMediaItem& item, std::function<void(UIImage)> loaded);
    /// Opens the song's page.
    void didSelectRowAtIndexPath(NSIndexPath indexPath);
    /// The tab was tapped; always allowed.
    bool shouldSelectViewController(bool isSelectedTab, bool isOnTopOfItsStack);

  private:
    struct ListUpdate;
    struct BarSelection;

    explicit RVHistoryTableViewViewController(HistoryScreen* screen);
    void makeDataSource();
    void layoutNavigationItem();
    void registerObservers();
    void observeUpdates(const std::string& name);
    void presentDateRangeTooltip();
    bool isStatCellOnHand() const;
    void apply(ListUpdate update, bool preserveChart);
    void applySelection(BarSelection selection);
    void setTotals(std::string plays, std::string duration);
    void recolorChart(const HistoryBarColors& colors);
    void clearHighlight();

    /// Null once it has gone, or where there is none.
    HistoryScreen* screen_;
    const std::shared_ptr<NSManagedObjectContext> privateContext_;
    const std::shared_ptr<DispatchQueue> imageHandlingQueue_ =
        DispatchQueue::serial("imageHandlingQueue");
    std::shared_ptr<RVHistoryTableViewDiffableDataSource> dataSource_;
    RVHistoryStatCell statCell_;
    bool isBackgroundViewHidden_ = true;
    std::optional<std::string> prompt_;
    std::atomic<bool> shouldDisplayMonthTitles_{false};
    std::optional<NSDiffableDataSourceSnapshot> deselectSnapshot_;
    std::optional<std::string> deselectCount_;
    std::optional<std::string> deselectMinutes_;
    DispatchTimer tooltip_;
    std::vector<NSNotificationCenter::Observation> observations_;
    NSUserDefaults::Observation dateRange_;
};

}  // namespace tavrion
