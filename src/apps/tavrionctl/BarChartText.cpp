#include "apps/tavrionctl/BarChartText.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "apps/tavrionctl/TextTable.h"
#include "platform/foundation/DisplayWidth.h"

namespace tavrion::ctl {
namespace {

/// From one bar to the next at most.
constexpr std::size_t widestPitch = 12;
constexpr long eighths = 8;
constexpr std::size_t gapBetweenLabels = 2;

void trimEnd(std::string& line) {
    line.erase(line.find_last_not_of(' ') + 1);
}

std::string repeated(std::string_view sign, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += sign;
    }
    return text;
}

double mostOf(const std::vector<double>& values, std::size_t first) {
    double most = 0;
    for (std::size_t i = first; i < values.size(); ++i) {
        most = std::max(most, values[i]);
    }
    return most;
}

/// Columns before the bars: the amount, a blank, the axis.
std::size_t gutterOf(const BarChartText& chart) {
    return displayWidth(chart.amount(mostOf(chart.values, 0))) + 2;
}

/// The part of the chart that is seen, and where it is.
class Drawing {
  public:
    Drawing(const BarChartText& chart, std::size_t width, const TerminalAbilities& abilities)
        : chart_(chart),
          abilities_(abilities),
          gutter_(gutterOf(chart)),
          plot_(width > gutter_ ? width - gutter_ : 0),
          shown_(chart.shownBars(width)),
          first_(chart.values.size() - shown_),
          most_(mostOf(chart.values, first_)) {
        if (shown_ > 0) {
            // Behind the last bar no gap is needed.
            pitch_ = std::min(std::max<std::size_t>((plot_ + 1) / shown_, 1), widestPitch);
            barWidth_ = pitch_ == 1 ? 1 : pitch_ - std::max<std::size_t>(1, pitch_ / 4);
        }
    }

    std::vector<std::string> lines() const {
        std::vector<std::string> lines;
        if (shown_ == 0) {
            return lines;
        }
        for (std::size_t row = BarChartText::height; row > 0; --row) {
            lines.push_back(lineOfBars(row - 1));
        }
        lines.push_back(baseLine());
        if (std::string labels = lineOfLabels(); !labels.empty()) {
            lines.push_back(styled(labels, TextStyle::grey, abilities_));
        }
        return lines;
    }

  private:
    static constexpr auto rows = static_cast<long>(BarChartText::height);

    /// The height of a bar in eighths of a row; a bar that is not empty is seen.
    long heightOf(std::size_t bar) const {
        const double value = chart_.values[bar];
        return value > 0
                   ? std::max(1L, std::lround(value / most_ * static_cast<double>(rows * eighths)))
                   : 0;
    }
    bool isFaded(std::size_t bar) const { return chart_.chosen && *chart_.chosen != bar; }

    /// What fills a row of a bar that goes so many eighths into it.
    std::string_view signOf(std::size_t bar, long part) const {
        constexpr std::array<std::string_view, 9> blocks{" ", "▁", "▂", "▃", "▄",
                                                         "▅", "▆", "▇", "█"};
        const bool isHalfFull = part >= eighths / 2;
        if (!abilities_.showsSymbols) {
            return isHalfFull ? (isFaded(bar) ? ":" : "#") : (part > 0 ? "." : " ");
        }
        if (isFaded(bar) && !abilities_.showsColors) {
            return isHalfFull ? "░" : (part > 0 ? "▁" : " ");
        }
        return blocks[static_cast<std::size_t>(part)];
    }
    TextStyle styleOf(std::size_t bar) const {
        return isFaded(bar) ? TextStyle::grey : TextStyle::accent;
    }

