#include "timeviews/RVDateRangeSegmentedControl.h"

#include "timeviews/DateRange.h"

namespace tavrion {

RVDateRangeSegmentedControl::RVDateRangeSegmentedControl()
    : yearTitle_(DateRange::titleOfCurrentYear()) {}

void RVDateRangeSegmentedControl::setSelectedPresetIndex(const DateRangeSegments& sender,
                                                         std::size_t selectedSegmentIndex) {
    setSelectedIndex(selectedSegmentIndex + sender.tag, true);
}

void RVDateRangeSegmentedControl::setSelectedIndex(std::size_t index, bool animated) {
    selectedIndex_ = index;
    const bool isInFirstRow = index < DateRangeSegments::numberOfSegments;
    presetControl1_.selectedSegmentIndex = isInFirstRow ? std::optional(index) : std::nullopt;
    presetControl2_.selectedSegmentIndex =
        isInFirstRow ? std::nullopt : std::optional(index - presetControl2_.tag);
    if (animated && valueChanged) {
        valueChanged();
    }
    if (positionChanged) {
        positionChanged(animated);
    }
}

DateRangeMarkerCenter RVDateRangeSegmentedControl::positionSelectedSegmentForIndex(
    std::size_t index, const DateRangeRowFrame& first, const DateRangeRowFrame& second) {
    const std::size_t shown = index > customIndex ? 0 : index;
    const DateRangeRowFrame& row = shown < DateRangeSegments::numberOfSegments ? first : second;
    const auto column = static_cast<double>(shown % DateRangeSegments::numberOfSegments);
    constexpr double halves = 2 * DateRangeSegments::numberOfSegments;
    // The dividers between segments are a point wide each.
    return {row.width * (2 * column + 1) / halves + column + 1, row.centerY};
}

}  // namespace tavrion
