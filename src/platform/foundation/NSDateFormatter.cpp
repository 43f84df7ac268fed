#include "platform/foundation/NSDateFormatter.h"

#include <unicode/gregocal.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cmath>
#include <tuple>

#include "platform/foundation/DatePatterns.h"
#include "platform/foundation/IcuText.h"
#include "platform/foundation/NSCalendar.h"

namespace tavrion {

namespace {

// A year of fewer digits is a mistake in the text and not the early Middle Ages.
constexpr std::int64_t firstReadYear = 1000;
// Some three million years, which ICU can still reckon with.
constexpr double mostSeconds = 1e14;

// Earlier than everything that ICU can reckon with.
constexpr UDate beforeAllDates = -1.8e17;

icu::UnicodeString withPlainSpaces(icu::UnicodeString text) {
    return text.findAndReplace(u"\u202F", u" ").findAndReplace(u"\u00A0", u" ");
}

/// ICU's format of one form. It is set to the offset that the time zone has at a date, since ICU's
/// own copy of the zone rules is an old one.
struct PatternFormat {
    std::unique_ptr<icu::SimpleDateFormat> format;
    int secondsFromGMT = 0;
    bool tellsOffset = false;
};

icu::SimpleTimeZone* zoneOfOffset(int secondsFromGMT) {
    return new icu::SimpleTimeZone(secondsFromGMT * 1000, icu::UnicodeString());
}

std::unique_ptr<PatternFormat> makeFormat(const icu::UnicodeString& pattern,
                                          const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    auto made = std::make_unique<PatternFormat>();
    made->tellsOffset = DatePatterns::tellsOffset(pattern);
    made->format = std::make_unique<icu::SimpleDateFormat>(pattern, locale, status);
    std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(zoneOfOffset(0), locale, status));
    precondition(U_SUCCESS(status), "ICU takes the pattern of a date");
    // By one rule for all years, like the days here.
    if (auto* gregorian = dynamic_cast<icu::GregorianCalendar*>(calendar.get())) {
        gregorian->setGregorianChange(beforeAllDates, status);
    }
    made->format->adoptCalendar(calendar.release());
    made->format->setLenient(false);
    return made;
}

/// The same for writing and for reading, where all kinds of blanks are one.
PatternFormat& formatFor(const NSDateForm& form, bool isForReading) {
    thread_local FormatterCache<std::pair<NSDateForm, bool>, PatternFormat> formats;
    return formats.formatter({form, isForReading}, [&] {
        const icu::UnicodeString pattern = DatePatterns::ofForm(form);
        return makeFormat(isForReading ? withPlainSpaces(pattern) : pattern,
                          DatePatterns::gregorianLocale(form.locale));
    });
}

/// Whether only spaces are left behind the place.
bool isWhole(const icu::UnicodeString& text, const icu::ParsePosition& position) {
    for (std::int32_t i = position.getIndex(); i < text.length(); ++i) {
        if (!u_isUWhiteSpace(text[i])) {
            return false;
        }
    }
    return position.getErrorIndex() < 0 && position.getIndex() > 0;
}

bool isSameReading(const CivilTime& a, const CivilTime& b) {
    return std::tie(a.year, a.month, a.day, a.hour, a.minute, a.second) ==
           std::tie(b.year, b.month, b.day, b.hour, b.minute, b.second);
}

/// The instant at which the zone's clock shows what the clock of UTC shows at `reading`.
std::optional<NSDate> instantOfReading(NSDate reading, const NSTimeZone& zone) {
    const CivilTime time = NSTimeZone().civilTime(reading);
    const NSDate date = zone.lastDateOfCivilTime(time);
    return isSameReading(zone.civilTime(date), time) ? std::optional(date) : std::nullopt;
}

UDate icuDate(NSDate date) {
    const double seconds = date.timeIntervalSinceReferenceDate();
    const double held = std::isnan(seconds) ? 0 : std::clamp(seconds, -mostSeconds, mostSeconds);
    return (held + NSDate::secondsFrom1970To2001) * 1000.0;
}

}  // namespace

NSDateFormatter::NSDateFormatter()
    : form_{Port<Regional>::current().locale()}, zone_(Port<Regional>::current().timeZone()) {}

void NSDateFormatter::setDateStyle(NSDateFormatterStyle style) {
    form_.kind = NSDateForm::Kind::styles;
    form_.dateStyle = style;
}

void NSDateFormatter::setTimeStyle(NSDateFormatterStyle style) {
    form_.kind = NSDateForm::Kind::styles;
    form_.timeStyle = style;
}

void NSDateFormatter::setLocalizedDateFormatFromTemplate(std::string parts) {
    form_.kind = NSDateForm::Kind::parts;
    form_.letters = std::move(parts);
}

void NSDateFormatter::setDateFormat(std::string format) {
    form_.kind = NSDateForm::Kind::format;
    form_.letters = std::move(format);
}

std::string NSDateFormatter::stringFromDate(NSDate date) const {
    PatternFormat& pattern = formatFor(form_, false);
    const int offset = zone_.secondsFromGMTForDate(date);
    if (offset != pattern.secondsFromGMT) {
        pattern.format->adoptTimeZone(zoneOfOffset(offset));
        pattern.secondsFromGMT = offset;
    }
    icu::UnicodeString text;
    pattern.format->format(icuDate(date), text);
    return utf8Text(text);
}

std::optional<NSDate> NSDateFormatter::dateFromString(std::string_view text) const {
    const PatternFormat& pattern = formatFor(form_, true);
    const icu::UnicodeString folded = withPlainSpaces(unicodeText(text));
    icu::ParsePosition position(0);
    const UDate read = pattern.format->parse(folded, position);
    if (!isWhole(folded, position)) {
        return std::nullopt;
    }
    const NSDate reading = NSDate::dateWithTimeIntervalSince1970(read / 1000.0);
    if (NSTimeZone().civilTime(reading).year < firstReadYear) {
        return std::nullopt;
    }
    return pattern.tellsOffset ? reading : instantOfReading(reading, zone_);
}

}  // namespace tavrion
