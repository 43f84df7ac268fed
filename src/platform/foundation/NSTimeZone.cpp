#include "platform/foundation/NSTimeZone.h"

#include <absl/time/civil_time.h>
#include <absl/time/time.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "platform/foundation/SystemZone.h"

namespace tavrion {

namespace {

// Some thirty million years: far beyond every date, and far inside what the rules can reckon with.
constexpr double mostSeconds = 1e15;
constexpr std::int64_t mostDays = 11'000'000'000;
constexpr std::int64_t mostYears = 30'000'000;

/// The instant in whole seconds, rounded down.
absl::Time timeOfDate(NSDate date) {
    const double seconds = date.timeIntervalSinceReferenceDate();
    const double held = std::isnan(seconds) ? 0 : std::clamp(seconds, -mostSeconds, mostSeconds);
    return absl::FromUnixSeconds(static_cast<std::int64_t>(std::floor(held)) +
                                 static_cast<std::int64_t>(NSDate::secondsFrom1970To2001));
}

NSDate dateOfTime(absl::Time time) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(static_cast<double>(
        absl::ToUnixSeconds(time) - static_cast<std::int64_t>(NSDate::secondsFrom1970To2001)));
}

std::int64_t heldYear(std::int64_t year) {
    return std::clamp(year, -mostYears, mostYears);
}

}  // namespace

struct NSTimeZone::Rules {
    std::string name;
    absl::TimeZone zone;
};

CivilDay CivilDay::fromDate(std::int64_t year, int month, int day) {
    return CivilDay{absl::CivilDay(heldYear(year), month, day) - absl::CivilDay(1970, 1, 1)};
}

NSTimeZone::NSTimeZone() {
    static const auto utc = std::make_shared<const Rules>(Rules{"UTC", absl::UTCTimeZone()});
    rules_ = utc;
}

NSTimeZone::NSTimeZone(std::shared_ptr<const Rules> rules) : rules_(std::move(rules)) {}

std::optional<NSTimeZone> NSTimeZone::timeZoneWithName(const std::string& name) {
    // The loader also takes paths and names with a prefix ("libc:localtime"), which are no names of
    // zones.
    const bool isName = !name.empty() && name.front() != '/' &&
                        name.find(':') == std::string::npos && name.find("..") == std::string::npos;
    absl::TimeZone zone;
    if (!isName || !absl::LoadTimeZone(name, &zone)) {
        return std::nullopt;
    }
    return NSTimeZone(std::make_shared<const Rules>(Rules{name, zone}));
}

NSTimeZone NSTimeZone::systemTimeZone() {
    auto zone = SystemZone::fromVariable(std::getenv("TZ"));
    if (!zone) {
        zone = SystemZone::fromLink("/etc/localtime");
    }
    if (!zone) {
        zone = SystemZone::fromFile("/etc/timezone");
    }
    return zone.value_or(NSTimeZone());
}

const std::string& NSTimeZone::name() const {
    return rules_->name;
}

int NSTimeZone::secondsFromGMTForDate(NSDate date) const {
    return rules_->zone.At(timeOfDate(date)).offset;
}

CivilTime NSTimeZone::civilTime(NSDate date) const {
    const absl::CivilSecond time = rules_->zone.At(timeOfDate(date)).cs;
    return CivilTime{time.year(), time.month(),  time.day(),
                     time.hour(), time.minute(), time.second()};
}

CivilDay NSTimeZone::civilDay(NSDate date) const {
    const absl::CivilDay day(rules_->zone.At(timeOfDate(date)).cs);
    return CivilDay{day - absl::CivilDay(1970, 1, 1)};
}

NSDate NSTimeZone::startOfDay(CivilDay day) const {
    const absl::CivilDay civilDay =
        absl::CivilDay(1970, 1, 1) + std::clamp(day.number, -mostDays, mostDays);
    const auto found = rules_->zone.At(absl::CivilSecond(civilDay));
    // In a gap the first moment that exists is the change of the clocks itself.
    return dateOfTime(found.kind == absl::TimeZone::TimeInfo::SKIPPED ? found.trans : found.pre);
}

NSDate NSTimeZone::dateOfCivilTime(const CivilTime& time) const {
    const absl::CivilSecond civil(heldYear(time.year), time.month, time.day, time.hour, time.minute,
                                  time.second);
    // Read with the offset before the change, a time in a gap comes out as much later as the gap is
    // long.
    return dateOfTime(rules_->zone.At(civil).pre);
}

NSDate NSTimeZone::lastDateOfCivilTime(const CivilTime& time) const {
    const absl::CivilSecond civil(heldYear(time.year), time.month, time.day, time.hour, time.minute,
                                  time.second);
    const auto found = rules_->zone.At(civil);
    return dateOfTime(found.kind == absl::TimeZone::TimeInfo::REPEATED ? found.post : found.pre);
}

}  // namespace tavrion
