// When the listener listens on a day.
//
// Queue: any; a pure function of seed and day. Times are hours of the listener's wall clock.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace tavrion {

/// A stretch of listening.
struct SampleSession {
    /// Where the session stands among its day's possible ones; its songs follow from that.
    std::uint32_t number = 0;
    double startHour = 0;
    /// A song that has begun before this is heard to its end.
    double endHour = 0;
};

/// A session as it is planned for every day of a kind.
struct SampleHabit {
    double earliestStartHour;
    double latestStartHour;
    double shortestMinutes;
    double longestMinutes;
    /// Of all days that are not quiet.
    double chance;
};

/// In the order of the day.
std::span<const SampleHabit> habitsOfWorkdays();
std::span<const SampleHabit> habitsOfWeekends();
/// How many days pass without any music.
inline constexpr double quietDayChance = 0.05;

/// Whether that day, counted as CivilDay counts, is a Saturday or a Sunday.
bool isWeekend(std::int64_t day);

/// Sessions never overlap, and leave more than an hour to those of the next day. `scale`, up to 1,
/// shortens them.
std::vector<SampleSession> sessionsOfDay(std::uint64_t seed, std::int64_t day, double scale);

}  // namespace tavrion
