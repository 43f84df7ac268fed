#include "apps/tavrionctl/BarChartText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "platform/foundation/DisplayWidth.h"

namespace tavrion::ctl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr TerminalAbilities everything{true, true};
constexpr TerminalAbilities signsOnly{true, false};
constexpr TerminalAbilities letters{false, false};

BarChartText chartOf(std::vector<double> values, std::vector<std::string> labels = {}) {
    BarChartText chart;
    labels.resize(values.size());
    chart.values = std::move(values);
    chart.label = [labels](std::size_t bar) { return labels[bar]; };
    chart.amount = [](double value) { return std::to_string(static_cast<int>(value)); };
    return chart;
}

TEST(BarChartText, barsRiseInEighthsOfALine) {
    EXPECT_THAT(chartOf({64, 0, 12, 1}, {"a", "", "c", "d"}).lines(15, signsOnly),
                ElementsAre("64 ┤██", "   │██", "   │██", "   │██", "   │██", "   │██",
                            "   │██    ▄▄", "   │██    ██ ▁▁", "   └───────────", "    a     c"));
}

TEST(BarChartText, lettersDoWhereSignsAreNotShown) {
    EXPECT_THAT(chartOf({64, 0, 12, 1}).lines(15, letters),
                ElementsAre("64 |##", "   |##", "   |##", "   |##", "   |##", "   |##",
                            "   |##    ##", "   |##    ## ..", "   +-----------"));
}

TEST(BarChartText, theChosenBarStandsOut) {
    BarChartText chart = chartOf({64, 64});
    chart.chosen = 1;
    EXPECT_EQ(chart.lines(9, signsOnly)[3], "   │░░ ██") << "where no colours are shown";
    EXPECT_EQ(chart.lines(9, letters)[3], "   |:: ##");
    EXPECT_EQ(chart.lines(9, everything)[3],
              "\033[2m   │\033[0m\033[2m██\033[0m \033[35m██\033[0m");
    chart.chosen.reset();
    EXPECT_EQ(chart.lines(9, signsOnly)[3], "   │██ ██");
}

TEST(BarChartText, aChartWithoutValuesIsFlat) {
    EXPECT_THAT(chartOf({0, 0}).lines(9, signsOnly),
                ElementsAre("0 ┤", "  │", "  │", "  │", "  │", "  │", "  │", "  │", "  └─────"));
}

TEST(BarChartText, labelsThatWouldTouchAreLeftOutInEvenSteps) {
    const BarChartText chart =
        chartOf({1, 1, 1, 1, 1, 1}, {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat"});
    EXPECT_EQ(chart.lines(33, signsOnly).back(), "   Mon  Tue  Wed  Thu  Fri  Sat");
    EXPECT_EQ(chart.lines(21, signsOnly).back(), "   Mon  Wed   Fri");
    BarChartText fromLast = chart;
    fromLast.labelsFromLast = true;
    EXPECT_EQ(fromLast.lines(21, signsOnly).back(), "     Tue   Thu   Sat");
    BarChartText stepped = chart;
    stepped.labelSteps = {3};
    EXPECT_EQ(stepped.lines(33, signsOnly).back(), "   Mon            Thu");
}

TEST(BarChartText, whatHasNoRoomIsLeftOutFromTheFront) {
    std::vector<double> values(100, 5);
    values[0] = 9;
    const BarChartText chart = chartOf(values);
    EXPECT_EQ(chart.shownBars(43), 40U);
    EXPECT_EQ(chart.shownBars(1000), 100U);
    EXPECT_EQ(displayWidth(chart.lines(43, signsOnly)[8]), 43U);
    EXPECT_THAT(chart.lines(43, signsOnly)[0], HasSubstr("5 ┤█")) << "the highest one in view";
    EXPECT_EQ(chart.shownBars(3), 0U);
    EXPECT_THAT(chart.lines(3, signsOnly), IsEmpty());
    EXPECT_THAT(chartOf({}).lines(80, signsOnly), IsEmpty());
}

TEST(BarChartText, noLineIsWiderThanTheTerminalOrEndsInBlanks) {
    std::mt19937 random(9);
    for (int round = 0; round < 300; ++round) {
        std::vector<double> values(1 + random() % 90);
        std::vector<std::string> labels;
        for (double& value : values) {
            value = static_cast<double>(random() % 5000);
            labels.push_back(random() % 2 == 0 ? "Wednesday" : "3月4日");
        }
        BarChartText chart = chartOf(values, labels);
        chart.labelsFromLast = round % 2 == 0;
        const std::size_t width = random() % 130;
        for (const std::string& line : chart.lines(width, round % 3 == 0 ? letters : signsOnly)) {
            EXPECT_LE(displayWidth(line), width) << line;
            EXPECT_FALSE(line.ends_with(' ')) << line;
        }
    }
}

}  // namespace
}  // namespace tavrion::ctl
