// A range of dates as the user chooses it: one of the presets, which move with the calendar, or two
// fixed ends.
//
// Queue: any; a value. It is kept in the user defaults as the number of its preset or as the
// archive of an interval. Absent: a missing object is today. What is stored and cannot be read is
// today as well, and keeps its stored form; so is a number that is none of the presets.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kit/NSAttributedString.h"
#include "platform/foundation/NSDateInterval.h"
#include "platform/foundation/Value.h"

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

class DateRange {
  public:
    explicit DateRange(DateRangePreset preset);
    explicit DateRange(const NSDateInterval& interval);
    /// Of its stored form.
    explicit DateRange(Value object);
    /// As it is stored under the key now.
    static DateRange stored(const std::string& key);
    /// As it is written: "today", "past-week", "past-month", "year", "lifetime", or two days as
    /// "2026-01-01..2026-01-31". Absent for any other text, and for days that do not exist.
    static std::optional<DateRange> ofText(const std::string& text);

    /// The stored form.
    const Value& object() const { return object_; }
    /// The number of a preset, also one that there is not; absent for fixed ends and for what
    /// cannot be read.
    std::optional<std::uint64_t> number() const;
    /// Whether fixed ends are stored, if only in an archive that cannot be read.
    bool isCustom() const { return object_.get<NSData>() != nullptr; }
    std::optional<NSDateInterval> fixedInterval() const;
    /// Chosen as the current year; the same days chosen one by one are not.
    bool isCurrentYear() const;

    /// As dates, at present.
    NSDateInterval interval() const;
    /// What a button calls it, at present.
    std::string title() const;
    /// The same with its icon.
    NSAttributedString attributedTitle() const;
    /// The number of the current year, in the digits of the locale.
    static std::string titleOfCurrentYear();

    bool operator==(const DateRange&) const = default;

  private:
    Value object_;
};

}  // namespace tavrion
