// What the Trending screen shows, as one value: the ranking and what stands around it. The screen
// and the command line show the same one.
//
// Queue: any; a value, whose rows are shared and never change. Units: points.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "kit/NSAttributedString.h"
#include "kit/UIMenu.h"
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

struct TrendingPage {
    TrendingSnapshot ranking;
    /// Whether the screen says that there is nothing.
    bool showsBackgroundView = false;
    /// Of the button that opens the range drawer.
    NSAttributedString dateRangeTitle;
    /// Of the grouping switch.
    NSAttributedString groupingTitle;
    /// Progress of an update, from 0 on, stands in place of the title, following the notification
    /// "RVTrendingUpdateDidChange".
    bool showsProgress = false;
    /// Above the list, for the rest of the run in which it was first shown.
    std::optional<std::string> prompt;

    /// Another ranking in place of the one before.
    void show(TrendingSnapshot snapshot);
    /// By the place of a section among those that are there; absent for a place without one.
    std::optional<TrendingSectionLayout> layoutForSectionAtIndex(std::size_t index) const;

    /// The page of a ranking as it is asked for. On the queue of the context, which takes over
    /// nothing that the look-ups would change.
    static TrendingPage of(NSManagedObjectContext& context, const TrendingRequest& request,
                           TrendingKeys& keys);
    /// Of a row of the ranking. `byTime`: which of its numbers is shown.
    static TrendingCell cell(const RVTrendingEntity& row, std::size_t index, bool byTime,
                             const std::optional<UIFont>& font);
    /// The number that a row was ranked by. A row that was ranked by the other one reads 0.
    static std::string number(const RVTrendingEntity& row, bool byTime);
};

}  // namespace tavrion
