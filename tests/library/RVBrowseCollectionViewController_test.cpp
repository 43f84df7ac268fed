#include "library/RVBrowseCollectionViewController.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kit/RVAlertManager.h"
#include "library/RVMetadataManager.h"
#include "library/RVQueryManager+Results.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/testing/ManualClock.h"
#include "platform/testing/MediaLibraryFixture.h"

namespace tavrion {
namespace {

using Names = std::vector<std::string>;

/// 2026-03-31 12:00 UTC.
const NSDate present = NSDate::dateWithTimeIntervalSinceReferenceDate(796651200);

NSDate daysAgo(double days) {
    return present.dateByAddingTimeInterval(-days * 86400);
}

class RecordingScreen final : public BrowseScreen {
  public:
    void applySnapshot(const BrowseSnapshot& snapshot, bool animated) override {
        snapshots.push_back(snapshot);
        wasAnimated = animated;
    }
    void setLayout(BrowseLayout layout) override { layouts.push_back(layout); }
    void scrollToTop() override { ++scrolls; }
    void refreshRankValues() override { ++rankRefreshes; }
    void controlsDidChange() override { ++controlChanges; }
    bool isGroupingButtonKnown() const override { return knowsGroupingButton; }
    void presentTooltip(const std::string& title, const std::string& description,
                        std::function<void()> presented) override {
        tooltips.push_back(title + ": " + description);
        presented();
    }

    std::vector<BrowseSnapshot> snapshots;
    Names tooltips;
    std::vector<BrowseLayout> layouts;
    int scrolls = 0;
    int rankRefreshes = 0;
    int controlChanges = 0;
    bool knowsGroupingButton = true;
    bool wasAnimated = false;
};

class Browse : public testing::Test {
  protected:
    void load() {
        controller_ = RVBrowseCollectionViewController::make(screen_);
        controller_->viewDidLoad();
        mainQueue_->runUntilIdle();
    }
    void chooseGrouping(std::size_t index) {
        controller_->groupingMenuForButton().children.at(index).handler();
        mainQueue_->runUntilIdle();
    }
    void chooseSort(RVSortType sortType) {
        controller_->sortMenuForButton().children.at(sortType).handler();
        mainQueue_->runUntilIdle();
    }
    Names titles() const {
        Names found;
        for (const MPMediaEntity& entity : controller_->snapshot().list.value()) {
            const auto title = RVMetadataManager::titleForMediaEntity(entity, std::nullopt);
            found.push_back(title ? title->textWithoutAttachments() : "(none)");
        }
        return found;
    }
    std::string chevronOf(RVSortType sortType) {
        const UIAction action = controller_->sortMenuForButton().children.at(sortType);
        return action.image ? action.image->name() : "";
    }
    /// Three songs that every sort puts in another order.
    void publishThreeSongs() {
        library_.publish({{.title = "A", .playCount = 2, .lastPlayed = daysAgo(1)},
                          {.title = "B", .playCount = 7, .lastPlayed = daysAgo(40)},
                          {.title = "C", .playCount = 1, .lastPlayed = daysAgo(20)}});
    }

