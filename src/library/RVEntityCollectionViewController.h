// The page of one song, album, artist, album artist, genre or playlist.
//
// Queue: the main queue for everything. Lists are built on a serial queue of the page's own, in the
// order of the calls, and published on the main queue as an immutable snapshot; plays are read on a
// private context. Who owns: the screen, by shared pointer; work under way keeps the page alive,
// and what comes after the screen has gone is shown to nobody. Built once: nothing is watched, a
// page stays as it was built until it is opened again. Absent: a song has no lists and no sort
// buttons.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kit/UIMenu.h"
#include "library/EntityActivity.h"
#include "library/EntityLists.h"
#include "library/EntityTexts.h"
#include "platform/dispatch/DispatchQueue.h"

namespace tavrion {

/// The page as it is seen. Called on the main queue.
class EntityScreen {
  public:
    virtual ~EntityScreen() = default;
    virtual void applySnapshot(const EntitySnapshot& snapshot, bool animated) = 0;
    /// The visible rows show other ranks and values.
    virtual void refreshRankValues() = 0;
    /// The button and the menu of a list are others.
    virtual void sortButtonDidChange(EntitySection section) = 0;
    /// Whether the chart is on view; one that is not stays empty for good.
    virtual bool isChartOnHand() const = 0;
    /// Bars, or the words for no activity.
    virtual void showRecentActivity(const EntityActivity& activity) = 0;
};

class RVEntityCollectionViewController
    : public std::enable_shared_from_this<RVEntityCollectionViewController> {
  public:
    /// `screen` says by screenDidGo() when it goes.
    static std::shared_ptr<RVEntityCollectionViewController> make(EntityScreen& screen,
                                                                  MPMediaEntity entity);
    void screenDidGo() { screen_ = nullptr; }

    void viewDidLoad();
    const MPMediaEntity& entity() const { return entity_; }
    const EntitySnapshot& snapshot() const { return *snapshot_; }

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
    /// Also walks the row's songs: for the pictures' queue, with the row's values at hand.
    EntityRank rankEntityCell(EntitySection section, std::size_t index) const;

    EntityHeader header() const { return EntityTexts::header(entity_); }
    std::optional<MPMediaItemCollection> artistForEntity() const {
        return EntityTexts::artistForEntity(entity_);
    }
    /// What playing the page queues, in this order and unshuffled: the songs as they are shown, or
    /// the song. Absent for anything else.
    std::optional<MPMediaItemCollection> itemsToPlay() const;

  private:
    RVEntityCollectionViewController(EntityScreen& screen, MPMediaEntity entity)
        : screen_(&screen), entity_(entity), lists_(std::move(entity)) {}
    void publish(EntitySnapshot snapshot, bool animated, const std::function<void()>& then);
    void chooseSort(EntitySection section, RVSortType sortType);

    /// Null once it has gone.
    EntityScreen* screen_;
    const MPMediaEntity entity_;
    std::shared_ptr<const EntitySnapshot> snapshot_ = std::make_shared<EntitySnapshot>();
    const std::shared_ptr<DispatchQueue> dataSourceTaskQueue_ =
        DispatchQueue::serial("dataSourceTaskQueue");
    /// These two on that queue alone.
    EntityLists lists_;
    EntitySnapshot built_;
};

}  // namespace tavrion
