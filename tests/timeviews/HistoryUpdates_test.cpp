// What the History screen tells while it updates, what it deletes, its rows and its hints.

#include <semaphore>

#include "platform/dispatch/DispatchQueue.h"
#include "tests/timeviews/HistoryFixture.h"

namespace tavrion {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class HistoryUpdatesTest : public HistoryFixture {
  protected:
    HistoryUpdatesTest() {
        for (const std::string& name : {HistoryNotification::didBegin, HistoryNotification::didEnd,
                                        HistoryNotification::didChange}) {
            observations.push_back(environment.centre.addObserver(
                name, nullptr, nullptr, [this](const NSNotification& notification) {
                    if (const float* share = notification.info<float>("progress")) {
                        progress.push_back(*share);
                    } else {
                        told.push_back(notification.name);
                    }
                }));
        }
    }
    void playTimes(PlaybackHistory& history, int count) {
        for (int i = 0; i < count; ++i) {
            environment.makePlay(
                history, instant("2026-03-15T01:00:00Z").timeIntervalSinceReferenceDate() + i);
        }
    }
    std::size_t recordCount() {
        environment.runUntilIdle();
        return environment.main().executeFetchRequest(PlayEvent::fetchRequest()).value().size();
    }
    HistoryRow row(NSIndexPath indexPath) const {
        return *screen->rowAtIndexPath(indexPath, std::nullopt);
    }

    std::vector<std::string> told;
    std::vector<float> progress;
    std::vector<NSNotificationCenter::Observation> observations;
};

TEST_F(HistoryUpdatesTest, aThousandPlaysShowNoProgressAndOneMoreDoes) {
    PlaybackHistory one = song("One");
    playTimes(one, 1000);
    update();
    EXPECT_THAT(told, ElementsAre("RVHistoryUpdateDidEnd"));
    EXPECT_THAT(progress, ElementsAre(0.0F)) << "each day is told";
    told.clear();
    play(one, "2026-03-15T10:00:00Z");
    update();
    EXPECT_THAT(told, ElementsAre("RVHistoryUpdateDidBegin", "RVHistoryUpdateDidEnd"));
}

TEST_F(HistoryUpdatesTest, progressIsReportedOnceADayFromTheNewestOn) {
    choosePreset(DateRangePreset::pastWeek);
    PlaybackHistory one = song("One");
    play(one, "2026-03-12T10:00:00Z");
    play(one, "2026-03-14T10:00:00Z");
    play(one, "2026-03-15T10:00:00Z");
    play(one, "2026-03-15T11:00:00Z");
    update();
    EXPECT_THAT(progress, ElementsAre(0.0F, 0.5F, 0.75F));
}

TEST_F(HistoryUpdatesTest, theWindowShowsProgressBetweenBeginAndEnd) {
    screen->viewDidLoad();
    environment.runUntilIdle();
    // The first update may have ended before anybody watched.
    window.progress.clear();
    update();
    EXPECT_THAT(window.progress, IsEmpty()) << "an end without a beginning changes nothing";
    PlaybackHistory one = song("One");
    playTimes(one, 1001);
    update();
    EXPECT_THAT(window.progress, ElementsAre(true, false));
}

TEST_F(HistoryUpdatesTest, otherPartsOfTheProgramCallForAnUpdate) {
    screen->viewDidLoad();
    environment.runUntilIdle();
    EXPECT_THAT(window.applied, SizeIs(1));
    for (const char* name : {"HistoryDateRangeObjectDidChange", "LibraryAuthorizationGranted"}) {
        environment.centre.postNotificationName(name);
        environment.runUntilIdle();
    }
    EXPECT_THAT(window.applied, SizeIs(3));
}

TEST_F(HistoryUpdatesTest, onePlayWithoutADateSurvivesAndTwoAreDeleted) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    PlayEvent stray = play(one, "2026-03-15T10:00:00Z");
    stray.setEventDate(std::nullopt);
    EXPECT_THAT(update().itemIdentifiersInSection(1), SizeIs(1));
    EXPECT_EQ(recordCount(), 2U);
    PlayEvent another = play(one, "2026-03-15T10:00:00Z");
    another.setEventDate(std::nullopt);
    EXPECT_THAT(update().itemIdentifiersInSection(1), SizeIs(1));
    EXPECT_EQ(recordCount(), 1U);
    EXPECT_THAT(environment.failures.dataFailures, IsEmpty());
}

