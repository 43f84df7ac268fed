#include "sources/sample/SampleDay.h"

#include "sources/sample/SampleRandom.h"

namespace tavrion {

namespace {

// Night, way to work, lunch, afternoon, way home, evening. The latest evening ends at half past
// eleven and the earliest night begins at a quarter to one, so that a clock that is put forward in
// between does no harm.
constexpr std::array<SampleHabit, 6> workdays{{{0.75, 1.25, 30, 60, 0.02},
                                               {7, 7.75, 20, 40, 0.85},
                                               {12.25, 12.75, 15, 30, 0.35},
                                               {14, 15.75, 30, 80, 0.4},
                                               {17.25, 18, 20, 45, 0.8},
                                               {19.25, 20.75, 50, 150, 0.85}}};

constexpr std::array<SampleHabit, 4> weekends{{{0.75, 1.5, 45, 80, 0.15},
                                               {9.5, 10.5, 40, 90, 0.7},
                                               {14, 16, 60, 130, 0.7},
                                               {19.25, 21, 70, 150, 0.85}}};

}  // namespace

std::span<const SampleHabit> habitsOfWorkdays() {
    return workdays;
}

std::span<const SampleHabit> habitsOfWeekends() {
    return weekends;
}

bool isWeekend(std::int64_t day) {
    // Day 0 was a Thursday.
    const std::int64_t weekday = ((day % 7) + 7) % 7;
    return weekday == 2 || weekday == 3;
}

std::vector<SampleSession> sessionsOfDay(std::uint64_t seed, std::int64_t day, double scale) {
    const auto number = static_cast<std::uint64_t>(day);
    std::vector<SampleSession> sessions;
    if (SampleRandom(sampleHash(seed, SamplePurpose::quietDay, number)).chance(quietDayChance)) {
        return sessions;
    }
    SampleRandom random(sampleHash(seed, SamplePurpose::session, number));
    const std::span<const SampleHabit> habits =
        isWeekend(day) ? habitsOfWeekends() : habitsOfWorkdays();
    for (std::uint32_t i = 0; i < habits.size(); ++i) {
        const SampleHabit& habit = habits[i];
        const double start = random.between(habit.earliestStartHour, habit.latestStartHour);
        const double minutes = random.between(habit.shortestMinutes, habit.longestMinutes) * scale;
        if (random.chance(habit.chance)) {
            sessions.push_back({i, start, start + minutes / 60});
        }
    }
    return sessions;
}

}  // namespace tavrion
