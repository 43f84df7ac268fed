#include "platform/coredata/NSManagedObjectContext.h"

#include <future>
#include <thread>

#include "platform/coredata/IndexKeys.h"
#include "tests/platform/coredata/CoreDataFixture.h"

namespace tavrion {
namespace {

using ContextTest = CoreDataTest;

TEST_F(ContextTest, aNewRecordReadsAsNeverSet) {
    const Song song(main->insertObject(TestEntity::Song));
    EXPECT_EQ(song.title(), std::nullopt);
    EXPECT_EQ(song.added(), std::nullopt);
    EXPECT_EQ(song.cover(), std::nullopt);
    EXPECT_EQ(song.length(), 0);
    EXPECT_EQ(song.count(), 0);
    EXPECT_FALSE(song.hidden());
}

TEST_F(ContextTest, everyTypeKeepsItsValueThroughTheFile) {
    Song song = Song::insert(*main, std::string("Für Élise\0with a zero byte", 28));
    song.setLength(182.67399999999998);
    song.setCount(-1);
    song.setAdded(at(794059200.1234567));
    song.setCover(NSData{std::string("\0\xFF\x01", 3)});
    song.setHidden(true);
    Song empty = Song::insert(*main, "");
    empty.setCover(NSData{});
    const NSManagedObjectID id = song.objectID();
    const NSManagedObjectID emptyID = empty.objectID();
    save(*main);
    reopen();
    const Song read(*main->existingObjectWithID(id));
    EXPECT_EQ(read.title(), std::string("Für Élise\0with a zero byte", 28));
    EXPECT_EQ(read.length(), 182.67399999999998);
    EXPECT_EQ(read.count(), -1);
    EXPECT_EQ(read.added(), at(794059200.1234567));
    EXPECT_EQ(read.cover()->bytes, std::string("\0\xFF\x01", 3));
    EXPECT_TRUE(read.hidden());
    const Song readEmpty(*main->existingObjectWithID(emptyID));
    EXPECT_EQ(readEmpty.title(), "");
    EXPECT_EQ(readEmpty.cover(), NSData{});
    EXPECT_EQ(readEmpty.added(), std::nullopt);
}

TEST_F(ContextTest, anAbsentTextIsNotAnEmptyOne) {
    Song song = Song::insert(*main, "x");
    song.setTitle(std::nullopt);
    save(*main);
    reopen();
    EXPECT_EQ(titles(*main), std::vector<std::string>{"(absent)"});
    EXPECT_EQ(countOf(*main, "Song",
                      NSPredicate::comparison("title", NSPredicate::Operator::equal, Value())),
              1U);
    EXPECT_EQ(countOf(*main, "Song", titled("")), 0U);
}

TEST_F(ContextTest, aFetchSeesUnsavedInsertsChangesAndDeletions) {
    Song first = Song::insert(*main, "first");
    const Song second = Song::insert(*main, "second");
    EXPECT_EQ(countOf(*main, "Song", titled("first")), 1U);
    first.setTitle("other");
    EXPECT_EQ(countOf(*main, "Song", titled("first")), 0U);
    EXPECT_EQ(countOf(*main, "Song", titled("other")), 1U);
    save(*main);
    first.setTitle("third");
    main->deleteObject(second);
    EXPECT_EQ(titles(*main), std::vector<std::string>{"third"});
    EXPECT_EQ(countOf(*main, "Song", titled("second")), 0U);
    EXPECT_EQ(countOf(*main, "Song", titled("third")), 1U);
    EXPECT_TRUE(second.isDeleted());
}

TEST_F(ContextTest, threeLevelsSeeTheUnsavedWorkAboveThem) {
    Song::insert(*main, "of main");
    const auto child = NSManagedObjectContext::below(main);
    child->performBlockAndWait([&] {
        EXPECT_EQ(titles(*child), std::vector<std::string>{"of main"});
        Song::insert(*child, "of child");
        const auto grandchild = NSManagedObjectContext::below(child);
        grandchild->performBlockAndWait([&] {
            EXPECT_EQ(titles(*grandchild), (std::vector<std::string>{"of main", "of child"}));
            Song::insert(*grandchild, "of grandchild");
            save(*grandchild);
        });
        EXPECT_EQ(titles(*child),
                  (std::vector<std::string>{"of main", "of child", "of grandchild"}));
    });
    EXPECT_EQ(titles(*main), std::vector<std::string>{"of main"})
        << "a save reaches the parent only";
    child->performBlockAndWait([&] { save(*child); });
    EXPECT_EQ(titles(*main).size(), 3U);
    reopen();
    EXPECT_TRUE(titles(*main).empty()) << "nothing is on disk before the main save";
}

TEST_F(ContextTest, unsavedDeletionsInTheParentHideRecordsFromChildren) {
    const Song kept = Song::insert(*main, "kept");
    const Song gone = Song::insert(*main, "gone");
    save(*main);
    main->deleteObject(gone);
    const auto child = NSManagedObjectContext::below(main);
    child->performBlockAndWait([&] {
        EXPECT_EQ(titles(*child), std::vector<std::string>{"kept"});
        EXPECT_EQ(countOf(*child, "Song", titled("gone")), 0U);
        EXPECT_FALSE(child->existingObjectWithID(gone.objectID()));
        child->deleteObject(*child->existingObjectWithID(kept.objectID()));
        const auto grandchild = NSManagedObjectContext::below(child);
        grandchild->performBlockAndWait([&] {
            EXPECT_TRUE(titles(*grandchild).empty());
            EXPECT_FALSE(grandchild->existingObjectWithID(kept.objectID()));
        });
    });
    EXPECT_EQ(titles(*main), std::vector<std::string>{"kept"});
}

TEST_F(ContextTest, savesMergePropertyByPropertyAndTheSaverWins) {
    Song song = Song::insert(*main, "title");
    save(*main);
    const auto child = NSManagedObjectContext::below(main);
    child->performBlockAndWait([&] {
        Song inChild(*child->existingObjectWithID(song.objectID()));
        inChild.setCount(7);
        inChild.setLength(2);
    });
    song.setTitle("changed in main");
    song.setLength(3);
    child->performBlockAndWait([&] {
        const Song inChild(*child->existingObjectWithID(song.objectID()));
        EXPECT_EQ(inChild.title(), "changed in main")
            << "what the parent changed is merged into the child";
        EXPECT_EQ(inChild.length(), 2) << "the child's own change stays";
        save(*child);
    });
    EXPECT_EQ(song.title(), "changed in main");
    EXPECT_EQ(song.count(), 7);
    EXPECT_EQ(song.length(), 2);
}

TEST_F(ContextTest, aSiblingsSaveReachesALivingChildAtItsNextFetch) {
    const auto first = NSManagedObjectContext::below(main);
    const auto second = NSManagedObjectContext::below(main);
    second->performBlockAndWait([&] {
        EXPECT_TRUE(titles(*second).empty());
        first->performBlockAndWait([&] {
            Song::insert(*first, "news");
            save(*first);
        });
        EXPECT_EQ(titles(*second), std::vector<std::string>{"news"});
        EXPECT_EQ(countOf(*second, "Song", titled("news")), 1U);
    });
}

TEST_F(ContextTest, changesOfARecordThatTheParentDeletedAreDropped) {
    const Song song = Song::insert(*main, "doomed");
    save(*main);
    const auto child = NSManagedObjectContext::below(main);
    child->performBlockAndWait(
        [&] { Song(*child->existingObjectWithID(song.objectID())).setCount(5); });
    main->deleteObject(song);
    child->performBlockAndWait([&] { save(*child); });
    EXPECT_TRUE(titles(*main).empty());
    save(*main);
    reopen();
    EXPECT_TRUE(titles(*main).empty());
}

TEST_F(ContextTest, aContextThatIsNeverSavedVanishesWithItsChanges) {
    {
        const auto child = NSManagedObjectContext::below(main);
        child->performBlockAndWait([&] { Song::insert(*child, "lost"); });
    }
    EXPECT_TRUE(titles(*main).empty());
    EXPECT_FALSE(main->hasChanges());
}

TEST_F(ContextTest, rollbackDropsUnsavedChanges) {
    Song song = Song::insert(*main, "kept");
    save(*main);
    song.setTitle("dropped");
    Song::insert(*main, "dropped too");
    EXPECT_TRUE(main->hasChanges());
    main->rollback();
    EXPECT_FALSE(main->hasChanges());
    EXPECT_EQ(titles(*main), std::vector<std::string>{"kept"});
}

TEST_F(ContextTest, rollbackAlsoDropsWhatASnapshotHasTakenIn) {
    Song song = Song::insert(*main, "kept");
    save(*main);
    song.setTitle("dropped");
    Song::insert(*main, "dropped too");
    ASSERT_EQ(main->snapshot()->table(TestEntity::Song).size(), 2U);
    main->rollback();
    EXPECT_FALSE(main->hasChanges());
    EXPECT_EQ(titles(*main), std::vector<std::string>{"kept"});
    EXPECT_EQ(main->snapshot()->table(TestEntity::Song).size(), 1U);
    save(*main);
    reopen();
    EXPECT_EQ(titles(*main), std::vector<std::string>{"kept"});
}

TEST_F(ContextTest, aContextWhoseChangesAreInASnapshotStillTakesOverItsParents) {
    const auto child = NSManagedObjectContext::below(main);
    child->performBlockAndWait([&] {
        Song::insert(*child, "of child");
        ASSERT_EQ(child->snapshot()->table(TestEntity::Song).size(), 1U);
        ASSERT_EQ(titles(*child).size(), 1U);
    });
    Song::insert(*main, "of main");
    child->performBlockAndWait([&] {
        EXPECT_EQ(titles(*child), (std::vector<std::string>{"of child", "of main"}));
        save(*child);
    });
    EXPECT_EQ(titles(*main), (std::vector<std::string>{"of child", "of main"}));
}

TEST_F(ContextTest, aMovedDateLeavesItsOldPlaceInTheIndex) {
    Play play = Play::insert(*main, 100);
    Play::insert(*main, 300);
    save(*main);
    play.setWhen(at(200));
    const auto countAt = [&](double seconds) {
        const std::uint64_t key = IndexKeys::ofDate(at(seconds));
        return main->snapshot()->table(TestEntity::Play).indexes()[0]->countBetween(key, key);
    };
    EXPECT_EQ(countAt(100), 0U) << "whoever walks the dates would meet the play twice";
    EXPECT_EQ(countAt(200), 1U);
    save(*main);
    play.setWhen(std::nullopt);
    EXPECT_EQ(countAt(200), 0U);
    EXPECT_EQ(main->snapshot()->table(TestEntity::Play).indexes()[0]->size(), 1U);
    play.setWhen(at(300));
    EXPECT_EQ(countAt(300), 2U);
}

TEST_F(ContextTest, identifiersAreTheSameInTheNextProcessAndNeverUsedAgain) {
    const Song first = Song::insert(*main, "first");
    const Song last = Song::insert(*main, "last");
    const NSManagedObjectID firstID = first.objectID();
    const NSManagedObjectID lastID = last.objectID();
    save(*main);
    main->deleteObject(last);
    save(*main);
    reopen();
    EXPECT_EQ(Song(*main->existingObjectWithID(firstID)).title(), "first");
    const Song next = Song::insert(*main, "next");
    EXPECT_GT(next.objectID(), lastID);
    EXPECT_EQ(next.objectID().text(main->model()), "Song/3");
    EXPECT_EQ(NSManagedObjectID::fromText(main->model(), "Song/3"), next.objectID());
    for (const char* const wrong : {"Song/", "Song/0", "Song/03", "Song/-1", "Song/3x", "Nothing/3",
                                    "Song", "", "Song/4294967296"}) {
        EXPECT_EQ(NSManagedObjectID::fromText(main->model(), wrong), std::nullopt) << wrong;
    }
}

TEST_F(ContextTest, theInverseGivesPlaysInIdentifierOrder) {
    const Song song = Song::insert(*main, "song");
    const Song other = Song::insert(*main, "other");
    const Play second = Play::insert(*main, 20, song);
    const Play first = Play::insert(*main, 10, song);
    Play::insert(*main, 30, other);
    save(*main);
    const Play third = Play::insert(*main, 5, song);
    const std::vector<NSManagedObject> plays = song.plays();
    ASSERT_EQ(plays.size(), 3U);
    EXPECT_EQ(plays[0].objectID(), second.objectID());
    EXPECT_EQ(plays[1].objectID(), first.objectID());
    EXPECT_EQ(plays[2].objectID(), third.objectID());
    main->deleteObject(first);
    EXPECT_EQ(song.plays().size(), 2U);
    EXPECT_FALSE(song.isDeleted());
}

TEST_F(ContextTest, playsOfADeletedSongLoseTheirSongAndStay) {
    const Song song = Song::insert(*main, "song");
    const Play saved = Play::insert(*main, 1, song);
    save(*main);
    const Play unsaved = Play::insert(*main, 2, song);
    main->deleteObject(song);
    EXPECT_EQ(saved.song(), std::nullopt);
    EXPECT_EQ(unsaved.song(), std::nullopt);
    EXPECT_EQ(countOf(*main, "Play"), 2U);
    save(*main);
    reopen();
    EXPECT_EQ(countOf(*main, "Play"), 2U);
}

TEST_F(ContextTest, performBlockAndWaitRunsInlineOnTheCaller) {
    const auto child = NSManagedObjectContext::below(main);
    std::thread::id inside;
    child->performBlockAndWait([&] {
        inside = std::this_thread::get_id();
        EXPECT_TRUE(child->queue().isCurrent());
        child->performBlockAndWait([&] { EXPECT_TRUE(child->queue().isCurrent()); });
    });
    EXPECT_EQ(inside, std::this_thread::get_id());
}

TEST_F(ContextTest, aChildSavesIntoMainWhileMainWaitsForIt) {
    const auto child = NSManagedObjectContext::below(main);
    std::promise<void> saved;
    child->performBlock([&] {
        Song::insert(*child, "from the child");
        save(*child);
        saved.set_value();
    });
    // The main thread blocks here without turning its queue.
    saved.get_future().wait();
    EXPECT_EQ(titles(*main), std::vector<std::string>{"from the child"});
}

TEST_F(ContextTest, anOperationOffTheContextsQueueEndsTheProcess) {
    const auto child = NSManagedObjectContext::below(main);
    EXPECT_DEATH(child->insertObject(TestEntity::Song), "queue");
}

TEST_F(ContextTest, aBackgroundSaveWritesWhatIsUnsavedAndTellsOnTheMainQueue) {
    const auto writer = DispatchQueue::serial("writer");
    Song::insert(*main, "first");
    bool done = false;
    main->saveInBackground(*writer, [&](const Result<void>& result) {
        EXPECT_TRUE(result);
        EXPECT_TRUE(mainQueue->isCurrent());
        done = true;
    });
    mainQueue->runUntilIdle();
    EXPECT_TRUE(done);
    EXPECT_FALSE(main->hasChanges());
    Song::insert(*main, "second");
    main->saveInBackground(*writer, [](const Result<void>&) {});
    main->saveInBackground(*writer, [](const Result<void>& result) { EXPECT_TRUE(result); });
    mainQueue->runUntilIdle();
    reopen();
    EXPECT_EQ(titles(*main), (std::vector<std::string>{"first", "second"}));
}

TEST_F(ContextTest, aFaultInWhatCameWhileASaveWaitedKeepsEverythingForTheNext) {
    const auto blocker = SQLiteDatabase::open(file(), SQLiteDatabase::Mode::readWrite);
    ASSERT_TRUE(blocker.value()->execute("DROP TABLE Play"));
    const auto writer = DispatchQueue::serial("writer");
    Song::insert(*main, "first");
    std::size_t failures = 0;
    main->saveInBackground(
        *writer,
        [&](const Result<void>& result) {
            EXPECT_FALSE(result);
            ++failures;
        },
        [&] {
            const auto child = NSManagedObjectContext::below(main);
            child->performBlockAndWait([&] {
                Play::insert(*child, 1);
                save(*child);
            });
        });
    mainQueue->runUntilIdle();
    EXPECT_EQ(failures, 1U);
    EXPECT_TRUE(main->hasChanges());
    auto songs = blocker.value()->prepare("SELECT count(*) FROM Song");
    ASSERT_TRUE(songs.value().step().value());
    EXPECT_EQ(songs.value().integer(0), 0) << "all or nothing";
    songs.value().reset();
    ASSERT_TRUE(blocker.value()->execute(
        "CREATE TABLE Play (id INTEGER PRIMARY KEY, date REAL, estimated INTEGER, song INTEGER)"));
    save(*main);
    EXPECT_FALSE(main->hasChanges());
    reopen();
    EXPECT_EQ(titles(*main), std::vector<std::string>{"first"});
    EXPECT_EQ(countOf(*main, "Play"), 1U);
}

TEST_F(ContextTest, aLargeSaveReachesItsPlaceInTheFileWhenNobodyWaits) {
    constexpr std::size_t large = 6 << 20;
    const std::string title(large, 'x');
    Song::insert(*main, title);
    save(*main);
    EXPECT_GT(std::filesystem::file_size(file()), large);

    const auto writer = DispatchQueue::serial("writer");
    Song::insert(*main, title);
    main->saveInBackground(*writer, [](const Result<void>& result) { EXPECT_TRUE(result); });
    mainQueue->runUntilIdle();
    writer->sync([] {});
    EXPECT_GT(std::filesystem::file_size(file()), 2 * large);
}

}  // namespace
}  // namespace tavrion
