// A one-time hint beside a control, as a value.
//
// Queue: the main queue calls `presented`. Who owns: whoever shows it. A tooltip that could not be
// shown is not presented; then the page offers it again another time.
#pragma once

#include <functional>
#include <string>

namespace tavrion {

/// The numbers are the platform's own.
enum class UIPopoverArrowDirection { up = 1, down = 2, left = 4, right = 8 };

struct Tooltip {
    std::string title;
    std::string text;
    /// The control that it points at, by the name that its page gives it ("dateRangeButton").
    std::string source;
    /// Kept also on a small screen, where other popovers become sheets.
    UIPopoverArrowDirection arrowDirection = UIPopoverArrowDirection::up;
    /// Called when the tooltip stands.
    std::function<void()> presented = nullptr;
};

}  // namespace tavrion
