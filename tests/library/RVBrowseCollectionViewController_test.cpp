#include "library/RVBrowseCollectionViewController.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kit/RVAlertManager.h"
#include "library/RVMetadataManager.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/testing/ManualClock.h"
#include "platform/testing/MediaLibraryFixture.h"
#include "recording/RVQueryManager.h"

namespace tavrion {
namespace {

using Names = std::vector<std::string>;

/// 2026-03-31 12:00 UTC.
const NSDate present = NSDate::dateWithTimeIntervalSinceReferenceDate(796651200);

NSDate daysAgo(double days) {
    return present.dateByAddingTimeInterval(-days * 86400);
}

class RecordingScreen final : public ScreenPort<BrowsePage> {
  public:
    void stateDidChange(std::shared_ptr<const BrowsePage> page, StateChange how) override {
        pages.push_back(std::move(page));
        wasAnimated = how == StateChange::animated;
        whenShown();
    }
    void emit(ScreenEvent event) override {
        if (const auto* tooltip = std::get_if<Tooltip>(&event)) {
            tooltips.push_back(tooltip->source + ", " + tooltip->title + ": " + tooltip->text);
            tooltip->presented();
        } else if (const auto* route = std::get_if<Route>(&event)) {
            routes.push_back(*route);
        } else {
            signals.push_back(std::get<ScreenSignal>(event));
        }
    }