    std::string lineOfBars(std::size_t row) const {
        const bool isTop = row + 1 == BarChartText::height;
        const std::string top = isTop ? chart_.amount(most_) : std::string();
        std::string line =
            styled(std::string(gutter_ - 2 - std::min(gutter_ - 2, displayWidth(top)), ' ') + top +
                       " " + (!abilities_.showsSymbols ? "|" : (isTop ? "┤" : "│")),
                   TextStyle::grey, abilities_);
        // Blanks wait for a sign to stand before.
        std::size_t blanks = 0;
        for (std::size_t bar = first_; bar < chart_.values.size(); ++bar) {
            const long part =
                std::clamp(heightOf(bar) - static_cast<long>(row) * eighths, 0L, eighths);
            if (part == 0) {
                blanks += pitch_;
                continue;
            }
            line += std::string(blanks, ' ');
            line += styled(repeated(signOf(bar, part), barWidth_), styleOf(bar), abilities_);
            blanks = pitch_ - barWidth_;
        }
        return line;
    }

    std::string baseLine() const {
        const std::size_t length = shown_ * pitch_ - (pitch_ - barWidth_);
        return styled(
            std::string(gutter_ - 1, ' ') + (abilities_.showsSymbols ? "└" + repeated("─", length)
                                                                     : "+" + repeated("-", length)),
            TextStyle::grey, abilities_);
    }

    struct Label {
        std::size_t column = 0;
        std::string text;
        std::size_t end() const { return column + displayWidth(text); }
    };

    /// Every so-manieth label, in the middle below its bar.
    std::vector<Label> labelsAt(std::size_t step) const;
    static bool fit(const std::vector<Label>& labels) {
        for (std::size_t i = 1; i < labels.size(); ++i) {
            if (labels[i].column < labels[i - 1].end() + gapBetweenLabels) {
                return false;
            }
        }
        return true;
    }
    std::vector<Label> labels() const;
    std::string lineOfLabels() const {
        std::string line(gutter_, ' ');
        std::size_t column = 0;
        for (const Label& label : labels()) {
            line += std::string(label.column - column, ' ') + label.text;
            column = label.end();
        }
        trimEnd(line);
        return line;
    }

    const BarChartText& chart_;
    const TerminalAbilities& abilities_;
    /// Columns before the bars.
    const std::size_t gutter_;
    const std::size_t plot_;
    const std::size_t shown_;
    const std::size_t first_;
    const double most_;
    std::size_t pitch_ = 1;
    std::size_t barWidth_ = 1;
};

std::vector<Drawing::Label> Drawing::labelsAt(std::size_t step) const {
    const std::size_t count = chart_.values.size();
    std::vector<Label> labels;
    for (std::size_t bar = first_; bar < count; ++bar) {
        if ((chart_.labelsFromLast ? count - 1 - bar : bar) % step != 0) {
            continue;
        }
        Label label{0, chart_.label(bar)};
        const std::size_t width = displayWidth(label.text);
        const std::size_t middle = 2 * (bar - first_) * pitch_ + barWidth_;
        label.column = middle > width ? (middle - width) / 2 : 0;
        label.column = std::min(label.column, plot_ > width ? plot_ - width : 0);
        if (width > 0 && width <= plot_) {
            labels.push_back(std::move(label));
        }
    }
    return labels;
}

std::vector<Drawing::Label> Drawing::labels() const {
    // No label is shorter than this, so that closer ones need not be looked at.
    constexpr std::size_t shortest = 3 + gapBetweenLabels;
    for (std::size_t step = 1; step < shown_; ++step) {
        const bool isAllowed = chart_.labelSteps.empty() ||
                               std::find(chart_.labelSteps.begin(), chart_.labelSteps.end(),
                                         step) != chart_.labelSteps.end();
        if (!isAllowed || step * pitch_ < shortest) {
            continue;
        }
        if (std::vector<Label> found = labelsAt(step); fit(found)) {
            return found;
        }
    }
    return labelsAt(shown_);
}

}  // namespace

std::size_t BarChartText::shownBars(std::size_t width) const {
    const std::size_t gutter = gutterOf(*this);
    return std::min(values.size(), width > gutter ? width - gutter : 0);
}

std::vector<std::string> BarChartText::lines(std::size_t width,
                                             const TerminalAbilities& abilities) const {
    return Drawing(*this, width, abilities).lines();
}

}  // namespace tavrion::ctl
