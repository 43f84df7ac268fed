#include "platform/foundation/NSDateComponentsFormatter.h"

#include <unicode/listformatter.h>
#include <unicode/measfmt.h>
#include <unicode/measure.h>
#include <unicode/numberformatter.h>

#include <algorithm>
#include <cmath>
#include <tuple>

#include "platform/foundation/IcuText.h"
#include "platform/foundation/UnitCounts.h"

namespace tavrion {

namespace {

using UnitsStyle = NSDateComponentsFormatterUnitsStyle;
using ZeroBehavior = NSDateComponentsFormatterZeroBehavior;

constexpr std::uint64_t positionalUnits =
    NSCalendarUnit::hour | NSCalendarUnit::minute | NSCalendarUnit::second;
constexpr std::uint64_t allUnits = positionalUnits | NSCalendarUnit::year | NSCalendarUnit::month |
                                   NSCalendarUnit::weekOfYear | NSCalendarUnit::day;
// Some thirty thousand million years; twice as much still fits into an integer.
constexpr double mostSeconds = 1e18;

icu::MeasureUnit icuUnit(TimeUnit unit) {
    switch (unit) {
        case TimeUnit::year:
            return icu::MeasureUnit::getYear();
        case TimeUnit::month:
            return icu::MeasureUnit::getMonth();
        case TimeUnit::week:
            return icu::MeasureUnit::getWeek();
        case TimeUnit::day:
            return icu::MeasureUnit::getDay();
        case TimeUnit::hour:
            return icu::MeasureUnit::getHour();
        case TimeUnit::minute:
            return icu::MeasureUnit::getMinute();
        case TimeUnit::second:
            break;
    }
    return icu::MeasureUnit::getSecond();
}

/// What the texts of one locale and style are put together with.
class DurationTexts {
  public:
    DurationTexts(const std::string& locale, UnitsStyle style)
        : locale_(locale.c_str()), style_(style) {
        UErrorCode status = U_ZERO_ERROR;
        list_.reset(icu::ListFormatter::createInstance(
            locale_, ULISTFMT_TYPE_UNITS,
            style == UnitsStyle::shortStyle ? ULISTFMT_WIDTH_SHORT : ULISTFMT_WIDTH_NARROW,
            status));
        positional_ = std::make_unique<icu::MeasureFormat>(locale_, UMEASFMT_WIDTH_NUMERIC, status);
        plain_ = icu::number::NumberFormatter::withLocale(locale_);
        precondition(U_SUCCESS(status) && list_, "ICU has its texts of durations");
    }

    icu::UnicodeString joined(const std::vector<UnitCount>& counts) {
        std::vector<icu::UnicodeString> parts;
        parts.reserve(counts.size());
        for (const UnitCount& one : counts) {
            parts.push_back(withUnit(one));
        }
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeString text;
        return list_->format(parts.data(), static_cast<std::int32_t>(parts.size()), text, status);
    }

    /// "1:10:00"; a single number stands alone.
    icu::UnicodeString positional(const std::vector<UnitCount>& counts) const {
        UErrorCode status = U_ZERO_ERROR;
        if (counts.size() == 1) {
            return plain_.formatInt(counts.front().count, status).toString(status);
        }
        std::vector<icu::Measure> measures;
        measures.reserve(counts.size());
        for (const UnitCount& one : counts) {
            measures.emplace_back(icu::Formattable(one.count),
                                  new icu::MeasureUnit(icuUnit(one.unit)), status);
        }
        icu::UnicodeString text;
        icu::FieldPosition nowhere;
        return positional_->formatMeasures(
            measures.data(), static_cast<std::int32_t>(measures.size()), text, nowhere, status);
    }

  private:
    icu::UnicodeString withUnit(const UnitCount& one) {
        UErrorCode status = U_ZERO_ERROR;
        // The short English sign for months is that of minutes too.
        if (one.unit == TimeUnit::month && style_ == UnitsStyle::abbreviated &&
            std::string_view(locale_.getLanguage()) == "en") {
            return plain_.formatInt(one.count, status).toString(status) + u"mo";
        }
        auto found = units_.find(one.unit);
        if (found == units_.end()) {
            found = units_
                        .emplace(one.unit, icu::number::NumberFormatter::withLocale(locale_)
                                               .unit(icuUnit(one.unit))
                                               .unitWidth(style_ == UnitsStyle::shortStyle
                                                              ? UNUM_UNIT_WIDTH_SHORT
                                                              : UNUM_UNIT_WIDTH_NARROW))
                        .first;
        }
        return found->second.formatInt(one.count, status).toString(status);
    }