    ManualClock clock_{present};
    Port<Clock>::Plug clockPlug_{clock_};
    std::unique_ptr<NSUserDefaults> defaults_ = NSUserDefaults::inMemory();
    Port<NSUserDefaults>::Plug defaultsPlug_{*defaults_};
    std::shared_ptr<MainQueue> mainQueue_ = MainQueue::make();
    Port<MainQueue>::Plug mainQueuePlug_{*mainQueue_};
    TimerService timers_{true};
    Port<TimerService>::Plug timersPlug_{timers_};
    MediaLibraryFixture library_;
    RecordingScreen screen_;
    std::shared_ptr<RVBrowseCollectionViewController> controller_;
};

TEST_F(Browse, FirstLaunchShowsSongsInAlphabeticalOrderAndTheHintOnce) {
    publishThreeSongs();
    load();
    EXPECT_EQ(controller_->choices(), (BrowseChoices{MPMediaGrouping::title, 0, false}));
    EXPECT_EQ(titles(), (Names{"A", "B", "C"}));
    EXPECT_EQ(controller_->snapshot().statistics.size(), 8U);
    EXPECT_TRUE(screen_.wasAnimated);
    EXPECT_EQ(screen_.tooltips, (Names{"Groupings: Change your grouping to view artists, albums, "
                                       "playlists, and genres."}));
    EXPECT_TRUE(defaults_->boolForKey("OnboardingGroupings"));
    controller_->updateDataSource();
    mainQueue_->runUntilIdle();
    load();
    EXPECT_EQ(screen_.tooltips.size(), 1U);
}

TEST_F(Browse, TheHintWaitsForTheGroupingButton) {
    screen_.knowsGroupingButton = false;
    load();
    EXPECT_TRUE(screen_.tooltips.empty());
    EXPECT_FALSE(defaults_->boolForKey("OnboardingGroupings"));
    screen_.knowsGroupingButton = true;
    controller_->updateDataSource();
    mainQueue_->runUntilIdle();
    EXPECT_EQ(screen_.tooltips.size(), 1U);
}

TEST_F(Browse, PlayCountShowsTheMostPlayedFirstWithRanks) {
    publishThreeSongs();
    load();
    EXPECT_EQ(controller_->rankAtIndex(0), std::nullopt);
    chooseSort(RVSortTypePlayCount);
    EXPECT_EQ(titles(), (Names{"B", "A", "C"}));
    EXPECT_EQ(controller_->rankAtIndex(0), 1U);
    EXPECT_EQ(controller_->rankAtIndex(1), 2U);
    EXPECT_EQ(controller_->rankAtIndex(2), 3U);
    EXPECT_EQ(screen_.rankRefreshes, 1);
    EXPECT_EQ(screen_.controlChanges, 1);
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.sortType"), RVSortTypePlayCount);
}

TEST_F(Browse, PlayCountAgainShowsTheLeastPlayedFirstWithRankOne) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    EXPECT_EQ(chevronOf(RVSortTypePlayCount), "chevron.up");
    chooseSort(RVSortTypePlayCount);
    EXPECT_EQ(titles(), (Names{"C", "A", "B"}));
    EXPECT_EQ(controller_->rankAtIndex(0), 1U);
    EXPECT_EQ(chevronOf(RVSortTypePlayCount), "chevron.down");
    EXPECT_EQ(chevronOf(RVSortTypeAlphabetical), "");
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.reverse"), 1U);
}

TEST_F(Browse, AThirdSortTypeResetsReverse) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    chooseSort(RVSortTypePlayCount);
    chooseSort(RVSortTypeTimeListened);
    EXPECT_EQ(controller_->choices(),
              (BrowseChoices{MPMediaGrouping::title, RVSortTypeTimeListened, false}));
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.reverse"), 0U);
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.sortType"), RVSortTypeTimeListened);
    EXPECT_EQ(titles(), (Names{"B", "A", "C"}));
}

TEST_F(Browse, LastPlayedShowsNoRanksAndTheDateAtTheRight) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypeLastPlayed);
    EXPECT_EQ(titles(), (Names{"A", "C", "B"}));
    EXPECT_EQ(controller_->rankAtIndex(0), std::nullopt);
    const auto& list = *controller_->snapshot().list;
    EXPECT_EQ(controller_->propertyOfEntity(list[0]).textWithoutAttachments(), "Yesterday");
    EXPECT_EQ(controller_->propertyOfEntity(list[2]).textWithoutAttachments(), "Feb 19, 2026");
}

TEST_F(Browse, SplittingCompilationsRefreshesArtistsAtOnceAndAlbumsNot) {
    library_.publish(
        {{.title = "1", .artist = "Alice", .albumArtist = "Alice"},
         {.title = "2", .artist = "Carol", .albumArtist = "Various Artists", .compilation = true}});
    load();
    chooseGrouping(1);
    const std::size_t before = screen_.snapshots.size();
    defaults_->setObject(RVQueryManager::splitCompilationsKey, true);
    mainQueue_->runUntilIdle();
    EXPECT_EQ(screen_.snapshots.size(), before);
    defaults_->setObject(RVQueryManager::splitCompilationsKey, false);
    chooseGrouping(2);
    EXPECT_EQ(titles(), (Names{"Alice", "Various Artists"}));
    defaults_->setObject(RVQueryManager::splitCompilationsKey, true);
    mainQueue_->runUntilIdle();
    EXPECT_EQ(titles(), (Names{"Alice", "Carol"}));
}

TEST_F(Browse, AnEmptyLibraryHasNoListUntilAGroupingIsChosen) {
    load();
    EXPECT_EQ(controller_->snapshot().list, std::nullopt);
    EXPECT_EQ(controller_->snapshot().statistics.size(), 8U);
    chooseGrouping(3);
    EXPECT_EQ(controller_->snapshot().list, std::vector<MPMediaEntity>());
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.groupType"), 5U);
}

