// Zones with odd days, for everything that goes by days of the calendar: days whose midnight is
// skipped, days of 23, 24.5 and 25 hours, a month that begins without a midnight, and a day that
// was left out.
//
// Queue: any; values. What days there are is found by walking through the time, and not by the
// calendar that is tested.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <ostream>
#include <string>
#include <vector>

#include "platform/foundation/NSTimeZone.h"

namespace tavrion {

/// A day as it was lived.
struct WalkedDay {
    CivilDay day;
    NSDate first;
    /// The last whole second.
    NSDate last;

    /// An instant of the day; there are days of 23 hours.
    NSDate after(double seconds) const { return first.dateByAddingTimeInterval(seconds); }
    NSDate noon() const { return after(12 * 3600.0); }
};

struct DayZone {
    const char* zone;
    std::int64_t year;
    int month;
    int day;

    NSTimeZone timeZone() const { return NSTimeZone::timeZoneWithName(zone).value(); }
    CivilDay oddDay() const { return CivilDay::fromDate(year, month, day); }
    /// The days that there are from so many days before the odd one to so many after it.
    std::vector<WalkedDay> days(int before, int after) const {
        const NSTimeZone rules = timeZone();
        // All offsets from UTC are whole quarters of an hour, so that no day begins in between.
        constexpr double quarter = 900;
        constexpr int daysAround = 2;
        const NSTimeZone utc;
        NSDate date = utc.startOfDay({oddDay().number - before - daysAround});
        const NSDate end = utc.startOfDay({oddDay().number + after + daysAround});
        std::vector<WalkedDay> walked;
        for (; date < end; date = date.dateByAddingTimeInterval(quarter)) {
            const CivilDay here = rules.civilDay(date);
            if (walked.empty() || walked.back().day != here) {
                walked.push_back({here, date, date});
            }
            walked.back().last = date.dateByAddingTimeInterval(quarter - 1);
        }
        std::erase_if(walked, [&](const WalkedDay& each) {
            return each.day.number < oddDay().number - before ||
                   each.day.number > oddDay().number + after;
        });
        return walked;
    }
    /// The odd day, or the one after it where it was left out.
    WalkedDay lived() const {
        const std::vector<WalkedDay> two = days(0, 1);
        return two.front();
    }
    /// The day so many days of the calendar before or after `lived()`; there is one.
    WalkedDay livedDay(int offset) const {
        const CivilDay wanted{lived().day.number + offset};
        for (const WalkedDay& each : days(std::max(0, 1 - offset), std::max(0, offset + 1))) {
            if (each.day == wanted) {
                return each;
            }
        }
        ADD_FAILURE() << zone << " has no day " << wanted.number;
        return lived();
    }
    friend std::ostream& operator<<(std::ostream& out, const DayZone& place) {
        return out << place.zone << " " << place.year << "-" << place.month << "-" << place.day;
    }
};

inline constexpr DayZone dayZones[] = {
    // Midnight is skipped.
    {"Africa/Cairo", 2026, 4, 24},
    {"Asia/Beirut", 2026, 3, 29},
    {"America/Sao_Paulo", 2018, 11, 4},
    {"America/Asuncion", 2023, 10, 1},
    // The last hour of the day comes twice.
    {"Africa/Cairo", 2026, 10, 29},
    {"Asia/Beirut", 2026, 10, 24},
    {"America/Sao_Paulo", 2018, 2, 17},
    {"America/Asuncion", 2024, 3, 23},
    // The clocks change in the night, by an hour or by half of one.
    {"America/New_York", 2026, 3, 8},
    {"America/New_York", 2026, 11, 1},
    {"Australia/Lord_Howe", 2026, 4, 5},
    {"Australia/Lord_Howe", 2026, 10, 4},
    // The day was left out.
    {"Pacific/Apia", 2011, 12, 30},
    {"UTC", 2026, 3, 1},
};

/// "AfricaCairo20260424".
inline std::string nameOfDayZone(const testing::TestParamInfo<DayZone>& info) {
    std::string name = info.param.zone;
    std::erase_if(name, [](unsigned char c) { return std::isalnum(c) == 0; });
    const auto twoDigits = [](int number) {
        return std::string(number < 10 ? "0" : "") + std::to_string(number);
    };
    return name + std::to_string(info.param.year) + twoDigits(info.param.month) +
           twoDigits(info.param.day);
}

}  // namespace tavrion
