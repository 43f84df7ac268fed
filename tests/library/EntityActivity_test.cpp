#include "library/EntityActivity.h"

#include <gtest/gtest.h>

#include "library/RVEntityCollectionViewController.h"
#include "platform/foundation/NSDate+Extended.h"
#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

constexpr double day = 86400;
/// Noon of 2026-03-01 UTC.
constexpr double noon = 794059200;
constexpr double today = noon - day / 2;
constexpr double firstDay = today - 29 * day;

/// Notes what it is told to show.
class NotingScreen final : public EntityScreen {
  public:
    void applySnapshot(const EntitySnapshot& snapshot, bool animated) override {
        static_cast<void>(animated);
        snapshots.push_back(snapshot);
    }
    void refreshRankValues() override { ++refreshes; }
    void sortButtonDidChange(EntitySection section) override { changedButtons.push_back(section); }
    bool isChartOnHand() const override { return hasChart; }
    void showRecentActivity(const EntityActivity& activity) override {
        activities.push_back(activity);
    }

    bool hasChart = true;
    int refreshes = 0;
    std::vector<EntitySnapshot> snapshots;
    std::vector<EntitySection> changedButtons;
    std::vector<EntityActivity> activities;
};

class EntityActivityTest : public testing::Test {
  protected:
    EntityActivityTest() {
        environment_.library.publish(
            {{.title = "Sky", .artist = "Band", .duration = 100.75, .playCount = 1},
             {.title = "Sea", .artist = "Band", .duration = 50.5, .playCount = 2}});
        sky_.emplace(environment_.makeHistory("Sky", 100.75));
        sea_.emplace(environment_.makeHistory("Sea", 50.5));
    }
    void play(PlaybackHistory& history, double seconds) { environment_.makePlay(history, seconds); }
    MPMediaEntity song(const char* title) { return environment_.library.song(title); }
    MPMediaEntity band() {
        MPMediaQuery query = MPMediaQuery::songsQuery();
        query.setGroupingType(MPMediaGrouping::albumArtist);
        return query.collections().at(0);
    }
    EntityActivity activityOf(const MPMediaEntity& entity) {
        environment_.saveMain();
        return recentActivity(entity, environment_.main());
    }
    std::shared_ptr<RVEntityCollectionViewController> opened(const MPMediaEntity& entity) {
        auto page = RVEntityCollectionViewController::make(screen_, entity);
        page->viewDidLoad();
        environment_.runUntilIdle();
        return page;
    }

    RecordingEnvironment environment_;
    std::optional<PlaybackHistory> sky_;
    std::optional<PlaybackHistory> sea_;
    NotingScreen screen_;
};

TEST_F(EntityActivityTest, WithoutPlaysInTheThirtyDaysThereAreNoBars) {
    play(*sky_, firstDay - 10);
    play(*sea_, today + 100);
    const EntityActivity activity = activityOf(song("Sky"));
    EXPECT_FALSE(activity.days);
    EXPECT_EQ(activity.firstDay, RecordingEnvironment::at(firstDay));
}

TEST_F(EntityActivityTest, PlaysOfTwoSongsOnADayAddUpAndAreCutToWholeSeconds) {
    play(*sky_, today + 100);
    play(*sea_, today + 200);
    const auto days = activityOf(band()).days;
    ASSERT_TRUE(days);
    EntityActivity::Days expected{};
    expected[29] = 151;
    EXPECT_EQ(*days, expected);
    EXPECT_EQ(activityOf(song("Sea")).days->at(29), 50);
}

TEST_F(EntityActivityTest, APlayHalfAMinuteBeforeMidnightCountsForThatDay) {
    play(*sky_, today - 30);
    play(*sea_, today + day - 30);
    const auto days = activityOf(band()).days;
    EXPECT_EQ(days->at(28), 100);
    EXPECT_EQ(days->at(29), 50);
}

TEST_F(EntityActivityTest, APlayAtTheFirstMidnightDoesNotCount) {
    play(*sky_, firstDay);
    EXPECT_FALSE(activityOf(song("Sky")).days);
    play(*sky_, firstDay + 1);
    EXPECT_EQ(activityOf(song("Sky")).days->at(0), 100);
}