TEST_F(HistoryUpdatesTest, anUpdateDoesNotWaitForASaveThatIsUnderWay) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    const auto writer = DispatchQueue::serial("writer");
    std::binary_semaphore mayEnd(0);
    bool isSaved = false;
    environment.main().saveInBackground(
        *writer, [&](const Result<void>&) { isSaved = true; }, [&] { mayEnd.acquire(); });
    screen->updateDataSource();
    environment.mainQueue->runUntil([&] { return screen->state()->statCell.chart != nullptr; });
    EXPECT_FALSE(isSaved);
    EXPECT_EQ(totals(), "1 / 1");
    mayEnd.release();
    environment.runUntilIdle();
    EXPECT_TRUE(isSaved);
}

// Deleting

TEST_F(HistoryUpdatesTest, aDeletedPlayLeavesTheListAndStaysInTheTotalsUntilTheNextUpdate) {
    PlaybackHistory one = song("One");
    PlaybackHistory two = song("Two");
    one.setPlayCount(7);
    play(one, "2026-03-15T10:00:00Z");
    play(two, "2026-03-15T11:00:00Z");
    update();
    screen->dataSource().commitEditingStyle(UITableViewCellEditingStyle::deletion, {1, 1});
    ASSERT_THAT(window.alerts, SizeIs(1));
    EXPECT_EQ(window.alerts[0].title, "Are you sure?");
    EXPECT_EQ(window.alerts[0].message, "Deleted playback events can not be recovered.");
    ASSERT_THAT(window.alerts[0].actions, SizeIs(2));
    EXPECT_EQ(window.alerts[0].actions[0].title, "Delete");
    EXPECT_EQ(window.alerts[0].actions[0].style, UIAlertActionStyle::destructive);
    EXPECT_EQ(window.alerts[0].actions[1].title, "Cancel");
    EXPECT_EQ(window.alerts[0].actions[1].style, UIAlertActionStyle::cancel);
    EXPECT_THAT(screen->snapshot().itemIdentifiersInSection(1), SizeIs(2)) << "not yet";
    window.confirm();
    EXPECT_THAT(listed(), ElementsAre(ElementsAre("2026-03-15T11:00:00.000Z"))) << "at once";
    EXPECT_THAT(window.animations, ElementsAre(false, true));
    EXPECT_EQ(recordCount(), 1U);
    EXPECT_EQ(one.playCount(), 7);
    EXPECT_EQ(totals(), "2 / 3");
    EXPECT_THAT(bars(), ElementsAre("10: 100", "11: 100"));
    update();
    EXPECT_EQ(totals(), "1 / 1");
}

TEST_F(HistoryUpdatesTest, aDayThatLosesItsLastPlayStaysWithoutATitle) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    update();
    screen->dataSource().commitEditingStyle(UITableViewCellEditingStyle::deletion, {1, 0});
    window.confirm();
    EXPECT_EQ(screen->snapshot().numberOfSections(), 2U);
    EXPECT_EQ(screen->state()->titleForHeaderInSection(1), std::nullopt);
    environment.runUntilIdle();
}