    std::vector<std::shared_ptr<const BrowsePage>> pages;
    Names tooltips;
    std::vector<Route> routes;
    std::vector<ScreenSignal> signals;
    std::function<void()> whenShown = [] {};
    bool wasAnimated = false;
};

class Browse : public testing::Test {
  protected:
    void load() {
        controller_ = std::make_shared<RVBrowseCollectionViewController>();
        attachment_ = controller_->attach(screen_);
        screen_.whenShown = [this] { controller_->snapshotDidApply(knowsGroupingButton_); };
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
    const BrowsePage& page() const { return *controller_->state(); }
    std::optional<std::uint64_t> rankAtIndex(std::size_t index) const {
        return page().list->number(index);
    }
    std::string propertyAt(std::size_t index) const {
        return page().list->row(index).property.textWithoutAttachments();
    }
    Names titles() const {
        Names found;
        for (const MPMediaEntity& entity : page().list.value().entities()) {
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
    bool knowsGroupingButton_ = true;
    std::shared_ptr<RVBrowseCollectionViewController> controller_;
    ScreenAttachment attachment_;
};

TEST_F(Browse, firstLaunchShowsSongsInAlphabeticalOrderAndTheHintOnce) {
    publishThreeSongs();
    load();
    EXPECT_EQ(page().choices, (BrowseChoices{MPMediaGrouping::title, 0, false}));
    EXPECT_EQ(titles(), (Names{"A", "B", "C"}));
    EXPECT_EQ(page().statistics.size(), 8U);
    EXPECT_TRUE(screen_.wasAnimated);
    EXPECT_EQ(screen_.tooltips,
              (Names{"groupingButton, Groupings: Change your grouping to view artists, albums, "
                     "playlists, and genres."}));
    EXPECT_TRUE(defaults_->boolForKey("OnboardingGroupings"));
    controller_->updateDataSource();
    mainQueue_->runUntilIdle();
    load();
    EXPECT_EQ(screen_.tooltips.size(), 1U);
}

TEST_F(Browse, theHintWaitsForTheGroupingButton) {
    knowsGroupingButton_ = false;
    load();
    EXPECT_TRUE(screen_.tooltips.empty());
    EXPECT_FALSE(defaults_->boolForKey("OnboardingGroupings"));
    knowsGroupingButton_ = true;
    controller_->updateDataSource();
    mainQueue_->runUntilIdle();
    EXPECT_EQ(screen_.tooltips.size(), 1U);
}

TEST_F(Browse, playCountShowsTheMostPlayedFirstWithRanks) {
    publishThreeSongs();
    load();
    EXPECT_EQ(rankAtIndex(0), std::nullopt);
    chooseSort(RVSortTypePlayCount);
    EXPECT_EQ(titles(), (Names{"B", "A", "C"}));
    EXPECT_EQ(rankAtIndex(0), 1U);
    EXPECT_EQ(rankAtIndex(1), 2U);
    EXPECT_EQ(rankAtIndex(2), 3U);
    EXPECT_EQ(page().sortButtonTitle().textWithoutAttachments(), "Play Count");
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.sortType"), RVSortTypePlayCount);
}

TEST_F(Browse, playCountAgainShowsTheLeastPlayedFirstWithRankOne) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    EXPECT_EQ(chevronOf(RVSortTypePlayCount), "chevron.up");
    chooseSort(RVSortTypePlayCount);
    EXPECT_EQ(titles(), (Names{"C", "A", "B"}));
    EXPECT_EQ(rankAtIndex(0), 1U);
    EXPECT_EQ(chevronOf(RVSortTypePlayCount), "chevron.down");
    EXPECT_EQ(chevronOf(RVSortTypeAlphabetical), "");
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.reverse"), 1U);
}

TEST_F(Browse, aThirdSortTypeResetsReverse) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    chooseSort(RVSortTypePlayCount);
    chooseSort(RVSortTypeTimeListened);
    EXPECT_EQ(page().choices,
              (BrowseChoices{MPMediaGrouping::title, RVSortTypeTimeListened, false}));
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.reverse"), 0U);
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.sortType"), RVSortTypeTimeListened);
    EXPECT_EQ(titles(), (Names{"B", "A", "C"}));
}

TEST_F(Browse, lastPlayedShowsNoRanksAndTheDateAtTheRight) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypeLastPlayed);
    EXPECT_EQ(titles(), (Names{"A", "C", "B"}));
    EXPECT_EQ(rankAtIndex(0), std::nullopt);
    EXPECT_EQ(propertyAt(0), "Yesterday");
    EXPECT_EQ(propertyAt(2), "Feb 19, 2026");
}

TEST_F(Browse, splittingCompilationsRefreshesArtistsAtOnceAndAlbumsNot) {
    library_.publish(
        {{.title = "1", .artist = "Alice", .albumArtist = "Alice"},
         {.title = "2", .artist = "Carol", .albumArtist = "Various Artists", .compilation = true}});
    load();
    chooseGrouping(1);
    const std::size_t before = screen_.pages.size();
    defaults_->setObject(RVQueryManager::splitCompilationsKey, true);
    mainQueue_->runUntilIdle();
    EXPECT_EQ(screen_.pages.size(), before);
    defaults_->setObject(RVQueryManager::splitCompilationsKey, false);
    chooseGrouping(2);
    EXPECT_EQ(titles(), (Names{"Alice", "Various Artists"}));
    defaults_->setObject(RVQueryManager::splitCompilationsKey, true);
    mainQueue_->runUntilIdle();
    EXPECT_EQ(titles(), (Names{"Alice", "Carol"}));
}

TEST_F(Browse, anEmptyLibraryHasNoListUntilAGroupingIsChosen) {
    load();
    EXPECT_FALSE(page().isLoading);
    EXPECT_FALSE(page().list);
    EXPECT_EQ(page().statistics.size(), 8U);
    chooseGrouping(3);
    ASSERT_TRUE(page().list);
    EXPECT_TRUE(page().list->isEmpty());
    EXPECT_EQ(RVAlertManager::storedValueForKey("browse.groupType"), 5U);
}

TEST_F(Browse, sortingKeepsTheTilesAndARebuildMakesThemAgain) {
    publishThreeSongs();
    load();
    const auto tiles = page().statistics;
    chooseSort(RVSortTypePlayCount);
    EXPECT_EQ(page().statistics, tiles);
    controller_->updateDataSource();
    mainQueue_->runUntilIdle();
    EXPECT_NE(page().statistics, tiles);
}

TEST_F(Browse, theGroupingsAreInTheMenusOrderAndKeepTheSort) {
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
        EXPECT_EQ(page().choices,
                  (BrowseChoices{expected[index].second, RVSortTypePlayCount, true}));
        EXPECT_EQ(BrowseChoices::indexForGrouping(expected[index].second), index);
        EXPECT_EQ(page().groupingButtonTitle().textWithoutAttachments(), expected[index].first);
    }
    EXPECT_EQ(BrowseChoices::groupingForIndex(5), MPMediaGrouping::title);
}

TEST_F(Browse, aStoredGroupingThatIsNotOfferedIsTitledSongs) {
    library_.publish({{.title = "1", .artist = "One"}, {.title = "2", .artist = "Two"}});
    RVAlertManager::storeValue(2, "browse.groupType");
    RVAlertManager::storeValue(7, "browse.reverse");
    load();
    EXPECT_TRUE(page().choices.reverse);
    EXPECT_EQ(titles(), (Names{"Two", "One"}));
    EXPECT_EQ(page().groupingButtonTitle().textWithoutAttachments(), "Songs");
}