    icu::Locale locale_;
    UnitsStyle style_;
    std::unique_ptr<icu::ListFormatter> list_;
    std::unique_ptr<icu::MeasureFormat> positional_;
    icu::number::LocalizedNumberFormatter plain_;
    std::map<TimeUnit, icu::number::LocalizedNumberFormatter> units_;
};

DurationTexts& textsFor(const std::string& locale, UnitsStyle style) {
    thread_local FormatterCache<std::pair<std::string, UnitsStyle>, DurationTexts> texts;
    return texts.formatter({locale, style},
                           [&] { return std::make_unique<DurationTexts>(locale, style); });
}

bool isZero(const UnitCount& one) {
    return one.count == 0;
}

/// Leaves at least the smallest unit.
void dropZeros(std::vector<UnitCount>& counts, ZeroBehavior behavior, UnitsStyle style) {
    const bool isStandard = behavior == ZeroBehavior::standard;
    const UnitCount smallest = counts.back();
    if (behavior == ZeroBehavior::dropLeading || (isStandard && style == UnitsStyle::positional)) {
        counts.erase(counts.begin(), std::find_if_not(counts.begin(), counts.end(), isZero));
    } else if (behavior == ZeroBehavior::dropAll || isStandard) {
        std::erase_if(counts, isZero);
    }
    if (counts.empty()) {
        counts.push_back(smallest);
    }
}

bool hasGap(std::uint64_t units) {
    return (units & positionalUnits) == (NSCalendarUnit::hour | NSCalendarUnit::second);
}

}  // namespace

NSDateComponentsFormatter::NSDateComponentsFormatter()
    : locale_(Port<Regional>::current().locale()),
      calendar_(NSCalendar::currentCalendar()),
      allowedUnits_(allUnits) {}

std::string NSDateComponentsFormatter::stringFromTimeInterval(NSTimeInterval seconds) const {
    return stringFromLength(std::abs(seconds), NSDate());
}

std::string NSDateComponentsFormatter::stringFromDate(NSDate from, NSDate to) const {
    return stringFromLength(std::abs(to.timeIntervalSinceDate(from)), std::min(from, to));
}

std::string NSDateComponentsFormatter::stringFromLength(NSTimeInterval seconds,
                                                        NSDate start) const {
    precondition((allowedUnits_ & allUnits) != 0, "a duration is told in some unit");
    precondition(style_ != UnitsStyle::positional ||
                     ((allowedUnits_ & ~positionalUnits) == 0 && !hasGap(allowedUnits_)),
                 "a positional duration has hours, minutes and seconds without a gap");
    if (!std::isfinite(seconds)) {
        return {};
    }
    const auto whole = static_cast<std::int64_t>(std::min(seconds, mostSeconds));
    std::vector<UnitCount> counts = UnitCounts::ofTime(whole, start, allowedUnits_, calendar_);
    if (collapsesLargestUnit_ && UnitCounts::isBarelyOne(counts)) {
        const auto largest = std::find_if_not(counts.begin(), counts.end(), isZero);
        counts = UnitCounts::ofTime(whole, start,
                                    allowedUnits_ & ~UnitCounts::maskOf(largest->unit), calendar_);
    }
    if (maximumUnitCount_ > 0) {
        UnitCounts::roundTo(maximumUnitCount_, counts);
    }
    dropZeros(counts, zeroBehavior_, style_);
    if (maximumUnitCount_ > 0 && counts.size() > maximumUnitCount_) {
        counts.resize(maximumUnitCount_, counts.front());
    }
    DurationTexts& texts = textsFor(locale_, style_);
    return utf8Text(style_ == UnitsStyle::positional ? texts.positional(counts)
                                                     : texts.joined(counts));
}

}  // namespace tavrion
