// The History screen: its list, its totals, and what choosing a bar does.

#include "tests/timeviews/HistoryFixture.h"

namespace tavrion {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Days = std::vector<std::vector<std::string>>;

class HistoryScreenTest : public HistoryFixture {};

TEST_F(HistoryScreenTest, playsStandInTheirDaysTheNewestFirst) {
    choosePreset(DateRangePreset::pastWeek);
    PlaybackHistory one = song("One");
    PlaybackHistory two = song("Two", 200);
    play(one, "2026-03-13T10:00:00Z");
    play(two, "2026-03-15T09:00:00Z");
    play(one, "2026-03-15T11:00:00Z");
    play(two, "2026-03-08T10:00:00Z");
    EXPECT_THAT(update().sectionIdentifiers(),
                ElementsAre(Value("StatSection"), Value(instant("2026-03-15T23:59:59Z")),
                            Value(instant("2026-03-13T23:59:59Z"))));
    EXPECT_TRUE(screen->snapshot().itemIdentifierForIndexPath({0, 0})->isAbsent());
    EXPECT_EQ(listed(), (Days{{"2026-03-15T11:00:00.000Z", "2026-03-15T09:00:00.000Z"},
                              {"2026-03-13T10:00:00.000Z"}}));
    EXPECT_EQ(totals(), "2 / 6") << "distinct songs, and minutes of every play";
    EXPECT_EQ(screen->state()->statCell.durationCaption, "Minutes Listened");
    EXPECT_TRUE(screen->state()->isBackgroundViewHidden);
    EXPECT_THAT(window.animations, ElementsAre(false));
    EXPECT_EQ(screen->state()->titleForHeaderInSection(0), std::nullopt);
    EXPECT_EQ(screen->state()->titleForHeaderInSection(1), "Today");
    EXPECT_EQ(screen->state()->titleForHeaderInSection(2), "Friday");
    EXPECT_FALSE(screen->hasActionButtonInSection(0));
    EXPECT_TRUE(screen->hasActionButtonInSection(1));
    EXPECT_FALSE(screen->hasActionButtonInSection(2));
}

TEST_F(HistoryScreenTest, withTheLongTimeTheCaptionIsAnotherOne) {
    environment.defaults->setObject("TimeListenedFormatExpanded", true);
    PlaybackHistory one = song("One", 3700);
    play(one, "2026-03-15T10:00:00Z");
    update();
    EXPECT_EQ(totals(), "1 / 1:01:40");
    EXPECT_EQ(screen->state()->statCell.durationCaption, "Time Listened");
}

TEST_F(HistoryScreenTest, anEmptyRangeShowsTheEmptyStateAndTouchesNeitherTotalsNorChart) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    update();
    const std::string before = totals();
    chooseInterval("2020-01-01T00:00:00Z", "2020-01-31T23:59:59Z");
    EXPECT_TRUE(update().isEmpty());
    EXPECT_FALSE(screen->state()->isBackgroundViewHidden);
    EXPECT_EQ(totals(), before);
    EXPECT_EQ(window.charts, 1);
    EXPECT_THAT(chart().bars, SizeIs(24));
    EXPECT_THAT(window.totals, SizeIs(1));
}

TEST_F(HistoryScreenTest, playsOnTheEdgesOfTheRangeAreNotInIt) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T00:00:00Z");
    play(one, "2026-03-15T23:59:59Z");
    play(one, "2026-03-15T23:59:59.500Z");
    EXPECT_TRUE(update().isEmpty());
    play(one, "2026-03-15T00:00:00.001Z");
    play(one, "2026-03-15T23:59:58.999Z");
    EXPECT_THAT(update().itemIdentifiersInSection(1), SizeIs(2));
}

TEST_F(HistoryScreenTest, playsOfOneInstantKeepTheOrderOfTheirRecords) {
    PlaybackHistory one = song("One");
    std::vector<Value> made;
    for (int i = 0; i < 3; ++i) {
        made.emplace_back(play(one, "2026-03-15T10:00:00Z").objectID().reference());
    }
    made.insert(made.begin(), Value(play(one, "2026-03-15T10:00:01Z").objectID().reference()));
    made.emplace_back(play(one, "2026-03-15T09:59:00Z").objectID().reference());
    EXPECT_EQ(update().itemIdentifiersInSection(1), made);
}

TEST_F(HistoryScreenTest, aPlayOnAFirstOfAMonthCountsInTwoBarsAndIsListedInOne) {
    choosePreset(DateRangePreset::currentYear);
    PlaybackHistory one = song("One");
    PlaybackHistory two = song("Two");
    play(one, "2026-02-10T10:00:00Z");
    play(two, "2026-03-01T10:00:00Z");
    update();
    EXPECT_THAT(bars(), ElementsAre("1: 200", "2: 100"));
    choose(1);
    EXPECT_EQ(listed(), (Days{{"2026-02-10T10:00:00.000Z"}}));
    EXPECT_EQ(totals(), "1 / 1") << "less than the bar says";
    EXPECT_EQ(screen->state()->titleForHeaderInSection(1), "February 2026");
    EXPECT_EQ(screen->snapshot().sectionIdentifier(1), Value(instant("2026-02-01T00:00:00Z")));
    choose(2);
    EXPECT_EQ(listed(), (Days{{"2026-03-01T10:00:00.000Z"}}));
}

