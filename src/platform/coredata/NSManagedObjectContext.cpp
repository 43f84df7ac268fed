#include "platform/coredata/NSManagedObjectContext.h"

#include <algorithm>
#include <set>
#include <utility>

#include "platform/foundation/NSNotificationCenter.h"

namespace tavrion {

NSManagedObjectContext::NSManagedObjectContext(std::shared_ptr<NSPersistentStore> store,
                                               std::shared_ptr<NSManagedObjectContext> parent,
                                               std::shared_ptr<DispatchQueue> queue)
    : store_(std::move(store)),
      parent_(std::move(parent)),
      queue_(std::move(queue)),
      basis_(parent_ ? parent_->snapshot() : store_->version()),
      settled_(basis_),
      open_(store_->model()) {}

std::shared_ptr<NSManagedObjectContext> NSManagedObjectContext::overStore(
    std::shared_ptr<NSPersistentStore> store, std::shared_ptr<DispatchQueue> queue) {
    return std::shared_ptr<NSManagedObjectContext>(
        new NSManagedObjectContext(std::move(store), nullptr, std::move(queue)));
}

std::shared_ptr<NSManagedObjectContext> NSManagedObjectContext::below(
    std::shared_ptr<NSManagedObjectContext> parent, std::shared_ptr<DispatchQueue> queue) {
    auto store = parent->store_;
    if (!queue) {
        queue = DispatchQueue::serial("private context");
    }
    return std::shared_ptr<NSManagedObjectContext>(
        new NSManagedObjectContext(std::move(store), std::move(parent), std::move(queue)));
}

void NSManagedObjectContext::performBlock(Work block) {
    queue_->async([self = shared_from_this(), block = std::move(block)] {
        self->refresh();
        block();
    });
}

void NSManagedObjectContext::performBlockAndWait(const Work& block) {
    queue_->sync([&] {
        refresh();
        block();
    });
}

NSManagedObjectContext::Version NSManagedObjectContext::parentVersion() {
    return parent_ ? parent_->snapshot() : store_->version();
}

void NSManagedObjectContext::refresh() {
    // Asked for before the own lock is taken: a context never holds its lock while it asks another
    // one.
    Version newer = parentVersion();
    MutexLock lock(mutex_);
    if (newer->sequence() > basis_->sequence()) {
        settle(std::move(newer));
    }
}

void NSManagedObjectContext::settle(Version basis) {
    basis_ = std::move(basis);
    settled_ = basis_;
    for (const auto& commit : commits_) {
        settled_ = folded(store_->model(), *settled_, *commit);
    }
}

void NSManagedObjectContext::seal() {
    if (open_.empty()) {
        return;
    }
    auto commit =
        std::make_shared<const ChangeSet>(std::exchange(open_, ChangeSet(store_->model())));
    settled_ = folded(store_->model(), *settled_, *commit);
    commits_.push_back(std::move(commit));
}

std::shared_ptr<const StoreVersion> NSManagedObjectContext::snapshot() {
    refresh();
    MutexLock lock(mutex_);
    seal();
    return settled_;
}

bool NSManagedObjectContext::hasChanges() const {
    MutexLock lock(mutex_);
    return !open_.empty() || !commits_.empty();
}

void NSManagedObjectContext::rollback() {
    queue_->assertCurrent();
    MutexLock lock(mutex_);
    open_ = ChangeSet(store_->model());
    commits_.clear();
    settled_ = basis_;
}

// Saving

NSManagedObjectContext::Version NSManagedObjectContext::receive(
    const NSPersistentStore::Commits& commits) {
    MutexLock oneAtATime(receiveMutex_);
    for (;;) {
        const Version before = snapshot();
        // The work is done outside the lock that this context's own queue needs; in the end only
        // pointers change hands.
        Version after = before;
        for (const auto& commit : commits) {
            after = folded(store_->model(), *after, *commit);
        }
        MutexLock lock(mutex_);
        if (settled_ == before && open_.empty()) {
            commits_.insert(commits_.end(), commits.begin(), commits.end());
            settled_ = after;
            return after;
        }
    }
}

void NSManagedObjectContext::settleWithout(const NSPersistentStore::Commits& commits,
                                           Version basis) {
    MutexLock lock(mutex_);
    std::erase_if(commits_, [&](const auto& commit) {
        return std::find(commits.begin(), commits.end(), commit) != commits.end();
    });
    settle(std::move(basis));
}

Result<void> NSManagedObjectContext::save() {
    queue_->assertCurrent();
    if (!parent_) {
        const auto written = saveToStore();
        if (!written) {
            return written.error();
        }
        postDidSave(written.value());
        return {};
    }
    NSPersistentStore::Commits commits;
    {
        MutexLock lock(mutex_);
        seal();
        commits = commits_;
    }
    if (!commits.empty()) {
        settleWithout(commits, parent_->receive(commits));
        postDidSave(commits);
    }
    return {};
}

Result<NSPersistentStore::Commits> NSManagedObjectContext::saveToStore() {
    MutexLock oneAtATime(saveMutex_);
    NSPersistentStore::Commits commits;
    Version before;
    Version after;
    {
        MutexLock lock(mutex_);
        seal();
        commits = commits_;
        before = basis_;
        after = settled_;
    }
    if (commits.empty()) {
        return commits;
    }
    const Result<void> written = store_->write(
        commits, before, after, [&](const Version& saved) { settleWithout(commits, saved); });
    if (!written) {
        return written.error();
    }
    return commits;
}

void NSManagedObjectContext::saveInBackground(DispatchQueue& writer,
                                              std::function<void(Result<void>)> done) {
    queue_->assertCurrent();
    writer.async([self = shared_from_this(), done = std::move(done)]() mutable {
        auto written = self->saveToStore();
        NSManagedObjectContext& context = *self;
        context.queue_->async(
            [self = std::move(self), done = std::move(done), written = std::move(written)] {
                if (written) {
                    self->postDidSave(written.value());
                }
                done(written ? Result<void>() : Result<void>(written.error()));
            });
    });
}

void NSManagedObjectContext::postDidSave(const NSPersistentStore::Commits& commits) {
    std::set<NSManagedObjectID> inserted;
    std::set<NSManagedObjectID> updated;
    std::set<NSManagedObjectID> deleted;
    for (const auto& commit : commits) {
        for (std::size_t i = 0; i < commit->entityCount(); ++i) {
            const auto entity = static_cast<EntityIndex>(i);
            const EntityChanges& changes = commit->entity(entity);
            for (const RecordCounter record : changes.insertedRecords()) {
                inserted.insert(inserted.end(), NSManagedObjectID{entity, record});
            }
            for (const RecordCounter record : changes.updatedRecords()) {
                updated.insert(updated.end(), NSManagedObjectID{entity, record});
            }
            for (const RecordCounter record : changes.deletedRecords()) {
                const NSManagedObjectID id{entity, record};
                updated.erase(id);
                if (inserted.erase(id) == 0) {
                    deleted.insert(deleted.end(), id);
                }
            }
        }
    }
    std::erase_if(updated, [&](NSManagedObjectID id) { return inserted.contains(id); });
    NSNotification notification{NSManagedObjectContextDidSaveObjectIDsNotification, this, {}};
    const auto tell = [&](const std::string& key, const std::set<NSManagedObjectID>& ids) {
        if (!ids.empty()) {
            notification.userInfo[key] = SavedObjectIDs(
                std::make_shared<const std::vector<NSManagedObjectID>>(ids.begin(), ids.end()));
        }
    };
    tell(NSInsertedObjectIDsKey, inserted);
    tell(NSUpdatedObjectIDsKey, updated);
    tell(NSDeletedObjectIDsKey, deleted);
    if (!notification.userInfo.empty()) {
        NSNotificationCenter::defaultCenter().postNotification(notification);
    }
}

// Objects

NSManagedObject NSManagedObjectContext::insertObject(EntityIndex entity) {
    queue_->assertCurrent();
    const NSManagedObjectID id{entity, store_->allocate(entity)};
    MutexLock lock(mutex_);
    open_.entity(entity).insert(model().entity(entity), id.counter);
    return {*this, id};
}

void NSManagedObjectContext::deleteObject(const NSManagedObject& object) {
    queue_->assertCurrent();
    const NSManagedObjectID id = object.objectID();
    const std::string& name = model().entity(id.entity).name;
    for (std::size_t i = 0; i < model().entities().size(); ++i) {
        const NSEntityDescription& entity = model().entities()[i];
        for (std::size_t p = 0; p < entity.properties.size() && !entity.isAbstract; ++p) {
            if (entity.properties[p].type == NSAttributeType::reference &&
                entity.properties[p].destinationEntity == name) {
                const auto property = static_cast<PropertyIndex>(p);
                for (const NSManagedObjectID referring :
                     referringIDs(static_cast<EntityIndex>(i), property, id)) {
                    setField(referring, property, Field());
                }
            }
        }
    }
    MutexLock lock(mutex_);
    if (view().sees(id)) {
        open_.entity(id.entity).remove(id.counter);
    }
}

std::optional<NSManagedObject> NSManagedObjectContext::existingObjectWithID(NSManagedObjectID id) {
    queue_->assertCurrent();
    MutexLock lock(mutex_);
    if (id.entity >= model().entities().size() || !view().sees(id)) {
        return std::nullopt;
    }
    return NSManagedObject(*this, id);
}

void NSManagedObjectContext::setField(NSManagedObjectID id, PropertyIndex property, Field field) {
    queue_->assertCurrent();
    MutexLock lock(mutex_);
    if (view().sees(id)) {
        open_.entity(id.entity).set(model().entity(id.entity), id.counter, property,
                                    std::move(field));
    }
}

}  // namespace tavrion