TEST_F(Browse, SortingKeepsTheTilesAndARebuildMakesThemAnew) {
    publishThreeSongs();
    load();
    const auto tiles = controller_->snapshot().statistics;
    chooseSort(RVSortTypePlayCount);
    EXPECT_EQ(controller_->snapshot().statistics, tiles);
    controller_->updateDataSource();
    mainQueue_->runUntilIdle();
    EXPECT_NE(controller_->snapshot().statistics, tiles);
}

TEST_F(Browse, TheGroupingsAreInTheMenusOrderAndKeepTheSort) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    chooseSort(RVSortTypePlayCount);
    const std::vector<std::pair<std::string, MPMediaGrouping>> expected{
        {"Songs", MPMediaGrouping::title},
        {"Albums", MPMediaGrouping::album},
        {"Artists", MPMediaGrouping::albumArtist},
        {"Genres", MPMediaGrouping::genre},
        {"Playlists", MPMediaGrouping::playlist}};
    const UIMenu menu = controller_->groupingMenuForButton();
    ASSERT_EQ(menu.children.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        EXPECT_EQ(menu.children[index].title, expected[index].first);
        EXPECT_EQ(menu.children[index].image, std::nullopt);
        chooseGrouping(index);
        EXPECT_EQ(controller_->choices(),
                  (BrowseChoices{expected[index].second, RVSortTypePlayCount, true}));
        EXPECT_EQ(RVBrowseCollectionViewController::indexForGrouping(expected[index].second),
                  index);
        EXPECT_EQ(controller_->groupingButtonTitle().textWithoutAttachments(),
                  expected[index].first);
    }
    EXPECT_EQ(RVBrowseCollectionViewController::groupingForIndex(5), MPMediaGrouping::title);
}

TEST_F(Browse, AStoredGroupingThatIsNotOfferedIsTitledSongs) {
    library_.publish({{.title = "1", .artist = "One"}, {.title = "2", .artist = "Two"}});
    RVAlertManager::storeValue(2, "browse.groupType");
    RVAlertManager::storeValue(7, "browse.reverse");
    load();
    EXPECT_TRUE(controller_->choices().reverse);
    EXPECT_EQ(titles(), (Names{"Two", "One"}));
    EXPECT_EQ(controller_->groupingButtonTitle().textWithoutAttachments(), "Songs");
}

TEST_F(Browse, TheChoicesSurviveTheScreen) {
    publishThreeSongs();
    load();
    chooseGrouping(1);
    chooseSort(RVSortTypeDateAdded);
    load();
    EXPECT_EQ(controller_->choices(),
              (BrowseChoices{MPMediaGrouping::album, RVSortTypeDateAdded, false}));
}

TEST_F(Browse, TilesAndRowsArriveOnTheMainQueue) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    Names arrived;
    for (std::uint64_t index = 0; index < 3; ++index) {
        controller_->loadStatistic(
            index, [&](const RVStatisticReference& tile) { arrived.push_back(tile->caption()); });
    }
    controller_->loadRow(controller_->snapshot().list->front(),
                         [&](const UIImage& artwork, const NSAttributedString& property) {
                             EXPECT_EQ(artwork.name(), "item");
                             EXPECT_EQ(property.textWithoutAttachments(), "7x");
                             mainQueue_->assertCurrent();
                         });
    mainQueue_->runUntilIdle();
    EXPECT_EQ(arrived, (Names{"Songs", "Favorited", "Plays"}));
}

class BrowseWhileSearching : public Browse {
  protected:
    void begin() {
        controller_->searchBarTextDidBeginEditing();
        mainQueue_->runUntilIdle();
    }
    void type(std::string_view text) {
        controller_->updateSearchResultsForSearchController(text);
        mainQueue_->runUntilIdle();
    }
    void cancel() {
        controller_->searchBarCancelButtonClicked();
        mainQueue_->runUntilIdle();
    }
    /// The right-hand value that a row gets which comes into view now.
    std::string valueOfRow(const MPMediaEntity& entity) {
        std::string value;
        controller_->loadRow(entity, [&](const UIImage&, const NSAttributedString& text) {
            value = text.textWithoutAttachments();
        });
        mainQueue_->runUntilIdle();
        return value;
    }
};

