// The chart of the History screen: its three forms, and its bars beside the list.

#include <map>
#include <random>
#include <set>

#include "library/RVMetadataManager.h"
#include "platform/foundation/NSDate+Extended.h"
#include "recording/RecordPredicates.h"
#include "tests/support/DayZones.h"
#include "tests/timeviews/HistoryFixture.h"

namespace tavrion {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

class HistoryChartTest : public HistoryFixture {
  protected:
    using HistoryFixture::HistoryFixture;

    std::vector<std::string> labels() const {
        std::vector<std::string> labels;
        for (const HistoryBar& bar : chart().bars) {
            labels.push_back(chart().label(bar));
        }
        return labels;
    }
    /// Twenty-four bars that do not react to a tap.
    void expectHours() {
        EXPECT_EQ(chart().form, HistoryChartForm::hours);
        ASSERT_THAT(chart().bars, SizeIs(24));
        EXPECT_FALSE(chart().isTapHighlightEnabled);
        EXPECT_EQ(chart().labelCount, 6U);
        EXPECT_EQ(chart().leastVisible, 24U);
        EXPECT_EQ(chart().mostVisible, 24U);
        EXPECT_FALSE(chart().movedToX);
        const NSDiffableDataSourceSnapshot before = screen->snapshot();
        for (const HistoryBar& bar : chart().bars) {
            EXPECT_FALSE(bar.data);
        }
        choose(10);
        EXPECT_TRUE(screen->snapshot() == before);
        EXPECT_FALSE(chart().highlightedX);
        EXPECT_FALSE(screen->state()->deselectSnapshot);
    }
};

TEST_F(HistoryChartTest, todayShowsItsHours) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T00:30:00Z");
    play(one, "2026-03-15T10:00:00Z");
    play(one, "2026-03-15T10:59:59Z");
    update();
    expectHours();
    EXPECT_THAT(bars(), ElementsAre("0: 100", "10: 200"));
    EXPECT_EQ(labels()[0], "");
    EXPECT_EQ(labels()[1], "1 AM");
    EXPECT_EQ(labels()[23], "11 PM");
    EXPECT_EQ(HistoryChart::barWidth, 0.9F);
    EXPECT_EQ(chart().colors.bars.name, "musicColor");
    EXPECT_EQ(chart().colors.highlight.name, "musicColor");
    EXPECT_EQ(chart().colors.highlightAlpha, 0.0F);
}

TEST_F(HistoryChartTest, oneChosenDayShowsItsHours) {
    chooseInterval("2026-03-10T00:00:00Z", "2026-03-10T23:59:59Z");
    PlaybackHistory one = song("One");
    play(one, "2026-03-10T10:00:00Z");
    update();
    expectHours();
}

TEST_F(HistoryChartTest, lifetimeOnTheDayOfInstallationShowsItsHours) {
    environment.defaults->setObject("com.oskelvane.Nerinda.installationDate",
                                    instant("2026-03-15T00:00:00Z"));
    choosePreset(DateRangePreset::lifetime);
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    update();
    expectHours();
}

TEST_F(HistoryChartTest, theCurrentYearShowsItsMonths) {
    choosePreset(DateRangePreset::currentYear);
    PlaybackHistory one = song("One");
    play(one, "2026-01-01T10:00:00Z");
    play(one, "2026-01-31T10:00:00Z");
    play(one, "2026-02-01T23:59:58Z");
    play(one, "2026-02-02T00:00:00Z");
    play(one, "2026-03-15T10:00:00Z");
    update();
    EXPECT_EQ(chart().form, HistoryChartForm::months);
    EXPECT_THAT(bars(), ElementsAre("0: 300", "1: 200", "2: 100"));
    EXPECT_THAT(labels(), ElementsAre("Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep",
                                      "Oct", "Nov", "Dec"));
    EXPECT_EQ(chart().bars[11].data, instant("2026-12-01T00:00:00Z"));
    EXPECT_TRUE(chart().isTapHighlightEnabled);
    EXPECT_EQ(chart().labelCount, 12U);
    EXPECT_EQ(chart().leastVisible, 12U);
    EXPECT_EQ(chart().mostVisible, 12U);
}

