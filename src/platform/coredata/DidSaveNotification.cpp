#include "platform/coredata/DidSaveNotification.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/coredata/NSManagedObjectContext.h"

namespace tavrion {
namespace {

using Identifiers = std::vector<NSManagedObjectID>;

/// Adds the records of one commit; the whole is in order and without repetition afterwards.
void add(Identifiers& all, EntityIndex entity, const std::vector<RecordCounter>& records) {
    const auto middle = static_cast<std::ptrdiff_t>(all.size());
    for (const RecordCounter record : records) {
        all.push_back({entity, record});
    }
    if (middle > 0 && !records.empty() &&
        !(all[static_cast<std::size_t>(middle) - 1] < all[static_cast<std::size_t>(middle)])) {
        std::inplace_merge(all.begin(), all.begin() + middle, all.end());
        all.erase(std::unique(all.begin(), all.end()), all.end());
    }
}

Identifiers without(const Identifiers& all, const Identifiers& some) {
    if (some.empty()) {
        return all;
    }
    Identifiers rest;
    std::set_difference(all.begin(), all.end(), some.begin(), some.end(), std::back_inserter(rest));
    return rest;
}

}  // namespace

DidSaveNotification::DidSaveNotification(const NSPersistentStore::Commits& commits,
                                         const void* context,
                                         std::shared_ptr<const StoreVersion> before)
    : notification_{NSManagedObjectContextDidSaveObjectIDsNotification, context, {}} {
    Identifiers inserted;
    Identifiers updated;
    Identifiers deleted;
    for (const auto& commit : commits) {
        for (std::size_t i = 0; i < commit->entityCount(); ++i) {
            const auto entity = static_cast<EntityIndex>(i);
            add(inserted, entity, commit->entity(entity).insertedRecords());
            add(updated, entity, commit->entity(entity).updatedRecords());
            add(deleted, entity, commit->entity(entity).deletedRecords());
        }
    }
    const auto tell = [&](const std::string& key, Identifiers identifiers) {
        if (!identifiers.empty()) {
            notification_.userInfo[key] =
                SavedObjectIDs(std::make_shared<const Identifiers>(std::move(identifiers)));
        }
    };
    // Identifiers are never given twice, so that the order of the commits does not matter here.
    tell(NSUpdatedObjectIDsKey, without(without(updated, inserted), deleted));
    tell(NSDeletedObjectIDsKey, without(deleted, inserted));
    tell(NSInsertedObjectIDsKey, without(inserted, deleted));
    if (before && !notification_.userInfo.empty()) {
        notification_.userInfo[NSStateBeforeSaveKey] = std::move(before);
    }
}

void DidSaveNotification::post() const {
    if (!notification_.userInfo.empty()) {
        NSNotificationCenter::defaultCenter().postNotification(notification_);
    }
}

}  // namespace tavrion
