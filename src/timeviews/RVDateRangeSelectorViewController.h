// The drawer that edits the stored date range of a screen.
//
// Queue: the class operations from any; a drawer on the main queue. Who owns: the screen that shows
// the drawer. Writes happen at each change, the notification once, when the drawer closes.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "timeviews/DateRange.h"
#include "timeviews/RVDateRangeSegmentedControl.h"

namespace tavrion {

/// Which side of a custom range is edited.
struct DateSegments {
    bool isEnabled = true;
    /// 0 is the start, anything else the end.
    std::size_t selectedSegmentIndex = 0;
};

/// The wheel; absent dates were never set.
struct DatePicker {
    bool isEnabled = true;
    std::optional<NSDate> date;
    std::optional<NSDate> minimumDate;
    std::optional<NSDate> maximumDate;
};

class RVDateRangeSelectorViewController {
  public:
    /// The range stored under the key, as dates. What cannot be read is today.
    static NSDateInterval dateIntervalForKey(const std::string& key);
    /// What a button calls the stored value.
    static NSAttributedString titleForUserDefaultObject(const Value& object);
    /// A drawer for the range under that key.
    static std::unique_ptr<RVDateRangeSelectorViewController> initWithUserDefault(std::string key);

    RVDateRangeSelectorViewController(const RVDateRangeSelectorViewController&) = delete;
    RVDateRangeSelectorViewController& operator=(const RVDateRangeSelectorViewController&) = delete;

    void viewDidLoad();
    /// Tells that the range changed, if it did.
    void viewWillDisappear();
    /// The preset control has another value.
    void changeSetting();
    /// The user picked this date. One that would turn the range around changes nothing.
    void changeDate(NSDate picked);
    /// The user chose to edit the other side.
    void toggleDate(std::size_t segment);

    const std::string& userDefaultKey() const { return userDefaultKey_; }
    RVDateRangeSegmentedControl& presetSegmentedControl() { return presetSegmentedControl_; }
    const DateSegments& dateSegmentedControl() const { return dateSegmentedControl_; }
    const DatePicker& datePicker() const { return datePicker_; }
    /// The stored value as it was when the drawer opened.
    const Value& previousState() const { return previousState_; }

  private:
    explicit RVDateRangeSelectorViewController(std::string key);
    DateRange stored() const { return DateRange::stored(userDefaultKey_); }
    void store(const DateRange& range) const;
    void enableDates(bool enabled);
    void showStartOf(const NSDateInterval& interval);

    const std::string userDefaultKey_;
    RVDateRangeSegmentedControl presetSegmentedControl_;
    DateSegments dateSegmentedControl_;
    DatePicker datePicker_;
    Value previousState_;
};

}  // namespace tavrion