TEST_F(HistoryChartTest, theFirstInstantOfAMonthBelongsToTheMonthBeforeAlone) {
    choosePreset(DateRangePreset::currentYear);
    PlaybackHistory one = song("One");
    play(one, "2026-02-01T00:00:00Z");
    play(one, "2026-02-01T23:59:59Z");
    update();
    EXPECT_THAT(bars(), ElementsAre("0: 100", "1: 100"));
}

TEST_F(HistoryChartTest, aChosenRangeOfExactlyAYearShowsItsDays) {
    chooseInterval("2026-01-01T00:00:00Z", "2026-12-31T23:59:59Z");
    PlaybackHistory one = song("One");
    play(one, "2026-02-10T10:00:00Z");
    update();
    EXPECT_EQ(chart().form, HistoryChartForm::days);
    EXPECT_THAT(chart().bars, SizeIs(365));
    EXPECT_THAT(bars(), ElementsAre("40: 100"));
    choose(40);
    EXPECT_FALSE(screen->state()->showsMonthTitles);
    EXPECT_EQ(screen->state()->titleForHeaderInSection(1), "Feb 10, 2026");
}

TEST_F(HistoryChartTest, daysShowTheNewestWeekFirst) {
    choosePreset(DateRangePreset::pastMonth);
    PlaybackHistory one = song("One");
    play(one, "2026-03-10T10:00:00Z");
    play(one, "2026-02-14T10:00:00Z");
    update();
    EXPECT_THAT(chart().bars, SizeIs(30));
    EXPECT_THAT(bars(), ElementsAre("0: 100", "24: 100"));
    EXPECT_EQ(chart().labelCount, 4U);
    EXPECT_EQ(chart().leastVisible, 7U);
    EXPECT_EQ(chart().mostVisible, 7U);
    EXPECT_EQ(chart().movedToX, 30U);
    EXPECT_TRUE(chart().isTapHighlightEnabled);
    EXPECT_EQ(labels()[0], "Feb 14");
    EXPECT_EQ(labels()[28], "Yesterday");
    EXPECT_EQ(labels()[29], "Today");
    chooseInterval("2026-03-09T15:00:00Z", "2026-03-11T08:00:00Z");
    update();
    EXPECT_THAT(chart().bars, SizeIs(3)) << "from the day of the start, whenever that is";
    EXPECT_THAT(bars(), ElementsAre("1: 100"));
    EXPECT_EQ(chart().labelCount, 3U);
    EXPECT_EQ(chart().leastVisible, 3U);
}

class FirstOfJanuary : public HistoryChartTest {
  protected:
    FirstOfJanuary() : HistoryChartTest("2026-01-01T20:00:00Z") {}
};

TEST_F(FirstOfJanuary, evenTheCurrentYearShowsHours) {
    choosePreset(DateRangePreset::currentYear);
    PlaybackHistory one = song("One");
    play(one, "2026-01-01T10:00:00Z");
    update();
    expectHours();
}

// In these locales people have a calendar of their own beside the Gregorian one.
TEST_F(HistoryChartTest, barHeaderAndButtonSpeakOfOneCalendarInEveryLocale) {
    struct Texts {
        const char* locale;
        const char* bar;
        const char* header;
        const char* button;
    };
    choosePreset(DateRangePreset::currentYear);
    PlaybackHistory one = song("One");
    play(one, "2026-03-10T10:00:00Z");
    for (const Texts& texts :
         {Texts{"en_US", "Mar", "March 2026", "2026"}, Texts{"th_TH", "มี.ค.", "มีนาคม 2026", "2026"},
          Texts{"fa_IR", "مارس", "مارس ۲۰۲۶", "۲۰۲۶"},
          Texts{"ar_SA", "مارس", "مارس ٢٠٢٦", "٢٠٢٦"}}) {
        Regional region(NSTimeZone(), texts.locale);
        const Port<Regional>::Plug plug(region);
        update();
        choose(2);
        EXPECT_EQ(labels()[2], texts.bar);
        EXPECT_EQ(screen->state()->titleForHeaderInSection(1), texts.header);
        EXPECT_EQ(
            DateRange::stored(DateRangeKey::history).attributedTitle().textWithoutAttachments(),
            texts.button);
        EXPECT_EQ(RVDateRangeSegmentedControl().yearTitle(), texts.button);
    }
}