TEST_F(Browse, theChoicesSurviveTheScreen) {
    publishThreeSongs();
    load();
    chooseGrouping(1);
    chooseSort(RVSortTypeDateAdded);
    load();
    EXPECT_EQ(page().choices, (BrowseChoices{MPMediaGrouping::album, RVSortTypeDateAdded, false}));
}

TEST_F(Browse, tilesAndRowsArriveOnTheMainQueue) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    Names arrived;
    std::vector<ScreenRequest> requests;
    for (std::uint64_t index = 0; index < 3; ++index) {
        requests.push_back(controller_->loadStatistic(
            index, [&](const RVStatisticReference& tile) { arrived.push_back(tile->caption()); }));
    }
    std::optional<PicturedRow> row;
    requests.push_back(controller_->loadRow(*page().list, 0, [&](PicturedRow loaded) {
        mainQueue_->assertCurrent();
        row = std::move(loaded);
    }));
    mainQueue_->runUntilIdle();
    EXPECT_EQ(arrived, (Names{"Songs", "Favorited", "Plays"}));
    ASSERT_TRUE(row);
    EXPECT_EQ(row->artwork.name(), "item");
    EXPECT_EQ(row->row.title->textWithoutAttachments(), "B");
    EXPECT_EQ(row->row.number, 1U);
    EXPECT_EQ(row->row.property.textWithoutAttachments(), "7x");
}

TEST_F(Browse, whatWasAskedForIsNotAnsweredWhenNobodyLooks) {
    publishThreeSongs();
    load();
    int answers = 0;
    const auto count = [&](const auto&) { ++answers; };
    ScreenRequest cancelled = controller_->loadStatistic(0, count);
    cancelled.cancel();
    const ScreenRequest row = controller_->loadRow(*page().list, 0, count);
    const ScreenRequest tile = controller_->loadStatistic(1, count);
    attachment_.detach();
    mainQueue_->runUntilIdle();
    EXPECT_EQ(answers, 0);
}

TEST_F(Browse, choosingARowLeadsToItsPage) {
    publishThreeSongs();
    load();
    controller_->didSelectItem((*page().list)[1]);
    controller_->didSelectItem(MPMediaEntity());
    ASSERT_EQ(screen_.routes.size(), 1U);
    EXPECT_EQ(std::get<EntityRoute>(screen_.routes[0]).entity, library_.song("B"));
}

TEST_F(Browse, theSecondTapOnTheTabGoesToTheTopAndThenToTheSearchBar) {
    load();
    EXPECT_FALSE(page().hidesSearchBarWhenScrolling);
    controller_->viewDidAppear();
    EXPECT_TRUE(page().hidesSearchBarWhenScrolling);
    EXPECT_EQ(screen_.signals, (std::vector{ScreenSignal::becomeTabBarDelegate}));
    screen_.signals.clear();
    EXPECT_TRUE(controller_->shouldSelectViewController(false, true, false));
    EXPECT_TRUE(controller_->shouldSelectViewController(true, false, false));
    EXPECT_TRUE(screen_.signals.empty());
    EXPECT_TRUE(controller_->shouldSelectViewController(true, true, false));
    EXPECT_TRUE(controller_->shouldSelectViewController(true, true, true));
    controller_->viewWillDisappear();
    EXPECT_EQ(screen_.signals, (std::vector{ScreenSignal::scrollToTop, ScreenSignal::beginTyping,
                                            ScreenSignal::endTyping}));
}

TEST_F(Browse, aScreenMayGoWhileItIsShownThePage) {
    publishThreeSongs();
    load();
    const std::size_t before = screen_.pages.size();
    screen_.whenShown = [this] {
        attachment_.detach();
        controller_.reset();
    };
    controller_->updateDataSource();
    mainQueue_->runUntilIdle();
    EXPECT_EQ(screen_.pages.size(), before + 1);
    EXPECT_EQ(controller_, nullptr);
}

TEST_F(Browse, theSortButtonSaysWhatIsSortedByAndWhichWay) {
    BrowsePage page;
    const auto icon = [&] { return std::get<UIImage>(page.sortButtonTitle().runs()[0]).name(); };
    EXPECT_EQ(page.sortButtonTitle().textWithoutAttachments(), "Alphabetical");
    EXPECT_EQ(icon(), "chevron.up.square");
    page.choices = {MPMediaGrouping::title, 9, true};
    EXPECT_EQ(page.sortButtonTitle().textWithoutAttachments(), "Play Count");
    EXPECT_EQ(icon(), "chevron.down.square");
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
    std::string valueOfRow(std::size_t place) {
        std::string value;
        const ScreenRequest request =
            controller_->loadRow(*page().list, place, [&](const PicturedRow& loaded) {
                value = loaded.row.property.textWithoutAttachments();
            });
        mainQueue_->runUntilIdle();
        return value;
    }
    const FoundEntitiesRoute* allResults(std::uint64_t tag) {
        screen_.routes.clear();
        controller_->showAllResults(tag);
        return screen_.routes.empty() ? nullptr
                                      : std::get_if<FoundEntitiesRoute>(screen_.routes.data());
    }
};

