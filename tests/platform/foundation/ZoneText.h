// Instants as the wall clock of a zone shows them, for tables in tests.
//
// Queue: any. Stateless.
#pragma once

#include <fmt/core.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/foundation/NSDate.h"
#include "platform/foundation/NSTimeZone.h"

namespace tavrion::test {

inline NSTimeZone zoneNamed(const std::string& name) {
    const auto zone = NSTimeZone::timeZoneWithName(name);
    EXPECT_TRUE(zone.has_value()) << name;
    return zone.value_or(NSTimeZone());
}

/// "2024-03-10T02:30:00-05:00".
inline NSDate instant(const std::string& isoText) {
    const auto date = dateFromIsoText(isoText);
    EXPECT_TRUE(date.has_value()) << isoText;
    return date.value_or(NSDate());
}

/// "2024-03-10T02:30:00-05:00".
inline std::string textInZone(const NSTimeZone& zone, NSDate date) {
    const CivilTime time = zone.civilTime(date);
    const int minutes = zone.secondsFromGMTForDate(date) / 60;
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}{}{:02}:{:02}", time.year, time.month,
                       time.day, time.hour, time.minute, time.second, minutes < 0 ? '-' : '+',
                       std::abs(minutes) / 60, std::abs(minutes) % 60);
}

}  // namespace tavrion::test