/// A zone with the clocks set around a midnight, and the days around it.
struct ZoneRow {
    const char* zone;
    const char* from;
    const char* to;
    std::size_t days;
};

class HistoryZones : public testing::TestWithParam<ZoneRow> {};

INSTANTIATE_TEST_SUITE_P(
    Midnights, HistoryZones,
    testing::Values(
        ZoneRow{"America/Sao_Paulo", "2017-10-10T00:00:00-03:00", "2017-10-20T23:59:59-02:00", 11},
        ZoneRow{"America/Sao_Paulo", "2018-02-12T00:00:00-02:00", "2018-02-22T23:59:59-03:00", 11},
        ZoneRow{"Africa/Cairo", "2023-04-24T00:00:00+02:00", "2023-05-02T23:59:59+03:00", 9},
        ZoneRow{"Asia/Beirut", "2022-03-22T00:00:00+02:00", "2022-04-01T23:59:59+03:00", 11},
        ZoneRow{"America/St_Johns", "2006-10-25T00:00:00-02:30", "2006-11-03T23:59:59-03:30", 10},
        ZoneRow{"Pacific/Apia", "2011-12-26T00:00:00-10:00", "2012-01-03T23:59:59+14:00", 8}));

TEST_P(HistoryZones, noPlayIsLostOnADayWithoutAMidnight) {
    RecordingEnvironment environment(*dateFromIsoText("2026-03-15T12:00:00Z"), GetParam().zone);
    PlaybackHistory song = environment.makeHistory("One", 100);
    const NSDateInterval interval(*dateFromIsoText(GetParam().from),
                                  *dateFromIsoText(GetParam().to));
    std::size_t made = 0;
    for (double second = 1; second < interval.duration(); second += 600) {
        const NSDate date = interval.startDate().dateByAddingTimeInterval(second);
        environment.makePlay(song, date.timeIntervalSinceReferenceDate());
        ++made;
    }
    environment.defaults->setObject(DateRangeKey::history,
                                    NSKeyedArchiver::archivedDataWithRootObject(interval));
    const auto screen = RVHistoryTableViewViewController::make();
    screen->updateDataSource();
    environment.runUntilIdle();
    const HistoryChart& chart = *screen->state()->statCell.chart;
    const NSDiffableDataSourceSnapshot& list = screen->snapshot();
    ASSERT_THAT(chart.bars, SizeIs(GetParam().days));
    ASSERT_EQ(list.numberOfSections(), GetParam().days + 1);
    EXPECT_EQ(list.numberOfItems(), made + 1);
    std::size_t shown = 0;
    for (const HistoryBar& bar : chart.bars) {
        const std::size_t section = GetParam().days - bar.x;
        EXPECT_EQ(list.sectionIdentifier(section), Value(Extended::endOfDay(*bar.data)));
        EXPECT_EQ(bar.y, 100.0 * static_cast<double>(list.numberOfItemsInSection(section)));
        shown += list.numberOfItemsInSection(section);
    }
    EXPECT_EQ(shown, made);
}

class HistoryOfZones : public testing::TestWithParam<DayZone> {
  protected:
    /// A play in the first, a middle and the last second of each day of the interval.
    void makePlays(int before, int after) {
        for (const WalkedDay& day : GetParam().days(before, after)) {
            for (const NSDate date :
                 {day.after(1), day.noon(), day.last.dateByAddingTimeInterval(-1)}) {
                environment.makePlay(song, date.timeIntervalSinceReferenceDate());
            }
        }
    }
    void show(const Value& range) {
        environment.defaults->setObject(DateRangeKey::history, range);
        screen->updateDataSource();
        environment.runUntilIdle();
    }
    void choose(const HistoryBar& bar) {
        screen->chartValueSelected(bar);
        environment.runUntilIdle();
    }

    RecordingEnvironment environment{GetParam().livedDay(2).noon(), GetParam().zone};
    PlaybackHistory song = environment.makeHistory("One", 100);
    std::shared_ptr<RVHistoryTableViewViewController> screen =
        RVHistoryTableViewViewController::make();
};