TEST_F(HistoryUpdatesTest, whoCancelsKeepsThePlayAndTheTotalsCannotBeDeleted) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    update();
    screen->dataSource().commitEditingStyle(UITableViewCellEditingStyle::deletion, {1, 0});
    EXPECT_EQ(recordCount(), 1U);
    window.alerts.clear();
    const RVHistoryTableViewDiffableDataSource& list = screen->dataSource();
    EXPECT_FALSE(list.canEditRowAtIndexPath({0, 0}));
    EXPECT_TRUE(list.canEditRowAtIndexPath({1, 0}));
    EXPECT_EQ(list.editingStyleForRowAtIndexPath({1, 0}), UITableViewCellEditingStyle::deletion);
    screen->dataSource().commitEditingStyle(UITableViewCellEditingStyle::deletion, {0, 0});
    screen->dataSource().commitEditingStyle(UITableViewCellEditingStyle::deletion, {1, 9});
    EXPECT_THAT(window.alerts, IsEmpty());
}

TEST_F(HistoryUpdatesTest, thePlayThatWasAskedAboutIsDeletedWhateverTheListShowsMeanwhile) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    update();
    screen->dataSource().commitEditingStyle(UITableViewCellEditingStyle::deletion, {1, 0});
    play(one, "2026-03-15T11:00:00Z");
    update();
    window.confirm();
    EXPECT_THAT(listed(), ElementsAre(ElementsAre("2026-03-15T11:00:00.000Z")));
    EXPECT_EQ(recordCount(), 1U);
}

TEST_F(HistoryUpdatesTest, aPlayDeletedWhileABarIsChosenDoesNotComeBack) {
    choosePreset(DateRangePreset::pastWeek);
    PlaybackHistory one = song("One");
    play(one, "2026-03-14T10:00:00Z");
    play(one, "2026-03-14T11:00:00Z");
    update();
    choose(5);
    screen->dataSource().commitEditingStyle(UITableViewCellEditingStyle::deletion, {1, 0});
    window.confirm();
    screen->chartValueNothingSelected();
    EXPECT_THAT(listed(), ElementsAre(ElementsAre("2026-03-14T10:00:00.000Z")));
    environment.runUntilIdle();
}

// Rows

TEST_F(HistoryUpdatesTest, aRowShowsTheSongOfTheLibraryAndWhenItWasPlayed) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z", true);
    play(one, "2026-03-15T11:00:00Z");
    environment.library.publish(
        {{.title = "One", .artist = "Singer", .albumArtist = "Band", .duration = 100}});
    update();
    const HistoryRow exact = row({1, 0});
    EXPECT_EQ(exact.title.textWithoutAttachments(), "One");
    EXPECT_EQ(exact.subtitle, "Singer");
    EXPECT_TRUE(exact.item.has_value());
    EXPECT_EQ(exact.property->textWithoutAttachments(), "Today at 11:00\u202fAM");
    EXPECT_EQ(std::get<UIImage>(exact.property->runs().front()),
              UIImage::systemImageNamed("play.fill", {.scale = UIImageSymbolScale::small}));
    EXPECT_EQ(row({1, 1}).property->textWithoutAttachments(), "Today at 10:00\u202fAM*")
        << "an estimate";
    EXPECT_FALSE(screen->rowAtIndexPath({0, 0}, std::nullopt));
    EXPECT_FALSE(screen->rowAtIndexPath({1, 2}, std::nullopt));
}

TEST_F(HistoryUpdatesTest, aSongThatLeftTheLibraryShowsTitleAndArtistAlone) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z", true);
    environment.library.publish({});
    update();
    EXPECT_EQ(row({1, 0}).title.textWithoutAttachments(), "One");
    EXPECT_EQ(row({1, 0}).subtitle, "Artist");
    EXPECT_FALSE(row({1, 0}).property);
    EXPECT_FALSE(row({1, 0}).item);
    screen->didSelectRowAtIndexPath({1, 0});
    EXPECT_THAT(window.routes, IsEmpty());
}

