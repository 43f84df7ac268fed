// The History screen, seen from its logic.
//
// Queue: everything is called on the main queue. Who owns: the screen owns its controller, and
// tells it by screenDidGo() when it goes.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kit/NSDiffableDataSourceSnapshot.h"
#include "timeviews/HistoryChart.h"
#include "timeviews/RVDateRangeSelectorViewController.h"

namespace tavrion {

/// What the first row shows. A text is empty until there was something to show.
struct RVHistoryStatCell {
    /// How many songs were played, whatever its name says.
    std::string playsLabel;
    std::string durationLabel;
    std::string durationCaption;
    /// Absent until the first chart was made.
    std::optional<HistoryChart> chart;
};

/// Asked before a play is deleted.
struct HistoryDeletionQuestion {
    std::string title;
    std::string message;
    /// The answer that deletes.
    std::string deleteTitle;
    std::string cancelTitle;
};

/// What a new playlist is made of.
struct HistoryPlaylist {
    std::string title;
    /// The rows as they are listed; the first stands for no song.
    std::vector<Value> items;
};

class HistoryScreen {
  public:
    virtual ~HistoryScreen() = default;

    virtual void applySnapshot(const NSDiffableDataSourceSnapshot& snapshot, bool animated) = 0;
    /// The empty state takes the place of the list, or gives it back.
    virtual void setBackgroundViewHidden(bool hidden) = 0;
    /// Whether the first row is on view; one that is not is told nothing.
    virtual bool isStatCellOnHand() const = 0;
    virtual void totalsDidChange(const RVHistoryStatCell& cell) = 0;
    /// Other bars, which rise.
    virtual void chartDidChange(const HistoryChart& chart) = 0;
    /// The same bars in other colours, or another one highlighted.
    virtual void chartColorsDidChange(const HistoryChart& chart) = 0;
    /// The title of the button that opens the range drawer is another one.
    virtual void dateRangeTitleDidChange() = 0;
    /// Progress of an update stands in place of the title, following the notification
    /// "RVHistoryUpdateDidChange"; or the title is back.
    virtual void setShowsProgress(bool shows) = 0;
    virtual void endRefreshing() = 0;
    virtual void scrollToTop() = 0;
    virtual void presentDateRangeSelector(
        std::unique_ptr<RVDateRangeSelectorViewController> selector) = 0;
    /// Points at the range button; `presented` is called when the hint stands.
    virtual void presentTooltip(const std::string& title, const std::string& description,
                                std::function<void()> presented) = 0;
    /// `confirmed` is called when the user wants it deleted.
    virtual void presentQuestion(const HistoryDeletionQuestion& question,
                                 std::function<void()> confirmed) = 0;
    virtual void presentCreatePlaylist(HistoryPlaylist playlist) = 0;
    virtual void pushEntity(const MPMediaEntity& entity) = 0;
};

}  // namespace tavrion
