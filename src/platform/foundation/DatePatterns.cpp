#include "platform/foundation/DatePatterns.h"

#include <unicode/dtptngen.h>
#include <unicode/simpleformatter.h>
#include <unicode/smpdtfmt.h>

#include <memory>

#include "platform/foundation/IcuText.h"
#include "platform/foundation/Precondition.h"

namespace tavrion::DatePatterns {

namespace {

icu::DateFormat::EStyle icuStyle(NSDateFormatterStyle style) {
    switch (style) {
        case NSDateFormatterStyle::shortStyle:
            return icu::DateFormat::kShort;
        case NSDateFormatterStyle::mediumStyle:
            return icu::DateFormat::kMedium;
        case NSDateFormatterStyle::longStyle:
            return icu::DateFormat::kLong;
        case NSDateFormatterStyle::none:
            break;
    }
    return icu::DateFormat::kNone;
}

/// Of a format that ICU made and that is given up here.
icu::UnicodeString patternOf(icu::DateFormat* made) {
    const std::unique_ptr<icu::DateFormat> format(made);
    const auto* simple = dynamic_cast<icu::SimpleDateFormat*>(format.get());
    precondition(simple != nullptr, "ICU has its date formats");
    icu::UnicodeString pattern;
    simple->toPattern(pattern);
    return pattern;
}

std::unique_ptr<icu::DateTimePatternGenerator> generatorFor(const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(locale, status));
    precondition(U_SUCCESS(status) && generator, "ICU has its date patterns");
    return generator;
}

/// "Jan 5, 2024 at 3:04 PM": the words between a date and a time that a long date has.
icu::UnicodeString joinedByWords(const icu::UnicodeString& date, const icu::UnicodeString& time,
                                 const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::SimpleFormatter words(generatorFor(locale)->getDateTimeFormat(UDAT_LONG, status), 2,
                                     2, status);
    icu::UnicodeString joined;
    words.format(time, date, joined, status);
    precondition(U_SUCCESS(status), "ICU joins a date and a time");
    return joined;
}

icu::UnicodeString ofStyles(NSDateFormatterStyle date, NSDateFormatterStyle time,
                            const icu::Locale& locale) {
    const bool hasDate = date != NSDateFormatterStyle::none;
    const bool hasTime = time != NSDateFormatterStyle::none;
    if (!hasDate && !hasTime) {
        return {};
    }
    if (!hasDate) {
        return patternOf(icu::DateFormat::createTimeInstance(icuStyle(time), locale));
    }
    if (!hasTime) {
        return patternOf(icu::DateFormat::createDateInstance(icuStyle(date), locale));
    }
    if (date == NSDateFormatterStyle::mediumStyle) {
        const auto dateAlone = ofStyles(date, NSDateFormatterStyle::none, locale);
        if (dateAlone.indexOf(u"MMM") >= 0) {
            return joinedByWords(dateAlone, ofStyles(NSDateFormatterStyle::none, time, locale),
                                 locale);
        }
    }
    return patternOf(
        icu::DateFormat::createDateTimeInstance(icuStyle(date), icuStyle(time), locale));
}

icu::UnicodeString ofParts(const std::string& parts, const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const auto generator = generatorFor(locale);
    const icu::UnicodeString skeleton =
        icu::DateTimePatternGenerator::staticGetSkeleton(unicodeText(parts), status);
    icu::UnicodeString pattern = generator->getBestPattern(skeleton, status);
    precondition(U_SUCCESS(status), "ICU has a pattern for the parts of a date");
    return pattern;
}

}  // namespace

icu::Locale gregorianLocale(const std::string& name) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale locale(name.c_str());
    locale.setKeywordValue("calendar", "gregorian", status);
    return locale;
}

icu::UnicodeString ofForm(const NSDateForm& form) {
    const icu::Locale locale = gregorianLocale(form.locale);
    switch (form.kind) {
        case NSDateForm::Kind::parts:
            return ofParts(form.letters, locale);
        case NSDateForm::Kind::format:
            return unicodeText(form.letters);
        case NSDateForm::Kind::styles:
            break;
    }
    return ofStyles(form.dateStyle, form.timeStyle, locale);
}

bool tellsOffset(const icu::UnicodeString& pattern) {
    bool isQuoted = false;
    for (std::int32_t i = 0; i < pattern.length(); ++i) {
        const char16_t letter = pattern[i];
        isQuoted = letter == u'\'' ? !isQuoted : isQuoted;
        if (!isQuoted && icu::UnicodeString(u"zZOvVXx").indexOf(letter) >= 0) {
            return true;
        }
    }
    return false;
}

}  // namespace tavrion::DatePatterns
