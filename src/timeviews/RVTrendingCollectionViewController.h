// The screen of the ranking: what was played most in the chosen range.
//
// Queue: main, but for updateDataSource(), which may be called from any. The ranking is worked out
// on the queue of one private context, so that updates never overlap, and its notifications are
// posted there. Who owns: the screen, by shared pointer; updates under way keep no screen alive.
// Updates are not cancelled, and the one that is applied last wins. Absent: without a screen
// everything is kept as state, and no button is ever on hand.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/dispatch/TimerService.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "timeviews/TrendingKeys.h"
#include "timeviews/TrendingRanking.h"
#include "timeviews/TrendingScreen.h"

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

class RVTrendingCollectionViewController
    : public std::enable_shared_from_this<RVTrendingCollectionViewController> {
  public:
    static constexpr double interSectionSpacing = 24;
    static constexpr double estimatedControlsHeight = 44;

    static std::shared_ptr<RVTrendingCollectionViewController> make(
        TrendingScreen* screen = nullptr);
    void screenDidGo() { screen_ = nullptr; }

    void viewDidLoad();
    void viewDidAppear();

    /// Ranks anew by the user defaults, and shows the result later on the main queue.
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

    /// What is shown; empty before the first update.
    const TrendingSnapshot& snapshot() const { return snapshot_; }
    /// Whether the screen says that there is nothing.
    bool showsBackgroundView() const { return showsBackgroundView_; }
    /// Above the list, for the rest of the run in which it was first shown.
    const std::optional<std::string>& prompt() const { return prompt_; }
    NSAttributedString dateRangeTitle() const;

    /// By the place of a section among those that are there; absent for a place without one.
    std::optional<TrendingSectionLayout> layoutForSectionAtIndex(std::size_t index) const;
    /// Of a row of the ranking.
    static TrendingCell cellForRow(const RVTrendingEntity& row, std::size_t index,
                                   const std::optional<UIFont>& font);
    /// Finds the picture on a queue of its own and hands it over on the main queue.
    void loadArtwork(const MPMediaEntity& entity, std::function<void(UIImage)> loaded);
    /// The buttons above a section, which are on hand from now on. Absent for a section that has
    /// none.
    std::optional<TrendingControls> controlsForSection(int identifier);
    NSAttributedString groupingTitle() const;
    /// Three entries, none of them marked.
    UIMenu groupingMenuForButton();
    /// Opens the page of a row. The row of the date, which is none, opens nothing.
    void didSelectRow(const TrendingRow& row);
    /// What a long press on a row is about; absent where there is no menu.
    static std::optional<MPMediaEntity> entityForContextMenu(const TrendingRow& row);

  private:
    explicit RVTrendingCollectionViewController(TrendingScreen* screen);
    void apply(TrendingSnapshot snapshot);
    void layoutNavigationItem();
    void registerObservers();
    void chooseGrouping(std::int64_t grouping);
    void presentTooltipSoon(const TrendingHint& hint, const char* shownKey);
    std::vector<MPMediaEntity> songs() const;
    TrendingControls collectionsControls();
    TrendingControls songsControls();

    /// Null once it has gone, or where there is none.
    TrendingScreen* screen_;
    const std::shared_ptr<NSManagedObjectContext> privateContext_;
    /// Every list page has one; here nothing waits on it, since the context's queue ranks.
    const std::shared_ptr<DispatchQueue> dataSourceTaskQueue_ =
        DispatchQueue::serial("dataSourceTaskQueue");
    const std::shared_ptr<DispatchQueue> imageHandlingQueue_ =
        DispatchQueue::serial("imageHandlingQueue");
    /// On the context's queue alone.
    const std::shared_ptr<TrendingKeys> keys_ = std::make_shared<TrendingKeys>();
    TrendingSnapshot snapshot_;
    bool showsBackgroundView_ = false;
    std::optional<std::string> prompt_;
    bool hasPlaylistButton_ = false;
    bool hasCollectionButton_ = false;
    DispatchTimer tooltip_;
    std::vector<NSNotificationCenter::Observation> observations_;
    NSUserDefaults::Observation dateRange_;
};

}  // namespace tavrion
