#include "library/EntityActivity.h"

#include <gtest/gtest.h>

#include "library/RVEntityCollectionViewController.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/mediaplayer/MPMusicPlayerController.h"
#include "tests/support/DayZones.h"
#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

using Names = std::vector<std::string>;

constexpr double day = 86400;
/// Noon of 2026-03-01 UTC.
constexpr double noon = 794059200;
constexpr double today = noon - day / 2;
constexpr double firstDay = today - 29 * day;

/// Notes what it is handed over, and reports as a window does.
class NotingScreen final : public ScreenPort<EntityPage> {
  public:
    void stateDidChange(std::shared_ptr<const EntityPage> page, StateChange how) override {
        pages.push_back(std::move(page));
        wasAnimated = how == StateChange::animated;
        whenShown();
    }
    void emit(ScreenEvent event) override { events.push_back(std::move(event)); }
    /// The last place that it was led to.
    template <class Place>
    const Place* lastRoute() const {
        const auto* route = events.empty() ? nullptr : std::get_if<Route>(&events.back());
        return route == nullptr ? nullptr : std::get_if<Place>(route);
    }

    std::function<void()> whenShown = [] {};
    bool wasAnimated = false;
    std::vector<std::shared_ptr<const EntityPage>> pages;
    std::vector<ScreenEvent> events;
};

class NotingPlayer final : public MPMusicPlayerController {
  public:
    void setQueueWithDescriptor(const MPMusicPlayerMediaItemQueueDescriptor& descriptor) override {
        queued.clear();
        for (const MPMediaItem& item : descriptor.itemCollection().items()) {
            queued.emplace_back(*item.title());
        }
        commands.emplace_back("queue");
    }
    void setShuffleMode(MPMusicShuffleMode mode) override {
        commands.emplace_back(mode == MPMusicShuffleMode::off ? "unshuffled" : "shuffled");
    }
    void prepareToPlay() override { commands.emplace_back("prepare"); }
    void play() override { commands.emplace_back("play"); }

    Names queued;
    Names commands;
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
    std::shared_ptr<RVEntityCollectionViewController> made(const MPMediaEntity& entity) {
        auto page = RVEntityCollectionViewController::make(entity);
        attachment_ = page->attach(screen_);
        screen_.whenShown = [this, weak = std::weak_ptr(page)] {
            weak.lock()->snapshotDidApply(hasChart_);
        };
        page->viewDidLoad();
        return page;
    }
    std::shared_ptr<RVEntityCollectionViewController> opened(const MPMediaEntity& entity) {
        auto page = made(entity);
        environment_.runUntilIdle();
        return page;
    }

    RecordingEnvironment environment_;
    std::optional<PlaybackHistory> sky_;
    std::optional<PlaybackHistory> sea_;
    NotingScreen screen_;
    NotingPlayer player_;
    Port<MPMusicPlayerController>::Plug playerPlug_{player_};
    bool hasChart_ = true;
    ScreenAttachment attachment_;
};

TEST_F(EntityActivityTest, withoutPlaysInTheThirtyDaysThereAreNoBars) {
    play(*sky_, firstDay - 10);
    play(*sea_, today + 100);
    const EntityActivity activity = activityOf(song("Sky"));
    EXPECT_FALSE(activity.days);
    EXPECT_EQ(activity.firstDay, RecordingEnvironment::at(firstDay));
}

TEST_F(EntityActivityTest, playsOfTwoSongsOnADayAddUpAndAreCutToWholeSeconds) {
    play(*sky_, today + 100);
    play(*sea_, today + 200);
    const auto days = activityOf(band()).days;
    ASSERT_TRUE(days);
    EntityActivity::Days expected{};
    expected[29] = 151;
    EXPECT_EQ(*days, expected);
    EXPECT_EQ(activityOf(song("Sea")).days->at(29), 50);
}

TEST_F(EntityActivityTest, aPlayHalfAMinuteBeforeMidnightCountsForThatDay) {
    play(*sky_, today - 30);
    play(*sea_, today + day - 30);
    const auto days = activityOf(band()).days;
    EXPECT_EQ(days->at(28), 100);
    EXPECT_EQ(days->at(29), 50);
}

TEST_F(EntityActivityTest, aPlayAtTheFirstMidnightDoesNotCount) {
    play(*sky_, firstDay);
    EXPECT_FALSE(activityOf(song("Sky")).days);
    play(*sky_, firstDay + 1);
    EXPECT_EQ(activityOf(song("Sky")).days->at(0), 100);
}

