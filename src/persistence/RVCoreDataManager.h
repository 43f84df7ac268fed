// The meeting point of all work on records: it owns the store and its contexts, saves, deletes
// everything, and cleans up what was recorded twice.
//
// Queue: any, but mainContext() is used on the main queue only, consolidateHistory() on the queue
// of its context, and loadPersistentContainer() on the thread that asks. Who owns: the composition
// root makes one for the life of the process and plugs it; sharedData() gives it.
//
// A private context's save reaches the main context only; what must last also calls
// saveMainContext(), which writes the changes and their clean-up in one transaction: a process that
// ends at any moment leaves both on the disk or neither. The main context stays that of the first
// container of the process: a container that is loaded again serves batch deletes.
#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>

#include "persistence/Foldings.h"
#include "platform/cloudkit/NSPersistentCloudKitContainer.h"
#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSUserDefaults.h"
#include "recording/PlaybackHistory.h"
#include "recording/RecordStore.h"

namespace tavrion {

class LoneRecords;

class RVCoreDataManager final : public RecordStore {
  public:
    static constexpr const char* portName = "the data manager is plugged in";

    /// `file` is the store's; its directory exists. Nothing is opened yet.
    RVCoreDataManager(std::filesystem::path file, std::shared_ptr<MainQueue> mainQueue);
    ~RVCoreDataManager() override;

    static RVCoreDataManager& sharedData() { return Port<RVCoreDataManager>::current(); }
    /// Folds every other record of the survivor's song into it: by title and duration, or by a real
    /// identifier. The caller saves.
    static void consolidateHistory(PlaybackHistory& survivor, NSManagedObjectContext& context);
    /// Whether the text is a well-formed UUID, which stands for "no identifier" in a record.
    static bool stringIsValidUUID(std::string_view text);
    /// Tells the user of a failed save.
    static void handle_CoreDataFailure(const NSError& error);

    /// Before anything is loaded: what the store will be opened for, unless that is writing.
    void setAccess(StoreAccess access);
    /// Loaded at the first call.
    std::shared_ptr<NSPersistentCloudKitContainer> persistentContainer();
    /// Loads a container, in the place of any earlier one.
    void loadPersistentContainer();
    std::shared_ptr<NSManagedObjectContext> mainContext() override;
    std::shared_ptr<NSManagedObjectContext> privateContext() override;
    void saveMainContext(std::function<void()> whenSaved = nullptr) override;
    /// Deletes every record, entity by entity, and tells of it after each. Plays of a deleted song
    /// go too, whenever a scan that goes on meanwhile saves them.
    void deleteAllData();
    /// Looks through what a save inserted: folds twins, and deletes events and awards that double
    /// another. Plays that were added to a record while it was folded away follow it.
    void handle_Duplication(const NSNotification& notification);
    NSOperationQueue& operationQueue() override { return operationQueue_; }

    void tellOfFailedSave(const NSError& error) override { handle_CoreDataFailure(error); }
    void foldTwins(PlaybackHistory& survivor, NSManagedObjectContext& context) override {
        consolidateHistory(survivor, context);
    }

  private:
    void install(std::shared_ptr<NSPersistentCloudKitContainer> container) TAVRION_EXCLUDES(mutex_);
    void observeValueForKeyPath(const std::string& keyPath);
    void cleanUp(const SavedObjectIDs& inserted, NSManagedObjectContext& context);
    static void foldTwinsAmong(const std::vector<NSManagedObjectID>& inserted,
                               const LoneRecords& lone, NSManagedObjectContext& context);
    void deleteDoubles(const std::vector<NSManagedObjectID>& inserted, const LoneRecords& lone,
                       NSManagedObjectContext& context);
    /// On the main queue.
    void writeMainContext(std::function<void()> whenSaved);

    /// What the latest clean-up looked through and found in order.
    struct LastCleanUp {
        SavedObjectIDs inserted;
        std::shared_ptr<const StoreVersion> found;
        /// Whether looking through `records` again could find nothing else: they are among those,
        /// and no record of any kind is another than it was.
        bool covers(const std::vector<NSManagedObjectID>& records, const StoreVersion& now) const;
    };

    const std::filesystem::path file_;
    std::atomic<StoreAccess> access_{StoreAccess::writing};
    const std::shared_ptr<MainQueue> mainQueue_;
    NSOperationQueue operationQueue_;
    /// Clean-ups run one after the other: two at once could each delete the other's half of a pair.
    const std::shared_ptr<DispatchQueue> cleanUpQueue_;
    /// Of the clean-up queue only. Empty after one that changed something.
    LastCleanUp lastCleanUp_;
    /// Main saves are written here, so that the main queue never waits for the disk.
    const std::shared_ptr<DispatchQueue> writerQueue_;

    /// From here on a play can be saved whose song was deleted with everything.
    std::atomic<bool> dataWasDeleted_{false};
    /// Held while the container is loaded for the first time, so that it is loaded once.
    Mutex loadingMutex_;
    Foldings foldings_;
    Mutex mutex_;
    std::shared_ptr<NSPersistentCloudKitContainer> persistentContainer_ TAVRION_GUARDED_BY(mutex_);
    std::shared_ptr<NSManagedObjectContext> mainContext_ TAVRION_GUARDED_BY(mutex_);
    NSNotificationCenter::Observation saveObservation_ TAVRION_GUARDED_BY(mutex_);
    NSUserDefaults::Observation syncObservation_;
};

}  // namespace tavrion