TEST_F(BrowseWhileSearching, beginningTakesTheStatisticsOffAndLeavesTheList) {
    publishThreeSongs();
    load();
    begin();
    EXPECT_EQ(screen_.signals, (std::vector{ScreenSignal::scrollToTop}));
    EXPECT_TRUE(page().statistics.empty());
    EXPECT_EQ(titles(), (Names{"A", "B", "C"}));
    EXPECT_TRUE(screen_.wasAnimated);
    EXPECT_EQ(page().layout, BrowseLayout::library);
}

TEST_F(BrowseWhileSearching, hitsStandInPlaceOfEverythingInALayoutThatIsSetAgain) {
    publishThreeSongs();
    load();
    begin();
    type("A");
    const BrowsePage& shown = page();
    EXPECT_TRUE(shown.statistics.empty());
    EXPECT_FALSE(shown.list);
    ASSERT_FALSE(shown.search.empty());
    EXPECT_EQ(shown.search.front().identifier->title, "Artists");
    type("B");
    ASSERT_EQ(page().search.size(), 2U) << "an album and its songs";
    EXPECT_EQ(page().layout, BrowseLayout::search);
    EXPECT_TRUE(screen_.wasAnimated);
}

TEST_F(BrowseWhileSearching, aTermOfBlanksOnlyAndAnEmptiedBarChangeNothingOnView) {
    publishThreeSongs();
    load();
    begin();
    const std::size_t before = screen_.pages.size();
    type(" \n");
    EXPECT_EQ(screen_.pages.size(), before);
    type("B");
    type("");
    EXPECT_EQ(screen_.pages.size(), before + 1);
    EXPECT_FALSE(page().search.empty());
}

TEST_F(BrowseWhileSearching, cancelBringsTheListBackInItsOldOrderWithFreshTiles) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    const auto tile = page().statistics.front();
    begin();
    type("C");
    library_.publish({{.title = "Z"}});
    cancel();
    EXPECT_EQ(titles(), (Names{"B", "A", "C"})) << "not found anew";
    ASSERT_EQ(page().statistics.size(), 8U);
    EXPECT_NE(page().statistics.front(), tile);
    EXPECT_TRUE(page().search.empty());
    EXPECT_EQ(page().layout, BrowseLayout::library);
    EXPECT_TRUE(allResults(4)->entities.empty()) << "the hits are forgotten";
}

TEST_F(BrowseWhileSearching, afterACancelAnEmptyLibraryHasItsSection) {
    load();
    EXPECT_FALSE(page().list);
    begin();
    EXPECT_FALSE(page().list);
    cancel();
    ASSERT_TRUE(page().list);
    EXPECT_TRUE(page().list->isEmpty());
}

TEST_F(BrowseWhileSearching, rowsHaveNoRankAndTheValueOfTheAlphabet) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    EXPECT_EQ(rankAtIndex(0), 1U);
    EXPECT_EQ(valueOfRow(0), "7x");
    begin();
    EXPECT_TRUE(page().isSearchActive);
    EXPECT_EQ(rankAtIndex(0), std::nullopt);
    EXPECT_EQ(valueOfRow(0), "Album");
    cancel();
    EXPECT_EQ(rankAtIndex(0), 1U);
    EXPECT_EQ(valueOfRow(0), "7x");
}

TEST_F(BrowseWhileSearching, seeAllHasEveryHitUnderTheTextAsTyped) {
    std::vector<TestSong> songs;
    for (int number = 1; number <= 7; ++number) {
        songs.push_back({.title = "Wave " + std::to_string(number)});
    }
    library_.publish(songs);
    load();
    begin();
    type(" wave ");
    EXPECT_EQ(page().search.front().rows.size(), 5U);
    const FoundEntitiesRoute* all = allResults(4);
    ASSERT_NE(all, nullptr);
    EXPECT_EQ(all->title, " wave ");
    EXPECT_EQ(all->entities.size(), 7U);
    EXPECT_EQ(allResults(1), nullptr);
    ASSERT_NE(allResults(5), nullptr) << "an empty list is a list";
}