TEST_F(HistoryUpdatesTest, aRowIsFoundOffTheMainQueueAndIsTheSameOne) {
    PlaybackHistory one = song("Old Title");
    one.setLibraryID("L1");
    play(one, "2026-03-15T10:00:00Z", true);
    environment.library.publish(
        {{.title = "One", .artist = "Singer", .duration = 90, .libraryID = "L1"},
         {.title = "Other", .duration = 5}});
    update();
    std::optional<HistoryRow> loaded;
    const ScreenRequest request = screen->loadRow({1, 0}, std::nullopt, [&](HistoryRow found) {
        environment.mainQueue->assertCurrent();
        loaded = std::move(found);
    });
    EXPECT_TRUE(request.isPending());
    EXPECT_FALSE(screen->loadRow({0, 0}, std::nullopt, {}).isPending()) << "the totals are no play";
    environment.runUntilIdle();
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->title.textWithoutAttachments(), "One");
    EXPECT_EQ(loaded->subtitle, "Singer");
    EXPECT_EQ(loaded->property, row({1, 0}).property);
    EXPECT_EQ(one.title(), "One") << "the library's title is taken over";
}

TEST_F(HistoryUpdatesTest, rowsAndPicturesThatNobodyWantsAnyMoreDoNotCome) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    environment.library.publish({{.title = "One", .duration = 100}});
    update();
    int answers = 0;
    const auto askForRow = [&] {
        return screen->loadRow({1, 0}, std::nullopt, [&](const HistoryRow&) { ++answers; });
    };
    const auto askForPicture = [&] {
        return screen->loadArtwork(*screen->itemForContextMenu({1, 0}),
                                   [&](const UIImage& picture) {
                                       environment.mainQueue->assertCurrent();
                                       EXPECT_EQ(picture.kind(), UIImage::Kind::asset);
                                       ++answers;
                                   });
    };
    const ScreenRequest kept[] = {askForRow(), askForPicture()};
    environment.runUntilIdle();
    EXPECT_EQ(answers, 2);
    askForRow().cancel();
    askForPicture().cancel();
    environment.runUntilIdle();
    EXPECT_EQ(answers, 2);
    const ScreenRequest late[] = {askForRow(), askForPicture()};
    attachment.detach();
    environment.runUntilIdle();
    EXPECT_EQ(answers, 2) << "the screen has gone";
}

TEST_F(HistoryUpdatesTest, aTapOnAPlayOpensItsSong) {
    PlaybackHistory one = song("One");
    play(one, "2026-03-15T10:00:00Z");
    environment.library.publish({{.title = "One", .duration = 100, .persistentID = 77}});
    update();
    screen->didSelectRowAtIndexPath({0, 0});
    screen->didSelectRowAtIndexPath({1, 0});
    ASSERT_THAT(window.routes, SizeIs(1));
    EXPECT_EQ(std::get<EntityRoute>(window.routes[0]).entity.persistentID(), 77U);
    EXPECT_EQ(screen->itemForContextMenu({1, 0})->persistentID(), 77U);
    EXPECT_FALSE(screen->itemForContextMenu({0, 0}));
}

TEST_F(HistoryUpdatesTest, aPlaylistIsMadeOfWhatIsListed) {
    choosePreset(DateRangePreset::pastWeek);
    PlaybackHistory one = song("One");
    play(one, "2026-03-14T10:00:00Z");
    play(one, "2026-03-15T10:00:00Z");
    update();
    screen->createPlaylist();
    EXPECT_EQ(window.playlist->title, "Past Week");
    std::vector<Value> listedPlays;
    for (const PlaylistRequest::Song& each : window.playlist->songs) {
        listedPlays.emplace_back(std::get<NSManagedObjectID>(each).reference());
    }
    const std::vector<Value> rows = screen->snapshot().itemIdentifiers();
    EXPECT_EQ(listedPlays, std::vector<Value>(rows.begin() + 1, rows.end()))
        << "the first row stands for no song";
    EXPECT_THAT(listedPlays, SizeIs(2));
    choose(5);
    screen->createPlaylist();
    EXPECT_THAT(window.playlist->songs, SizeIs(1)) << "the list of the chosen bar";
}

