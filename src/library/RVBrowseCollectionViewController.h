// The library tab: eight statistics of the whole library over one long list, grouped and sorted as
// the user last chose; the same page shows the hits while the search bar is in use.
//
// Queue: the main queue for everything that is not static; statForIndex() on any other. The list
// is found on a serial queue of the page's own, in the order of the calls; tiles and rows come each
// from another serial queue. Who owns: see ScreenController. Absent: see BrowsePage.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kit/ScreenController.h"
#include "library/BrowsePage.h"
#include "library/BrowseSearch.h"
#include "platform/dispatch/TimerService.h"
#include "platform/foundation/NSUserDefaults.h"

namespace tavrion {

class RVBrowseCollectionViewController final
    : public ScreenController<RVBrowseCollectionViewController, BrowsePage> {
  public:
    static constexpr std::uint64_t statisticCount = 8;
    static constexpr const char* onboardingKey = "OnboardingGroupings";
    /// What the hint points at.
    static constexpr const char* groupingButton = "groupingButton";

    /// Takes over the stored choices, finds the list, and watches the setting for compilations.
    void viewDidLoad();
    void viewDidAppear();
    void viewWillDisappear();
    /// The window reports that the page stands as it was handed over, and whether the control row
    /// was shown already. After a full rebuild the first-run hint may follow.
    void snapshotDidApply(bool isGroupingButtonKnown);

    /// Everything again, the tiles too.
    void updateDataSource();
    /// The list alone.
    void sortDataSourceWithAnimation(bool animated);

    void searchBarTextDidBeginEditing();
    /// With the text of the search bar, at each change. An empty term changes nothing, so that
    /// emptying the bar leaves the last hits on view.
    void updateSearchResultsForSearchController(std::string_view searchBarText);
    void searchBarCancelButtonClicked();
    /// Leads to all hits of a section; a tag that belongs to no list leads nowhere.
    void showAllResults(std::uint64_t actionButtonTag);
    /// Leads to the entity's page.
    void didSelectItem(const MPMediaEntity& entity);
    /// The tab was tapped; always allowed. The second tap goes to the top, and from there to the
    /// search bar.
    bool shouldSelectViewController(bool isSelectedTab, bool isOnTopOfItsStack, bool isAtTop);

    /// Works the tile out.
    [[nodiscard]] ScreenRequest loadStatistic(std::uint64_t index,
                                              std::function<void(RVStatisticReference)> loaded);
    /// A row of the list or of the hits, with its picture.
    [[nodiscard]] ScreenRequest loadRow(const EntityRows& rows, std::size_t place,
                                        std::function<void(PicturedRow)> loaded);

    UIMenu groupingMenuForButton();
    UIMenu sortMenuForButton();

    /// One statistic of the library as it is now; null for an index above 7.
    static RVStatisticReference statForIndex(std::uint64_t index);

  private:
    /// The list as it was found last. Of the lists' queue.
    struct QueryResults {
        EntityRows list;
    };

    void publishLibrary(EntityRows list);
    void publishLibraryAgain(EntityRows list);
    void beginSearch();
    void publishSearch(const SearchSnapshot& sections);
    EntityRows asShownNow(EntityRows list) const;
    void chooseGrouping(std::size_t index);
    void chooseSort(RVSortType sortType);
    void showOnboardingTooltips();

    const std::shared_ptr<DispatchQueue> dataSourceTaskQueue_ =
        DispatchQueue::serial("dataSourceTaskQueue");
    const std::shared_ptr<DispatchQueue> statHandlingQueue_ =
        DispatchQueue::serial("statHandlingQueue");
    const std::shared_ptr<DispatchQueue> imageHandlingQueue_ =
        DispatchQueue::serial("imageHandlingQueue");
    const std::shared_ptr<QueryResults> queryResults_ = std::make_shared<QueryResults>();
    NSUserDefaults::Observation compilations_;
    DispatchTimer tooltip_;
    /// A full rebuild was handed over and does not stand yet.
    bool isRebuildComing_ = false;
    std::string typed_;
    BrowseSearch search_;
};

}  // namespace tavrion