TEST_F(BrowseWhileSearching, typingFastShowsTheLastTermAlone) {
    publishThreeSongs();
    load();
    begin();
    const std::size_t before = screen_.pages.size();
    for (const char* text : {"A", "B", "nowhere"}) {
        controller_->updateSearchResultsForSearchController(text);
    }
    mainQueue_->runUntilIdle();
    ASSERT_EQ(screen_.pages.size(), before + 1);
    EXPECT_TRUE(page().search.empty());
    EXPECT_FALSE(page().list);
}

TEST_F(BrowseWhileSearching, aScreenThatGoesMeanwhileIsShownNothing) {
    publishThreeSongs();
    load();
    controller_->searchBarTextDidBeginEditing();
    controller_->updateSearchResultsForSearchController("A");
    const std::size_t before = screen_.pages.size();
    controller_.reset();
    mainQueue_->runUntilIdle();
    EXPECT_EQ(screen_.pages.size(), before);
}

TEST_F(BrowseWhileSearching, goingWaitsForNoWork) {
    std::vector<TestSong> songs(20000);
    for (std::size_t number = 0; number < songs.size(); ++number) {
        songs[number].title = "Wave " + std::to_string(number);
    }
    library_.publish(songs);
    load();
    controller_->searchBarTextDidBeginEditing();
    controller_->updateSearchResultsForSearchController("wave");
    controller_->updateDataSource();
    attachment_.detach();
    controller_.reset();
    EXPECT_NE(DispatchActivity::count(), 0U) << "the work goes on by itself";
    mainQueue_->runUntilIdle();
}

TEST_F(BrowseWhileSearching, aListThatComesMeanwhileHasNoRanks) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    begin();
    controller_->sortDataSourceWithAnimation(false);
    mainQueue_->runUntilIdle();
    EXPECT_EQ(rankAtIndex(0), std::nullopt);
    EXPECT_EQ(valueOfRow(0), "Album");
    EXPECT_FALSE(screen_.wasAnimated);
}

TEST_F(BrowseWhileSearching, aRebuildMeanwhileTakesThePlaceOfTheHits) {
    publishThreeSongs();
    load();
    chooseSort(RVSortTypePlayCount);
    begin();
    type("A");
    controller_->updateDataSource();
    mainQueue_->runUntilIdle();
    EXPECT_TRUE(page().search.empty());
    EXPECT_EQ(page().statistics.size(), 8U);
    EXPECT_EQ(titles(), (Names{"B", "A", "C"}));
    EXPECT_EQ(rankAtIndex(0), std::nullopt);
}

TEST_F(BrowseWhileSearching, hitsThatComeLateDoNotCoverTheLibrary) {
    publishThreeSongs();
    load();
    controller_->updateSearchResultsForSearchController("A");
    controller_->searchBarCancelButtonClicked();
    mainQueue_->runUntilIdle();
    EXPECT_TRUE(page().search.empty());
    EXPECT_EQ(titles(), (Names{"A", "B", "C"}));
    EXPECT_EQ(page().layout, BrowseLayout::library);
}

TEST_F(Browse, workOfAScreenThatHasGoneIsDropped) {
    publishThreeSongs();
    load();
    const std::size_t before = screen_.pages.size();
    controller_->updateDataSource();
    controller_.reset();
    mainQueue_->runUntilIdle();
    EXPECT_EQ(screen_.pages.size(), before);
}

using Tile = std::vector<std::string>;

Tile tileAt(std::uint64_t index) {
    const auto tile = RVBrowseCollectionViewController::statForIndex(index);
    return {tile->icon()->name(), tile->value(), tile->caption()};
}

TEST_F(Browse, theEightTilesMixAllMediaAndMusic) {
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

TEST_F(Browse, recentlyPlayedDoesNotKnowTheInstallation) {
    defaults_->setObject("com.oskelvane.Nerinda.installationDate", Value(daysAgo(1)));
    library_.publish({{.title = "1", .lastPlayed = daysAgo(20)}});
    EXPECT_EQ(tileAt(4)[1], "100%");
}

TEST_F(Browse, theTilesOfAnEmptyLibraryAreNumbersOrWhatIsNone) {
    EXPECT_EQ(tileAt(0)[1], "0");
    EXPECT_EQ(tileAt(3)[1], "0");
    EXPECT_EQ(tileAt(4)[1], "NaN%");
    EXPECT_EQ(tileAt(6)[1], "NaN%");
    EXPECT_EQ(tileAt(7)[1], "NaN%");
}

}  // namespace
}  // namespace tavrion
