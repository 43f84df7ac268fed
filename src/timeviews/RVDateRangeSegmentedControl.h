// The choice among the preset ranges and a custom one, in two rows with a marker behind the chosen
// segment.
//
// Queue: main. Who owns: the drawer of a date range. Units: points and seconds.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace tavrion {

/// One row of the choice.
struct DateRangeSegments {
    static constexpr std::size_t numberOfSegments = 3;
    /// The index of the row's first segment in the whole choice.
    std::size_t tag = 0;
    /// Absent when the chosen segment stands in the other row.
    std::optional<std::size_t> selectedSegmentIndex;
};

/// Where a row is in the control.
struct DateRangeRowFrame {
    double width = 0;
    double centerY = 0;
};

struct DateRangeMarkerCenter {
    double x = 0;
    double y = 0;
    bool operator==(const DateRangeMarkerCenter&) const = default;
};

class RVDateRangeSegmentedControl {
  public:
    /// How long the marker slides to another segment.
    static constexpr double animationDuration = 0.2;
    static constexpr std::size_t customIndex = 5;

    /// Reads the year for the title of the second row's first segment, once.
    RVDateRangeSegmentedControl();

    const DateRangeSegments& presetControl1() const { return presetControl1_; }
    const DateRangeSegments& presetControl2() const { return presetControl2_; }
    const std::string& yearTitle() const { return yearTitle_; }
    std::size_t selectedIndex() const { return selectedIndex_; }

    /// The user chose that segment of that row.
    void setSelectedPresetIndex(const DateRangeSegments& sender, std::size_t selectedSegmentIndex);
    /// Animated, the change is reported before the marker moves; otherwise nobody hears of it.
    void setSelectedIndex(std::size_t index, bool animated);
    /// Where the marker stands for an index, the rows lying as given. Indices that have no segment
    /// stand where 0 does.
    static DateRangeMarkerCenter positionSelectedSegmentForIndex(std::size_t index,
                                                                 const DateRangeRowFrame& first,
                                                                 const DateRangeRowFrame& second);

    /// Called when the user chose another segment.
    std::function<void()> valueChanged;
    /// Called when the marker has to move: with or without an animation.
    std::function<void(bool animated)> positionChanged;

  private:
    DateRangeSegments presetControl1_{0, 0};
    DateRangeSegments presetControl2_{DateRangeSegments::numberOfSegments, std::nullopt};
    std::string yearTitle_;
    std::size_t selectedIndex_ = 0;
};

}  // namespace tavrion