TEST_F(EntityActivityTest, ThePageIsBuiltAndThenItsChart) {
    play(*sky_, today + 1);
    environment_.saveMain();
    opened(band());
    ASSERT_EQ(screen_.snapshots.size(), 1U);
    EXPECT_EQ(screen_.snapshots[0].lists.size(), 2U);
    ASSERT_EQ(screen_.activities.size(), 1U);
    EXPECT_EQ(screen_.activities[0].days->at(29), 100);
}

TEST_F(EntityActivityTest, AChartThatIsNotOnHandStaysEmpty) {
    screen_.hasChart = false;
    opened(band());
    EXPECT_EQ(screen_.snapshots.size(), 1U);
    EXPECT_TRUE(screen_.activities.empty());
}

TEST_F(EntityActivityTest, ASongHasNoSortButtonAndAFooterUnderItsChart) {
    const auto page = opened(song("Sky"));
    EXPECT_TRUE(page->snapshot().lists.empty());
    for (const EntitySection section : page->snapshot().sections()) {
        EXPECT_FALSE(RVEntityCollectionViewController::hasActionButton(section));
    }
    EXPECT_TRUE(page->hasHistoryFooter(true));
    EXPECT_FALSE(page->hasHistoryFooter(false));
    EXPECT_FALSE(opened(band())->hasHistoryFooter(true));
    EXPECT_TRUE(RVEntityCollectionViewController::hasActionButton(EntitySection::songs));
}

TEST_F(EntityActivityTest, TheMenuStoresAndReloadsOneList) {
    const auto page = opened(band());
    UIMenu menu = page->sortMenuForButton(EntitySection::songs);
    ASSERT_EQ(menu.children.size(), 6U);
    EXPECT_EQ(menu.children[0].title, "Alphabetical");
    EXPECT_EQ(menu.children[0].image, UIImage::systemImageNamed("chevron.up"));
    EXPECT_FALSE(menu.children[1].image);
    menu.children[1].handler();
    environment_.runUntilIdle();
    EXPECT_EQ(screen_.changedButtons, (std::vector{EntitySection::songs}));
    EXPECT_EQ(screen_.refreshes, 1);
    EXPECT_EQ(screen_.activities.size(), 1U) << "the chart is read once";
    const auto firstSong = [&] { return page->snapshot().list(EntitySection::songs)->entities[0]; };
    EXPECT_EQ(firstSong(), song("Sea"));
    EXPECT_EQ(page->rankEntityCell(EntitySection::songs, 0).text, "1");
    menu = page->sortMenuForButton(EntitySection::songs);
    menu.children[1].handler();
    environment_.runUntilIdle();
    EXPECT_EQ(firstSong(), song("Sky"));
    EXPECT_EQ(page->sortMenuForButton(EntitySection::songs).children[1].image,
              UIImage::systemImageNamed("chevron.down"));
}

TEST_F(EntityActivityTest, PlayingQueuesTheSongsAsTheyAreShown) {
    const auto page = opened(band());
    const auto titles = [&] {
        std::vector<std::string> found;
        const auto queued = page->itemsToPlay();
        for (const MPMediaItem& item : queued->items()) {
            found.emplace_back(*item.title());
        }
        return found;
    };
    EXPECT_EQ(titles(), (std::vector<std::string>{"Sea", "Sky"}));
    page->reloadSection(EntitySection::songs, RVSortTypeAlphabetical, true);
    environment_.runUntilIdle();
    EXPECT_EQ(titles(), (std::vector<std::string>{"Sky", "Sea"}));
    EXPECT_EQ(opened(song("Sky"))->itemsToPlay()->count(), 1U);
    EXPECT_FALSE(opened(MPMediaEntity())->itemsToPlay());
}

TEST_F(EntityActivityTest, AScreenThatHasGoneIsShownNothing) {
    const auto page = RVEntityCollectionViewController::make(screen_, band());
    page->viewDidLoad();
    page->screenDidGo();
    environment_.runUntilIdle();
    EXPECT_TRUE(screen_.snapshots.empty());
    EXPECT_TRUE(screen_.activities.empty());
}

}  // namespace
}  // namespace tavrion
