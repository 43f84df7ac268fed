// The screen around the ranking: its rows, buttons, hints, and what the user can do there.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/RVMetadataManager.h"
#include "recording/RVPlaybackHistoryManager.h"
#include "tests/timeviews/TrendingFixture.h"

namespace tavrion {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Arrangement = TrendingSectionLayout::Arrangement;

class TrendingScreenTest : public TrendingFixture {
  protected:
    void load() {
        environment.library.publish(songs);
        screen->viewDidLoad();
        environment.runUntilIdle();
    }
    TrendingCell cellOf(const std::vector<TrendingRow>& rows, std::size_t index) {
        return RVTrendingCollectionViewController::cellForRow(*rows.at(index), index, std::nullopt);
    }
    static NSAttributedString small(const std::string& text, const char* icon) {
        return RVMetadataManager::attributedString(
            text, UIImage::systemImageNamed(icon, {.scale = UIImageSymbolScale::small}));
    }
    static NSAttributedString titled(const std::string& text, const char* icon) {
        return RVMetadataManager::attributedString(text, UIImage::systemImageNamed(icon));
    }
    bool flag(const char* key) const { return environment.defaults->boolForKey(key); }
    std::vector<std::string> hintTitles() const {
        std::vector<std::string> titles;
        for (const Tooltip& hint : window.hints) {
            titles.push_back(hint.title);
        }
        return titles;
    }
    /// What the window has heard since the last call.
    std::vector<std::string> told() { return std::exchange(window.told, {}); }
};

// Life

TEST_F(TrendingScreenTest, loadingRanksAndTellsTheProgressOnTheMainQueue) {
    song("One", 2);
    load();
    EXPECT_THAT(told(), ElementsAre("range title", "grouping title", "progress", "no progress",
                                    "background hidden", "snapshot"));
    EXPECT_EQ(screen->snapshot().songs.size(), 1U);
}

TEST_F(TrendingScreenTest, withoutASongTheBackgroundShowsWhateverTheCollections) {
    song("Gone", 2);
    song("Other", 0);
    song("Third", 0);
    songs.erase(songs.begin());
    load();
    EXPECT_EQ(screen->snapshot().collections.size(), 1U);
    EXPECT_THAT(screen->snapshot().songs, IsEmpty());
    EXPECT_THAT(told(), ElementsAre("range title", "grouping title", "progress", "no progress",
                                    "background", "snapshot"));
    EXPECT_TRUE(screen->state()->showsBackgroundView);
}

TEST_F(TrendingScreenTest, theBackgroundIsHiddenAtFirst) {
    EXPECT_FALSE(screen->state()->showsBackgroundView);
    EXPECT_THAT(screen->snapshot().sectionIdentifiers(), ElementsAre(0));
}

TEST_F(TrendingScreenTest, theWordsAboutPullingShowOnceInALife) {
    load();
    EXPECT_EQ(screen->state()->prompt, "Pull down to refresh.");
    EXPECT_TRUE(flag("DidShowTrendingPullToRefresh"));
    const auto second = RVTrendingCollectionViewController::make();
    second->viewDidLoad();
    EXPECT_EQ(second->state()->prompt, std::nullopt);
    environment.runUntilIdle();
}

TEST_F(TrendingScreenTest, theNotificationOfTheRangeRanksAgain) {
    song("One", 2);
    load();
    store(2000, 3000);
    EXPECT_EQ(screen->snapshot().songs.size(), 1U) << "the drawer is still open";
    environment.centre.postNotificationName("TrendingDateRangeObjectDidChange");
    environment.runUntilIdle();
    EXPECT_THAT(screen->snapshot().songs, IsEmpty());
}

TEST_F(TrendingScreenTest, theDrawerOfTheRangeTellsTheScreen) {
    song("One", 2);
    load();
    screen->changeDateInterval();
    const auto selector = RVDateRangeSelectorViewController::initWithUserDefault(
        std::get<DateRangeRoute>(window.routes.at(0)).userDefaultKey);
    EXPECT_EQ(selector->userDefaultKey(), "TrendingDateRangeObject");
    selector->viewDidLoad();
    window.told.clear();
    selector->presetSegmentedControl().setSelectedIndex(1, true);
    environment.runUntilIdle();
    EXPECT_THAT(told(), ElementsAre("range title")) << "the button follows at once";
    EXPECT_EQ(screen->state()->dateRangeTitle.textWithoutAttachments(), "Past Week");
    selector->viewWillDisappear();
    environment.runUntilIdle();
    EXPECT_THAT(screen->snapshot().songs, IsEmpty());
}

TEST_F(TrendingScreenTest, aScreenThatHasGoneIsToldNothing) {
    song("One", 2);
    environment.library.publish(songs);
    screen->viewDidLoad();
    attachment.detach();
    window.told.clear();
    environment.runUntilIdle();
    screen->viewDidAppear();
    screen->changeDateInterval();
    screen->createPlaylist();
    screen->refreshDataSource();
    environment.runUntilIdle();
    EXPECT_THAT(window.told, IsEmpty());
    EXPECT_EQ(screen->snapshot().songs.size(), 1U);
}

TEST_F(TrendingScreenTest, aScreenMayGoWhileItIsToldOfTheRanking) {
    song("One", 2);
    environment.library.publish(songs);
    window.whenChanged = [this] {
        if (!window.page->ranking.songs.empty()) {
            attachment.detach();
            screen.reset();
        }
    };
    screen->updateDataSource();
    environment.runUntilIdle();
    EXPECT_EQ(screen, nullptr);
    EXPECT_THAT(told(), ElementsAre("background hidden", "snapshot"));
    EXPECT_THAT(window.hints, IsEmpty());
}

TEST_F(TrendingScreenTest, theOneInFrontIsAskedAboutTabs) {
    screen->viewDidAppear();
    EXPECT_THAT(told(), ElementsAre("delegate"));
}

TEST_F(TrendingScreenTest, theSelectedTabTappedAgainScrollsToTheTop) {
    EXPECT_TRUE(screen->shouldSelectViewController(false, true));
    EXPECT_TRUE(screen->shouldSelectViewController(true, false));
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_TRUE(screen->shouldSelectViewController(true, true));
    EXPECT_THAT(told(), ElementsAre("top"));
}

TEST_F(TrendingScreenTest, pullingScansAndRanksWhatWasFound) {
    store(0, 2e9);
    songs.push_back({.title = "New",
                     .albumArtist = "Artist",
                     .playCount = 1,
                     .lastPlayed = environment.clock.now().dateByAddingTimeInterval(-60)});
    environment.defaults->setObject("com.oskelvane.Nerinda.installationDate",
                                    environment.clock.now().dateByAddingTimeInterval(-86400));
    load();
    window.told.clear();
    screen->refreshDataSource();
    EXPECT_THAT(told(), ElementsAre("refreshed")) << "before the scan has begun";
    environment.runUntilIdle();
    EXPECT_EQ(environment.presenter.progressPopups, 0);
    EXPECT_THAT(texts(screen->snapshot().songs), ElementsAre("New 1 0"));
}

TEST_F(TrendingScreenTest, whatALookUpTakesOverHidesNoLaterChange) {
    PlaybackHistory history = song("Old Title", 2);
    history.setLibraryID("L1");
    song("Other", 0);
    songs.front().title = "New Title";
    songs.front().libraryID = "L1";
    EXPECT_THAT(texts(update().songs), ElementsAre("New Title 2 0"));
    EXPECT_EQ(history.title(), "Old Title");
    history.setTitle("Third Title");
    songs.front().title = "Third Title";
    songs.front().libraryID.clear();
    EXPECT_THAT(texts(update().songs), ElementsAre("Third Title 2 0"));
}

// Sections, rows and buttons

TEST_F(TrendingScreenTest, sectionsAreArrangedByWhatIsInThem) {
    song("One", 2);
    update();
    EXPECT_EQ(screen->state()->layoutForSectionAtIndex(0),
              (TrendingSectionLayout{Arrangement::rows, "RVEntityRowCell", false}));
    EXPECT_EQ(screen->state()->layoutForSectionAtIndex(1),
              (TrendingSectionLayout{Arrangement::columns, "RVEntityColumnCell", true}));
    EXPECT_EQ(screen->state()->layoutForSectionAtIndex(2),
              (TrendingSectionLayout{Arrangement::rows, "RVEntityRowCell", true}));
    EXPECT_EQ(screen->state()->layoutForSectionAtIndex(3), std::nullopt);
    group(7);
    update();
    EXPECT_EQ(screen->state()->layoutForSectionAtIndex(1),
              (TrendingSectionLayout{Arrangement::rows, "RVEntityRowCell", true}))
        << "without collections the songs stand second";
    EXPECT_EQ(screen->state()->layoutForSectionAtIndex(2), std::nullopt);
}

TEST_F(TrendingScreenTest, aSongShowsItsPlaysItsArtistAndItsRank) {
    song("One", 2, "A");
    song("Two", 12, "B");
    update();
    const TrendingCell cell = cellOf(screen->snapshot().songs, 1);
    EXPECT_EQ(cell.reuseIdentifier, "EntityRowCell");
    EXPECT_EQ(cell.title->textWithoutAttachments(), "One");
    EXPECT_EQ(cell.subtitle, "A");
    EXPECT_EQ(cell.property, small("2x", "play.fill"));
    EXPECT_EQ(cell.ranking, 2U);
    EXPECT_EQ(cellOf(screen->snapshot().songs, 0).property, small("12x", "play.fill"));
}

TEST_F(TrendingScreenTest, theRankStandsOnSongsOnly) {
    song("One", 2, "A");
    update();
    const TrendingCell cell = cellOf(screen->snapshot().collections, 0);
    EXPECT_EQ(cell.reuseIdentifier, "EntityColumnCell");
    EXPECT_EQ(cell.title->textWithoutAttachments(), "A");
    EXPECT_EQ(cell.property, small("2x", "play.fill"));
    EXPECT_EQ(cell.subtitle, std::nullopt);
    EXPECT_EQ(cell.ranking, std::nullopt);
    EXPECT_EQ(cellOf(screen->snapshot().songs, 0).ranking, 1U);
}

TEST_F(TrendingScreenTest, theRowsFollowTheRankFormatAfterTheRebuild) {
    song("One", 2, "A", "Album", "Genre", 90);
    update();
    rankByTime();
    EXPECT_EQ(cellOf(screen->snapshot().songs, 0).property,
              small(RVMetadataManager::formattedDuration(0), "stopwatch"))
        << "the old row has no time";
    update();
    EXPECT_EQ(cellOf(screen->snapshot().songs, 0).property,
              small(RVMetadataManager::formattedDuration(180), "stopwatch"));
    EXPECT_EQ(cellOf(screen->snapshot().collections, 0).property,
              small(RVMetadataManager::formattedDuration(180), "stopwatch"));
    environment.defaults->setObject(TrendingDefaults::weightedRankFormat, 1);
    update();
    EXPECT_EQ(cellOf(screen->snapshot().songs, 0).property, small("2x", "play.fill"))
        << "anything but 2 counts plays";
}

TEST_F(TrendingScreenTest, artworkComesOnTheMainQueue) {
    song("One", 2);
    update();
    int loaded = 0;
    const auto load = [&] {
        return screen->loadArtwork(screen->snapshot().songs.front()->entity, [&](const UIImage&) {
            environment.mainQueue->assertCurrent();
            ++loaded;
        });
    };
    const ScreenRequest request = load();
    environment.runUntilIdle();
    EXPECT_EQ(loaded, 1);
    load().cancel();
    environment.runUntilIdle();
    EXPECT_EQ(loaded, 1) << "nobody wants it any more";
}

TEST_F(TrendingScreenTest, aboveTheCollectionsStandsTheGroupingSwitchAlone) {
    const auto controls = screen->controlsForSection(TrendingSnapshot::collectionsSection);
    EXPECT_EQ(controls->first.title, titled("Artists", "square.split.1x2"));
    ASSERT_TRUE(controls->first.menu);
    EXPECT_EQ(controls->first.touchUpInside, nullptr);
    EXPECT_TRUE(controls->second.isHidden);
}

TEST_F(TrendingScreenTest, aboveTheSongsStandTheTwoActionsWithoutMenus) {
    const auto controls = screen->controlsForSection(TrendingSnapshot::songsSection);
    EXPECT_EQ(controls->first.title, titled("Play All", "play.fill"));
    EXPECT_EQ(controls->second.title, titled("New Playlist", "plus"));
    EXPECT_FALSE(controls->first.menu || controls->second.menu);
    EXPECT_FALSE(controls->first.isHidden || controls->second.isHidden);
    controls->first.touchUpInside();
    EXPECT_EQ(player.told.back(), "play");
    controls->second.touchUpInside();
    EXPECT_TRUE(window.playlist);
    EXPECT_FALSE(screen->controlsForSection(TrendingSnapshot::dateSection));
}

TEST_F(TrendingScreenTest, theGroupingSwitchSaysTheWordOfItsNumber) {
    const std::vector<std::string> words{"Artists", "Albums", "Genres", "", ""};
    const auto title = [this] {
        return screen->controlsForSection(TrendingSnapshot::collectionsSection)->first.title;
    };
    for (std::size_t grouping = 0; grouping < words.size(); ++grouping) {
        group(static_cast<int>(grouping));
        EXPECT_EQ(title(), titled(words[grouping], "square.split.1x2"));
    }
    group(-1);
    EXPECT_EQ(title(), titled("", "square.split.1x2"));
}

TEST_F(TrendingScreenTest, theGroupingMenuStoresItsNumberAndRanksAgain) {
    song("One", 2, "A", "First", "Rock");
    update();
    const UIMenu menu = screen->groupingMenuForButton();
    std::vector<std::string> titles;
    for (const UIAction& action : menu.children) {
        titles.push_back(action.title);
        EXPECT_FALSE(action.image) << "no mark on the present choice";
    }
    EXPECT_THAT(titles, ElementsAre("Artists", "Albums", "Genres"));
    const std::vector<std::string> rows{"A 2 0", "First 2 0", "Rock 2 0"};
    for (const std::size_t choice : {2U, 1U, 0U}) {
        window.told.clear();
        menu.children[choice].handler();
        const NSAttributedString word = window.page->groupingTitle;
        EXPECT_EQ(word.textWithoutAttachments(), titles[choice]) << "at once";
        EXPECT_EQ(word, screen->state()->groupingTitle);
        EXPECT_EQ(environment.defaults->integerForKey("TrendingGroupingType"),
                  static_cast<std::int64_t>(choice));
        environment.runUntilIdle();
        EXPECT_THAT(texts(screen->snapshot().collections), ElementsAre(rows[choice]));
    }
}

TEST_F(TrendingScreenTest, rowsOpenTheirPageAndTheirMenu) {
    song("One", 2, "A");
    update();
    const TrendingRow& row = screen->snapshot().songs.front();
    screen->didSelectRow(row);
    screen->didSelectRow(nullptr);
    ASSERT_EQ(window.routes.size(), 1U);
    EXPECT_EQ(std::get<EntityRoute>(window.routes[0]), EntityRoute{row->entity});
    EXPECT_EQ(RVTrendingCollectionViewController::entityForContextMenu(row), row->entity);
    EXPECT_EQ(RVTrendingCollectionViewController::entityForContextMenu(nullptr), std::nullopt);
    EXPECT_EQ(RVTrendingCollectionViewController::entityForContextMenu(
                  std::make_shared<const RVTrendingEntity>()),
              std::nullopt);
}

// Playing, and playlists

TEST_F(TrendingScreenTest, playAllQueuesTheSongsInRankOrderWithShuffleOff) {
    song("One", 1, "A");
    song("Two", 3, "B");
    song("Three", 2, "C");
    update();
    window.told.clear();
    player.shuffleMode = MPMusicShuffleMode::songs;
    screen->playAll();
    EXPECT_THAT(told(), ElementsAre("impact"));
    EXPECT_THAT(player.told, ElementsAre("queue", "shuffle 1", "prepare", "play"));
    EXPECT_THAT(player.queue, ElementsAre("Two", "Three", "One"));
    EXPECT_EQ(player.shuffleMode, MPMusicShuffleMode::off) << "another program had chosen songs";
}

TEST_F(TrendingScreenTest, aNewPlaylistIsTheRangesNameAndTheSongs) {
    song("One", 1, "A");
    song("Two", 3, "B");
    update();
    environment.defaults->setObject("TrendingDateRangeObject", 4);
    screen->createPlaylist();
    EXPECT_EQ(window.playlist->title, "Lifetime");
    ASSERT_EQ(window.playlist->songs.size(), 2U);
    EXPECT_EQ(std::get<MPMediaItem>(window.playlist->songs[0]).title(), "Two");
    EXPECT_EQ(std::get<MPMediaItem>(window.playlist->songs[1]).title(), "One");
}

// Hints

TEST_F(TrendingScreenTest, theSecondHintWaitsForAnUpdateAfterTheFirst) {
    song("One", 2);
    update();
    ASSERT_THAT(hintTitles(), ElementsAre("PlayBack"));
    EXPECT_EQ(window.hints[0].source, "playlistButton");
    EXPECT_EQ(window.hints[0].text,
              "PlayBack creates a dynamic list of your top songs based on a mix of stats like play "
              "count and time listened. Save versions of your PlayBack results by exporting them "
              "as playlists.");
    EXPECT_TRUE(flag("OnboardingPlayBack"));
    EXPECT_FALSE(flag("OnboardingAlbums"));
    update();
    ASSERT_THAT(hintTitles(), ElementsAre("PlayBack", "Trending Collections"));
    EXPECT_EQ(window.hints[1].source, "collectionButton");
    EXPECT_EQ(window.hints[1].text, "Toggle between your trending artists and albums.");
    EXPECT_TRUE(flag("OnboardingAlbums"));
    update();
    EXPECT_EQ(window.hints.size(), 2U);
}

TEST_F(TrendingScreenTest, aHintNeedsItsButton) {
    song("One", 2);
    window.showsControls = false;
    update();
    EXPECT_THAT(window.hints, IsEmpty());
    screen->controlsForSection(TrendingSnapshot::collectionsSection);
    update();
    EXPECT_THAT(window.hints, IsEmpty()) << "asking for a button has no effect";
    screen->controlsDidAppear(TrendingSnapshot::collectionsSection);
    update();
    EXPECT_THAT(hintTitles(), ElementsAre("Trending Collections"))
        << "the other button was not shown yet";
    screen->controlsDidAppear(TrendingSnapshot::songsSection);
    update();
    EXPECT_THAT(hintTitles(), ElementsAre("Trending Collections", "PlayBack"));
}

TEST_F(TrendingScreenTest, aHintThatCouldNotBeShownComesAgain) {
    song("One", 2);
    window.showsTooltips = false;
    update();
    EXPECT_FALSE(flag("OnboardingPlayBack"));
    update();
    EXPECT_THAT(hintTitles(), ElementsAre("PlayBack", "PlayBack"));
}

TEST_F(TrendingScreenTest, withoutCollectionsThereIsNoGroupingSwitchAndWithoutSongsNoAction) {
    song("Never", 0);
    update();
    EXPECT_TRUE(window.controls.empty()) << "neither a switch nor an action was built";
    EXPECT_THAT(window.hints, IsEmpty());
    song("One", 2);
    group(9);
    update();
    EXPECT_EQ(window.controls.count(TrendingSnapshot::collectionsSection), 0U);
    EXPECT_EQ(window.controls.count(TrendingSnapshot::songsSection), 1U);
    environment.defaults->setObject("OnboardingPlayBack", true);
    update();
    EXPECT_THAT(hintTitles(), ElementsAre("PlayBack")) << "the switch was never built";
}

}  // namespace
}  // namespace tavrion
