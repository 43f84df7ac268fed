// A screen as its controller sees it: the one way in which controllers publish.
//
// Queue: main. A controller hands over its state as one immutable value, and emits what only a
// window can do. Who owns: the screen owns its controller and attaches itself to it; see
// ScreenController for how long that lasts. Neither function is called while one of them is
// running: what a screen causes from inside a call comes after it.
#pragma once

#include <memory>
#include <variant>

#include "kit/Alert.h"
#include "kit/PlaylistRequest.h"
#include "kit/Route.h"
#include "kit/Tooltip.h"
#include "kit/UIMenu.h"

namespace tavrion {

/// How another state comes into view. What is another in it the screen finds out by comparing:
/// lists by their difference, the rest member by member.
enum class StateChange { immediate, animated };

/// The small things that every window can do.
enum class ScreenSignal {
    /// Animated, as far as a search bar above lets it.
    scrollToTop,
    /// The list that was pulled down goes back.
    endRefreshing,
    /// A tap that can be felt, where there is something to feel it with.
    lightImpact,
    /// Whoever is in front is asked when a tab is tapped.
    becomeTabBarDelegate,
    /// What is typed goes to the search bar, or no longer.
    beginTyping,
    endTyping,
};

using ScreenEvent = std::variant<Route, Alert, Tooltip, UIMenu, PlaylistRequest, ScreenSignal>;

template <class State>
class ScreenPort {
  public:
    ScreenPort() = default;
    virtual ~ScreenPort() = default;
    ScreenPort(const ScreenPort&) = delete;
    ScreenPort& operator=(const ScreenPort&) = delete;

    virtual void stateDidChange(std::shared_ptr<const State> state, StateChange how) = 0;
    virtual void emit(ScreenEvent event) = 0;
};

}  // namespace tavrion
