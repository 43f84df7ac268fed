// The fixed days on which the sample library is built.
//
// Queue: any; constants and pure functions. Days are counted as CivilDay counts them. New music
// comes on Fridays, whenever the library is read.
#pragma once

#include <cstdint>

#include "platform/foundation/NSDate.h"

namespace tavrion::SampleCalendar {

/// Friday, 2016-01-01: the listener's first day. Weeks are counted from it.
inline constexpr std::int64_t firstDay = 16801;
/// The first of the days after which the listener listens no more: 2200-01-01.
inline constexpr std::int64_t lastDay = 84006;
/// 2005-01-01: when the first songs were added.
inline constexpr std::int64_t firstAddedDay = 12784;
/// Friday, 2026-02-27: the week by whose music the library has reached its size.
inline constexpr std::uint32_t fullWeek = 530;
/// Every other week from 2025-01-03 on there is a single that the listener only streams.
inline constexpr std::uint32_t firstStreamedWeek = 470;
inline constexpr std::uint32_t weeksBetweenStreamed = 2;
inline constexpr std::uint32_t streamedCount = 4560;
/// From this hour of its Friday on new music is heard, by the listener's wall clock.
inline constexpr double firstHearingHour = 19;
/// The hour of Greenwich before which an album's first song is added, so that all its songs are
/// there when the first places on earth (14 hours ahead) reach the first hearing.
inline constexpr double latestAddedHour = 4.8;
inline constexpr double secondsBetweenAddedSongs = 7;

constexpr std::int64_t fridayOfWeek(std::uint32_t week) {
    return firstDay + 7 * static_cast<std::int64_t>(week);
}

/// The instant `seconds` after that day began in Greenwich.
constexpr NSDate instantOfDay(std::int64_t day, double seconds) {
    return NSDate::dateWithTimeIntervalSince1970(static_cast<double>(day) * 86400.0 + seconds);
}

}  // namespace tavrion::SampleCalendar
