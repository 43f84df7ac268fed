// Stored date ranges: what they are as dates, what they are called, and the drawer that edits them.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSKeyedArchiver.h"
#include "recording/RVPlaybackHistoryManager.h"
#include "tests/support/DayZones.h"
#include "tests/support/RecordingEnvironment.h"
#include "timeviews/RVDateRangeSelectorViewController.h"

namespace tavrion {
namespace {

using Selector = RVDateRangeSelectorViewController;
const char* const key = DateRangeKey::trending;
constexpr const char* notification = "TrendingDateRangeObjectDidChange";

NSDate iso(const std::string& text) {
    return *dateFromIsoText(text);
}

class DateRangesTest : public testing::Test {
  protected:
    DateRangesTest() { posts = observe(notification); }
    NSNotificationCenter::Observation observe(const char* name) {
        return environment.centre.addObserver(name, nullptr, nullptr,
                                              [this](const NSNotification&) { ++posted; });
    }
    NSUserDefaults& defaults() { return *environment.defaults; }
    void now(const std::string& text) { environment.clock.set(iso(text)); }
    static NSDateInterval interval() { return Selector::dateIntervalForKey(key); }
    void storeInterval(const NSDateInterval& range) {
        defaults().setObject(key, NSKeyedArchiver::archivedDataWithRootObject(range));
    }
    static NSDateInterval between(const std::string& start, const std::string& end) {
        return {iso(start), iso(end)};
    }
    static std::unique_ptr<Selector> opened() {
        auto drawer = Selector::initWithUserDefault(key);
        drawer->viewDidLoad();
        return drawer;
    }
    static void choose(Selector& drawer, std::size_t index) {
        drawer.presetSegmentedControl().setSelectedIndex(index, true);
    }
    static std::string title(const Value& object) {
        return Selector::titleForUserDefaultObject(object).textWithoutAttachments();
    }