TEST_F(EntityActivityTest, thePageIsBuiltAndThenItsChart) {
    play(*sky_, today + 1);
    environment_.saveMain();
    const auto page = made(band());
    EXPECT_EQ(page->state()->header.title, "Band") << "the header is there at once";
    EXPECT_TRUE(page->state()->lists.empty());
    environment_.runUntilIdle();
    ASSERT_EQ(screen_.pages.size(), 2U);
    EXPECT_EQ(screen_.pages[0]->lists.size(), 2U);
    EXPECT_EQ(screen_.pages[0]->lastPlayedText(), "Last Played: —");
    EXPECT_FALSE(screen_.pages[0]->activity);
    ASSERT_TRUE(screen_.pages[1]->activity);
    EXPECT_EQ(screen_.pages[1]->activity->days->at(29), 100);
    EXPECT_EQ(screen_.pages[1]->lists.size(), 2U);
}

TEST_F(EntityActivityTest, aChartThatIsNotOnHandStaysEmpty) {
    hasChart_ = false;
    const auto page = opened(band());
    EXPECT_EQ(screen_.pages.size(), 1U);
    page->snapshotDidApply(true);
    environment_.runUntilIdle();
    EXPECT_FALSE(page->state()->activity);
}

TEST_F(EntityActivityTest, aSongHasNoSortButtonAndAFooterUnderItsChart) {
    const auto page = opened(song("Sky"));
    EXPECT_TRUE(page->state()->lists.empty());
    for (const EntitySection section : page->state()->sections()) {
        EXPECT_FALSE(RVEntityCollectionViewController::hasActionButton(section));
    }
    EXPECT_TRUE(page->hasHistoryFooter(true));
    EXPECT_FALSE(page->hasHistoryFooter(false));
    EXPECT_FALSE(opened(band())->hasHistoryFooter(true));
    EXPECT_TRUE(RVEntityCollectionViewController::hasActionButton(EntitySection::songs));
}

TEST_F(EntityActivityTest, theMenuStoresAndReloadsOneList) {
    const auto page = opened(band());
    UIMenu menu = page->sortMenuForButton(EntitySection::songs);
    ASSERT_EQ(menu.children.size(), 6U);
    EXPECT_EQ(menu.children[0].title, "Alphabetical");
    EXPECT_EQ(menu.children[0].image, UIImage::systemImageNamed("chevron.up"));
    EXPECT_FALSE(menu.children[1].image);
    menu.children[1].handler();
    const auto songs = [&] { return page->state()->list(EntitySection::songs); };
    EXPECT_EQ(songs()->sort, (EntitySort{RVSortTypePlayCount, false})) << "the button at once";
    environment_.runUntilIdle();
    EXPECT_TRUE(screen_.wasAnimated);
    EXPECT_TRUE(page->state()->activity) << "the chart is read once, and stays";
    EXPECT_EQ(songs()->rows[0], song("Sea"));
    EXPECT_EQ(songs()->rows.number(0), 1U);
    menu = page->sortMenuForButton(EntitySection::songs);
    menu.children[1].handler();
    environment_.runUntilIdle();
    EXPECT_EQ(songs()->rows[0], song("Sky"));
    EXPECT_EQ(page->sortMenuForButton(EntitySection::songs).children[1].image,
              UIImage::systemImageNamed("chevron.down"));
}

TEST_F(EntityActivityTest, anEmptyListThatIsSortedChangesNothingOnView) {
    environment_.library.publish({}, {{.name = "Empty", .persistentID = 1}});
    const auto page = opened(MPMediaQuery::playlistsQuery().collections().at(0));
    const std::size_t before = screen_.pages.size();
    page->reloadSection(EntitySection::songs, RVSortTypePlayCount, false);
    environment_.runUntilIdle();
    EXPECT_EQ(screen_.pages.size(), before);
}

TEST_F(EntityActivityTest, playingQueuesTheSongsAsTheyAreShownUnshuffled) {
    const auto page = opened(band());
    page->playMediaEntity();
    EXPECT_EQ(player_.queued, (Names{"Sea", "Sky"}));
    EXPECT_EQ(player_.commands, (Names{"queue", "unshuffled", "prepare", "play"}));
    EXPECT_EQ(std::get<ScreenSignal>(screen_.events.back()), ScreenSignal::lightImpact);
    page->reloadSection(EntitySection::songs, RVSortTypeAlphabetical, true);
    environment_.runUntilIdle();
    page->playMediaEntity();
    EXPECT_EQ(player_.queued, (Names{"Sky", "Sea"}));
    opened(song("Sky"))->playMediaEntity();
    EXPECT_EQ(player_.queued, (Names{"Sky"}));
    player_.commands.clear();
    opened(MPMediaEntity())->playMediaEntity();
    EXPECT_TRUE(player_.commands.empty());
}

