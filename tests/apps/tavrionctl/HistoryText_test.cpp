// The page of the History screen as lines of text, on narrow and wide terminals.

#include "apps/tavrionctl/HistoryText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/foundation/DisplayWidth.h"
#include "tests/support/RecordingEnvironment.h"

namespace tavrion::ctl {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class HistoryTextTest : public testing::Test {
  protected:
    HistoryTextTest() {
        PlaybackHistory wide = environment.makeHistory("長い長い長い長い長い長い歌の名前", 3000);
        wide.setArtist("とても長い名前の楽団とその仲間たち");
        PlaybackHistory plain =
            environment.makeHistory("A song with a name that takes its time", 90);
        plain.setArtist("Somebody & the Ones Who Came Along");
        for (int day = 0; day < 45; ++day) {
            const double noon = now - day * 86400.0;
            environment.makePlay(day % 3 == 0 ? wide : plain, noon - 60);
            environment.makePlay(plain, noon - 7200, day % 5 == 0);
        }
        environment.library.publish({{.title = "A song with a name that takes its time",
                                      .artist = "Somebody & the Ones Who Came Along",
                                      .duration = 90},
                                     {.title = "Another", .duration = 5}});
    }
    HistoryPage page(int days) {
        const NSDate end = RecordingEnvironment::at(now + 43199);
        return HistoryPage::of(
            environment.main().snapshot(),
            DateRange(NSDateInterval(end.dateByAddingTimeInterval(1 - days * 86400.0), end)));
    }
    void choose(HistoryPage& page, std::size_t bar) {
        const HistoryBar entry = page.statCell.chart->bars[bar];
        ASSERT_TRUE(page.highlight(entry));
        HistorySelection selection =
            HistorySelection::of(environment.main().snapshot(), *entry.data, false);
        page.showSelectionTotals(selection.totals);
        page.showSelection(std::move(selection));
    }
    std::vector<std::string> lines(const HistoryPage& page, std::size_t width,
                                   const TerminalAbilities& abilities = {true, false}) {
        std::vector<std::string> lines;
        HistoryText(page, "The Range", width, abilities)
            .print(environment.main(), [&](const std::string& line) { lines.push_back(line); });
        return lines;
    }

    /// Noon of the first of March 2026, UTC.
    static constexpr double now = 794059200;
    RecordingEnvironment environment;
};

TEST_F(HistoryTextTest, everythingFitsIntoTerminalsOfAllWidths) {
    for (const int days : {1, 7, 30, 45}) {
        const HistoryPage shown = page(days);
        for (std::size_t width = 1; width < 140; ++width) {
            for (const std::string& line : lines(shown, width)) {
                // Rows need a place for the time; titles and messages are left to wrap.
                constexpr std::size_t longestTime = 15;
                if (line.starts_with(' ')) {
                    EXPECT_LE(displayWidth(line), std::max(width, longestTime)) << line;
                }
                EXPECT_FALSE(line.ends_with(' ')) << line;
            }
        }
    }
}

TEST_F(HistoryTextTest, daysThatHaveNoRoomAreReported) {
    EXPECT_THAT(lines(page(45), 40),
                Contains("The last 32 of 45 days; a wider terminal shows more."));
    EXPECT_THAT(lines(page(45), 80), Not(Contains(HasSubstr("wider terminal"))));
}

TEST_F(HistoryTextTest, onlyAPageWithEstimatesExplainsTheMark) {
    EXPECT_THAT(lines(page(1), 80), Contains("* The time of this play is an estimate."));
    HistoryPage shown = page(7);
    choose(shown, 5);
    EXPECT_THAT(lines(shown, 80), Not(Contains(HasSubstr("*"))));
}

TEST_F(HistoryTextTest, theChosenBarStandsOutAndItsDayIsAlone) {
    HistoryPage shown = page(7);
    choose(shown, 5);
    const std::vector<std::string> text = lines(shown, 80);
    EXPECT_THAT(text, Contains(HasSubstr("░")));
    EXPECT_THAT(text, Contains("Yesterday · 2 plays"));
    EXPECT_THAT(text, Not(Contains(HasSubstr("Today · "))));
    EXPECT_EQ(text[1], "1 Song   3 Minutes Listened");
}

TEST_F(HistoryTextTest, coloursAreOnlyWhereTheyAreShown) {
    EXPECT_THAT(lines(page(7), 80), Not(Contains(HasSubstr("\033"))));
    EXPECT_EQ(lines(page(7), 80, {true, true})[0], "\033[1mThe Range\033[0m");
}

}  // namespace
}  // namespace tavrion::ctl
