#include "platform/foundation/NSDate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/foundation/Clock.h"
#include "platform/foundation/Port.h"

namespace tavrion {
namespace {

NSDate at(double seconds) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
}

double secondsOf(const std::string& text) {
    const auto date = dateFromIsoText(text);
    EXPECT_TRUE(date.has_value()) << text;
    return date ? date->timeIntervalSinceReferenceDate() : std::nan("");
}

TEST(NSDate, theReferenceDateIsTheStartOf2001) {
    EXPECT_EQ(isoTextOfDate(NSDate()), "2001-01-01T00:00:00.000Z");
    EXPECT_EQ(NSDate::dateWithTimeIntervalSince1970(978307200).timeIntervalSinceReferenceDate(), 0);
    EXPECT_EQ(at(1).timeIntervalSince1970(), 978307201);
}

TEST(NSDate, theFarEndsAreTheYears1And4001) {
    EXPECT_EQ(isoTextOfDate(NSDate::distantPast()), "0001-01-01T00:00:00.000Z");
    EXPECT_EQ(isoTextOfDate(NSDate::distantFuture()), "4001-01-01T00:00:00.000Z");
}

TEST(NSDate, thePresentIsThePluggedClocks) {
    const FixedClock clock(at(794059200.25));
    FixedClock plugged = clock;
    const Port<Clock>::Plug plug(plugged);
    EXPECT_EQ(NSDate::date(), at(794059200.25));
}

TEST(NSDate, theLaterOfTwoDatesIsNeverAnAbsentOne) {
    EXPECT_EQ(laterDate(at(1), at(2)), at(2));
    EXPECT_EQ(laterDate(at(2), at(1)), at(2));
    EXPECT_EQ(laterDate(std::nullopt, at(1)), at(1));
    EXPECT_EQ(laterDate(at(1), std::nullopt), at(1));
    EXPECT_EQ(laterDate(std::nullopt, std::nullopt), std::nullopt);
}

TEST(NSDate, textHasMillisecondsRoundedDown) {
    EXPECT_EQ(isoTextOfDate(at(794059200.25)), "2026-03-01T12:00:00.250Z");
    EXPECT_EQ(isoTextOfDate(at(794059200.2509)), "2026-03-01T12:00:00.250Z");
    EXPECT_EQ(isoTextOfDate(at(794059200.9999)), "2026-03-01T12:00:00.999Z");
    EXPECT_EQ(isoTextOfDate(at(-0.0001)), "2000-12-31T23:59:59.999Z");
    EXPECT_EQ(isoTextOfDate(at(-1)), "2000-12-31T23:59:59.000Z");
    EXPECT_EQ(isoTextOfDate(at(-1.5)), "2000-12-31T23:59:58.500Z");
}

TEST(NSDate, textOfYearsOutsideTheRangeIsClamped) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(isoTextOfDate(at(-1e12)), "0001-01-01T00:00:00.000Z");
    EXPECT_EQ(isoTextOfDate(at(1e12)), "9999-12-31T23:59:59.999Z");
    EXPECT_EQ(isoTextOfDate(at(-infinity)), "0001-01-01T00:00:00.000Z");
    EXPECT_EQ(isoTextOfDate(at(infinity)), "9999-12-31T23:59:59.999Z");
    EXPECT_EQ(isoTextOfDate(at(std::nan(""))), "0001-01-01T00:00:00.000Z");
}

TEST(NSDate, everyMillisecondReadsBackAsTheSameText) {
    for (const std::string start : {"2026-03-01T12:00:00.", "1999-12-31T23:59:59.",
                                    "2018-05-30T05:29:03.", "9999-12-31T23:59:59."}) {
        for (int millisecond = 0; millisecond < 1000; ++millisecond) {
            const std::string digits = std::to_string(1000 + millisecond).substr(1);
            const std::string text = start + digits + "Z";
            const auto date = dateFromIsoText(text);
            ASSERT_TRUE(date.has_value()) << text;
            ASSERT_EQ(isoTextOfDate(*date), text);
        }
    }
}

TEST(NSDate, readsOffsetsAndFractions) {
    EXPECT_EQ(secondsOf("2026-03-01T12:00:00Z"), 794059200);
    EXPECT_EQ(secondsOf("2026-03-01T13:00:00.25+01:00"), 794059200.25);
    EXPECT_EQ(secondsOf("2026-03-01T13:00:00+0100"), 794059200);
    EXPECT_EQ(secondsOf("2026-03-01T06:30:00-05:30"), 794059200);
    EXPECT_EQ(secondsOf("2024-02-29T00:00:00Z"), 730857600);
    EXPECT_EQ(secondsOf("0001-01-01T00:00:00Z"), -63113904000.0);
}

TEST(NSDate, fractionsAreCorrectlyRounded) {
    EXPECT_EQ(secondsOf("2026-03-01T12:00:00.1234567Z"), 794059200.1234567);
    EXPECT_EQ(secondsOf("2026-03-01T12:00:00.289Z"), 794059200.289);
    EXPECT_EQ(secondsOf("2001-01-01T00:00:00.1Z"), 0.1);
    EXPECT_EQ(secondsOf("2001-01-01T00:00:00.100000000000000000000000000000001Z"), 0.1);
    EXPECT_EQ(secondsOf("2000-12-31T23:59:59.9Z"), -0.1);
    EXPECT_EQ(secondsOf("2000-12-31T23:59:55.25Z"), -4.75);
    EXPECT_EQ(secondsOf("2000-12-31T23:59:55.050Z"), -4.95);
    EXPECT_EQ(secondsOf("2000-12-31T23:59:55.000Z"), -5);
}

TEST(NSDate, anythingElseIsAbsent) {
    for (const char* text : {"",
                             "2026-03-01",
                             "2026-03-01T12:00:00",
                             "2026-03-01T12:00Z",
                             "2026-03-01 12:00:00Z",
                             "2026-03-01T12:00:00.Z",
                             "2026-03-01T12:00:00z",
                             "2026-03-01T12:00:00Z ",
                             " 2026-03-01T12:00:00Z",
                             "2026-03-01T12:00:00+1",
                             "2026-03-01T12:00:00+24:00",
                             "2026-03-01T12:00:00+01:60",
                             "2026-03-01T12:00:00+01:00Z",
                             "2026-3-1T12:00:00Z",
                             "2026-02-29T12:00:00Z",
                             "2026-13-01T12:00:00Z",
                             "2026-00-01T12:00:00Z",
                             "2026-01-00T12:00:00Z",
                             "2026-03-01T24:00:00Z",
                             "2026-03-01T12:60:00Z",
                             "2026-03-01T12:00:60Z",
                             "0000-03-01T12:00:00Z",
                             "-026-03-01T12:00:00Z",
                             "2026-03-01T12:00:-1Z",
                             "9999-12-31T23:59:59-00:01",
                             "0001-01-01T00:00:00+00:01"}) {
        EXPECT_EQ(dateFromIsoText(text), std::nullopt) << text;
    }
}

TEST(SystemClock, tellsWholeMicroseconds) {
    const double seconds = SystemClock().now().timeIntervalSinceReferenceDate();
    EXPECT_EQ(seconds, std::round(seconds * 1e6) / 1e6);
    EXPECT_FALSE(SystemClock().standsStill());
}

TEST(FixedClock, standsStill) {
    const FixedClock clock(at(5));
    EXPECT_EQ(clock.now(), at(5));
    EXPECT_TRUE(clock.standsStill());
}

}  // namespace
}  // namespace tavrion
