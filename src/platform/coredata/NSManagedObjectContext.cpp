#include "platform/coredata/NSManagedObjectContext.h"

#include <algorithm>
#include <utility>

#include "platform/coredata/DidSaveNotification.h"

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

bool NSManagedObjectContext::hasOpenChanges() const {
    return hasOpen_.load() || (parent_ && parent_->hasOpenChanges());
}

void NSManagedObjectContext::refresh() {
    const std::uint64_t publications = StoreVersion::publications();
    if (publications == refreshedAt_.load() && (!parent_ || !parent_->hasOpenChanges())) {
        return;
    }
    // Asked for before the own lock is taken: a context never holds its lock while it asks another
    // one.
    Version newer = parentVersion();
    {
        MutexLock lock(mutex_);
        if (newer->sequence() > basis_->sequence()) {
            settle(std::move(newer));
        }
    }
    refreshedAt_ = publications;
}

void NSManagedObjectContext::settle(Version basis) {
    basis_ = std::move(basis);
    settled_ = basis_;
    for (const auto& commit : commits_) {
        settled_ = folded(store_->model(), *settled_, *commit);
    }
    StoreVersion::notePublication();
}

void NSManagedObjectContext::seal() {
    if (open_.empty()) {
        return;
    }
    auto commit =
        std::make_shared<const ChangeSet>(std::exchange(open_, ChangeSet(store_->model())));
    settled_ = folded(store_->model(), *settled_, *commit);
    commits_.push_back(std::move(commit));
    hasOpen_ = false;
    StoreVersion::notePublication();
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
    hasOpen_ = false;
    StoreVersion::notePublication();
}

// Saving

NSManagedObjectContext::Received NSManagedObjectContext::receive(
    const NSPersistentStore::Commits& commits, const Version& basis, const Version& settled) {
    MutexLock oneAtATime(receiveMutex_);
    for (;;) {
        const Version before = snapshot();
        // The work is done outside the lock that this context's own queue needs; in the end only
        // pointers change hands. The child has done it already if nothing has changed here since it
        // looked.
        Version after = before == basis ? settled : before;
        if (before != basis) {
            for (const auto& commit : commits) {
                after = folded(store_->model(), *after, *commit);
            }
        }
        MutexLock lock(mutex_);
        if (settled_ == before && open_.empty()) {
            commits_.insert(commits_.end(), commits.begin(), commits.end());
            settled_ = after;
            StoreVersion::notePublication();
            return {before, after};
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
        const auto written = saveToStore(nullptr);
        if (!written) {
            return written.error();
        }
        DidSaveNotification(written.value(), this).post();
        store_->shortenLog();
        return {};
    }
    NSPersistentStore::Commits commits;
    Version basis;
    Version settled;
    {
        MutexLock lock(mutex_);
        seal();
        commits = commits_;
        basis = basis_;
        settled = settled_;
    }
    if (!commits.empty()) {
        const Received received = parent_->receive(commits, basis, settled);
        settleWithout(commits, received.after);
        DidSaveNotification(commits, this, received.before).post();
    }
    return {};
}

NSPersistentStore::Unsaved NSManagedObjectContext::unsaved() {
    MutexLock lock(mutex_);
    seal();
    return {commits_, basis_, settled_};
}

Result<NSPersistentStore::Commits> NSManagedObjectContext::saveToStore(
    const std::function<void()>& waitForMore) {
    MutexLock oneAtATime(saveMutex_);
    const NSPersistentStore::Unsaved first = unsaved();
    NSPersistentStore::Unsaved all = first;
    if (first.commits.empty()) {
        return first.commits;
    }
    const auto everything = [&] {
        if (waitForMore) {
            waitForMore();
            all = unsaved();
        }
        return all;
    };
    const Result<void> written =
        store_->write(first.commits, everything,
                      [&](const Version& saved) { settleWithout(all.commits, saved); });
    if (!written) {
        return written.error();
    }
    return all.commits;
}

void NSManagedObjectContext::saveInBackground(DispatchQueue& writer,
                                              std::function<void(Result<void>)> done,
                                              std::function<void()> waitForMore) {
    queue_->assertCurrent();
    writer.async([self = shared_from_this(), done = std::move(done),
                  waitForMore = std::move(waitForMore)]() mutable {
        const auto written = self->saveToStore(waitForMore);
        NSManagedObjectContext& context = *self;
        const std::shared_ptr<NSPersistentStore> store = context.store_;
        // Put together here, so that the context's own queue only posts it.
        std::optional<DidSaveNotification> notification;
        if (written) {
            notification.emplace(written.value(), self.get());
        }
        context.queue_->async([self = std::move(self), done = std::move(done),
                               result = written ? Result<void>() : Result<void>(written.error()),
                               notification = std::move(notification)] {
            if (notification) {
                notification->post();
            }
            done(result);
        });
        store->shortenLog();
    });
}

// Objects

NSManagedObject NSManagedObjectContext::insertObject(EntityIndex entity,
                                                     std::span<const PropertyValue> values) {
    queue_->assertCurrent();
    const NSManagedObjectID id{entity, store_->allocate(entity)};
    MutexLock lock(mutex_);
    open_.entity(entity).insert(model().entity(entity), id.counter, values);
    hasOpen_ = true;
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
                    setField(referring, property, FieldView());
                }
            }
        }
    }
    MutexLock lock(mutex_);
    if (view().sees(id)) {
        open_.entity(id.entity).remove(id.counter);
        hasOpen_ = true;
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

void NSManagedObjectContext::setField(NSManagedObjectID id, PropertyIndex property,
                                      const FieldView& field) {
    queue_->assertCurrent();
    MutexLock lock(mutex_);
    if (view().sees(id)) {
        open_.entity(id.entity).set(model().entity(id.entity), id.counter, property, field);
        hasOpen_ = true;
    }
}

}  // namespace tavrion
