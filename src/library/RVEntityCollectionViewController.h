// The page of one song, album, artist, album artist, genre or playlist.
//
// Queue: the main queue for everything. Lists are built on a serial queue of the page's own, in the
// order of the calls; plays are read on a private context. Who owns: see ScreenController. Built
// once: nothing is watched, a page stays as it was built until it is opened again. Absent: a song
// has no lists and no sort buttons.
#pragma once

#include <functional>
#include <memory>

#include "kit/ScreenController.h"
#include "library/EntityLists.h"

namespace tavrion {

class RVEntityCollectionViewController final
    : public ScreenController<RVEntityCollectionViewController, EntityPage> {
  public:
    /// The header is there from the beginning.
    static std::shared_ptr<RVEntityCollectionViewController> make(MPMediaEntity entity);
    explicit RVEntityCollectionViewController(MPMediaEntity entity);

    void viewDidLoad();
    /// The window reports that the page stands as it was handed over, and whether the chart is on
    /// view. After a full build the chart follows; one that is not on view stays empty for good.
    void snapshotDidApply(bool isChartOnHand);

    /// The whole page.
    void updateDataSourceWithAnimation(bool animated);
    /// One list; an empty one changes nothing.
    void reloadSection(EntitySection section, RVSortType sortType, bool reverse);
    void layoutRecentActivityChart();

    /// Six sorts; the present one carries an arrow and turns round when it is chosen again.
    UIMenu sortMenuForButton(EntitySection section);
    /// Only lists are sorted.
    static bool hasActionButton(EntitySection section);
    /// What leads to a song's plays stands under the chart of a song, where pages can be pushed.
    bool hasHistoryFooter(bool hasNavigation) const;

    /// Plays the page from its beginning, unshuffled.
    void playMediaEntity();
    /// Leads to the page of the album artist, where there is one.
    void showArtist();
    /// Leads to the plays of a song.
    void showTrackHistory();
    /// Leads to the page of a row.
    void didSelectItem(const MPMediaEntity& entity);

    /// A row with its picture; a place that the page does not have is not answered.
    [[nodiscard]] ScreenRequest loadRow(EntitySection section, std::size_t place,
                                        std::function<void(PicturedRow)> loaded);
    /// The picture of the header.
    [[nodiscard]] ScreenRequest loadArtwork(std::function<void(UIImage)> loaded);

  private:
    void chooseSort(EntitySection section, RVSortType sortType);

    const std::shared_ptr<DispatchQueue> dataSourceTaskQueue_ =
        DispatchQueue::serial("dataSourceTaskQueue");
    const std::shared_ptr<DispatchQueue> imageHandlingQueue_ =
        DispatchQueue::serial("imageHandlingQueue");
    /// Of the lists' queue.
    const std::shared_ptr<EntityLists> lists_;
    /// A full build was handed over and does not stand yet.
    bool isBuildComing_ = false;
};

}  // namespace tavrion
