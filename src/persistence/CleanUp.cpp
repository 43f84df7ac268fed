#include <algorithm>
#include <optional>
#include <utility>

#include "persistence/RVCoreDataManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSUUID.h"
#include "recording/Achievement.h"
#include "recording/PlayEvent.h"
#include "recording/RecordPredicates.h"

namespace tavrion {
namespace {

bool isReal(const std::optional<std::string>& identifier) {
    return identifier && !NSUUID::stringIsValidUUID(*identifier);
}

NSFetchRequest twinsOf(const PlaybackHistory& history) {
    const std::optional<std::string> title = history.title();
    std::vector<NSPredicate> conditions{
        RecordPredicates::titleAndDuration(title, history.duration())};
    if (const auto identifier = history.storeID(); isReal(identifier)) {
        conditions.push_back(RecordPredicates::storeID(*identifier));
    }
    if (const auto identifier = history.libraryID(); isReal(identifier)) {
        conditions.push_back(RecordPredicates::libraryID(*identifier));
    }
    return PlaybackHistory::fetchRequest().where(
        NSPredicate::orPredicateWithSubpredicates(std::move(conditions)));
}

/// A real identifier replaces a generated one; a real one is never replaced.
void takeRealIdentifiers(PlaybackHistory& survivor, const PlaybackHistory& twin) {
    if (const auto identifier = twin.storeID(); isReal(identifier) && !isReal(survivor.storeID())) {
        survivor.setStoreID(identifier);
    }
    if (const auto identifier = twin.libraryID();
        isReal(identifier) && !isReal(survivor.libraryID())) {
        survivor.setLibraryID(identifier);
    }
}

void absorb(PlaybackHistory& survivor, const PlaybackHistory& twin,
            NSManagedObjectContext& context) {
    takeRealIdentifiers(survivor, twin);
    // Both have followed the same counter of the library, so that the counts are not added.
    if (twin.playCount() > survivor.playCount()) {
        survivor.setPlayCount(twin.playCount());
    }
    if (twin.skipCount() > survivor.skipCount()) {
        survivor.setSkipCount(twin.skipCount());
    }
    survivor.setLastEventDate(laterDate(survivor.lastEventDate(), twin.lastEventDate()));
    survivor.addPlays(twin.plays());
    context.deleteObject(twin);
}

/// Whether at least two records match, the one in question included.
bool isDoubled(NSManagedObjectContext& context, const NSFetchRequest& request) {
    const Result<std::size_t> count = context.countForFetchRequest(request);
    return count && count.value() > 1;
}

void cleanUpEvent(const PlayEvent& event, NSManagedObjectContext& context) {
    const std::optional<NSDate> date = event.eventDate();
    if (date && isDoubled(context, PlayEvent::fetchRequest().where(
                                       RecordPredicates::eventDateEquals(*date)))) {
        NSLog("deleted duplicate play event: {}", isoTextOfDate(*date));
        context.deleteObject(event);
    }
}

void cleanUpAchievement(const Achievement& achievement, NSManagedObjectContext& context) {
    const std::optional<std::string> identifier = achievement.identifier();
    if (identifier && isDoubled(context, Achievement::fetchRequest().where(
                                             RecordPredicates::identifier(*identifier)))) {
        NSLog("deleted duplicate achievement: {}", *identifier);
        context.deleteObject(achievement);
    }
}

}  // namespace

void RVCoreDataManager::consolidateHistory(PlaybackHistory& survivor,
                                           NSManagedObjectContext& context) {
    const Result<std::vector<NSManagedObject>> twins =
        context.executeFetchRequest(twinsOf(survivor));
    if (!twins || twins.value().size() == 1) {
        return;
    }
    for (const NSManagedObject& twin : twins.value()) {
        if (twin.objectID() != survivor.objectID()) {
            absorb(survivor, PlaybackHistory(twin), context);
        }
    }
}

void RVCoreDataManager::handle_Duplication(const NSNotification& notification) {
    const SavedObjectIDs* inserted = notification.info<SavedObjectIDs>(NSInsertedObjectIDsKey);
    if (inserted == nullptr) {
        return;
    }
    auto context = NSManagedObjectContext::below(mainContext(), cleanUpQueue_);
    context->performBlock([this, context, ids = *inserted] { cleanUp(ids, *context); });
}

void RVCoreDataManager::cleanUp(const SavedObjectIDs& inserted, NSManagedObjectContext& context) {
    for (const NSManagedObjectID id : *inserted) {
        const std::optional<NSManagedObject> object = context.existingObjectWithID(id);
        if (!object) {
            continue;
        }
        if (id.entity == NerindaEntity::PlaybackHistory) {
            PlaybackHistory survivor(*object);
            consolidateHistory(survivor, context);
        } else if (id.entity == NerindaEntity::PlayEvent) {
            cleanUpEvent(PlayEvent(*object), context);
        } else if (id.entity == NerindaEntity::Achievement) {
            cleanUpAchievement(Achievement(*object), context);
        }
    }
    if (context.hasChanges() && context.save().ok()) {
        saveMainContext();
    }
}

}  // namespace tavrion
