// The History screen: what was played in the chosen range, as totals, a chart and a list.
//
// Queue: main, but for updateDataSource(), which may be called from any. Plays are read and deleted
// on one private context, so that list, chart and deletions never overlap; the notifications of an
// update are posted on its queue. Updates are not cancelled, and the one that is applied last wins.
// Who owns: see ScreenController. Absent: without a screen the first row is on hand whenever it is
// in the list.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kit/ScreenController.h"
#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/dispatch/TimerService.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaEntity.h"
#include "timeviews/HistoryPage.h"
#include "timeviews/HistoryRows.h"
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

class RVHistoryTableViewViewController final
    : public ScreenController<RVHistoryTableViewViewController, HistoryPage> {
  public:
    /// From so many plays on an update reports its progress.
    static constexpr std::size_t playsWorthProgress = 1001;
    /// What the hint about ranges points at.
    static constexpr const char* dateRangeButton = "dateRangeButton";

    static std::shared_ptr<RVHistoryTableViewViewController> make();

    void viewDidLoad();
    /// Wants to be asked about tabs, and shows the hint about ranges to who has not seen it.
    void viewDidAppear();
    void showOnboardingTooltips();
    static Tooltip dateRangeTooltip();

    void updateDataSource() { updateDataSource(nullptr, false); }
    /// The object is not looked at. With `preserveChart` the chart stays as it is.
    void updateDataSource(const void* object, bool preserveChart);
    /// Makes the chart again.
    void layoutStatViews();
    /// The user pulled: a scan, and what it found.
    void refreshDataSource();
    void changeDateInterval();
    void createPlaylist();

    /// Reported by the screen. A row that comes into view gets what it missed of the last update;
    /// one that is not on view gets nothing.
    void statCellDidAppear();
    void statCellDidDisappear() { isStatCellInView_ = false; }
    /// A bar was tapped. An empty one, or one that cannot be chosen, takes the choice back.
    void chartValueSelected(const HistoryBar& entry);
    void chartValueNothingSelected();

    const NSDiffableDataSourceSnapshot& snapshot() const { return *state()->list; }
    RVHistoryTableViewDiffableDataSource& dataSource() { return *dataSource_; }
    /// "New Playlist" stands beside the first title alone.
    static bool hasActionButtonInSection(std::size_t section) { return section == 1; }

    /// Absent for the totals, and for a play that is no longer there.
    std::optional<HistoryRow> rowAtIndexPath(NSIndexPath indexPath,
                                             const std::optional<UIFont>& font);
    /// The same, found on a queue of its own. Nothing is answered where there is no row.
    [[nodiscard]] ScreenRequest loadRow(NSIndexPath indexPath, const std::optional<UIFont>& font,
                                        std::function<void(HistoryRow)> loaded);
    /// The picture, found likewise on another queue.
    [[nodiscard]] ScreenRequest loadArtwork(const MPMediaItem& item,
                                            std::function<void(UIImage)> loaded);
    /// Opens the song's page.
    void didSelectRowAtIndexPath(NSIndexPath indexPath);
    /// What a long press on a row is about; absent where there is no menu.
    std::optional<MPMediaItem> itemForContextMenu(NSIndexPath indexPath);
    /// The tab was tapped; always allowed.
    bool shouldSelectViewController(bool isSelectedTab, bool isOnTopOfItsStack);

  private:
    /// What an update needs, also one that somebody else starts.
    struct Updates;

    RVHistoryTableViewViewController();
    void makeDataSource();
    void layoutNavigationItem();
    void registerObservers();
    void observeUpdates(const std::string& name);
    /// Any queue.
    std::function<void()> updater();
    static void update(const std::shared_ptr<Updates>& updates, bool preserveChart);
    NSAttributedString dateRangeTitle() const;
    bool isStatCellOnHand() const;
    void apply(HistoryList update, bool preserveChart);
    void applySelection(HistorySelection selection);
    /// Fills the first row when it is on hand.
    void showTotals();
    void apply(HistoryChart chart);

    const std::shared_ptr<NSManagedObjectContext> privateContext_;
    const std::shared_ptr<DispatchQueue> rowHandlingQueue_ =
        DispatchQueue::serial("rowHandlingQueue");
    const std::shared_ptr<DispatchQueue> imageHandlingQueue_ =
        DispatchQueue::serial("imageHandlingQueue");
    const std::shared_ptr<HistoryRows> rows_ = std::make_shared<HistoryRows>();
    std::shared_ptr<Updates> updates_;
    std::shared_ptr<RVHistoryTableViewDiffableDataSource> dataSource_;
    bool isStatCellInView_ = false;
    /// Totals of the last update that the first row does not show yet.
    struct Missed {
        PlayTotals totals;
        bool preserveChart = false;
    };
    std::optional<Missed> missed_;
    DispatchTimer tooltip_;
    std::vector<NSNotificationCenter::Observation> observations_;
    NSUserDefaults::Observation dateRange_;
};

}  // namespace tavrion
