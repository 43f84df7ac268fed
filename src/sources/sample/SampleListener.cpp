#include "sources/sample/SampleListener.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "sources/sample/SampleCalendar.h"
#include "sources/sample/SampleDay.h"

namespace tavrion {

namespace {

constexpr double albumChance = 0.2;
constexpr double skipChance = 0.07;
constexpr double shortestSkip = 4;
constexpr double longestSkip = 45;
constexpr std::uint32_t longestPause = 4;
constexpr int mostPlaysADay = 2;

/// Whoever has more music listens a little more.
double scaleFor(std::uint32_t songs) {
    return std::min(1.0, 0.3 + 0.05 * std::bit_width(songs));
}

/// The instant at which the wall clock shows that hour of the day, but for the changes of the
/// clock.
NSDate instantOfHour(const NSTimeZone& zone, std::int64_t day, double hour) {
    const NSDate asInGreenwich = SampleCalendar::instantOfDay(day, std::floor(hour * 3600));
    const NSDate near =
        asInGreenwich.dateByAddingTimeInterval(-zone.secondsFromGMTForDate(asInGreenwich));
    return asInGreenwich.dateByAddingTimeInterval(-zone.secondsFromGMTForDate(near));
}

/// The songs of one session, one after the other.
class SampleProgramme {
  public:
    SampleProgramme(const SampleCatalogue& catalogue, const SampleTaste& taste,
                    std::vector<std::uint32_t>& today, std::uint64_t seed)
        : catalogue_(catalogue), taste_(taste), today_(today), random_(seed) {
        if (random_.chance(albumChance)) {
            takeAlbum(taste.songOfNextAlbum(random_));
        }
    }

    std::uint32_t next() {
        const bool isOnAlbum = nextOnAlbum_ < endOfAlbum_;
        const std::uint32_t song = isOnAlbum ? nextOnAlbum_++ : freshSong();
        leavesEarly_ = !isOnAlbum && random_.chance(skipChance);
        pause_ = isOnAlbum ? 0 : random_.below(longestPause + 1);
        today_.push_back(song);
        return song;
    }
    bool leavesEarly() const { return leavesEarly_; }
    double pause() const { return pause_; }
    double secondsBeforeSkip() { return random_.between(shortestSkip, longestSkip); }

  private:
    void takeAlbum(std::uint32_t song) {
        const SampleAlbum& album = catalogue_.albumOfSong(song);
        nextOnAlbum_ = std::max(album.firstSong, catalogue_.firstHeardSong());
        endOfAlbum_ = album.firstSong + album.songCount;
    }
    /// A song that was not heard too often today, if one can be found.
    std::uint32_t freshSong() {
        std::uint32_t song = taste_.nextSong(random_);
        for (int tries = 0;
             tries < 4 && std::count(today_.begin(), today_.end(), song) >= mostPlaysADay;
             ++tries) {
            song = taste_.nextSong(random_);
        }
        return song;
    }

    const SampleCatalogue& catalogue_;
    const SampleTaste& taste_;
    std::vector<std::uint32_t>& today_;
    SampleRandom random_;
    std::uint32_t nextOnAlbum_ = 0;
    std::uint32_t endOfAlbum_ = 0;
    bool leavesEarly_ = false;
    double pause_ = 0;
};

}  // namespace

void SampleCounts::add(bool isWhole, NSDate end) {
    ++(isWhole ? plays : skips);
    std::optional<NSDate>& last = isWhole ? lastPlayed : lastSkipped;
    last = laterDate(last, end);
}

SampleListener::SampleListener(const SampleCatalogue& catalogue, NSTimeZone zone)
    : catalogue_(catalogue),
      zone_(std::move(zone)),
      sessionScale_(scaleFor(catalogue.outlines().size)) {}

void SampleListener::visitDay(std::int64_t day, SampleTaste& taste, const Visitor& visit) const {
    const std::uint64_t seed = catalogue_.outlines().seed;
    // Days do not reach into each other, whatever is done to the clocks.
    NSDate cursor = zone_.startOfDay(CivilDay{day});
    const NSDate endOfDay = zone_.startOfDay(CivilDay{day + 1});
    std::vector<std::uint32_t> today;
    for (const SampleSession& session : sessionsOfDay(seed, day, sessionScale_)) {
        taste.moveTo(day, session.startHour);
        SampleProgramme programme(
            catalogue_, taste, today,
            sampleHash(seed, SamplePurpose::choice,
                       static_cast<std::uint64_t>(day) * 16 + session.number));
        cursor = std::max(cursor, instantOfHour(zone_, day, session.startHour));
        const NSDate end =
            cursor.dateByAddingTimeInterval((session.endHour - session.startHour) * 3600);
        while (cursor < end) {
            SamplePlay play{programme.next(), cursor, cursor, !programme.leavesEarly()};
            double seconds = catalogue_.durationOfSong(play.song);
            if (programme.leavesEarly()) {
                seconds = std::min(seconds / 2, programme.secondsBeforeSkip());
            }
            play.end = cursor.dateByAddingTimeInterval(seconds);
            if (play.end > endOfDay) {
                break;
            }
            visit(play);
            cursor = play.end.dateByAddingTimeInterval(programme.pause());
        }
    }
}

void SampleListener::visitDays(std::int64_t first, std::int64_t last, const Visitor& visit) const {
    SampleTaste taste(catalogue_);
    for (std::int64_t day = first; day <= last; ++day) {
        visitDay(day, taste, visit);
    }
}

/// The listener's day of that instant, or the nearest there is.
std::int64_t SampleListener::heldDay(NSDate instant) const {
    return std::clamp(zone_.civilDay(instant).number, SampleCalendar::firstDay,
                      SampleCalendar::lastDay - 1);
}

std::vector<SamplePlay> SampleListener::playsBetween(NSDate start, NSDate end) const {
    std::vector<SamplePlay> plays;
    visitDays(heldDay(start), heldDay(end), [&](const SamplePlay& play) {
        if (play.end > start && play.end <= end) {
            plays.push_back(play);
        }
    });
    return plays;
}

std::vector<SampleCounts> SampleListener::countsAt(NSDate instant) const {
    std::vector<SampleCounts> counts(catalogue_.songCount());
    visitDays(SampleCalendar::firstDay, heldDay(instant), [&](const SamplePlay& play) {
        if (play.end <= instant) {
            counts[play.song].add(play.isWhole, play.end);
        }
    });
    return counts;
}

}  // namespace tavrion
