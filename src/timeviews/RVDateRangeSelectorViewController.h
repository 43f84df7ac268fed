// The stored date ranges of the screens, and the drawer that edits one.
//
// Queue: the class operations from any; a drawer on the main queue. Who owns: the screen that shows
// the drawer. A range is kept in the user defaults as a number, one of the presets that move with
// the calendar, or as the archive of a fixed interval; a missing one is today. Writes happen at
// each change, the notification once, when the drawer closes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "kit/NSAttributedString.h"
#include "platform/foundation/NSDateInterval.h"
#include "platform/foundation/Value.h"
#include "timeviews/RVDateRangeSegmentedControl.h"

namespace tavrion {

/// The keys of the stored ranges.
namespace DateRangeKey {
inline const char* const history = "HistoryDateRangeObject";
inline const char* const trending = "TrendingDateRangeObject";
}  // namespace DateRangeKey

/// The numbers that are stored.
enum class DateRangePreset : std::uint64_t {
    today = 0,
    pastWeek = 1,
    pastMonth = 2,
    currentYear = 3,
    lifetime = 4
};

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
    /// A preset by the current date; a number that is none of them is today.
    static NSDateInterval dateIntervalForPreset(DateRangePreset preset);
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
    Value stored() const;
    void store(const NSDateInterval& interval) const;
    void enableDates(bool enabled);
    void showStartOf(const NSDateInterval& interval);

    const std::string userDefaultKey_;
    RVDateRangeSegmentedControl presetSegmentedControl_;
    DateSegments dateSegmentedControl_;
    DatePicker datePicker_;
    Value previousState_;
};

}  // namespace tavrion
