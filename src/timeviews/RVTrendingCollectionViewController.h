// The screen of the ranking: what was played most in the chosen range.
//
// Queue: main, but for updateDataSource(), which may be called from any. The ranking is worked out
// on the queue of one private context, so that updates never overlap, and its notifications are
// posted there. Updates are not cancelled, and the one that is applied last wins. Who owns: see
// ScreenController. Absent: without a screen no button is ever on hand.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kit/ScreenController.h"
#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/dispatch/TimerService.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "timeviews/TrendingKeys.h"
#include "timeviews/TrendingPage.h"

namespace tavrion {

namespace TrendingDefaults {
/// See TrendingGrouping.
inline const char* const groupingType = "TrendingGroupingType";
/// 2 ranks by the time listened, anything else by the number of plays.
inline const char* const weightedRankFormat = "TrendingWeightedRankFormat";
inline constexpr std::int64_t byTime = 2;
inline const char* const didShowPullToRefresh = "DidShowTrendingPullToRefresh";
inline const char* const onboardingPlayBack = "OnboardingPlayBack";
inline const char* const onboardingAlbums = "OnboardingAlbums";
}  // namespace TrendingDefaults

namespace TrendingNotification {
inline const char* const didBegin = "RVTrendingUpdateDidBegin";
/// With the user info "progress", a float.
inline const char* const didChange = "RVTrendingUpdateDidChange";
inline const char* const didEnd = "RVTrendingUpdateDidEnd";
/// Observed: the range or the way of ranking is another one.
inline const char* const dateRangeDidChange = "TrendingDateRangeObjectDidChange";
}  // namespace TrendingNotification

class RVTrendingCollectionViewController final
    : public ScreenController<RVTrendingCollectionViewController, TrendingPage> {
  public:
    static constexpr double interSectionSpacing = 24;
    static constexpr double estimatedControlsHeight = 44;
    /// What the hints point at.
    static constexpr const char* playlistButton = "playlistButton";
    static constexpr const char* collectionButton = "collectionButton";

    static std::shared_ptr<RVTrendingCollectionViewController> make();

    void viewDidLoad();
    /// Wants to be asked about tabs.
    void viewDidAppear() { emit(ScreenSignal::becomeTabBarDelegate); }

    /// Ranks again by the user defaults, and shows the result later on the main queue.
    void updateDataSource();
    /// The user pulled: a scan, and the ranking of what it found.
    void refreshDataSource();
    void changeDateInterval();
    /// The songs as they are ranked, unshuffled.
    void playAll();
    void createPlaylist();
    /// At most one of the two, and only one whose button was shown.
    void showOnboardingTooltips();
    /// The tab was tapped; always allowed.
    bool shouldSelectViewController(bool isSelectedTab, bool isOnTopOfItsStack);

    /// What is ranked; empty before the first update.
    const TrendingSnapshot& snapshot() const { return state()->ranking; }
    /// Of a row of the ranking, in the metric that is chosen at this moment.
    static TrendingCell cellForRow(const RVTrendingEntity& row, std::size_t index,
                                   const std::optional<UIFont>& font);
    /// Finds the picture on a queue of its own and hands it over on the main queue.
    [[nodiscard]] ScreenRequest loadArtwork(const MPMediaEntity& entity,
                                            std::function<void(UIImage)> loaded);
    /// The buttons above a section. Absent for a section that has none.
    std::optional<TrendingControls> controlsForSection(int identifier);
    /// Reported by the screen: the buttons above that section are on hand from now on.
    void controlsDidAppear(int identifier);
    /// Three entries, none of them marked.
    UIMenu groupingMenuForButton();
    /// Opens the page of a row. The row of the date, which is none, opens nothing.
    void didSelectRow(const TrendingRow& row);
    /// What a long press on a row is about; absent where there is no menu.
    static std::optional<MPMediaEntity> entityForContextMenu(const TrendingRow& row);

  private:
    /// What an update needs, also one that somebody else starts.
    struct Updates;

    RVTrendingCollectionViewController();
    void apply(TrendingPage ranked);
    void layoutNavigationItem();
    void registerObservers();
    /// Any queue.
    std::function<void()> updater();
    static void update(const std::shared_ptr<Updates>& updates);
    static NSAttributedString dateRangeTitle();
    static NSAttributedString groupingTitle();
    void chooseGrouping(std::int64_t grouping);
    void presentTooltipSoon(Tooltip tooltip, const char* shownKey);
    TrendingControls collectionsControls();
    TrendingControls songsControls();

    /// Every list page has one; here nothing waits on it, since the context's queue ranks.
    const std::shared_ptr<DispatchQueue> dataSourceTaskQueue_ =
        DispatchQueue::serial("dataSourceTaskQueue");
    const std::shared_ptr<DispatchQueue> imageHandlingQueue_ =
        DispatchQueue::serial("imageHandlingQueue");
    const std::shared_ptr<Updates> updates_;
    bool hasPlaylistButton_ = false;
    bool hasCollectionButton_ = false;
    DispatchTimer tooltip_;
    std::vector<NSNotificationCenter::Observation> observations_;
    NSUserDefaults::Observation dateRange_;
};

}  // namespace tavrion