TEST_F(HistoryScreenTest, aMonthOfOnlyASharedDayEmptiesTheListUntilTheChoiceIsTakenBack) {
    choosePreset(DateRangePreset::currentYear);
    PlaybackHistory one = song("One");
    play(one, "2026-03-01T10:00:00Z");
    update();
    const NSDiffableDataSourceSnapshot whole = screen->snapshot();
    const std::string before = totals();
    choose(1);
    EXPECT_TRUE(screen->snapshot().isEmpty()) << "the row of the totals is gone, too";
    EXPECT_FALSE(screen->state()->deselectCount);
    EXPECT_EQ(totals(), before);
    screen->chartValueNothingSelected();
    EXPECT_TRUE(screen->snapshot() == whole);
    EXPECT_EQ(totals(), before);
    choose(1);
    EXPECT_TRUE(update() == whole) << "a reload brings the list back as well";
}

TEST_F(HistoryScreenTest, choosingFromBarToBarKeepsTheListOfTheRange) {
    choosePreset(DateRangePreset::pastWeek);
    PlaybackHistory one = song("One");
    PlaybackHistory two = song("Two");
    PlaybackHistory three = song("Three");
    play(one, "2026-03-14T10:00:00Z");
    play(two, "2026-03-14T11:00:00Z");
    play(three, "2026-03-15T09:00:00Z");
    update();
    const NSDiffableDataSourceSnapshot whole = screen->snapshot();
    EXPECT_EQ(totals(), "3 / 5");
    choose(5);
    EXPECT_THAT(screen->snapshot().sectionIdentifiers(),
                ElementsAre(Value("StatSection"), Value(instant("2026-03-14T00:00:00Z"))));
    EXPECT_EQ(listed(), (Days{{"2026-03-14T11:00:00.000Z", "2026-03-14T10:00:00.000Z"}}));
    EXPECT_EQ(totals(), "2 / 3");
    EXPECT_EQ(chart().highlightedX, 5U);
    EXPECT_EQ(chart().colors, HistoryBarColors::whileChosen());
    EXPECT_EQ(screen->state()->titleForHeaderInSection(1), "Yesterday");
    choose(6);
    EXPECT_EQ(totals(), "1 / 1");
    screen->chartValueNothingSelected();
    EXPECT_TRUE(screen->snapshot() == whole);
    EXPECT_EQ(totals(), "3 / 5");
    EXPECT_EQ(chart().colors, HistoryBarColors());
    EXPECT_FALSE(screen->state()->deselectSnapshot);
    EXPECT_FALSE(screen->state()->deselectCount);
    EXPECT_FALSE(screen->state()->deselectMinutes);
}

TEST_F(HistoryScreenTest, aTapOnAnEmptyBarTakesAChoiceBack) {
    choosePreset(DateRangePreset::pastWeek);
    PlaybackHistory one = song("One");
    play(one, "2026-03-14T10:00:00Z");
    play(one, "2026-03-15T10:00:00Z");
    update();
    const NSDiffableDataSourceSnapshot whole = screen->snapshot();
    choose(5);
    choose(0);
    EXPECT_TRUE(screen->snapshot() == whole);
    EXPECT_EQ(totals(), "1 / 3");
    EXPECT_FALSE(chart().highlightedX);
    EXPECT_EQ(chart().colors, HistoryBarColors());
    choose(1);
    EXPECT_TRUE(screen->snapshot() == whole) << "without a choice it changes nothing";
    EXPECT_EQ(totals(), "1 / 3");
}

TEST_F(HistoryScreenTest, anUpdateWhileABarIsChosenKeepsWhatALaterDeselectionRestores) {
    choosePreset(DateRangePreset::pastWeek);
    PlaybackHistory one = song("One");
    PlaybackHistory two = song("Two");
    play(one, "2026-03-14T10:00:00Z");
    play(one, "2026-03-15T10:00:00Z");
    update();
    const NSDiffableDataSourceSnapshot whole = screen->snapshot();
    choose(5);
    play(two, "2026-03-15T11:00:00Z");
    update();
    EXPECT_EQ(totals(), "2 / 5");
    EXPECT_FALSE(chart().highlightedX);
    EXPECT_TRUE(*screen->state()->deselectSnapshot == whole);
    EXPECT_EQ(screen->state()->deselectCount, "1");
    EXPECT_EQ(screen->state()->deselectMinutes, "3");
    screen->chartValueNothingSelected();
    EXPECT_TRUE(screen->snapshot() == whole) << "the list from before the update";
    EXPECT_EQ(totals(), "1 / 3");
    EXPECT_FALSE(screen->state()->deselectSnapshot);
}