INSTANTIATE_TEST_SUITE_P(HistoryChart, HistoryOfZones, testing::ValuesIn(dayZones), nameOfDayZone);

TEST_P(HistoryOfZones, aDayHasOneSectionOneTitleAndOneBar) {
    makePlays(8, 8);
    show(1);
    const std::vector<HistoryBar> bars = screen->state()->statCell.chart->bars;
    const NSDiffableDataSourceSnapshot list = screen->snapshot();
    ASSERT_EQ(list.numberOfSections(), bars.size() + 1);
    std::set<std::string> titles;
    for (const HistoryBar& bar : bars) {
        const std::size_t section = bars.size() - bar.x;
        titles.insert(screen->state()->titleForHeaderInSection(section).value_or(""));
        // The bounds of a range are outside of it.
        EXPECT_EQ(list.numberOfItemsInSection(section), 3U);
        EXPECT_EQ(bar.y, 300);
        EXPECT_EQ(list.sectionIdentifier(section), Value(Extended::endOfDay(*bar.data)));
    }
    EXPECT_EQ(titles.size(), bars.size());
    for (const HistoryBar& bar : bars) {
        choose(bar);
        EXPECT_EQ(screen->snapshot().numberOfItemsInSection(1), 3U);
    }
}

TEST_P(HistoryOfZones, todayIsOneDayAndShowsItsHours) {
    makePlays(8, 8);
    for (const int offset : {0, 1, 2}) {
        environment.clock.set(GetParam().livedDay(offset).noon());
        show(0);
        EXPECT_EQ(screen->state()->statCell.chart->form, HistoryChartForm::hours);
        ASSERT_EQ(screen->snapshot().numberOfSections(), 2U);
        EXPECT_EQ(screen->snapshot().numberOfItemsInSection(1), 3U);
        EXPECT_EQ(screen->state()->titleForHeaderInSection(1), "Today");
    }
}

TEST_P(HistoryOfZones, aMonthHasItsDaysAndItsBarOneMore) {
    makePlays(70, 70);
    const NSTimeZone zone = GetParam().timeZone();
    const std::int64_t year = GetParam().year;
    environment.clock.set(zone.dateOfCivilTime({year, 12, 31, 12, 0, 0}));
    show(3);
    ASSERT_EQ(screen->state()->statCell.chart->form, HistoryChartForm::months);
    for (const int month : {GetParam().month - 1, GetParam().month}) {
        std::size_t days = 0;
        for (const WalkedDay& day : GetParam().days(70, 70)) {
            const CivilTime time = zone.civilTime(day.first);
            days += time.year == year && time.month == month ? 1 : 0;
        }
        // The first of January after the present year is not shown.
        const std::size_t daysOfBar = days + (month < 12 ? 1 : 0);
        const HistoryBar bar =
            screen->state()->statCell.chart->bars[static_cast<std::size_t>(month - 1)];
        EXPECT_EQ(bar.y, 300.0 * static_cast<double>(daysOfBar)) << month;
        choose(bar);
        EXPECT_EQ(screen->snapshot().numberOfItemsInSection(1), 3 * days) << month;
    }
}