    RecordingEnvironment environment{iso("2026-03-10T12:00:00Z")};
    int posted = 0;
    NSNotificationCenter::Observation posts;
};

// Resolving

TEST_F(DateRangesTest, aMissingKeyIsTodayAndTheFirstOpeningWritesZero) {
    EXPECT_EQ(interval(), between("2026-03-10T00:00:00Z", "2026-03-10T23:59:59Z"));
    EXPECT_TRUE(defaults().objectForKey(key).isAbsent());
    const auto drawer = opened();
    EXPECT_EQ(defaults().objectForKey(key), Value(0));
    EXPECT_TRUE(drawer->previousState().isAbsent());
    EXPECT_EQ(drawer->presetSegmentedControl().selectedIndex(), 0U);
}

TEST_F(DateRangesTest, presetsMoveWithTheCalendar) {
    EXPECT_EQ(RVPlaybackHistoryManager::installationDate(), iso("2026-03-10T00:00:00Z"));
    const std::vector<const char*> starts{"2026-03-10T00:00:00Z", "2026-03-04T00:00:00Z",
                                          "2026-02-09T00:00:00Z", "2026-01-01T00:00:00Z",
                                          "2026-03-10T00:00:00Z"};
    for (std::size_t preset = 0; preset < starts.size(); ++preset) {
        defaults().setObject(key, Value(preset));
        EXPECT_EQ(interval(), between(starts[preset], "2026-03-10T23:59:59Z")) << preset;
    }
}

TEST_F(DateRangesTest, aPastWeekNeverGoesStale) {
    defaults().setObject(key, 1);
    now("2026-03-11T00:00:30Z");
    EXPECT_EQ(interval(), between("2026-03-05T00:00:00Z", "2026-03-11T23:59:59Z"));
}

TEST_F(DateRangesTest, fiveStoredByHandIsTodayThoughTheDrawerShowsFive) {
    for (const int number : {5, 6, 1000, -1}) {
        defaults().setObject(key, number);
        EXPECT_EQ(interval(), DateRange(DateRangePreset::today).interval()) << number;
    }
    defaults().setObject(key, 5);
    const auto drawer = opened();
    EXPECT_EQ(drawer->presetSegmentedControl().selectedIndex(), 5U);
    EXPECT_FALSE(drawer->datePicker().isEnabled);
    EXPECT_FALSE(drawer->dateSegmentedControl().isEnabled);
}

TEST_F(DateRangesTest, aCustomRangeDoesNotFollowTheClock) {
    const NSDateInterval range = between("2025-12-24T10:20:30Z", "2025-12-26T23:59:59Z");
    storeInterval(range);
    EXPECT_EQ(interval(), range);
    now("2027-03-10T12:00:00Z");
    EXPECT_EQ(interval(), range);
}

TEST_F(DateRangesTest, whatCannotBeReadIsTodayAndStaysStored) {
    const NSDateInterval today = DateRange(DateRangePreset::today).interval();
    for (const Value& object : {Value(NSData{"no archive"}), Value("2"), Value(Value::Array{}),
                                Value(iso("2020-01-01T00:00:00Z"))}) {
        defaults().setObject(key, object);
        EXPECT_EQ(interval(), today);
        EXPECT_EQ(defaults().objectForKey(key), object);
    }
}

TEST_F(DateRangesTest, aLifetimeOfAFewHoursIsToday) {
    now("2026-03-10T15:00:00Z");
    EXPECT_EQ(DateRange(DateRangePreset::lifetime).interval(),
              DateRange(DateRangePreset::today).interval());
}

TEST_F(DateRangesTest, aClockBeforeTheInstallationGivesNoRangeThatIsTurnedAround) {
    RVPlaybackHistoryManager::installationDate();
    now("2026-03-01T12:00:00Z");
    const NSDateInterval lifetime = DateRange(DateRangePreset::lifetime).interval();
    EXPECT_EQ(lifetime.endDate(), iso("2026-03-01T23:59:59Z"));
    EXPECT_LE(lifetime.startDate(), lifetime.endDate());
}

TEST(DateRangesZoneTest, aDayWithAChangedClockStillEndsASecondBeforeMidnight) {
    const RecordingEnvironment environment(iso("2024-03-10T12:00:00Z"), "America/New_York");
    const NSDateInterval today = DateRange(DateRangePreset::today).interval();
    EXPECT_EQ(today, NSDateInterval(iso("2024-03-10T05:00:00Z"), iso("2024-03-11T03:59:59Z")));
    EXPECT_EQ(DateRange(DateRangePreset::pastWeek).interval().startDate(),
              iso("2024-03-04T05:00:00Z"))
        << "days of the calendar, not lengths of 24 hours";
}

// The drawer

TEST_F(DateRangesTest, aPresetIsStoredAsItsNumberAndClosesTheDates) {
    storeInterval(between("2026-01-01T00:00:00Z", "2026-01-02T00:00:00Z"));
    const auto drawer = opened();
    EXPECT_TRUE(drawer->datePicker().isEnabled);
    choose(*drawer, 3);
    EXPECT_EQ(defaults().objectForKey(key), Value(3));
    EXPECT_FALSE(drawer->datePicker().isEnabled);
    EXPECT_FALSE(drawer->dateSegmentedControl().isEnabled);
}

TEST_F(DateRangesTest, aNewCustomRangeBeginsAsToday) {
    defaults().setObject(key, 2);
    const auto drawer = opened();
    choose(*drawer, 5);
    const NSDateInterval today = between("2026-03-10T00:00:00Z", "2026-03-10T23:59:59Z");
    EXPECT_EQ(interval(), today);
    now("2026-03-12T12:00:00Z");
    EXPECT_EQ(interval(), today);
    EXPECT_TRUE(drawer->datePicker().isEnabled);
    EXPECT_TRUE(drawer->dateSegmentedControl().isEnabled);
    EXPECT_EQ(drawer->datePicker().date, today.startDate());
    EXPECT_EQ(drawer->datePicker().maximumDate, today.endDate());
    EXPECT_EQ(drawer->datePicker().minimumDate, RVPlaybackHistoryManager::installationDate());
}

TEST_F(DateRangesTest, openingACustomRangeShowsItsStart) {
    const NSDateInterval range = between("2026-01-01T10:00:00Z", "2026-01-05T23:59:59Z");
    storeInterval(range);
    const auto drawer = opened();
    EXPECT_EQ(drawer->presetSegmentedControl().selectedIndex(), 5U);
    EXPECT_EQ(drawer->datePicker().date, range.startDate());
    EXPECT_EQ(drawer->datePicker().maximumDate, range.endDate());
}

TEST_F(DateRangesTest, pickedDatesMoveTheirSideToTheEdgeOfTheDay) {
    storeInterval(between("2026-01-05T10:00:00Z", "2026-01-08T11:00:00Z"));
    const auto drawer = opened();
    drawer->changeDate(iso("2026-01-06T15:00:00Z"));
    EXPECT_EQ(interval(), between("2026-01-06T00:00:00Z", "2026-01-08T11:00:00Z"));
    drawer->toggleDate(1);
    drawer->changeDate(iso("2026-01-09T15:00:00Z"));
    EXPECT_EQ(interval(), between("2026-01-06T00:00:00Z", "2026-01-09T23:59:59Z"));
    drawer->changeDate(iso("2026-01-06T01:00:00Z"));
    EXPECT_EQ(interval(), between("2026-01-06T00:00:00Z", "2026-01-06T23:59:59Z"))
        << "start and end on one day are allowed";
}

TEST_F(DateRangesTest, aDateThatWouldTurnTheRangeAroundChangesAndTellsNothing) {
    const NSDateInterval range = between("2026-01-05T10:00:00Z", "2026-01-08T11:00:00Z");
    storeInterval(range);
    const auto drawer = opened();
    drawer->changeDate(iso("2026-01-09T00:00:00Z"));
    EXPECT_EQ(interval(), range);
    EXPECT_EQ(drawer->datePicker().date, iso("2026-01-09T00:00:00Z")) << "it stays on the wheel";
    drawer->toggleDate(1);
    drawer->changeDate(iso("2026-01-04T12:00:00Z"));
    EXPECT_EQ(interval(), range);
    drawer->viewWillDisappear();
    EXPECT_EQ(posted, 0);
}

TEST_F(DateRangesTest, aDatePickedForAPresetChangesNothing) {
    defaults().setObject(key, 2);
    const auto drawer = opened();
    drawer->changeDate(iso("2026-01-09T00:00:00Z"));
    EXPECT_EQ(defaults().objectForKey(key), Value(2));
}

TEST_F(DateRangesTest, theOtherSideHasOtherLimits) {
    RVPlaybackHistoryManager::installationDate();
    const NSDateInterval range = between("2026-03-12T10:00:00Z", "2026-03-14T11:00:00Z");
    storeInterval(range);
    now("2026-03-20T12:00:00Z");
    const auto drawer = opened();
    drawer->toggleDate(1);
    EXPECT_EQ(drawer->datePicker().date, range.endDate());
    EXPECT_EQ(drawer->datePicker().maximumDate, iso("2026-03-20T23:59:59Z"));
    EXPECT_EQ(drawer->datePicker().minimumDate, iso("2026-03-12T00:00:00Z"));
    drawer->toggleDate(0);
    EXPECT_EQ(drawer->datePicker().date, range.startDate());
    EXPECT_EQ(drawer->datePicker().maximumDate, iso("2026-03-14T23:59:59Z"));
    EXPECT_EQ(drawer->datePicker().minimumDate, iso("2026-03-10T00:00:00Z"));
}

TEST_F(DateRangesTest, theChangeIsReportedOnceWhenTheDrawerCloses) {
    defaults().setObject(key, 1);
    const auto drawer = opened();
    choose(*drawer, 2);
    choose(*drawer, 4);
    EXPECT_EQ(posted, 0);
    drawer->viewWillDisappear();
    EXPECT_EQ(posted, 1);
}

TEST_F(DateRangesTest, whatIsAsBeforeIsNotReported) {
    defaults().setObject(key, 1);
    const auto drawer = opened();
    choose(*drawer, 2);
    choose(*drawer, 1);
    drawer->viewWillDisappear();
    EXPECT_EQ(posted, 0);
    storeInterval(DateRange(DateRangePreset::today).interval());
    const auto custom = opened();
    choose(*custom, 5);
    custom->viewWillDisappear();
    EXPECT_EQ(posted, 0) << "equal archives are equal bytes";
}

TEST_F(DateRangesTest, aDrawerOpenedOnAMissingKeyTellsAlways) {
    opened()->viewWillDisappear();
    EXPECT_EQ(posted, 1);
}

// The preset control

TEST_F(DateRangesTest, onlyOneRowHasASelectedSegment) {
    RVDateRangeSegmentedControl control;
    EXPECT_EQ(control.yearTitle(), "2026");
    int changes = 0;
    std::vector<bool> moves;
    control.valueChanged = [&] { ++changes; };
    control.positionChanged = [&](bool animated) { moves.push_back(animated); };
    control.setSelectedIndex(4, false);
    EXPECT_EQ(control.presetControl1().selectedSegmentIndex, std::nullopt);
    EXPECT_EQ(control.presetControl2().selectedSegmentIndex, 1U);
    EXPECT_EQ(changes, 0) << "without an animation nobody is told";
    control.setSelectedPresetIndex(control.presetControl2(), 2);
    EXPECT_EQ(control.selectedIndex(), 5U);
    control.setSelectedPresetIndex(control.presetControl1(), 2);
    EXPECT_EQ(control.selectedIndex(), 2U);
    EXPECT_EQ(control.presetControl1().selectedSegmentIndex, 2U);
    EXPECT_EQ(control.presetControl2().selectedSegmentIndex, std::nullopt);
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(moves, (std::vector<bool>{false, true, true}));
}

TEST_F(DateRangesTest, theMarkerStandsBehindItsSegment) {
    const auto center = [](std::size_t index) {
        return RVDateRangeSegmentedControl::positionSelectedSegmentForIndex(index, {300, 10},
                                                                            {600, 40});
    };
    EXPECT_EQ(center(0), (DateRangeMarkerCenter{51, 10}));
    EXPECT_EQ(center(2), (DateRangeMarkerCenter{253, 10}));
    EXPECT_EQ(center(3), (DateRangeMarkerCenter{101, 40}));
    EXPECT_EQ(center(4), (DateRangeMarkerCenter{302, 40}));
    EXPECT_EQ(center(6), center(0));
}

TEST_F(DateRangesTest, aNumberThatAnotherProgramStoredAsARealIsThatPreset) {
    const DateRange year(Value(3.0));
    EXPECT_EQ(year.interval(), DateRange(DateRangePreset::currentYear).interval());
    EXPECT_EQ(year.title(), "2026");
    EXPECT_TRUE(year.isCurrentYear());
    EXPECT_EQ(DateRange(Value(1.0)).title(), "Past Week");
    EXPECT_EQ(DateRange(Value(3.5)).interval(), year.interval()) << "cut to a whole number";
    EXPECT_FALSE(DateRange(Value(3.5)).isCurrentYear());
    EXPECT_FALSE(DateRange(Value(true)).isCurrentYear());
    EXPECT_EQ(DateRange(Value(true)).title(), "Past Week");
    EXPECT_EQ(DateRange(Value(-1.0)).title(), "Today");
    defaults().setObject(key, 3.0);
    EXPECT_EQ(opened()->presetSegmentedControl().selectedIndex(), 3U);
}

TEST_F(DateRangesTest, aWrittenRangeIsAPresetOrTwoDays) {
    EXPECT_EQ(DateRange::ofText("today"), DateRange(DateRangePreset::today));
    EXPECT_EQ(DateRange::ofText("past-week"), DateRange(DateRangePreset::pastWeek));
    EXPECT_EQ(DateRange::ofText("past-month"), DateRange(DateRangePreset::pastMonth));
    EXPECT_EQ(DateRange::ofText("year"), DateRange(DateRangePreset::currentYear));
    EXPECT_EQ(DateRange::ofText("lifetime"), DateRange(DateRangePreset::lifetime));
    const auto days = DateRange::ofText("2024-02-28..2024-02-29");
    ASSERT_TRUE(days);
    EXPECT_EQ(days->interval(), between("2024-02-28T00:00:00Z", "2024-02-29T23:59:59Z"));
    EXPECT_EQ(days->fixedInterval(), days->interval());
    EXPECT_TRUE(days->isCustom());
    EXPECT_FALSE(days->isCurrentYear());
    EXPECT_EQ(DateRange(days->object()), *days) << "as it would be stored";
    EXPECT_EQ(DateRange::ofText("2026-03-10..2026-03-10")->title(), "Today");
    for (const char* const text :
         {"", "Today", "week", "2024-02-28", "..", "2024-02-28..", "..2024-02-28",
          "2026-02-28..2026-02-29", "2026-02-29..2026-03-01", "2026-04-31..2026-05-02",
          "2026-13-01..2026-13-02", "2026-00-01..2026-01-02", "2026-01-00..2026-01-02",
          "2026-01-02..2026-01-01", "2026-1-02..2026-01-03", "2026-01-02...2026-01-03",
          "2026-01-02..2026-01-03 "}) {
        EXPECT_FALSE(DateRange::ofText(text)) << text;
    }
}

TEST_F(DateRangesTest, whatCannotBeReadKeepsItsStoredForm) {
    for (const Value& object : {Value("text"), Value(NSData{"no archive"}), Value(17)}) {
        const DateRange range(object);
        EXPECT_EQ(range.object(), object);
        EXPECT_EQ(range.interval(), DateRange(DateRangePreset::today).interval());
        EXPECT_FALSE(range.isCurrentYear());
        EXPECT_FALSE(range.fixedInterval());
    }
}

class PresetsOfZones : public testing::TestWithParam<DayZone> {
  protected:
    static NSDateInterval of(DateRangePreset preset) { return DateRange(preset).interval(); }
    RecordingEnvironment environment{NSDate(), GetParam().zone};
};

INSTANTIATE_TEST_SUITE_P(DateRanges, PresetsOfZones, testing::ValuesIn(dayZones), nameOfDayZone);

TEST_P(PresetsOfZones, areWholeDaysAtEveryTimeOfTheDay) {
    for (const int offset : {-1, 0, 1, 2, 5, 6, 28, 29}) {
        // The day before the one that was left out is two numbers away.
        const int before = offset < 0 && GetParam().lived().day != GetParam().oddDay() ? 1 : 0;
        const WalkedDay today = GetParam().livedDay(offset - before);
        const auto firstOf = [&](int daysBack) {
            const std::vector<WalkedDay> days = GetParam().days(70, 40);
            return std::find_if(days.begin(), days.end(),
                                [&](const WalkedDay& day) {
                                    return day.day.number >= today.day.number - daysBack;
                                })
                ->first;
        };
        for (const NSDate now : {today.first, today.after(1800), today.noon(), today.last}) {
            environment.clock.set(now);
            EXPECT_EQ(of(DateRangePreset::today), NSDateInterval(today.first, today.last));
            EXPECT_EQ(of(DateRangePreset::pastWeek), NSDateInterval(firstOf(6), today.last));
            EXPECT_EQ(of(DateRangePreset::pastMonth), NSDateInterval(firstOf(29), today.last));
            EXPECT_EQ(of(DateRangePreset::currentYear).endDate(), today.last);
        }
    }
}

TEST_P(PresetsOfZones, writtenDaysAreWholeDays) {
    const NSTimeZone zone = GetParam().timeZone();
    for (const WalkedDay& day : GetParam().days(3, 3)) {
        const CivilTime time = zone.civilTime(day.first);
        const std::string text = fmt::format("{:04}-{:02}-{:02}", time.year, time.month, time.day);
        EXPECT_EQ(DateRange::ofText(text + ".." + text)->interval(),
                  NSDateInterval(day.first, day.last));
    }
}

TEST_P(PresetsOfZones, aPickedDayIsAWholeDay) {
    environment.clock.set(GetParam().livedDay(3).noon());
    const auto drawer = Selector::initWithUserDefault(key);
    drawer->viewDidLoad();
    drawer->presetSegmentedControl().setSelectedIndex(RVDateRangeSegmentedControl::customIndex,
                                                      true);
    const WalkedDay first = GetParam().lived();
    const WalkedDay last = GetParam().livedDay(1);
    drawer->changeDate(first.noon());
    drawer->toggleDate(1);
    drawer->changeDate(last.noon());
    EXPECT_EQ(DateRange::stored(key).interval(), NSDateInterval(first.first, last.last));
    EXPECT_EQ(drawer->datePicker().minimumDate, first.first);
}

// Titles

TEST_F(DateRangesTest, presetsHaveTheirNames) {
    EXPECT_EQ(title({}), "Today");
    EXPECT_EQ(title(0), "Today");
    EXPECT_EQ(title(1), "Past Week");
    EXPECT_EQ(title(2), "Past Month");
    EXPECT_EQ(title(3), "2026");
    EXPECT_EQ(title(4), "Lifetime");
    EXPECT_EQ(title(5), "Today");
    EXPECT_EQ(title("text"), "");
    const NSAttributedString text = Selector::titleForUserDefaultObject(1);
    const auto& icon = std::get<UIImage>(text.runs().front());
    EXPECT_EQ(icon.name(), "calendar");
    EXPECT_EQ(icon.symbolConfiguration().weight, UIImageSymbolWeight::semibold);
}

TEST_F(DateRangesTest, aCustomRangeIsCalledByItsDays) {
    const auto titleOf = [](const NSDateInterval& range) {
        return title(NSKeyedArchiver::archivedDataWithRootObject(range));
    };
    EXPECT_EQ(titleOf(between("2026-03-10T00:00:00Z", "2026-03-10T23:59:59Z")), "Today")
        << "one day has no dash";
    EXPECT_EQ(titleOf(between("2026-03-09T00:00:00Z", "2026-03-10T23:59:59Z")),
              "Yesterday – Today");
    EXPECT_EQ(title(NSData{"no archive"}), "—");
}

}  // namespace
}  // namespace tavrion
