#include <algorithm>
#include <initializer_list>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "persistence/RVCoreDataManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSUUID.h"
#include "recording/Achievement.h"
#include "recording/PlayEvent.h"

namespace tavrion {
namespace {

bool isReal(const std::optional<std::string>& identifier) {
    return identifier && !NSUUID::stringIsValidUUID(*identifier);
}

/// All records of the survivor's song, itself included, in identifier order: of its title and
/// duration, or with one of its real identifiers.
std::vector<RecordCounter> recordsOfSong(const PlaybackHistory& survivor,
                                         NSManagedObjectContext& context) {
    const std::optional<std::string> title = survivor.title();
    const auto storeID = survivor.storeID();
    const auto libraryID = survivor.libraryID();
    const auto find = [&](std::initializer_list<PropertyValue> conditions) {
        return context.recordsWhere(NerindaEntity::PlaybackHistory,
                                    std::span(conditions.begin(), conditions.size()));
    };
    std::vector<RecordCounter> records =
        find({{PlaybackHistoryKey::title, title ? FieldView(*title) : FieldView()},
              {PlaybackHistoryKey::duration, survivor.duration()}});
    const auto addThoseWith = [&](PropertyIndex property,
                                  const std::optional<std::string>& identifier) {
        if (isReal(identifier)) {
            const std::vector<RecordCounter> more = find({{property, *identifier}});
            records.insert(records.end(), more.begin(), more.end());
        }
    };
    addThoseWith(PlaybackHistoryKey::storeID, storeID);
    addThoseWith(PlaybackHistoryKey::libraryID, libraryID);
    std::sort(records.begin(), records.end());
    records.erase(std::unique(records.begin(), records.end()), records.end());
    return records;
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

/// Whether at least two records of the entity have that value, the one in question included.
bool isDoubled(NSManagedObjectContext& context, EntityIndex entity, PropertyIndex property,
               const FieldView& value) {
    const PropertyValue equality{property, value};
    return context.recordsWhere(entity, std::span(&equality, 1)).size() > 1;
}

void cleanUpEvent(const PlayEvent& event, NSManagedObjectContext& context) {
    const std::optional<NSDate> date = event.eventDate();
    if (date && isDoubled(context, NerindaEntity::PlayEvent, PlayEventKey::eventDate, *date)) {
        NSLog("deleted duplicate play event: {}", isoTextOfDate(*date));
        context.deleteObject(event);
    }
}

void cleanUpAchievement(const Achievement& achievement, NSManagedObjectContext& context) {
    const std::optional<std::string> identifier = achievement.identifier();
    if (identifier && isDoubled(context, NerindaEntity::Achievement, AchievementKey::identifier,
                                std::string_view(*identifier))) {
        NSLog("deleted duplicate achievement: {}", *identifier);
        context.deleteObject(achievement);
    }
}

}  // namespace

void RVCoreDataManager::consolidateHistory(PlaybackHistory& survivor,
                                           NSManagedObjectContext& context) {
    const std::vector<RecordCounter> records = recordsOfSong(survivor, context);
    if (records.size() == 1) {
        return;
    }
    for (const RecordCounter record : records) {
        const NSManagedObjectID id{NerindaEntity::PlaybackHistory, record};
        if (id != survivor.objectID()) {
            const PlaybackHistory twin(NSManagedObject(context, id));
            sharedData().foldings_.note(id, survivor.objectID(), twin.playCount());
            absorb(survivor, twin, context);
        }
    }
}

void RVCoreDataManager::handle_Duplication(const NSNotification& notification) {
    const SavedObjectIDs* inserted = notification.info<SavedObjectIDs>(NSInsertedObjectIDsKey);
    const bool folded =
        notification.info<SavedObjectIDs>(NSDeletedObjectIDsKey) != nullptr && !foldings_.empty();
    if (inserted == nullptr && !folded) {
        return;
    }
    auto context = NSManagedObjectContext::below(mainContext(), cleanUpQueue_);
    context->performBlock([this, context,
                           ids = inserted != nullptr
                                     ? *inserted
                                     : std::make_shared<const std::vector<NSManagedObjectID>>()] {
        cleanUp(ids, *context);
    });
}

bool RVCoreDataManager::LastCleanUp::covers(const std::vector<NSManagedObjectID>& records,
                                            const StoreVersion& now) const {
    return inserted && found->tables() == now.tables() &&
           std::includes(inserted->begin(), inserted->end(), records.begin(), records.end());
}

void RVCoreDataManager::cleanUp(const SavedObjectIDs& inserted, NSManagedObjectContext& context) {
    const std::shared_ptr<const StoreVersion> before = context.snapshot();
    // The main save tells of the same records again that a child's save told of.
    if (std::exchange(lastCleanUp_, {}).covers(*inserted, *before)) {
        return;
    }
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
    foldings_.reunite(context);
    if (!context.hasChanges()) {
        lastCleanUp_ = {inserted, before};
    } else if (context.save().ok()) {
        saveMainContext();
    }
}

}  // namespace tavrion
