// A chart of bars as lines of text.
//
// Queue: any; pure functions. Widths are columns of a terminal.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "apps/tavrionctl/AttributedText.h"

namespace tavrion::ctl {

struct BarChartText {
    /// One for each bar; none is negative.
    std::vector<double> values;
    /// What stands below a bar; asked for few of them.
    std::function<std::string(std::size_t bar)> label;
    /// How a value is shown, for the highest bar.
    std::function<std::string(double value)> amount;
    /// The bar that stands out; absent where all are alike.
    std::optional<std::size_t> chosen;
    /// Whether labels are counted from the last bar instead of the first.
    bool labelsFromLast = false;
    /// Labels stand at every bar, or at every so-manieth of these; empty allows any.
    std::vector<std::size_t> labelSteps;

    static constexpr std::size_t height = 8;

    /// How many bars have room; where not all have, the last ones are shown.
    std::size_t shownBars(std::size_t width) const;
    /// Lines without blanks at the end and no wider than `width`. None when the bars have no room.
    std::vector<std::string> lines(std::size_t width, const TerminalAbilities& abilities) const;
};

}  // namespace tavrion::ctl