TEST_F(BrowseWhileSearching, BeginningTakesTheStatisticsOffAndLeavesTheList) {
    publishThreeSongs();
    load();
    begin();
    EXPECT_EQ(screen_.scrolls, 1);
    EXPECT_TRUE(controller_->snapshot().statistics.empty());
    EXPECT_EQ(titles(), (Names{"A", "B", "C"}));
    EXPECT_TRUE(screen_.wasAnimated);
    EXPECT_TRUE(screen_.layouts.empty()) << "the layout of the library stays";
}

TEST_F(BrowseWhileSearching, HitsStandInPlaceOfEverythingInALayoutThatIsSetAnew) {
    publishThreeSongs();
    load();
    begin();
    type("A");
    const BrowseSnapshot& shown = controller_->snapshot();
    EXPECT_TRUE(shown.statistics.empty());
    EXPECT_FALSE(shown.list);
    ASSERT_FALSE(shown.search.empty());
    EXPECT_EQ(shown.search.front().identifier->title, "Artists");
    type("B");
    ASSERT_EQ(controller_->snapshot().search.size(), 2U) << "an album and its songs";
    EXPECT_EQ(screen_.layouts, (std::vector{BrowseLayout::search, BrowseLayout::search}));
}

TEST_F(BrowseWhileSearching, ATermOfBlanksOnlyAndAnEmptiedBarChangeNothingOnView) {
    publishThreeSongs();
    load();
    begin();
    const std::size_t before = screen_.snapshots.size();
    type(" \n");
    EXPECT_EQ(screen_.snapshots.size(), before);
    type("B");
    type("");
    EXPECT_EQ(screen_.snapshots.size(), before + 1);
    EXPECT_FALSE(controller_->snapshot().search.empty());
}

TEST_F(BrowseWhileSearching, CancelBringsTheListBackInItsOldOrderWithFreshTiles) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    const auto tile = controller_->snapshot().statistics.front();
    begin();
    type("C");
    library_.publish({{.title = "Z"}});
    cancel();
    EXPECT_EQ(titles(), (Names{"B", "A", "C"})) << "not found anew";
    ASSERT_EQ(controller_->snapshot().statistics.size(), 8U);
    EXPECT_NE(controller_->snapshot().statistics.front(), tile);
    EXPECT_TRUE(controller_->snapshot().search.empty());
    EXPECT_EQ(screen_.layouts.back(), BrowseLayout::library);
    EXPECT_TRUE(controller_->showAllResults(4)->entities.empty()) << "the hits are forgotten";
}

TEST_F(BrowseWhileSearching, AfterACancelAnEmptyLibraryHasItsSection) {
    load();
    EXPECT_FALSE(controller_->snapshot().list);
    begin();
    EXPECT_FALSE(controller_->snapshot().list);
    cancel();
    ASSERT_TRUE(controller_->snapshot().list);
    EXPECT_TRUE(controller_->snapshot().list->empty());
}

TEST_F(BrowseWhileSearching, RowsHaveNoRankAndTheValueOfTheAlphabet) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    const MPMediaEntity song = library_.song("B");
    EXPECT_EQ(controller_->rankAtIndex(0), 1U);
    EXPECT_EQ(valueOfRow(song), "7x");
    begin();
    EXPECT_TRUE(controller_->isSearchActive());
    EXPECT_EQ(controller_->rankAtIndex(0), std::nullopt);
    EXPECT_EQ(valueOfRow(song), "Album");
    cancel();
    EXPECT_EQ(controller_->rankAtIndex(0), 1U);
    EXPECT_EQ(valueOfRow(song), "7x");
}

TEST_F(BrowseWhileSearching, SeeAllHasEveryHitUnderTheTextAsTyped) {
    std::vector<TestSong> songs;
    for (int number = 1; number <= 7; ++number) {
        songs.push_back({.title = "Wave " + std::to_string(number)});
    }
    library_.publish(songs);
    load();
    begin();
    type(" wave ");
    EXPECT_EQ(controller_->snapshot().search.front().rows.size(), 5U);
    const auto all = controller_->showAllResults(4);
    ASSERT_TRUE(all);
    EXPECT_EQ(all->title, " wave ");
    EXPECT_EQ(all->entities.size(), 7U);
    EXPECT_FALSE(controller_->showAllResults(1));
}