class HistoryProperties : public HistoryChartTest {
  protected:
    /// Plays at whole and half seconds over the two years before the present, some at one instant.
    void makePlays(std::mt19937& random) {
        for (int i = 0; i < 40; ++i) {
            songs.push_back(song("Song " + std::to_string(i), 60.25 + i));
        }
        const double now = environment.clock.now().timeIntervalSinceReferenceDate();
        for (int i = 0; i < 3000; ++i) {
            const double date = now - static_cast<double>(random() % 126230400) / 2 + 40000;
            environment.makePlay(songs[random() % songs.size()], date);
            if (random() % 10 == 0) {
                environment.makePlay(songs[random() % songs.size()], date);
            }
        }
    }
    /// The plays that a fetch gives, by their days.
    void expectSameAsFetch(const NSDateInterval& interval) {
        NSFetchRequest request = PlayEvent::fetchRequest();
        request.where(RecordPredicates::eventDateBetween(interval.startDate(), interval.endDate()));
        request.sortDescriptors = {{"eventDate", false}};
        std::vector<Value> sections;
        std::vector<Value> items{Value()};
        std::set<RecordCounter> played;
        double seconds = 0;
        for (const NSManagedObject& object :
             environment.main().executeFetchRequest(request).value()) {
            const PlayEvent event(object);
            const Value day(Extended::endOfDay(*event.eventDate()));
            if (sections.empty() || sections.back() != day) {
                sections.push_back(day);
            }
            items.emplace_back(object.objectID().reference());
            played.insert(event.parentHistory()->objectID().counter);
            seconds += event.parentHistory()->duration();
        }
        std::vector<Value> shown = screen->snapshot().sectionIdentifiers();
        ASSERT_FALSE(shown.empty());
        shown.erase(shown.begin());
        EXPECT_EQ(shown, sections);
        EXPECT_EQ(screen->snapshot().itemIdentifiers(), items);
        EXPECT_EQ(totals(), RVMetadataManager::formattedCount(played.size()) + " / " +
                                RVMetadataManager::formattedMinutesForDuration(seconds));
        double sumOfBars = 0;
        for (const HistoryBar& bar : chart().bars) {
            sumOfBars += bar.y;
        }
        if (chart().form != HistoryChartForm::months) {
            EXPECT_EQ(sumOfBars, seconds);
        }
    }
    void expectBarsToBeSections() {
        std::map<double, double> secondsOfSections;
        for (std::size_t section = 1; section < screen->snapshot().numberOfSections(); ++section) {
            for (const Value& item : screen->snapshot().itemIdentifiersInSection(section)) {
                secondsOfSections[screen->snapshot()
                                      .sectionIdentifier(section)
                                      .get<NSDate>()
                                      ->timeIntervalSinceReferenceDate()] +=
                    event(item).parentHistory()->duration();
            }
        }
        for (const HistoryBar& bar : chart().bars) {
            if (bar.y != 0) {
                EXPECT_EQ(bar.y, secondsOfSections[Extended::endOfDay(*bar.data)
                                                       .timeIntervalSinceReferenceDate()]);
            }
        }
    }

    std::vector<PlaybackHistory> songs;
};

TEST_F(HistoryProperties, listTotalsAndBarsAgreeWithAFetchInEveryRange) {
    std::mt19937 random(5);
    makePlays(random);
    environment.defaults->setObject("com.oskelvane.Nerinda.installationDate",
                                    instant("2024-06-01T00:00:00Z"));
    for (int preset = 0; preset < 5; ++preset) {
        choosePreset(static_cast<DateRangePreset>(preset));
        update();
        expectSameAsFetch(
            RVDateRangeSelectorViewController::dateIntervalForKey(DateRangeKey::history));
    }
    for (int round = 0; round < 25; ++round) {
        const NSDate start =
            instant("2024-06-01T00:00:00Z")
                .dateByAddingTimeInterval(static_cast<double>(random() % 50000000));
        const NSDateInterval interval(
            start, start.dateByAddingTimeInterval(
                       86400.0 + static_cast<double>(random() % (1U << (10 + round / 2)))));
        chooseInterval(isoTextOfDate(interval.startDate()), isoTextOfDate(interval.endDate()));
        update();
        if (!screen->snapshot().isEmpty()) {
            expectSameAsFetch(interval);
            if (chart().form == HistoryChartForm::days) {
                expectBarsToBeSections();
            }
        }
    }
}

TEST_F(HistoryProperties, whatABarListsIsWhatAFetchOfItsDayGives) {
    std::mt19937 random(7);
    makePlays(random);
    choosePreset(DateRangePreset::pastMonth);
    update();
    for (const HistoryBar& bar : std::vector<HistoryBar>(chart().bars)) {
        choose(bar.x);
        if (bar.y != 0) {
            double seconds = 0;
            for (const Value& item : screen->snapshot().itemIdentifiersInSection(1)) {
                seconds += event(item).parentHistory()->duration();
            }
            EXPECT_EQ(seconds, bar.y);
        }
    }
}

}  // namespace
}  // namespace tavrion
