// A view of the records with changes of its own: the main context over the store, and private
// contexts below it at any depth.
//
// Queue: each context has a serial queue, the main context the main queue; every operation asserts
// that it runs there, but for the few marked "any queue". performBlockAndWait() runs inline on the
// caller. Who owns: a context keeps its parent; its handles must not outlive it, and work handed to
// performBlock() keeps the context.
//
// A context sees its parent's state, the parent's unsaved changes included, and over it its own
// changes, property by property: its own win (the merge policy NSMergeByPropertyObjectTrump). It
// takes over what changed in the parent at the start of each block and at each fetch
// (automaticallyMergesChangesFromParent). A private context's save() hands its changes to the
// parent and never waits for the parent's queue; the main context's writes them to the store in one
// transaction.
//
// Each save that had changes posts NSManagedObjectContextDidSaveObjectIDsNotification about the
// context, on the saver's queue.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/coredata/ChangeSet.h"
#include "platform/coredata/NSFetchRequest.h"
#include "platform/coredata/NSManagedObject.h"
#include "platform/coredata/NSPersistentStore.h"
#include "platform/dispatch/DispatchQueue.h"
#include "platform/foundation/Mutex.h"

namespace tavrion {

/// User info: under the three keys below a `std::shared_ptr<const std::vector<NSManagedObjectID>>`
/// in identifier order; a key without identifiers is missing.
inline const std::string NSManagedObjectContextDidSaveObjectIDsNotification =
    "NSManagedObjectContextDidSaveObjectIDsNotification";
inline const std::string NSInsertedObjectIDsKey = "inserted_objectIDs";
inline const std::string NSUpdatedObjectIDsKey = "updated_objectIDs";
inline const std::string NSDeletedObjectIDsKey = "deleted_objectIDs";
/// User info of a private context's save: a `std::shared_ptr<const StoreVersion>`, all records as
/// the parent saw them directly before.
inline const std::string NSStateBeforeSaveKey = "state_before_save";
using SavedObjectIDs = std::shared_ptr<const std::vector<NSManagedObjectID>>;

class NSManagedObjectContext : public std::enable_shared_from_this<NSManagedObjectContext> {
  public:
    /// The context over the store, on `queue`.
    static std::shared_ptr<NSManagedObjectContext> overStore(
        std::shared_ptr<NSPersistentStore> store, std::shared_ptr<DispatchQueue> queue);
    /// A private context below `parent`, on `queue`, or on a new queue of its own when that is
    /// null.
    static std::shared_ptr<NSManagedObjectContext> below(
        std::shared_ptr<NSManagedObjectContext> parent,
        std::shared_ptr<DispatchQueue> queue = nullptr);

    /// Any queue.
    void performBlock(Work block);
    /// Any queue; returns when the block has run, on the caller's thread but for the main context,
    /// whose blocks run on the main thread.
    void performBlockAndWait(const Work& block);
    /// Any queue.
    const NSManagedObjectModel& model() const { return store_->model(); }
    DispatchQueue& queue() const { return *queue_; }
    const std::shared_ptr<NSManagedObjectContext>& parentContext() const { return parent_; }

    /// A new record with these values.
    NSManagedObject insertObject(EntityIndex entity, std::span<const PropertyValue> values = {});
    /// Objects that refer to the deleted one lose the reference. Deleting what is gone does
    /// nothing.
    void deleteObject(const NSManagedObject& object);
    /// Tests every record of the entity; look-ups go through recordsWhere(). An entity or a key
    /// that the model does not have is an error.
    Result<std::vector<NSManagedObject>> executeFetchRequest(const NSFetchRequest& request);
    Result<std::size_t> countForFetchRequest(const NSFetchRequest& request);
    /// The records of `entity` in which all conditions hold, in identifier order: what a fetch with
    /// an AND of equalities gives, found through an index of the entity, which must be over some of
    /// the properties. A single absent value is not looked up.
    std::vector<RecordCounter> recordsWhere(EntityIndex entity,
                                            std::span<const PropertyValue> conditions);
    /// The object if the context sees it.
    std::optional<NSManagedObject> existingObjectWithID(NSManagedObjectID id);
    bool hasChanges() const;
    /// Drops the context's unsaved changes.
    void rollback();
    Result<void> save();
    /// Of the context over the store: writes on `writer` what is unsaved now, then calls `done` on
    /// the context's queue. Changes made meanwhile wait for the next save. Saves are finished in
    /// the order of the calls. When what there was is written but not yet committed, `waitForMore`
    /// runs on `writer`, and what has come by then goes into the same transaction; it must not
    /// save this context.
    void saveInBackground(DispatchQueue& writer, std::function<void(Result<void>)> done,
                          std::function<void()> waitForMore = nullptr);

