// What all formatters write, by the tables tests/data/formatter-texts.tsv and calendar-texts.tsv.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "platform/foundation/NSDateComponentsFormatter.h"
#include "platform/foundation/NSDateFormatter.h"
#include "platform/foundation/NSNumberFormatter.h"
#include "tests/platform/foundation/ZoneText.h"
#include "tests/support/ExpectedTexts.h"

namespace tavrion {
namespace {

using test::ExpectedText;

using Formatter = std::function<std::string(const ExpectedText& row)>;

double number(const ExpectedText& row) {
    return std::strtod(row.cell("value").c_str(), nullptr);
}

Formatter dates(const std::function<void(NSDateFormatter&)>& configure) {
    return [configure](const ExpectedText& row) {
        NSDateFormatter formatter;
        configure(formatter);
        return formatter.stringFromDate(test::instant(row.cell("value")));
    };
}

Formatter styles(NSDateFormatterStyle date, NSDateFormatterStyle time) {
    return dates([date, time](NSDateFormatter& formatter) {
        formatter.setDateStyle(date);
        formatter.setTimeStyle(time);
    });
}

Formatter durations(NSDateComponentsFormatterUnitsStyle style, std::uint64_t units,
                    NSDateComponentsFormatterZeroBehavior zeros, std::size_t most) {
    return [=](const ExpectedText& row) {
        NSDateComponentsFormatter formatter;
        formatter.setUnitsStyle(style);
        formatter.setAllowedUnits(units);
        formatter.setZeroFormattingBehavior(zeros);
        formatter.setMaximumUnitCount(most);
        return formatter.stringFromTimeInterval(number(row));
    };
}

std::string age(const ExpectedText& row) {
    NSDateComponentsFormatter formatter;
    formatter.setUnitsStyle(NSDateComponentsFormatterUnitsStyle::shortStyle);
    formatter.setAllowedUnits(8220);
    formatter.setMaximumUnitCount(1);
    formatter.setCollapsesLargestUnit(true);
    return formatter.stringFromTimeInterval(number(row) * 86400);
}

Formatter numbers(NSNumberFormatterStyle style, std::optional<int> digits,
                  const std::string& currency = {}) {
    return [=](const ExpectedText& row) {
        NSNumberFormatter formatter(style);
        if (digits) {
            formatter.setMaximumFractionDigits(*digits);
        }
        if (!currency.empty()) {
            formatter.setCurrencyCode(currency);
        }
        return formatter.stringFromNumber(number(row));
    };
}

std::map<std::string, Formatter> namedFormatters() {
    using Style = NSDateFormatterStyle;
    using Units = NSDateComponentsFormatterUnitsStyle;
    using Zeros = NSDateComponentsFormatterZeroBehavior;
    const std::uint64_t minutes = NSCalendarUnit::minute;
    const std::uint64_t minutesSeconds = minutes | NSCalendarUnit::second;
    const std::uint64_t hoursMinutesSeconds = minutesSeconds | NSCalendarUnit::hour;
    return {
        {"date short", styles(Style::shortStyle, Style::none)},
        {"date medium", styles(Style::mediumStyle, Style::none)},
        {"date long", styles(Style::longStyle, Style::none)},
        {"time short", styles(Style::none, Style::shortStyle)},
        {"date short, time short", styles(Style::shortStyle, Style::shortStyle)},
        {"date medium, time short", styles(Style::mediumStyle, Style::shortStyle)},
        {"date long, time short", styles(Style::longStyle, Style::shortStyle)},
        {"duration short, minutes", durations(Units::shortStyle, minutes, Zeros::standard, 0)},
        {"duration abbreviated, hours minutes seconds, 2 units",
         durations(Units::abbreviated, hoursMinutesSeconds, Zeros::standard, 2)},
        {"duration abbreviated, hours minutes seconds, 1 unit",
         durations(Units::abbreviated, hoursMinutesSeconds, Zeros::standard, 1)},
        {"duration positional, hours minutes seconds, zeros stay",
         durations(Units::positional, hoursMinutesSeconds, Zeros::none, 0)},
        {"duration positional, minutes seconds, zeros stay",
         durations(Units::positional, minutesSeconds, Zeros::none, 0)},
        {"duration positional, minutes, leading zeros dropped",
         durations(Units::positional, minutes, Zeros::dropLeading, 0)},
        {"age", age},
        {"decimal", numbers(NSNumberFormatterStyle::decimal, 0)},
        {"percent", numbers(NSNumberFormatterStyle::percent, 1)},
        {"currency", numbers(NSNumberFormatterStyle::currency, std::nullopt)},
        {"currency USD", numbers(NSNumberFormatterStyle::currency, std::nullopt, "USD")},
    };
}

/// "parts MMMd" and "format h a" carry their letters.
Formatter formatterOf(const std::string& form) {
    static const std::map<std::string, Formatter> named = namedFormatters();
    const auto found = named.find(form);
    if (found != named.end()) {
        return found->second;
    }
    const std::string letters = form.substr(form.find(' ') + 1);
    if (form.starts_with("parts ")) {
        return dates([letters](NSDateFormatter& formatter) {
            formatter.setLocalizedDateFormatFromTemplate(letters);
        });
    }
    if (form.starts_with("format ")) {
        return dates([letters](NSDateFormatter& formatter) { formatter.setDateFormat(letters); });
    }
    ADD_FAILURE() << "the form \"" << form << "\" is unknown";
    return [](const ExpectedText&) { return std::string(); };
}

void expectTextsIn(const std::string& locale, const std::string& table = "formatter-texts.tsv") {
    for (const ExpectedText& row : test::expectedTexts(table)) {
        const std::string& zone = row.cell("zone");
        Regional region(zone == "-" ? NSTimeZone() : test::zoneNamed(zone), locale);
        const Port<Regional>::Plug plug(region);
        EXPECT_EQ(formatterOf(row.cell("form"))(row), row.inLocale(locale))
            << table << ":" << row.line << " in " << locale;
    }
}

TEST(FormatterTexts, inAmericanEnglish) {
    expectTextsIn("en_US");
}

TEST(FormatterTexts, inBritishEnglish) {
    expectTextsIn("en_GB");
}

TEST(FormatterTexts, inGerman) {
    expectTextsIn("de_DE");
}

TEST(FormatterTexts, inFrench) {
    expectTextsIn("fr_FR");
}

TEST(FormatterTexts, inJapanese) {
    expectTextsIn("ja_JP");
}

TEST(FormatterTexts, inEgyptianArabic) {
    expectTextsIn("ar_EG");
}

// People of these locales have calendars of their own, too.

TEST(FormatterTexts, datesAreOfOneCalendarInThai) {
    expectTextsIn("th_TH", "calendar-texts.tsv");
}

TEST(FormatterTexts, datesAreOfOneCalendarInPersian) {
    expectTextsIn("fa_IR", "calendar-texts.tsv");
}

TEST(FormatterTexts, datesAreOfOneCalendarInSaudiArabic) {
    expectTextsIn("ar_SA", "calendar-texts.tsv");
}

TEST(FormatterTexts, datesAreOfOneCalendarWhateverTheLocaleAsksFor) {
    expectTextsIn("en_US@calendar=buddhist", "calendar-texts.tsv");
}

}  // namespace
}  // namespace tavrion
