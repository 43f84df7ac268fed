// The Trending screen, seen from its logic, and what it shows as values.
//
// Queue: everything is called on the main queue. Who owns: the screen owns its controller, and
// tells it by screenDidGo() when it goes. Units: points. Absent is std::nullopt.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kit/NSAttributedString.h"
#include "kit/UIMenu.h"
#include "timeviews/RVDateRangeSelectorViewController.h"
#include "timeviews/TrendingRanking.h"

namespace tavrion {

/// How the rows of a section are arranged.
struct TrendingSectionLayout {
    enum class Arrangement { rows, columns };

    Arrangement arrangement = Arrangement::rows;
    /// The view of a row.
    std::string nib;
    /// Whether the two buttons stand above it.
    bool hasControls = false;
    bool operator==(const TrendingSectionLayout&) const = default;
};

/// A row of the ranking. Its picture comes later, from loadArtwork().
struct TrendingCell {
    std::string reuseIdentifier;
    std::optional<NSAttributedString> title;
    /// The number that it was ranked by, in the format that is chosen now.
    NSAttributedString property;
    /// Of a song alone.
    std::optional<std::string> subtitle;
    /// The place in the ranking; of a song alone.
    std::optional<std::size_t> ranking;
};

struct TrendingButton {
    NSAttributedString title;
    bool isHidden = false;
    /// Shown when the button is pressed. Absent: the button does something itself.
    std::optional<UIMenu> menu;
    /// Null for a button with a menu.
    std::function<void()> touchUpInside;
};

/// The buttons above a section, from the left.
struct TrendingControls {
    TrendingButton first;
    TrendingButton second;
};

/// What a new playlist is made of.
struct TrendingPlaylist {
    std::string title;
    /// Songs, best first.
    std::vector<MPMediaEntity> items;
};

/// A one-time hint.
struct TrendingHint {
    enum class Source { playlistButton, collectionButton };

    /// The button that it points at.
    Source source = Source::playlistButton;
    std::string title;
    std::string text;
};

class TrendingScreen {
  public:
    virtual ~TrendingScreen() = default;

    virtual void applySnapshot(const TrendingSnapshot& snapshot, bool animated) = 0;
    /// The empty state takes the place of the list, or gives it back.
    virtual void setBackgroundViewHidden(bool hidden) = 0;
    /// The title of the button that opens the range drawer is another one.
    virtual void dateRangeTitleDidChange() = 0;
    /// The title of the grouping switch is another one.
    virtual void groupingTitleDidChange() = 0;
    /// Progress of an update, from 0 on, stands in place of the title, following the notification
    /// "RVTrendingUpdateDidChange"; or the title is back.
    virtual void setShowsProgress(bool shows) = 0;
    virtual void endRefreshing() = 0;
    virtual void scrollToTop() = 0;
    /// Whoever is in front is asked when a tab is tapped.
    virtual void becomeTabBarDelegate() = 0;
    /// A tap that can be felt, where there is something to feel it with.
    virtual void giveLightImpact() = 0;
    virtual void presentDateRangeSelector(
        std::unique_ptr<RVDateRangeSelectorViewController> selector) = 0;
    /// Points up at the hint's button, also on a small screen; `presented` is called when the hint
    /// stands.
    virtual void presentTooltip(const TrendingHint& hint, std::function<void()> presented) = 0;
    virtual void presentCreatePlaylist(TrendingPlaylist playlist) = 0;
    virtual void pushEntity(const MPMediaEntity& entity) = 0;
};

}  // namespace tavrion
