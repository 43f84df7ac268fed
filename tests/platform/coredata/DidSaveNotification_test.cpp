#include "tests/platform/coredata/CoreDataFixture.h"

namespace tavrion {
namespace {

class DidSaveTest : public CoreDataTest {
  protected:
    struct Told {
        const void* object = nullptr;
        std::vector<NSManagedObjectID> inserted;
        std::vector<NSManagedObjectID> updated;
        std::vector<NSManagedObjectID> deleted;
        bool hasInsertedKey = false;
    };
    static std::vector<NSManagedObjectID> idsOf(const NSNotification& notification,
                                                const std::string& key) {
        const SavedObjectIDs* ids = notification.info<SavedObjectIDs>(key);
        return ids != nullptr ? **ids : std::vector<NSManagedObjectID>();
    }

    std::vector<Told> told;
    NSNotificationCenter::Observation observation = centre.addObserver(
        NSManagedObjectContextDidSaveObjectIDsNotification, nullptr, nullptr,
        [this](const NSNotification& notification) {
            told.push_back({notification.object, idsOf(notification, NSInsertedObjectIDsKey),
                            idsOf(notification, NSUpdatedObjectIDsKey),
                            idsOf(notification, NSDeletedObjectIDsKey),
                            notification.userInfo.contains(NSInsertedObjectIDsKey)});
        });
};

TEST_F(DidSaveTest, aSaveTellsWhatItInsertedChangedAndDeleted) {
    Song changed = Song::insert(*main, "changed");
    const Song deleted = Song::insert(*main, "deleted");
    save(*main);
    told.clear();
    changed.setCount(1);
    main->deleteObject(deleted);
    const Play play = Play::insert(*main, 1);
    const Song inserted = Song::insert(*main, "inserted");
    save(*main);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].object, main.get());
    EXPECT_EQ(told[0].inserted,
              (std::vector<NSManagedObjectID>{inserted.objectID(), play.objectID()}));
    EXPECT_EQ(told[0].updated, std::vector<NSManagedObjectID>{changed.objectID()});
    EXPECT_EQ(told[0].deleted, std::vector<NSManagedObjectID>{deleted.objectID()});
}

TEST_F(DidSaveTest, theChildsSaveAndTheMainSaveBothTell) {
    const auto child = NSManagedObjectContext::below(main);
    child->performBlockAndWait([&] {
        Song::insert(*child, "song");
        save(*child);
    });
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].object, child.get());
    save(*main);
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told[1].object, main.get());
    EXPECT_EQ(told[1].inserted, told[0].inserted);
}

TEST_F(DidSaveTest, aChildsSaveTellsWhatItsParentSawDirectlyBefore) {
    Song song = Song::insert(*main, "song");
    save(*main);
    const auto child = NSManagedObjectContext::below(main);
    child->performBlockAndWait(
        [&] { child->deleteObject(*child->existingObjectWithID(song.objectID())); });
    // After the child has looked, and before it saves.
    song.setCount(7);
    std::vector<std::int64_t> counts;
    bool mainTells = false;
    const auto observing = centre.addObserver(
        NSManagedObjectContextDidSaveObjectIDsNotification, nullptr, nullptr,
        [&](const NSNotification& notification) {
            const auto* before =
                notification.info<std::shared_ptr<const StoreVersion>>(NSStateBeforeSaveKey);
            if (notification.object == main.get()) {
                mainTells = before != nullptr;
            } else if (const auto record = (*before)->find(song.objectID())) {
                counts.push_back(std::get<std::int64_t>(record->at(SongKey::count)));
            }
        });
    child->performBlockAndWait([&] { save(*child); });
    EXPECT_EQ(counts, std::vector<std::int64_t>{7});
    save(*main);
    EXPECT_FALSE(mainTells);
}

TEST_F(DidSaveTest, aSaveWithoutInsertsHasNoSuchKey) {
    Song song = Song::insert(*main, "song");
    save(*main);
    told.clear();
    song.setCount(2);
    save(*main);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_FALSE(told[0].hasInsertedKey);
}

TEST_F(DidSaveTest, aSaveWithNothingToSaveTellsNothing) {
    save(*main);
    const auto child = NSManagedObjectContext::below(main);
    child->performBlockAndWait([&] { save(*child); });
    EXPECT_TRUE(told.empty());
}

TEST_F(DidSaveTest, whatWasInsertedAndDeletedAgainLeavesNoTrace) {
    main->deleteObject(Song::insert(*main, "brief"));
    EXPECT_FALSE(main->hasChanges());
    const auto child = NSManagedObjectContext::below(main);
    std::optional<NSManagedObjectID> id;
    child->performBlockAndWait([&] {
        id = Song::insert(*child, "brief").objectID();
        save(*child);
    });
    main->deleteObject(*main->existingObjectWithID(*id));
    told.clear();
    save(*main);
    EXPECT_TRUE(told.empty());
    reopen();
    EXPECT_TRUE(titles(*main).empty());
}

}  // namespace
}  // namespace tavrion