TEST_F(BrowseWhileSearching, TypingFastShowsTheLastTermAlone) {
    publishThreeSongs();
    load();
    begin();
    const std::size_t before = screen_.snapshots.size();
    for (const char* text : {"A", "B", "nowhere"}) {
        controller_->updateSearchResultsForSearchController(text);
    }
    mainQueue_->runUntilIdle();
    ASSERT_EQ(screen_.snapshots.size(), before + 1);
    EXPECT_TRUE(controller_->snapshot().search.empty());
    EXPECT_FALSE(controller_->snapshot().list);
}

TEST_F(BrowseWhileSearching, AScreenThatGoesMeanwhileIsShownNothing) {
    publishThreeSongs();
    load();
    const std::size_t before = screen_.snapshots.size();
    controller_->searchBarTextDidBeginEditing();
    controller_->updateSearchResultsForSearchController("A");
    controller_.reset();
    mainQueue_->runUntilIdle();
    EXPECT_EQ(screen_.snapshots.size(), before);
}

TEST_F(Browse, WorkOfAScreenThatHasGoneIsDropped) {
    publishThreeSongs();
    load();
    const std::size_t before = screen_.snapshots.size();
    controller_->updateDataSource();
    controller_.reset();
    mainQueue_->runUntilIdle();
    EXPECT_EQ(screen_.snapshots.size(), before);
}

using Tile = std::vector<std::string>;

Tile tileAt(std::uint64_t index) {
    const auto tile = RVBrowseCollectionViewController::statForIndex(index);
    return {tile->icon()->name(), tile->value(), tile->caption()};
}

TEST_F(Browse, TheEightTilesMixAllMediaAndMusic) {
    const NSDate start = Extended::startOfDay(daysAgo(30));
    library_.publish({{.title = "1",
                       .duration = 600,
                       .playCount = 1000,
                       .skipCount = 2,
                       .lastPlayed = start.dateByAddingTimeInterval(1),
                       .likedState = 2,
                       .explicitContent = true},
                      {.title = "2", .lastPlayed = start, .likedState = 3, .cloud = true},
                      {.title = "3"},
                      {.title = "Talk",
                       .duration = 600,
                       .playCount = 234,
                       .skipCount = 1,
                       .lastPlayed = daysAgo(1),
                       .likedState = 2,
                       .mediaType = MediaType::podcast,
                       .explicitContent = true},
                      {.title = "Not added", .playCount = 9, .likedState = 2, .inLibrary = false}});
    EXPECT_EQ(tileAt(0), (Tile{"music.note.list", "4", "Songs"}));
    EXPECT_EQ(tileAt(1), (Tile{"star.fill", "1", "Favorited"}));
    EXPECT_EQ(tileAt(2), (Tile{"play.fill", "1,234", "Plays"}));
    EXPECT_EQ(tileAt(3), (Tile{"stopwatch", "10,000", "Minutes Listened"}));
    EXPECT_EQ(tileAt(4), (Tile{"timer", "25%", "Recently Played"}));
    EXPECT_EQ(tileAt(5), (Tile{"forward.fill", "3", "Skips"}));
    EXPECT_EQ(tileAt(6), (Tile{"arrow.down.circle", "66.7%", "Downloaded"}));
    EXPECT_EQ(tileAt(7), (Tile{"e.square.fill", "33.3%", "Explicit"}));
    EXPECT_EQ(RVBrowseCollectionViewController::statForIndex(8), nullptr);
    defaults_->setObject("TimeListenedFormatExpanded", true);
    EXPECT_EQ(tileAt(3), (Tile{"stopwatch", "166h", "Time Listened"}));
}

TEST_F(Browse, RecentlyPlayedDoesNotKnowTheInstallation) {
    defaults_->setObject("com.oskelvane.Nerinda.installationDate", Value(daysAgo(1)));
    library_.publish({{.title = "1", .lastPlayed = daysAgo(20)}});
    EXPECT_EQ(tileAt(4)[1], "100%");
}

TEST_F(Browse, TheTilesOfAnEmptyLibraryAreNumbersOrWhatIsNone) {
    EXPECT_EQ(tileAt(0)[1], "0");
    EXPECT_EQ(tileAt(3)[1], "0");
    EXPECT_EQ(tileAt(4)[1], "NaN%");
    EXPECT_EQ(tileAt(6)[1], "NaN%");
    EXPECT_EQ(tileAt(7)[1], "NaN%");
}

}  // namespace
}  // namespace tavrion
