#include "platform/foundation/NSDate.h"

#include <absl/time/civil_time.h>
#include <fmt/core.h>

#include <charconv>
#include <cmath>

#include "platform/foundation/Clock.h"
#include "platform/foundation/Port.h"

namespace tavrion {

namespace {

constexpr absl::CivilSecond referenceTime(2001, 1, 1);
constexpr absl::CivilSecond firstTime(1, 1, 1);
constexpr absl::CivilSecond lastTime(9999, 12, 31, 23, 59, 59);

/// The greatest count of milliseconds whose instant is not after `seconds`. An instant that was
/// read from a text with milliseconds is the double nearest to them, which may be a little below:
/// comparing the doubles, instead of cutting the product, gives the same milliseconds back.
std::int64_t millisecondsRoundedDown(double seconds) {
    const double earliest = static_cast<double>(firstTime - referenceTime);
    const double latest = static_cast<double>(lastTime - referenceTime) + 0.999;
    if (!(seconds > earliest)) {
        return (firstTime - referenceTime) * 1000;
    }
    if (seconds >= latest) {
        return (lastTime - referenceTime) * 1000 + 999;
    }
    auto milliseconds = static_cast<std::int64_t>(std::floor(seconds * 1000.0));
    if (static_cast<double>(milliseconds + 1) / 1000.0 <= seconds) {
        milliseconds += 1;
    } else if (static_cast<double>(milliseconds) / 1000.0 > seconds) {
        milliseconds -= 1;
    }
    return milliseconds;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Reads a text from its start to its end; every step says whether it found what it looked for.
class IsoReader {
  public:
    explicit IsoReader(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }
    bool literal(char c) {
        if (rest_.empty() || rest_.front() != c) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }
    /// Exactly `count` digits.
    std::optional<int> number(std::size_t count) {
        if (rest_.size() < count) {
            return std::nullopt;
        }
        int number = 0;
        for (const char c : rest_.substr(0, count)) {
            if (!isDigit(c)) {
                return std::nullopt;
            }
            number = number * 10 + (c - '0');
        }
        rest_.remove_prefix(count);
        return number;
    }
    /// All digits from here on.
    std::string_view digits() {
        std::size_t count = 0;
        while (count < rest_.size() && isDigit(rest_[count])) {
            count += 1;
        }
        const std::string_view digits = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return digits;
    }

  private:
    std::string_view rest_;
};

std::optional<absl::CivilSecond> readDateAndTime(IsoReader& reader) {
    const auto year = reader.number(4);
    const auto month = reader.literal('-') ? reader.number(2) : std::nullopt;
    const auto day = reader.literal('-') ? reader.number(2) : std::nullopt;
    const auto hour = reader.literal('T') ? reader.number(2) : std::nullopt;
    const auto minute = reader.literal(':') ? reader.number(2) : std::nullopt;
    const auto second = reader.literal(':') ? reader.number(2) : std::nullopt;
    if (!year || !month || !day || !hour || !minute || !second || *year < 1) {
        return std::nullopt;
    }
    const absl::CivilSecond time(*year, *month, *day, *hour, *minute, *second);
    // A field outside its range is carried into the next one; then the day or the time is another
    // one.
    const bool exists = time.month() == *month && time.day() == *day && time.hour() == *hour &&
                        time.minute() == *minute && time.second() == *second;
    return exists ? std::optional(time) : std::nullopt;
}

/// The offset from UTC in seconds, east positive.
std::optional<int> readOffset(IsoReader& reader) {
    if (reader.literal('Z')) {
        return 0;
    }
    const bool east = reader.literal('+');
    if (!east && !reader.literal('-')) {
        return std::nullopt;
    }
    const auto hours = reader.number(2);
    reader.literal(':');
    const auto minutes = reader.number(2);
    if (!hours || !minutes || *hours > 23 || *minutes > 59) {
        return std::nullopt;
    }
    const int offset = *hours * 3600 + *minutes * 60;
    return east ? offset : -offset;
}

/// The double nearest to `seconds` plus the decimal fraction of `digits`.
double nearestDouble(std::int64_t seconds, std::string_view digits) {
    std::string fraction(digits);
    while (!fraction.empty() && fraction.back() == '0') {
        fraction.pop_back();
    }
    if (seconds < 0 && !fraction.empty()) {
        // -5 s + 0.25 s is written -4.75: the magnitude is one less, and the fraction is taken from
        // one.
        seconds += 1;
        for (char& digit : fraction) {
            digit = static_cast<char>('0' + ('9' - digit));
        }
        fraction.back() =
            static_cast<char>(fraction.back() + 1);  // not '9': the last digit was no zero
        const std::string text = fmt::format("{}.{}", -seconds, fraction);
        double magnitude = 0;
        std::from_chars(text.data(), text.data() + text.size(), magnitude);
        return -magnitude;
    }
    const std::string text = fmt::format("{}.{}", seconds, fraction.empty() ? "0" : fraction);
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

}  // namespace

NSDate NSDate::date() {
    return Port<Clock>::current().now();
}

std::string isoTextOfDate(NSDate date) {
    const std::int64_t milliseconds =
        millisecondsRoundedDown(date.timeIntervalSinceReferenceDate());
    const std::int64_t fraction = ((milliseconds % 1000) + 1000) % 1000;
    const absl::CivilSecond time = referenceTime + (milliseconds - fraction) / 1000;
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z", time.year(), time.month(),
                       time.day(), time.hour(), time.minute(), time.second(), fraction);
}

std::optional<NSDate> dateFromIsoText(std::string_view text) {
    IsoReader reader(text);
    const auto time = readDateAndTime(reader);
    if (!time) {
        return std::nullopt;
    }
    std::string_view fraction;
    if (reader.literal('.')) {
        fraction = reader.digits();
        if (fraction.empty()) {
            return std::nullopt;
        }
    }
    const auto offset = readOffset(reader);
    if (!offset || !reader.atEnd()) {
        return std::nullopt;
    }
    // The offset can lead out of the years that a text can show.
    const absl::CivilSecond universal = *time - *offset;
    if (universal < firstTime || universal > lastTime) {
        return std::nullopt;
    }
    return NSDate::dateWithTimeIntervalSinceReferenceDate(
        nearestDouble(universal - referenceTime, fraction));
}

}  // namespace tavrion
