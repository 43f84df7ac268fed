// The scan: which plays it makes of the library's counts.

#include "recording/PlaybackScan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>
#include <utility>

#include "platform/foundation/NSDate+Extended.h"
#include "recording/DataProcess.h"
#include "recording/RVPlaybackHistoryManager.h"
#include "tests/support/RecordingEnvironment.h"

namespace tavrion {
namespace {

/// 2026-03-01 12:00 UTC.
constexpr double noon = 794059200;

class PlaybackScanTest : public testing::Test {
  protected:
    static NSDate at(double seconds) { return RecordingEnvironment::at(seconds); }
    void publish(std::uint64_t playCount, double lastPlayed, const std::string& title = "Song") {
        environment.library.publish(
            {{.title = title, .playCount = playCount, .lastPlayed = at(lastPlayed)}});
    }
    /// Scans when the library says so, an hour on.
    void scanLater(std::uint64_t playCount, double lastPlayed) {
        environment.clock.advance(3600);
        publish(playCount, lastPlayed);
        ASSERT_TRUE(environment.scan());
    }
    std::optional<NSDate> scanDate() const {
        return environment.defaults->dateForKey(ScanDefaults::playbackHistoryScanDate);
    }

    RecordingEnvironment environment{at(noon)};
};

TEST_F(PlaybackScanTest, aNewSongWithOnePlayYieldsThatPlay) {
    publish(1, noon - 60);
    ASSERT_TRUE(environment.scan());
    EXPECT_EQ(environment.plays(), (std::vector<RecordedPlay>{{noon - 60, false, "Song"}}));
    EXPECT_EQ(environment.history("Song").playCount(), 1);
}

TEST_F(PlaybackScanTest, aNewSongWithFiftyPlaysYieldsOne) {
    publish(50, noon - 60);
    ASSERT_TRUE(environment.scan());
    EXPECT_EQ(environment.plays().size(), 1U);
    EXPECT_EQ(environment.history("Song").playCount(), 50);
}

TEST_F(PlaybackScanTest, aNewSongWithoutPlaysThatHasADateYieldsNone) {
    publish(0, noon - 60);
    ASSERT_TRUE(environment.scan());
    EXPECT_TRUE(environment.plays().empty());
    EXPECT_EQ(environment.history("Song").playCount(), 0);
}

TEST_F(PlaybackScanTest, theRecordOfANewSongHoldsWhatTheLibraryTells) {
    environment.library.publish({{.title = "Song",
                                  .artist = "Track",
                                  .albumArtist = "Band",
                                  .albumTitle = "Album",
                                  .genre = "Jazz",
                                  .duration = 123.25,
                                  .playCount = 3,
                                  .skipCount = 2,
                                  .lastPlayed = at(noon - 60),
                                  .added = at(5),
                                  .lastSkipped = at(noon - 30),
                                  .storeID = "S1",
                                  .libraryID = "L1"}});
    ASSERT_TRUE(environment.scan());
    const PlaybackHistory record = environment.history("Song");
    EXPECT_EQ(record.artist(), "Band");
    EXPECT_EQ(record.albumID(), "Band\u2014\u2014Album");
    EXPECT_EQ(record.genre(), "Jazz");
    EXPECT_EQ(record.duration(), 123.25);
    EXPECT_EQ(record.storeID(), "S1");
    EXPECT_EQ(record.libraryID(), "L1");
    EXPECT_EQ(record.skipCount(), 2);
    EXPECT_EQ(record.lastEventDate(), at(noon - 30));
}

TEST_F(PlaybackScanTest, threeNewPlaysAreSpreadEvenlyAndTheLastIsTrue) {
    // Counted 10 at 10:00, 13 with the last play at 13:00: estimates at 11:00 and 12:00.
    environment.clock.set(at(noon - 7200));
    publish(10, noon - 9000);
    ASSERT_TRUE(environment.scan());
    environment.clock.set(at(noon + 7200));
    publish(13, noon + 3600);
    ASSERT_TRUE(environment.scan());
    EXPECT_EQ(environment.plays(), (std::vector<RecordedPlay>{{noon - 9000, false, "Song"},
                                                              {noon - 3600, true, "Song"},
                                                              {noon, true, "Song"},
                                                              {noon + 3600, false, "Song"}}));
    EXPECT_EQ(environment.history("Song").playCount(), 13);
}

TEST_F(PlaybackScanTest, fiveNewPlaysAreSuspect) {
    publish(10, noon - 60);
    ASSERT_TRUE(environment.scan());
    scanLater(15, noon + 3000);
    EXPECT_EQ(environment.plays().size(), 6U);
    ASSERT_EQ(environment.presenter.questions.size(), 1U);
    const SuspectQuestion& question = environment.presenter.questions[0];
    EXPECT_EQ(question.title, "Alert");
    EXPECT_EQ(
        question.message,
        "Tavrion detected an unusually high number of unrecorded plays for the following songs:\n"
        "\nSong\n\nThis could be the result of an error.");
    EXPECT_EQ(question.keepAll, "Keep All");
    EXPECT_EQ(question.keepMostRecent, "Keep Most Recent");
}

TEST_F(PlaybackScanTest, theEstimatesOfManyPlaysCarryTheirFlag) {
    environment.clock.set(at(noon - 7200));
    publish(10, noon - 9000);
    ASSERT_TRUE(environment.scan());
    environment.clock.set(at(noon + 7200));
    publish(15, noon - 7200 + 5000);
    ASSERT_TRUE(environment.scan());
    EXPECT_EQ(environment.plays(), (std::vector<RecordedPlay>{{noon - 9000, false, "Song"},
                                                              {noon - 6200, true, "Song"},
                                                              {noon - 5200, true, "Song"},
                                                              {noon - 4200, true, "Song"},
                                                              {noon - 3200, true, "Song"},
                                                              {noon - 2200, false, "Song"}}));
}

TEST_F(PlaybackScanTest, fourNewPlaysRaiseNoAlert) {
    publish(10, noon - 60);
    ASSERT_TRUE(environment.scan());
    scanLater(14, noon + 3000);
    EXPECT_EQ(environment.plays().size(), 5U);
    EXPECT_TRUE(environment.presenter.questions.empty());
}

TEST_F(PlaybackScanTest, aLoweredCountIsAdoptedAndNothingIsRemoved) {
    publish(10, noon - 60);
    ASSERT_TRUE(environment.scan());
    scanLater(8, noon + 3000);
    EXPECT_EQ(environment.plays().size(), 1U);
    EXPECT_EQ(environment.history("Song").playCount(), 8);
    scanLater(9, noon + 6000);
    EXPECT_EQ(environment.plays().size(), 2U);
}

TEST_F(PlaybackScanTest, theSkipsOfALoweredCountAreAdoptedWithIt) {
    const auto publishCounts = [&](std::uint64_t plays, std::uint64_t skips) {
        environment.library.publish({{.title = "Song",
                                      .playCount = plays,
                                      .skipCount = skips,
                                      .lastPlayed = at(noon - 60)}});
        ASSERT_TRUE(environment.scan());
    };
    publishCounts(10, 3);
    publishCounts(8, 2);
    EXPECT_EQ(environment.history("Song").playCount(), 8);
    EXPECT_EQ(environment.history("Song").skipCount(), 2);
    publishCounts(7, 5);
    EXPECT_EQ(environment.history("Song").skipCount(), 5);
}

TEST_F(PlaybackScanTest, theLatestSignOfLifeIsKeptOfSongsThatWereNotPlayedAgainToo) {
    const auto publishSkip = [&](std::optional<NSDate> lastSkipped) {
        environment.library.publish({{.title = "Song",
                                      .playCount = 1,
                                      .lastPlayed = at(noon - 60),
                                      .lastSkipped = lastSkipped}});
        ASSERT_TRUE(environment.scan());
    };
    publishSkip(std::nullopt);
    EXPECT_EQ(environment.history("Song").lastEventDate(), at(noon - 60));
    publishSkip(at(noon - 30));
    EXPECT_EQ(environment.history("Song").lastEventDate(), at(noon - 30));
    publishSkip(std::nullopt);
    EXPECT_EQ(environment.history("Song").lastEventDate(), at(noon - 60))
        << "it is the library's, also when it is an earlier one";
}

TEST_F(PlaybackScanTest, identifiersThatLookLikeGeneratedOnesAreNotCompared) {
    const auto publishWith = [&](const std::string& storeID, const std::string& libraryID) {
        environment.library.publish({{.title = "Song",
                                      .playCount = 1,
                                      .lastPlayed = at(noon - 60),
                                      .storeID = storeID,
                                      .libraryID = libraryID}});
        ASSERT_TRUE(environment.scan());
    };
    publishWith("68753A44-4D6F-1226-9C60-0050E4C00067", "68753A44-4D6F-1226-9C60-0050E4C00068");
    const NSManagedObjectID record = environment.history("Song").objectID();
    publishWith("68753A44-4D6F-1226-9C60-0050E4C00077", "68753A44-4D6F-1226-9C60-0050E4C00078");
    EXPECT_EQ(environment.histories().size(), 1U);
    EXPECT_EQ(environment.history("Song").objectID(), record) << "no new record was folded in";
    EXPECT_EQ(environment.log.count("Creating playback history for: Song"), 1U);
}

TEST_F(PlaybackScanTest, aChangedSkipCountAloneWaitsForTheNextPlay) {
    environment.library.publish(
        {{.title = "Song", .playCount = 1, .skipCount = 1, .lastPlayed = at(noon - 60)}});
    ASSERT_TRUE(environment.scan());
    environment.library.publish(
        {{.title = "Song", .playCount = 1, .skipCount = 5, .lastPlayed = at(noon - 60)}});
    ASSERT_TRUE(environment.scan());
    EXPECT_EQ(environment.history("Song").skipCount(), 1);
    environment.library.publish(
        {{.title = "Song", .playCount = 2, .skipCount = 5, .lastPlayed = at(noon - 30)}});
    ASSERT_TRUE(environment.scan());
    EXPECT_EQ(environment.history("Song").skipCount(), 5);
}

TEST_F(PlaybackScanTest, aNegativeSpanWalksBackFromTheStart) {
    publish(10, noon - 9000);
    ASSERT_TRUE(environment.scan());
    // Plays that arrive late from elsewhere: their last date is before the previous scan.
    scanLater(12, noon - 1000);
    EXPECT_EQ(environment.plays(), (std::vector<RecordedPlay>{{noon - 9000, false, "Song"},
                                                              {noon - 1000, false, "Song"},
                                                              {noon - 500, true, "Song"}}));
}

TEST_F(PlaybackScanTest, aLaterSignOfLifeThanTheLastPlayAlsoMakesTheSpanNegative) {
    environment.library.publish({{.title = "Song",
                                  .playCount = 1,
                                  .lastPlayed = at(noon - 9000),
                                  .lastSkipped = at(noon + 4000)}});
    ASSERT_TRUE(environment.scan());
    scanLater(3, noon + 2000);
    EXPECT_EQ(environment.plays()[1], (RecordedPlay{noon + 2000, false, "Song"}));
    EXPECT_EQ(environment.plays()[2], (RecordedPlay{noon + 3000, true, "Song"}));
}

class ScanNotificationsTest : public PlaybackScanTest {
  protected:
    std::vector<float> progress;
    int finishes = 0;
    NSNotificationCenter::Observation updates = environment.centre.addObserver(
        DataProcess::didUpdate, nullptr, environment.mainQueue.get(),
        [this](const NSNotification& notification) {
            progress.push_back(*notification.info<float>(DataProcess::progressKey));
        });
    NSNotificationCenter::Observation finish =
        environment.centre.addObserver(DataProcess::didFinish, nullptr, environment.mainQueue.get(),
                                       [this](const NSNotification&) { ++finishes; });
};

TEST_F(ScanNotificationsTest, theProgressOfOneMatchingSongIsNotANumber) {
    publish(1, noon - 60);
    ASSERT_TRUE(environment.scan());
    ASSERT_EQ(progress.size(), 1U);
    EXPECT_TRUE(std::isnan(progress[0]));
    EXPECT_EQ(finishes, 1);
}

TEST_F(ScanNotificationsTest, progressGoesFromZeroToOneInSongOrder) {
    environment.library.publish({{.title = "C", .playCount = 1, .lastPlayed = at(1)},
                                 {.title = "A", .playCount = 1, .lastPlayed = at(2)},
                                 {.title = "B", .playCount = 1, .lastPlayed = at(3)}});
    ASSERT_TRUE(environment.scan());
    EXPECT_EQ(progress, (std::vector<float>{0, 0.5F, 1}));
}

TEST_F(ScanNotificationsTest, aScanWithoutAMatchStillSavesItsDateAndFinishes) {
    environment.clock.advance(10);
    EXPECT_TRUE(environment.scan());
    EXPECT_TRUE(progress.empty());
    EXPECT_EQ(finishes, 1);
    EXPECT_EQ(scanDate(), environment.clock.now());
    EXPECT_EQ(environment.awards.updates, 1);
}

TEST_F(ScanNotificationsTest, theFinishWaitsForTheAnswerAboutSuspectPlays) {
    publish(10, noon - 60);
    ASSERT_TRUE(environment.scan());
    finishes = 0;
    environment.presenter.answerAtOnce.reset();
    environment.clock.advance(3600);
    publish(20, noon + 3000);
    EXPECT_FALSE(environment.scan());
    EXPECT_EQ(finishes, 0);
    EXPECT_EQ(scanDate(), environment.clock.now()) << "the date is stored before the question";
    environment.presenter.pendingAnswer(SuspectAnswer::keepAll);
    environment.runUntilIdle();
    EXPECT_EQ(finishes, 1);
    EXPECT_EQ(environment.plays().size(), 11U);
}

class ScanEndTest : public PlaybackScanTest {
  protected:
    ScanEndTest() {
        environment.awards.whenUpdating = [this] { note("award pass"); };
    }
    void note(const std::string& step) {
        MutexLock lock(mutex);
        steps.push_back(step);
    }
    void scan() {
        RVPlaybackHistoryManager::recordPlaybackHistorySinceDate(NSDate::distantPast(), false,
                                                                 [this] { note("callback"); });
        environment.runUntilIdle();
    }
    std::vector<std::string> takeSteps() {
        MutexLock lock(mutex);
        return std::exchange(steps, {});
    }
    Mutex mutex;
    std::vector<std::string> steps TAVRION_GUARDED_BY(mutex);
    NSNotificationCenter::Observation finish =
        environment.centre.addObserver(DataProcess::didFinish, nullptr, nullptr,
                                       [this](const NSNotification&) { note("finish"); });
};

TEST_F(ScanEndTest, theAwardPassComesBeforeTheFinishAndTheCallbackOnceAtTheEnd) {
    publish(10, noon - 60);
    scan();
    EXPECT_EQ(takeSteps(), (std::vector<std::string>{"award pass", "finish", "callback"}));
    EXPECT_EQ(environment.awards.scanDateAtUpdate, environment.clock.now())
        << "the date is stored before the award pass";
}

TEST_F(ScanEndTest, withSuspectPlaysTheAwardPassComesBeforeTheQuestion) {
    publish(10, noon - 60);
    scan();
    takeSteps();
    environment.presenter.answerAtOnce.reset();
    for (const SuspectAnswer answer : {SuspectAnswer::keepAll, SuspectAnswer::keepMostRecent}) {
        environment.clock.advance(3600);
        const NSDate now = environment.clock.now();
        const auto count = static_cast<std::uint64_t>(environment.history("Song").playCount() + 6);
        publish(count, now.timeIntervalSinceReferenceDate());
        scan();
        EXPECT_EQ(takeSteps(), std::vector<std::string>{"award pass"});
        ASSERT_TRUE(environment.presenter.pendingAnswer);
        std::exchange(environment.presenter.pendingAnswer, nullptr)(answer);
        environment.runUntilIdle();
        EXPECT_EQ(takeSteps(), (std::vector<std::string>{"finish", "callback"}));
    }
}

TEST_F(PlaybackScanTest, keepMostRecentMakesNoMainSave) {
    publish(10, noon - 60);
    ASSERT_TRUE(environment.scan());
    environment.presenter.answerAtOnce.reset();
    environment.clock.advance(3600);
    publish(16, noon + 3000);
    EXPECT_FALSE(environment.scan());
    const std::string saved = "successfully saved Nerinda core data store.";
    const std::size_t saves = environment.log.count(saved);
    environment.presenter.pendingAnswer(SuspectAnswer::keepMostRecent);
    environment.runUntilIdle();
    EXPECT_EQ(environment.plays().size(), 2U);
    EXPECT_EQ(environment.log.count(saved), saves);
    EXPECT_TRUE(environment.main().hasChanges()) << "the deletions wait for the next main save";
}

TEST_F(PlaybackScanTest, keepMostRecentRemovesTheEstimatesOfThisScanOnly) {
    publish(10, noon - 60);
    ASSERT_TRUE(environment.scan());
    scanLater(12, noon + 3000);
    ASSERT_EQ(environment.plays().size(), 3U);
    environment.presenter.answerAtOnce = SuspectAnswer::keepMostRecent;
    scanLater(20, noon + 6000);
    EXPECT_EQ(environment.plays().size(), 4U);
    EXPECT_EQ(environment.plays().back(), (RecordedPlay{noon + 6000, false, "Song"}));
    EXPECT_EQ(environment.history("Song").playCount(), 20);
    scanLater(20, noon + 6000);
    EXPECT_EQ(environment.plays().size(), 4U) << "the same plays are not found again";
}

TEST_F(PlaybackScanTest, suspectTitlesAreASetInAlphabeticalOrder) {
    const auto songs = [&](std::uint64_t count, double lastPlayed) {
        environment.library.publish(
            {{.title = "zebra", .duration = 1, .playCount = count, .lastPlayed = at(lastPlayed)},
             {.title = "Same", .duration = 2, .playCount = count, .lastPlayed = at(lastPlayed + 1)},
             {.title = "Same", .duration = 3, .playCount = count, .lastPlayed = at(lastPlayed + 2)},
             {.title = "(Apple)",
              .duration = 4,
              .playCount = count,
              .lastPlayed = at(lastPlayed + 3)},
             {.title = "1999",
              .duration = 5,
              .playCount = count,
              .lastPlayed = at(lastPlayed + 4)}});
    };
    songs(1, noon - 60);
    ASSERT_TRUE(environment.scan());
    environment.clock.advance(7200);
    songs(7, noon + 3600);
    ASSERT_TRUE(environment.scan());
    EXPECT_EQ(environment.presenter.questions.at(0).songTitles,
              (std::vector<std::string>{"(Apple)", "Same", "zebra", "1999"}));
}

TEST_F(PlaybackScanTest, aHundredSongsShowNoPopupAndAHundredAndOneDo) {
    std::vector<TestSong> songs;
    for (int i = 0; i < 100; ++i) {
        songs.push_back(
            {.title = "Song " + std::to_string(i), .playCount = 1, .lastPlayed = at(noon - i)});
    }
    environment.library.publish(songs);
    ASSERT_TRUE(environment.scan(NSDate::distantPast(), true));
    EXPECT_EQ(environment.presenter.progressPopups, 0);
    songs.push_back({.title = "One more", .playCount = 1, .lastPlayed = at(noon - 500)});
    environment.library.publish(songs);
    ASSERT_TRUE(environment.scan(NSDate::distantPast(), true));
    EXPECT_EQ(environment.presenter.progressPopups, 1);
    ASSERT_TRUE(environment.scan(NSDate::distantPast(), false));
    EXPECT_EQ(environment.presenter.progressPopups, 1);
}

TEST_F(PlaybackScanTest, aPlayOnTheReleaseDayEarnsItsAwardOnce) {
    environment.library.publish({{.title = "Song",
                                  .playCount = 1,
                                  .lastPlayed = at(noon),
                                  .released = at(noon - 11 * 3600)}});
    ASSERT_TRUE(environment.scan());
    const Value queue(Value::Array{Value("rv_award.wildcard.releaseDay")});
    EXPECT_EQ(environment.defaults->objectForKey(ScanDefaults::pendingAchievementIdentifiers),
              queue);
    ASSERT_TRUE(environment.scan());
    EXPECT_EQ(environment.awards.asked.size(), 2U);
    EXPECT_EQ(environment.defaults->objectForKey(ScanDefaults::pendingAchievementIdentifiers),
              queue);
}

TEST_F(PlaybackScanTest, anEarnedAwardIsAppendedToTheQueueOnce) {
    const auto queued = [&] {
        return environment.defaults->objectForKey(ScanDefaults::pendingAchievementIdentifiers);
    };
    environment.defaults->setObject(ScanDefaults::pendingAchievementIdentifiers,
                                    Value(Value::Array{Value("rv_award.other")}));
    environment.awards.earnsAgain = true;
    for (int scan = 0; scan < 2; ++scan) {
        environment.library.publish(
            {{.title = "Song", .playCount = 1, .lastPlayed = at(noon), .released = at(noon - 3600)},
             {.title = "Other song",
              .playCount = 1,
              .lastPlayed = at(noon + 1),
              .released = at(noon - 3600)}});
        ASSERT_TRUE(environment.scan());
    }
    EXPECT_EQ(environment.awards.asked.size(), 4U);
    EXPECT_EQ(queued(),
              Value(Value::Array{Value("rv_award.other"), Value("rv_award.wildcard.releaseDay")}));
}

TEST_F(PlaybackScanTest, aSongWithoutAReleaseDateOrReleasedTheDayBeforeEarnsNothing) {
    environment.library.publish({{.title = "None", .playCount = 1, .lastPlayed = at(noon)},
                                 {.title = "Before",
                                  .playCount = 1,
                                  .lastPlayed = at(noon),
                                  .released = at(noon - 43201)}});
    ASSERT_TRUE(environment.scan());
    EXPECT_TRUE(environment.awards.asked.empty());
}

TEST_F(PlaybackScanTest, aFileWithMoreThanCompactDiscRateEarnsAudiophile) {
    environment.library.publish({{.title = "Exactly",
                                  .duration = 10,
                                  .playCount = 1,
                                  .lastPlayed = at(noon),
                                  .fileSize = 1764000}});
    ASSERT_TRUE(environment.scan());
    EXPECT_TRUE(environment.awards.asked.empty());
    environment.library.publish({{.title = "More",
                                  .duration = 10,
                                  .playCount = 1,
                                  .lastPlayed = at(noon),
                                  .fileSize = 1764001}});
    ASSERT_TRUE(environment.scan());
    EXPECT_EQ(environment.awards.asked, std::vector<std::string>{"rv_award.wildcard.audiophile"});
}

TEST_F(PlaybackScanTest, songsPlayedAtOrBeforeTheSinceDateAreNotLookedAt) {
    publish(3, noon - 60);
    ASSERT_TRUE(environment.scan(at(noon - 60)));
    EXPECT_TRUE(environment.histories().empty());
    ASSERT_TRUE(environment.scan(at(noon - 60.5)));
    EXPECT_EQ(environment.histories().size(), 1U);
}

TEST_F(PlaybackScanTest, podcastsAreNotScannedAndSongsOutsideTheLibraryAre) {
    environment.library.publish(
        {{.title = "Podcast",
          .playCount = 1,
          .lastPlayed = at(noon),
          .mediaType = MediaType::podcast},
         {.title = "Outside", .playCount = 1, .lastPlayed = at(noon), .inLibrary = false}});
    ASSERT_TRUE(environment.scan());
    ASSERT_EQ(environment.histories().size(), 1U);
    EXPECT_EQ(environment.histories()[0].title(), "Outside");
}

TEST_F(PlaybackScanTest, theScanReachesTheDisk) {
    publish(1, noon - 60);
    ASSERT_TRUE(environment.scan());
    EXPECT_FALSE(environment.main().hasChanges());
    const auto database =
        SQLiteDatabase::open(environment.storeFile(), SQLiteDatabase::Mode::readOnly);
    auto row = database.value()->prepare("SELECT eventDate FROM PlayEvent");
    ASSERT_TRUE(row.value().step().value());
    EXPECT_EQ(row.value().real(0), noon - 60);
}

TEST_F(PlaybackScanTest, theScanDateStaysWhenThePlaysDoNotReachTheDisk) {
    environment.defaults->setObject(ScanDefaults::playbackHistoryScanDate, at(noon - 500));
    publish(1, noon - 60);
    environment.main();
    {
        const auto saboteur =
            SQLiteDatabase::open(environment.storeFile(), SQLiteDatabase::Mode::readWrite);
        ASSERT_TRUE(saboteur.value()->execute("DROP TABLE PlayEvent"));
    }
    EXPECT_FALSE(environment.scan());
    EXPECT_EQ(environment.failures.endings.size(), 1U);
    EXPECT_EQ(scanDate(), at(noon - 500));
    EXPECT_EQ(environment.awards.updates, 0);
}

TEST_F(PlaybackScanTest, aScanThatFindsNothingNewLeavesNothingToSave) {
    publish(1, noon - 60);
    ASSERT_TRUE(environment.scan());
    const auto before = environment.main().snapshot();
    ASSERT_TRUE(environment.scan());
    EXPECT_EQ(environment.main().snapshot(), before);
}

TEST_F(PlaybackScanTest, aBusyOperationQueueRefusesTheScanWithoutAWord) {
    auto gate = std::make_shared<NSBlockOperation>();
    std::atomic<bool> open{false};
    gate->addExecutionBlock([&] {
        while (!open) {
            std::this_thread::yield();
        }
    });
    environment.data->operationQueue().addOperation(gate);
    bool called = false;
    RVPlaybackHistoryManager::recordPlaybackHistorySinceDate(NSDate::distantPast(), false,
                                                             [&] { called = true; });
    open = true;
    environment.runUntilIdle();
    EXPECT_FALSE(called);
    EXPECT_EQ(scanDate(), std::nullopt);
}

TEST_F(PlaybackScanTest, aCancelledScanSavesNothingAndTellsNothing) {
    publish(1, noon - 60);
    environment.defaults->setObject(ScanDefaults::playbackHistoryScanDate, at(noon - 500));
    const auto operation = std::make_shared<NSBlockOperation>();
    operation->cancel();
    bool called = false;
    const auto context = environment.data->privateContext();
    const auto scan = std::make_shared<PlaybackScan>(context, operation, NSDate::distantPast(),
                                                     false, [&] { called = true; });
    context->performBlockAndWait([&] { scan->run(); });
    environment.runUntilIdle();
    EXPECT_TRUE(environment.histories().empty());
    EXPECT_EQ(scanDate(), at(noon - 500));
    EXPECT_EQ(environment.awards.updates, 0);
    EXPECT_FALSE(called);
}

TEST(ReleaseDayZoneTest, theDaysAreThoseOfTheCalendarsZone) {
    // In Auckland the first of March begins at 11:00 UTC.
    const NSDate now = *dateFromIsoText("2026-03-01T12:00:00Z");
    RecordingEnvironment environment(now, "Pacific/Auckland");
    const auto asked = [&](const char* played, const char* released) {
        environment.awards.asked.clear();
        environment.library.publish({{.title = "Song",
                                      .playCount = 1,
                                      .lastPlayed = *dateFromIsoText(played),
                                      .released = *dateFromIsoText(released)}});
        EXPECT_TRUE(environment.scan());
        return environment.awards.asked.size();
    };
    EXPECT_EQ(asked("2026-02-28T12:00:00Z", "2026-02-28T01:00:00Z"), 0U)
        << "one day in UTC, two in Auckland";
    EXPECT_EQ(asked("2026-02-28T12:00:00Z", "2026-03-01T01:00:00Z"), 1U)
        << "two days in UTC, one in Auckland";
}

class SinceDateTest : public PlaybackScanTest {
  protected:
    void store(double installation, double previousScan) {
        environment.defaults->setObject(ScanDefaults::installationDate, at(installation));
        environment.defaults->setObject(ScanDefaults::playbackHistoryScanDate, at(previousScan));
    }
    static constexpr double day = 86400;
};

TEST_F(SinceDateTest, theFirstCallStoresTheStartOfTodayAndThePresent) {
    EXPECT_EQ(RVPlaybackHistoryManager::sinceDateByRule(), at(noon - 43200));
    EXPECT_EQ(environment.defaults->dateForKey(ScanDefaults::installationDate), at(noon - 43200));
    EXPECT_EQ(scanDate(), at(noon));
}

TEST_F(SinceDateTest, aRecentScanLooksTwoDaysBack) {
    store(noon - 100 * day, noon - day);
    EXPECT_EQ(RVPlaybackHistoryManager::sinceDateByRule(), at(noon - 2 * day));
}

TEST_F(SinceDateTest, anOldScanLooksBackToTheInstallation) {
    store(noon - 100 * day, noon - 2 * day - 1);
    EXPECT_EQ(RVPlaybackHistoryManager::sinceDateByRule(), at(noon - 100 * day));
}

TEST_F(SinceDateTest, aScanExactlyTwoDaysAgoCountsAsRecent) {
    store(noon - 100 * day, noon - 2 * day);
    EXPECT_EQ(RVPlaybackHistoryManager::sinceDateByRule(), at(noon - 2 * day));
}

TEST_F(SinceDateTest, itNeverLooksBehindTheInstallation) {
    store(noon - day, noon - 3600);
    EXPECT_EQ(RVPlaybackHistoryManager::sinceDateByRule(), at(noon - day));
}

TEST(SinceDateZoneTest, twoDaysAreCalendarDaysAndNotFortyEightHours) {
    // The night before, New York moved its clocks an hour on.
    const NSDate now = *dateFromIsoText("2024-03-10T16:00:00Z");
    RecordingEnvironment environment(now, "America/New_York");
    environment.defaults->setObject(ScanDefaults::installationDate, NSDate::distantPast());
    environment.defaults->setObject(ScanDefaults::playbackHistoryScanDate, now);
    EXPECT_EQ(RVPlaybackHistoryManager::sinceDateByRule(),
              *dateFromIsoText("2024-03-08T17:00:00Z"));
}

TEST_F(PlaybackScanTest, theOrdinaryEntryPointScansByTheRule) {
    publish(1, noon - 60);
    EXPECT_TRUE(environment.scanByRule());
    EXPECT_EQ(environment.plays().size(), 1U);
    EXPECT_EQ(environment.log.count("Last Background Sync Date: (null)"), 1U);
}

}  // namespace
}  // namespace tavrion
