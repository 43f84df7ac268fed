#include "timeviews/RVDateRangeSelectorViewController.h"

#include <fmt/format.h>

#include "library/RVMetadataManager.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSKeyedArchiver.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "recording/RVPlaybackHistoryManager.h"

namespace tavrion {
namespace {

constexpr int daysBackInWeek = 6;
constexpr int daysBackInMonth = 29;

/// A number that is stored, also as another program may have written it. Absent for any other
/// object; a missing one is 0.
std::optional<std::uint64_t> numberOf(const Value& object) {
    if (object.isAbsent()) {
        return 0;
    }
    if (const auto* number = object.get<std::int64_t>()) {
        return static_cast<std::uint64_t>(*number);
    }
    if (const auto* real = object.get<double>()) {
        constexpr double beyondPresets = 1000;
        return *real >= 0 && *real < beyondPresets ? static_cast<std::uint64_t>(*real)
                                                   : static_cast<std::uint64_t>(beyondPresets);
    }
    if (const auto* flag = object.get<bool>()) {
        return *flag ? 1 : 0;
    }
    return std::nullopt;
}

std::optional<NSDateInterval> intervalOf(const Value& object) {
    const auto* data = object.get<NSData>();
    if (data == nullptr) {
        return std::nullopt;
    }
    const auto interval = NSKeyedUnarchiver::unarchivedObjectOfClass<NSDateInterval>(*data);
    return interval ? std::optional(interval.value()) : std::nullopt;
}

NSDate startOfPreset(DateRangePreset preset, NSDate today) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    switch (preset) {
        case DateRangePreset::pastWeek:
            return calendar.dateByAddingComponents({.day = -daysBackInWeek}, today);
        case DateRangePreset::pastMonth:
            return calendar.dateByAddingComponents({.day = -daysBackInMonth}, today);
        case DateRangePreset::currentYear:
            return calendar.dateFromYear(calendar.timeZone().civilTime(today).year);
        case DateRangePreset::lifetime:
            return RVPlaybackHistoryManager::installationDate();
        case DateRangePreset::today:
            break;
    }
    return today;
}

std::string titleOfPreset(DateRangePreset preset) {
    switch (preset) {
        case DateRangePreset::pastWeek:
            return NSLocalizedString("Past Week");
        case DateRangePreset::pastMonth:
            return NSLocalizedString("Past Month");
        case DateRangePreset::currentYear:
            return std::to_string(
                NSCalendar::currentCalendar().timeZone().civilTime(NSDate::date()).year);
        case DateRangePreset::lifetime:
            return NSLocalizedString("Lifetime");
        case DateRangePreset::today:
            break;
    }
    return NSLocalizedString("Today");
}

std::string titleOfInterval(const std::optional<NSDateInterval>& interval) {
    const auto text = [](NSDate date) { return RVMetadataManager::formattedDate(date, false); };
    if (!interval) {
        return RVMetadataManager::formattedDate(std::nullopt, false);
    }
    if (NSCalendar::currentCalendar().isDateInSameDay(interval->startDate(), interval->endDate())) {
        return text(interval->startDate());
    }
    return text(interval->startDate()) + " – " + text(interval->endDate());
}

}  // namespace

NSDateInterval RVDateRangeSelectorViewController::dateIntervalForPreset(DateRangePreset preset) {
    const NSDate now = NSDate::date();
    const NSDate end = Extended::endOfDay(now);
    const NSDate start = startOfPreset(preset, Extended::startOfDay(now));
    // A clock that was set back can lie before the installation.
    return {std::min(start, end), end};
}

NSDateInterval RVDateRangeSelectorViewController::dateIntervalForKey(const std::string& key) {
    const Value object = NSUserDefaults::standardUserDefaults().objectForKey(key);
    if (const auto custom = intervalOf(object)) {
        return *custom;
    }
    return dateIntervalForPreset(static_cast<DateRangePreset>(numberOf(object).value_or(0)));
}

NSAttributedString RVDateRangeSelectorViewController::titleForUserDefaultObject(
    const Value& object) {
    std::string title;
    if (const auto number = numberOf(object)) {
        title = titleOfPreset(static_cast<DateRangePreset>(*number));
    } else if (object.get<NSData>() != nullptr) {
        title = titleOfInterval(intervalOf(object));
    }
    return RVMetadataManager::attributedString(
        title,
        UIImage::systemImageNamed("calendar", {UIImageSymbolScale::unspecified,
                                               UIImageSymbolWeight::semibold, std::nullopt}));
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

Value RVDateRangeSelectorViewController::stored() const {
    return NSUserDefaults::standardUserDefaults().objectForKey(userDefaultKey_);
}

void RVDateRangeSelectorViewController::store(const NSDateInterval& interval) const {
    NSUserDefaults::standardUserDefaults().setObject(
        userDefaultKey_, NSKeyedArchiver::archivedDataWithRootObject(interval));
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
    previousState_ = stored();
    if (const auto number = numberOf(previousState_)) {
        presetSegmentedControl_.setSelectedIndex(*number, false);
        if (previousState_.isAbsent()) {
            NSUserDefaults::standardUserDefaults().setObject(userDefaultKey_, 0);
        }
    } else if (previousState_.get<NSData>() != nullptr) {
        presetSegmentedControl_.setSelectedIndex(RVDateRangeSegmentedControl::customIndex, false);
        enableDates(true);
        if (const auto interval = intervalOf(previousState_)) {
            showStartOf(*interval);
        }
    }
}

void RVDateRangeSelectorViewController::changeSetting() {
    const std::size_t index = presetSegmentedControl_.selectedIndex();
    if (index != RVDateRangeSegmentedControl::customIndex) {
        enableDates(false);
        NSUserDefaults::standardUserDefaults().setObject(userDefaultKey_, Value(index));
        return;
    }
    const NSDateInterval today = dateIntervalForPreset(DateRangePreset::today);
    store(today);
    showStartOf(today);
}

void RVDateRangeSelectorViewController::changeDate(NSDate picked) {
    datePicker_.date = picked;
    const auto interval = intervalOf(stored());
    if (!interval) {
        return;
    }
    const bool editsStart = dateSegmentedControl_.selectedSegmentIndex == 0;
    const NSDate start = editsStart ? Extended::startOfDay(picked) : interval->startDate();
    const NSDate end = editsStart ? interval->endDate() : Extended::endOfDay(picked);
    if (start <= end) {
        store({start, end});
    }
}

void RVDateRangeSelectorViewController::toggleDate(std::size_t segment) {
    dateSegmentedControl_.selectedSegmentIndex = segment;
    const auto interval = intervalOf(stored());
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
    if (previousState_.isAbsent() || previousState_ != stored()) {
        NSNotificationCenter::defaultCenter().postNotificationName(
            fmt::format("{}DidChange", userDefaultKey_));
    }
}

}  // namespace tavrion
