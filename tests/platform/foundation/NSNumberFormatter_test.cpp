#include "platform/foundation/NSNumberFormatter.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "platform/foundation/NSCalendar.h"

namespace tavrion {
namespace {

class InLocale {
  public:
    explicit InLocale(const char* name) : region_(NSTimeZone(), name), plug_(region_) {}

  private:
    Regional region_;
    Port<Regional>::Plug plug_;
};

std::optional<double> read(const char* locale, const char* text) {
    const InLocale plugged(locale);
    return NSNumberFormatter(NSNumberFormatterStyle::decimal).numberFromString(text);
}

struct ReadRow {
    const char* text;
    std::optional<double> withPoint;
    std::optional<double> withComma;
};

TEST(NSNumberFormatter, readsANumberInTheSeparatorsOfTheLocale) {
    const std::vector<ReadRow> rows{
        {"1234", 1234, 1234},
        {"1,234", 1234, 1.234},
        {"1.234", 1.234, 1234},
        {"1 234", 1234, 1234},
        {"1\u00A0"
         "234",
         1234, 1234},
        {"1\u202F"
         "234",
         1234, 1234},
        {"12,34", std::nullopt, 12.34},
        {"1,2345", std::nullopt, 1.2345},
        {"1.5", 1.5, std::nullopt},
        {"1,5", std::nullopt, 1.5},
        {".5", 0.5, std::nullopt},
        {"5.", 5, std::nullopt},
        {"-5", -5, -5},
        {"\u22125", -5, -5},
        {" 5", 5, 5},
        {"5 ", 5, 5},
        {"\t5\u202F", 5, 5},
        {"\u0661\u0662\u0663", 123, 123},
        {"\uFF15", 5, 5},
    };
    for (const ReadRow& row : rows) {
        for (const char* locale : {"en_US", "en_GB", "ja_JP"}) {
            EXPECT_EQ(read(locale, row.text), row.withPoint) << locale << ": " << row.text;
        }
        for (const char* locale : {"de_DE", "fr_FR"}) {
            EXPECT_EQ(read(locale, row.text), row.withComma) << locale << ": " << row.text;
        }
    }
}

TEST(NSNumberFormatter, refusesWhatIsNoNumber) {
    for (const char* locale : {"en_US", "en_GB", "de_DE", "fr_FR", "ja_JP", "ar_EG"}) {
        for (const char* text : {"", " ", "abc", "12abc", "5-", "50%", "0x10", "1e3", "1E3", "+5",
                                 "(5)", "--5", "$5", "\u221E", "NaN", "nan", "1 2 3 x"}) {
            EXPECT_EQ(read(locale, text), std::nullopt) << locale << ": " << text;
        }
    }
}

TEST(NSNumberFormatter, wholeNumbersKeepAllTheirDigits) {
    const InLocale plugged("en_US");
    NSNumberFormatter formatter(NSNumberFormatterStyle::decimal);
    EXPECT_EQ(formatter.stringFromNumber(std::numeric_limits<std::int64_t>::max()),
              "9,223,372,036,854,775,807");
    EXPECT_EQ(formatter.stringFromNumber(0), "0");
    EXPECT_EQ(formatter.stringFromNumber(-12), "-12");
}

TEST(NSNumberFormatter, theStylesHaveTheirOwnNumberOfDigits) {
    const InLocale plugged("en_US");
    EXPECT_EQ(NSNumberFormatter(NSNumberFormatterStyle::decimal).stringFromNumber(1.23456),
              "1.235");
    EXPECT_EQ(NSNumberFormatter(NSNumberFormatterStyle::percent).stringFromNumber(0.256), "26%");
    EXPECT_EQ(NSNumberFormatter(NSNumberFormatterStyle::percent).stringFromNumber(2), "200%");
    EXPECT_EQ(NSNumberFormatter(NSNumberFormatterStyle::currency).stringFromNumber(0.005), "$0.00");
    EXPECT_EQ(NSNumberFormatter(NSNumberFormatterStyle::currency).stringFromNumber(-0.001),
              "$0.00");
}

TEST(NSNumberFormatter, whatIsNoNumberHasNoSign) {
    const InLocale plugged("en_US");
    const NSNumberFormatter formatter(NSNumberFormatterStyle::percent);
    for (const double sign : {1.0, -1.0}) {
        EXPECT_EQ(formatter.stringFromNumber(std::copysign(std::nan(""), sign)), "NaN%");
    }
}

TEST(NSNumberFormatter, whatIsSetOnItWinsOverTheRegion) {
    const InLocale plugged("en_US");
    NSNumberFormatter formatter(NSNumberFormatterStyle::decimal);
    formatter.setLocale("de_DE");
    EXPECT_EQ(formatter.stringFromNumber(1234.5), "1.234,5");
    EXPECT_EQ(formatter.numberFromString("1.234,5"), 1234.5);
}

}  // namespace
}  // namespace tavrion