TEST_F(EntityActivityTest, thePageLeadsToItsArtistItsPlaysAndItsRows) {
    const auto page = opened(song("Sky"));
    page->showArtist();
    ASSERT_NE(screen_.lastRoute<EntityRoute>(), nullptr);
    EXPECT_EQ(screen_.lastRoute<EntityRoute>()->entity, band());
    page->showTrackHistory();
    ASSERT_NE(screen_.lastRoute<SongHistoryRoute>(), nullptr);
    EXPECT_EQ(*screen_.lastRoute<SongHistoryRoute>(), (SongHistoryRoute{"Sky", sky_->objectID()}));
    page->didSelectItem(song("Sea"));
    ASSERT_NE(screen_.lastRoute<EntityRoute>(), nullptr);
    EXPECT_EQ(screen_.lastRoute<EntityRoute>()->entity, song("Sea"));
    screen_.events.clear();
    page->didSelectItem(MPMediaEntity());
    opened(band())->showTrackHistory();
    opened(MPMediaEntity())->showArtist();
    EXPECT_TRUE(screen_.events.empty());
}

TEST_F(EntityActivityTest, rowsAndThePictureOfTheHeaderArriveOnTheMainQueue) {
    const auto page = opened(band());
    std::optional<PicturedRow> row;
    std::optional<UIImage> artwork;
    const ScreenRequest first = page->loadRow(EntitySection::songs, 1, [&](PicturedRow loaded) {
        environment_.mainQueue->assertCurrent();
        row = std::move(loaded);
    });
    const ScreenRequest second = page->loadArtwork([&](UIImage image) { artwork = image; });
    const ScreenRequest behind =
        page->loadRow(EntitySection::songs, 2, [](const PicturedRow&) { FAIL(); });
    EXPECT_FALSE(behind.isPending());
    environment_.runUntilIdle();
    ASSERT_TRUE(row);
    EXPECT_EQ(row->row.entity, song("Sky"));
    EXPECT_EQ(row->row.subtitle, "Band");
    EXPECT_EQ(row->artwork.name(), "item");
    ASSERT_TRUE(artwork);
    EXPECT_EQ(artwork->name(), "list");
}

TEST_F(EntityActivityTest, aScreenThatHasGoneIsShownNothing) {
    const auto page = made(band());
    attachment_.detach();
    environment_.runUntilIdle();
    EXPECT_TRUE(screen_.pages.empty());
}

TEST_F(EntityActivityTest, aScreenMayGoWhileItIsShownThePage) {
    auto page = made(band());
    screen_.whenShown = [&] {
        page->snapshotDidApply(true);
        attachment_.detach();
        page.reset();
    };
    environment_.runUntilIdle();
    EXPECT_EQ(screen_.pages.size(), 1U);
    EXPECT_EQ(page, nullptr);
}

class ActivityOfZones : public testing::TestWithParam<DayZone> {
  protected:
    /// What thirty days show at the noon of a day of the zone, one song being played at its first
    /// second, its noon and its last second before, on that day and on all days before and after.
    void expectEachDayOnce(const WalkedDay& present) {
        RecordingEnvironment environment(present.noon(), GetParam().zone);
        environment.library.publish({{.title = "Sky", .duration = 10}});
        PlaybackHistory sky = environment.makeHistory("Sky", 10);
        EntityActivity::Days expected{};
        for (const WalkedDay& lived : GetParam().days(70, 40)) {
            for (const NSDate date :
                 {lived.after(1), lived.noon(), lived.last.dateByAddingTimeInterval(-1)}) {
                environment.makePlay(sky, date.timeIntervalSinceReferenceDate());
            }
            const std::int64_t bar = lived.day.number - present.day.number + 29;
            if (bar >= 0 && bar < 30) {
                expected[static_cast<std::size_t>(bar)] = 30;
            }
        }
        environment.saveMain();
        EXPECT_EQ(recentActivity(environment.library.song("Sky"), environment.main()).days,
                  expected)
            << present.day.number - GetParam().oddDay().number << " days from the odd one";
    }
};

INSTANTIATE_TEST_SUITE_P(EntityActivity, ActivityOfZones, testing::ValuesIn(dayZones),
                         nameOfDayZone);

TEST_P(ActivityOfZones, everyDayHasItsOwnBar) {
    for (const int offset : {0, 1, 2, 15, 27, 28, 29, 30}) {
        expectEachDayOnce(GetParam().livedDay(offset));
    }
}

}  // namespace
}  // namespace tavrion