TEST_F(HistoryScreenTest, monthTitlesStayUntilTheNextUpdate) {
    choosePreset(DateRangePreset::currentYear);
    PlaybackHistory one = song("One");
    play(one, "2026-02-10T10:00:00Z");
    update();
    EXPECT_EQ(screen->state()->titleForHeaderInSection(1), "Feb 10, 2026");
    choose(1);
    EXPECT_TRUE(screen->state()->showsMonthTitles);
    screen->chartValueNothingSelected();
    EXPECT_EQ(screen->state()->titleForHeaderInSection(1), "February 2026")
        << "of a day's section, too";
    screen->updateDataSource();
    environment.runUntilIdle();
    EXPECT_EQ(screen->state()->titleForHeaderInSection(1), "Feb 10, 2026");
}

TEST_F(HistoryScreenTest, aFirstRowThatIsNotOnHandIsToldNothing) {
    window.showsFirstRow = false;
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    update();
    EXPECT_EQ(totals(), " / ");
    EXPECT_FALSE(screen->state()->statCell.chart);
    EXPECT_THAT(window.totals, IsEmpty());
    EXPECT_EQ(screen->state()->statCell.durationCaption, "Minutes Listened");
}

TEST_F(HistoryScreenTest, aFirstRowThatComesLateGetsWhatItMissed) {
    window.showsFirstRow = false;
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    update();
    screen->statCellDidAppear();
    EXPECT_EQ(totals(), "1 / 1");
    environment.runUntilIdle();
    EXPECT_EQ(window.charts, 1);
    screen->statCellDidAppear();
    environment.runUntilIdle();
    EXPECT_EQ(window.charts, 1) << "once";
}

TEST_F(HistoryScreenTest, aScreenMayGoWhileItIsToldOfTheList) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    window.whenChanged = [this] {
        attachment.detach();
        screen.reset();
    };
    screen->updateDataSource();
    environment.runUntilIdle();
    EXPECT_THAT(window.applied, SizeIs(1));
    EXPECT_THAT(window.totals, IsEmpty()) << "nothing came after it went";
}

TEST_F(HistoryScreenTest, aScreenMayGoWhileABarIsTapped) {
    choosePreset(DateRangePreset::pastWeek);
    PlaybackHistory one = song("One");
    play(one, "2026-03-14T10:00:00Z");
    update();
    const HistoryBar bar = chart().bars.at(0);
    window.whenChanged = [this] {
        attachment.detach();
        screen.reset();
    };
    std::weak_ptr<RVHistoryTableViewViewController> watched = screen;
    screen->chartValueSelected(bar);
    environment.runUntilIdle();
    EXPECT_TRUE(watched.expired());
}

TEST_F(HistoryScreenTest, preservingTheChartLeavesItAsItIs) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    update();
    play(one, "2026-03-15T11:00:00Z");
    screen->updateDataSource(nullptr, true);
    environment.runUntilIdle();
    EXPECT_EQ(totals(), "1 / 3");
    EXPECT_THAT(bars(), ElementsAre("10: 100"));
    EXPECT_EQ(window.charts, 1);
}

TEST_F(HistoryScreenTest, playsWithoutASongCountNeitherSongsNorTime) {
    PlaybackHistory one = song("One");
    PlaybackHistory gone = song("Gone");
    play(one, "2026-03-15T10:00:00Z");
    play(gone, "2026-03-15T11:00:00Z");
    environment.main().deleteObject(gone);
    EXPECT_THAT(update().itemIdentifiersInSection(1), SizeIs(2));
    EXPECT_EQ(totals(), "1 / 1");
    EXPECT_THAT(bars(), ElementsAre("10: 100"));
}

TEST_F(HistoryScreenTest, aScreenThatWentIsToldNothingMore) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    screen->updateDataSource();
    attachment.detach();
    environment.runUntilIdle();
    EXPECT_THAT(window.applied, IsEmpty());
    screen->updateDataSource();
    screen.reset();
    environment.runUntilIdle();
}

TEST_F(HistoryScreenTest, playsAtTheVeryEndsOfARangeAreOutsideOfAllThatItShows) {
    chooseInterval("2026-03-10T00:00:00Z", "2026-03-12T23:59:59Z");
    PlaybackHistory one = song("One");
    PlaybackHistory two = song("Two");
    play(two, "2026-03-10T00:00:00Z");
    play(one, "2026-03-10T00:00:01Z");
    play(one, "2026-03-12T23:59:58Z");
    play(two, "2026-03-12T23:59:59Z");
    play(two, "2026-03-12T23:59:59.5Z");
    update();
    EXPECT_EQ(totals(), "1 / 3");
    EXPECT_EQ(listed(), (Days{{"2026-03-12T23:59:58.000Z"}, {"2026-03-10T00:00:01.000Z"}}));
    EXPECT_EQ(bars(), (std::vector<std::string>{"0: 100", "2: 100"}));
    choose(2);
    EXPECT_EQ(listed(), (Days{{"2026-03-12T23:59:58.000Z"}}));
    EXPECT_EQ(totals(), "1 / 1");
}

}  // namespace
}  // namespace tavrion
