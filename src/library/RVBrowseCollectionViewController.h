// The library tab: eight statistics of the whole library over one long list, grouped and sorted as
// the user last chose.
//
// Queue: the main queue for everything that is not static; statForIndex() on any other. The list
// is found on a serial queue of the screen's own, in the order of the calls, and published on the
// main queue as an immutable snapshot; the tiles and the slow values of the rows come each from
// another serial queue. Who owns: the page, by shared pointer; work under way keeps the screen
// alive and is dropped when the page has gone. Absent: see BrowseSnapshot.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kit/NSAttributedString.h"
#include "kit/UIMenu.h"
#include "library/BrowseChoices.h"
#include "library/BrowseSearch.h"
#include "library/RVStatistic.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/dispatch/TimerService.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/mediaplayer/MPMediaEntity.h"

namespace tavrion {

/// What the page shows.
struct BrowseSnapshot {
    /// Eight empty tiles, which only tell the places apart; new ones mean that all are worked out
    /// anew.
    std::vector<RVStatisticReference> statistics;
    /// Absent while the list has no section of its own: an empty library at the first look, and
    /// while hits are on view.
    std::optional<std::vector<MPMediaEntity>> list;
    /// The hits of a search, in place of everything else.
    SearchSnapshot search = {};
};

enum class BrowseLayout { library, search };

/// The page, seen from its logic. Called on the main queue.
class BrowseScreen {
  public:
    virtual ~BrowseScreen() = default;
    virtual void applySnapshot(const BrowseSnapshot& snapshot, bool animated) = 0;
    /// Animated, together with the snapshot that is applied in the same turn.
    virtual void setLayout(BrowseLayout layout) = 0;
    /// Animated, as far as the search bar above lets it.
    virtual void scrollToTop() = 0;
    /// The visible rows show other values and ranks.
    virtual void refreshRankValues() = 0;
    /// The titles and menus of the two buttons are others.
    virtual void controlsDidChange() = 0;
    /// Whether the control row was shown already.
    virtual bool isGroupingButtonKnown() const = 0;
    /// Points at the grouping button; `presented` is called when the hint stands.
    virtual void presentTooltip(const std::string& title, const std::string& description,
                                std::function<void()> presented) = 0;
};

class RVBrowseCollectionViewController
    : public std::enable_shared_from_this<RVBrowseCollectionViewController>,
      private BrowseSearch::Page {
  public:
    static constexpr std::uint64_t statisticCount = 8;
    static constexpr const char* onboardingKey = "OnboardingGroupings";

    /// `screen` outlives the controller.
    static std::shared_ptr<RVBrowseCollectionViewController> make(BrowseScreen& screen);

    /// Takes over the stored choices, finds the list, and watches the setting for compilations.
    void viewDidLoad();

    const BrowseChoices& choices() const { return choices_; }
    const BrowseSnapshot& snapshot() const { return *snapshot_; }
    /// Everything anew, the tiles too.
    void updateDataSource();
    /// The list alone.
    void sortDataSourceWithAnimation(bool animated);

    void searchBarTextDidBeginEditing();
    /// With the text of the search bar, at each change.
    void updateSearchResultsForSearchController(std::string_view searchBarText);
    void searchBarCancelButtonClicked();
    /// Where the button of a section of hits leads; absent for a tag that belongs to no list.
    std::optional<BrowseSearch::AllResults> showAllResults(std::uint64_t actionButtonTag) const;
    /// From the first touch of the search bar until it is cancelled.
    bool isSearchActive() const;

    /// The rank at a place of the list, when its sort shows ranks and nobody searches.
    std::optional<std::size_t> rankAtIndex(std::size_t index) const;
    /// What stands at the right of a row. Walks the row's songs.
    NSAttributedString propertyOfEntity(const MPMediaEntity& entity) const;
    /// Works the tile out on the tiles' queue and hands it over on the main queue.
    void loadStatistic(std::uint64_t index, std::function<void(RVStatisticReference)> loaded);
    /// Picture and right-hand value of a row, found on the pictures' queue, handed over on the main
    /// queue.
    void loadRow(const MPMediaEntity& entity,
                 std::function<void(UIImage, NSAttributedString)> loaded);

    NSAttributedString groupingButtonTitle() const;
    UIMenu groupingMenuForButton();
    UIMenu sortMenuForButton();

    /// One statistic of the library as it is now; null for an index above 7.
    static RVStatisticReference statForIndex(std::uint64_t index);
    static std::vector<std::string> groupTitles();
    static std::vector<std::string> sortTitles();
    static MPMediaGrouping groupingForIndex(std::size_t index);
    static std::size_t indexForGrouping(MPMediaGrouping grouping);

  private:
    /// The list as it was found last. Of the lists' queue.
    struct QueryResults {
        std::vector<MPMediaEntity> list;
    };

    explicit RVBrowseCollectionViewController(BrowseScreen& screen);
    Work withoutStatistics() override;
    Work libraryAgain() override;
    void showSearch(const SearchSnapshot& sections) override;
    void chooseGrouping(std::size_t index);
    void chooseSort(RVSortType sortType);
    void publish(BrowseSnapshot snapshot, bool animated);
    void showOnboardingTooltips();
    void presentGroupingsTooltip();

    BrowseScreen& screen_;
    BrowseChoices choices_;
    std::shared_ptr<const BrowseSnapshot> snapshot_ = std::make_shared<BrowseSnapshot>();
    const std::shared_ptr<DispatchQueue> dataSourceTaskQueue_ =
        DispatchQueue::serial("dataSourceTaskQueue");
    const std::shared_ptr<DispatchQueue> statHandlingQueue_ =
        DispatchQueue::serial("statHandlingQueue");
    const std::shared_ptr<DispatchQueue> imageHandlingQueue_ =
        DispatchQueue::serial("imageHandlingQueue");
    const std::shared_ptr<QueryResults> queryResults_ = std::make_shared<QueryResults>();
    NSUserDefaults::Observation compilations_;
    DispatchTimer tooltip_;
    /// Goes first: it waits for the work that looks at this page.
    BrowseSearch search_;
};

}  // namespace tavrion
