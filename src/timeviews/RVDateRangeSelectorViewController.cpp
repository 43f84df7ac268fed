#include "timeviews/RVDateRangeSelectorViewController.h"

#include <fmt/format.h>

#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "recording/RVPlaybackHistoryManager.h"

namespace tavrion {
NSDateInterval RVDateRangeSelectorViewController::dateIntervalForKey(const std::string& key) {
    return DateRange::stored(key).interval();
}

NSAttributedString RVDateRangeSelectorViewController::titleForUserDefaultObject(
    const Value& object) {
    return DateRange(object).attributedTitle();
}

std::unique_ptr<RVDateRangeSelectorViewController>
RVDateRangeSelectorViewController::initWithUserDefault(std::string key) {
    return std::unique_ptr<RVDateRangeSelectorViewController>(
        new RVDateRangeSelectorViewController(std::move(key)));
}

RVDateRangeSelectorViewController::RVDateRangeSelectorViewController(std::string key)
    : userDefaultKey_(std::move(key)) {
    presetSegmentedControl_.valueChanged = [this] { changeSetting(); };
}

void RVDateRangeSelectorViewController::store(const DateRange& range) const {
    NSUserDefaults::standardUserDefaults().setObject(userDefaultKey_, range.object());
}

void RVDateRangeSelectorViewController::enableDates(bool enabled) {
    datePicker_.isEnabled = enabled;
    dateSegmentedControl_.isEnabled = enabled;
}

void RVDateRangeSelectorViewController::showStartOf(const NSDateInterval& interval) {
    enableDates(true);
    datePicker_.date = interval.startDate();
    datePicker_.maximumDate = interval.endDate();
    datePicker_.minimumDate = RVPlaybackHistoryManager::installationDate();
}

void RVDateRangeSelectorViewController::viewDidLoad() {
    enableDates(false);
    const DateRange range = stored();
    previousState_ = range.object();
    if (const auto number = range.number()) {
        presetSegmentedControl_.setSelectedIndex(*number, false);
        if (previousState_.isAbsent()) {
            store(DateRange(DateRangePreset::today));
        }
    } else if (range.isCustom()) {
        presetSegmentedControl_.setSelectedIndex(RVDateRangeSegmentedControl::customIndex, false);
        enableDates(true);
        if (const auto interval = range.fixedInterval()) {
            showStartOf(*interval);
        }
    }
}

void RVDateRangeSelectorViewController::changeSetting() {
    const std::size_t index = presetSegmentedControl_.selectedIndex();
    if (index != RVDateRangeSegmentedControl::customIndex) {
        enableDates(false);
        store(DateRange(static_cast<DateRangePreset>(index)));
        return;
    }
    const NSDateInterval today = DateRange(DateRangePreset::today).interval();
    store(DateRange(today));
    showStartOf(today);
}

void RVDateRangeSelectorViewController::changeDate(NSDate picked) {
    datePicker_.date = picked;
    const auto interval = stored().fixedInterval();
    if (!interval) {
        return;
    }
    const bool editsStart = dateSegmentedControl_.selectedSegmentIndex == 0;
    const NSDate start = editsStart ? Extended::startOfDay(picked) : interval->startDate();
    const NSDate end = editsStart ? interval->endDate() : Extended::endOfDay(picked);
    if (start <= end) {
        store(DateRange(NSDateInterval(start, end)));
    }
}

void RVDateRangeSelectorViewController::toggleDate(std::size_t segment) {
    dateSegmentedControl_.selectedSegmentIndex = segment;
    const auto interval = stored().fixedInterval();
    if (!interval) {
        return;
    }
    if (segment == 0) {
        datePicker_.date = interval->startDate();
        datePicker_.maximumDate = Extended::endOfDay(interval->endDate());
        datePicker_.minimumDate =
            Extended::startOfDay(RVPlaybackHistoryManager::installationDate());
    } else {
        datePicker_.date = interval->endDate();
        datePicker_.maximumDate = Extended::endOfDay(NSDate::date());
        datePicker_.minimumDate = Extended::startOfDay(interval->startDate());
    }
}

void RVDateRangeSelectorViewController::viewWillDisappear() {
    if (previousState_.isAbsent() || previousState_ != stored().object()) {
        NSNotificationCenter::defaultCenter().postNotificationName(
            fmt::format("{}DidChange", userDefaultKey_));
    }
}

}  // namespace tavrion