    /// Any queue. All records as this context sees them, for whoever walks columns.
    std::shared_ptr<const StoreVersion> snapshot();

  private:
    friend class NSManagedObject;
    using Version = std::shared_ptr<const StoreVersion>;

    NSManagedObjectContext(std::shared_ptr<NSPersistentStore> store,
                           std::shared_ptr<NSManagedObjectContext> parent,
                           std::shared_ptr<DispatchQueue> queue);

    /// What is below this context now.
    Version parentVersion();
    /// Takes over the parent's state if it is newer.
    void refresh();
    /// Whether some context from here upwards has changes that no version holds yet.
    bool hasOpenChanges() const;
    /// Makes the own changes a part of settled_.
    void seal() TAVRION_REQUIRES(mutex_);
    void settle(Version basis) TAVRION_REQUIRES(mutex_);
    /// The states without and with changes that were received.
    struct Received {
        Version before;
        Version after;
    };
    /// Takes finished changes of a child, which are `settled` over `basis`.
    Received receive(const NSPersistentStore::Commits& commits, const Version& basis,
                     const Version& settled);
    /// Writes what is unsaved; gives what was written.
    Result<NSPersistentStore::Commits> saveToStore(const std::function<void()>& waitForMore)
        TAVRION_EXCLUDES(saveMutex_);
    NSPersistentStore::Unsaved unsaved();
    /// `commits` are now a part of `basis`, which is below.
    void settleWithout(const NSPersistentStore::Commits& commits, Version basis);

    Result<std::vector<NSManagedObjectID>> fetchIDs(const NSFetchRequest& request);
    Result<void> checkKeys(const NSFetchRequest& request, EntityIndex entity) const;
    void sort(std::vector<NSManagedObjectID>& ids,
              const std::vector<NSSortDescriptor>& descriptors);
    /// The records whose reference `property` points to `target`.
    std::vector<NSManagedObjectID> referringIDs(EntityIndex entity, PropertyIndex property,
                                                NSManagedObjectID target);

    /// Calls `use` with the record while it is valid.
    template <class Use>
    auto withRecord(NSManagedObjectID id, Use use) const {
        queue_->assertCurrent();
        {
            MutexLock lock(mutex_);
            if (const std::optional<ChangedRecord> record = view().record(id)) {
                return use(*record);
            }
        }
        const Version removed = store_->versionBeforeRemoval(id);
        return use(
            ChangedRecord(model().entity(id.entity), removed ? removed->find(id) : std::nullopt));
    }
    template <class Use>
    auto withField(NSManagedObjectID id, PropertyIndex property, Use use) const {
        return withRecord(id,
                          [&](const ChangedRecord& record) { return use(record.at(property)); });
    }
    ChangedView view() const TAVRION_REQUIRES(mutex_) { return {model(), *settled_, open_}; }
    void setField(NSManagedObjectID id, PropertyIndex property, const FieldView& field);

    const std::shared_ptr<NSPersistentStore> store_;
    const std::shared_ptr<NSManagedObjectContext> parent_;
    const std::shared_ptr<DispatchQueue> queue_;

    /// One child at a time hands its changes over; one save at a time writes to the store.
    Mutex receiveMutex_;
    Mutex saveMutex_;
    mutable Mutex mutex_;
    /// The parent's state that the rest builds on.
    Version basis_ TAVRION_GUARDED_BY(mutex_);
    /// Finished unsaved changes, in order.
    NSPersistentStore::Commits commits_ TAVRION_GUARDED_BY(mutex_);
    /// basis_ with commits_.
    Version settled_ TAVRION_GUARDED_BY(mutex_);
    /// Own changes over settled_.
    ChangeSet open_ TAVRION_GUARDED_BY(mutex_);
    /// Whether there may be some in open_.
    std::atomic<bool> hasOpen_{false};
    /// StoreVersion::publications() when the parent was asked last.
    std::atomic<std::uint64_t> refreshedAt_{0};
};

}  // namespace tavrion