// Hints and buttons

TEST_F(HistoryUpdatesTest, thePromptToPullShowsInTheFirstRunAlone) {
    screen->viewDidLoad();
    EXPECT_EQ(screen->state()->prompt, "Pull down to refresh.");
    EXPECT_TRUE(environment.defaults->boolForKey("DidShowHistoryPullToRefresh"));
    const auto next = RVHistoryTableViewViewController::make();
    next->viewDidLoad();
    EXPECT_FALSE(next->state()->prompt);
    EXPECT_TRUE(screen->state()->prompt) << "for the rest of the run";
    environment.runUntilIdle();
}

TEST_F(HistoryUpdatesTest, theHintAboutRangesIsSeenOnce) {
    window.showsTooltips = false;
    screen->viewDidAppear();
    EXPECT_THAT(window.tooltips, IsEmpty()) << "after a while";
    environment.runUntilIdle();
    EXPECT_FALSE(environment.defaults->boolForKey("OnboardingDateRange"))
        << "it could not be presented";
    window.showsTooltips = true;
    screen->viewDidAppear();
    environment.runUntilIdle();
    EXPECT_TRUE(environment.defaults->boolForKey("OnboardingDateRange"));
    screen->viewDidAppear();
    environment.runUntilIdle();
    ASSERT_THAT(window.tooltips, SizeIs(2));
    EXPECT_EQ(window.tooltips[1].title, "Date Range");
    EXPECT_EQ(window.tooltips[1].source, "dateRangeButton");
    EXPECT_EQ(window.tooltips[1].arrowDirection, UIPopoverArrowDirection::up);
    EXPECT_EQ(window.tooltips[1].text,
              "Tavrion begins recording your listening history once installed. As you "
              "continue to use the app, you will be able to view your history over longer time "
              "periods.");
}

TEST_F(HistoryUpdatesTest, aPullScansAndThenUpdates) {
    environment.library.publish({{.title = "New",
                                  .duration = 100,
                                  .playCount = 1,
                                  .lastPlayed = instant("2026-03-15T11:00:00Z")}});
    screen->refreshDataSource();
    EXPECT_THAT(window.signals, ElementsAre(ScreenSignal::endRefreshing)) << "at once";
    environment.runUntilIdle();
    EXPECT_THAT(listed(), ElementsAre(ElementsAre("2026-03-15T11:00:00.000Z")));
    EXPECT_EQ(environment.presenter.progressPopups, 0);
}

TEST_F(HistoryUpdatesTest, theRangeButtonShowsTheRangeAndOpensItsDrawer) {
    screen->viewDidLoad();
    choosePreset(DateRangePreset::pastMonth);
    environment.runUntilIdle();
    EXPECT_EQ(window.rangeTitles, 2) << "the first, and the chosen one";
    EXPECT_EQ(screen->state()->dateRangeTitle.textWithoutAttachments(), "Past Month");
    screen->changeDateInterval();
    ASSERT_THAT(window.routes, SizeIs(1));
    EXPECT_EQ(std::get<DateRangeRoute>(window.routes[0]).userDefaultKey, "HistoryDateRangeObject");
}

TEST_F(HistoryUpdatesTest, theOneInFrontIsAskedAboutTabs) {
    screen->viewDidAppear();
    EXPECT_THAT(window.signals, ElementsAre(ScreenSignal::becomeTabBarDelegate));
}

TEST_F(HistoryUpdatesTest, aTapOnTheChosenTabScrollsToTheTop) {
    EXPECT_TRUE(screen->shouldSelectViewController(false, true));
    EXPECT_TRUE(screen->shouldSelectViewController(true, false));
    EXPECT_THAT(window.signals, IsEmpty());
    EXPECT_TRUE(screen->shouldSelectViewController(true, true));
    EXPECT_THAT(window.signals, ElementsAre(ScreenSignal::scrollToTop));
}

}  // namespace
}  // namespace tavrion
