#include <algorithm>
#include <initializer_list>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "persistence/LoneRecords.h"
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

/// Which records of one entity have the same value of one property as another one. Absent values
/// are equal to each other.
class Doubles {
  public:
    Doubles(NSManagedObjectContext& context, EntityIndex entity, PropertyIndex property)
        : context_(context), entity_(entity), property_(property) {}

    /// Deletes the object, which has that value, if another one has it too; whether it did.
    bool deleteIfDoubled(const NSManagedObject& object, const FieldView& value) {
        const bool isAbsent = std::holds_alternative<std::monostate>(value);
        if (isAbsent && !withoutValue_) {
            withoutValue_ = countWithoutValue();
        }
        const PropertyValue equality{property_, value};
        const std::size_t count =
            isAbsent ? *withoutValue_
                     : context_.recordsWhere(entity_, std::span(&equality, 1)).size();
        if (count < 2) {
            return false;
        }
        context_.deleteObject(object);
        if (isAbsent) {
            --*withoutValue_;
        }
        return true;
    }

  private:
    /// No index has these, so that they are counted once and not for each of them.
    std::size_t countWithoutValue() {
        const NSEntityDescription& entity = context_.model().entity(entity_);
        const auto counted = context_.countForFetchRequest(
            NSFetchRequest::fetchRequestWithEntityName(entity.name)
                .where(NSPredicate::comparison(entity.properties[property_].name,
                                               NSPredicate::Operator::equal, Value())));
        return counted ? counted.value() : 0;
    }

    NSManagedObjectContext& context_;
    const EntityIndex entity_;
    const PropertyIndex property_;
    std::optional<std::size_t> withoutValue_;
};

void cleanUpEvent(const PlayEvent& event, Doubles& doubles) {
    const std::optional<NSDate> date = event.eventDate();
    if (doubles.deleteIfDoubled(event, date ? FieldView(*date) : FieldView())) {
        NSLog("deleted duplicate play event: {}", date ? isoTextOfDate(*date) : "(null)");
    }
}

void cleanUpAchievement(const Achievement& achievement, Doubles& doubles) {
    const std::optional<std::string> identifier = achievement.identifier();
    if (doubles.deleteIfDoubled(achievement, identifier ? FieldView(*identifier) : FieldView())) {
        NSLog("deleted duplicate achievement: {}", identifier.value_or("(null)"));
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
    if (folded) {
        foldings_.noteDeletions(notification);
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

void RVCoreDataManager::foldTwinsAmong(const std::vector<NSManagedObjectID>& inserted,
                                       const LoneRecords& lone, NSManagedObjectContext& context) {
    for (std::size_t place = 0; place < inserted.size(); ++place) {
        const NSManagedObjectID id = inserted[place];
        if (id.entity != NerindaEntity::PlaybackHistory || lone.isAlone(place)) {
            continue;
        }
        if (const std::optional<NSManagedObject> object = context.existingObjectWithID(id)) {
            PlaybackHistory survivor(*object);
            consolidateHistory(survivor, context);
        }
    }
}

void RVCoreDataManager::deleteDoubles(const std::vector<NSManagedObjectID>& inserted,
                                      const LoneRecords& lone, NSManagedObjectContext& context) {
    Doubles events(context, NerindaEntity::PlayEvent, PlayEventKey::eventDate);
    Doubles awards(context, NerindaEntity::Achievement, AchievementKey::identifier);
    for (std::size_t place = 0; place < inserted.size(); ++place) {
        const NSManagedObjectID id = inserted[place];
        // One that has no like may still have no song.
        if (id.entity == NerindaEntity::PlaybackHistory ||
            (lone.isAlone(place) && !dataWasDeleted_)) {
            continue;
        }
        const std::optional<NSManagedObject> object = context.existingObjectWithID(id);
        if (!object) {
            continue;
        }
        if (id.entity == NerindaEntity::Achievement) {
            cleanUpAchievement(Achievement(*object), awards);
        } else if (dataWasDeleted_ && PlayEvent(*object).lacksItsSong()) {
            context.deleteObject(*object);
        } else {
            cleanUpEvent(PlayEvent(*object), events);
        }
    }
}

void RVCoreDataManager::cleanUp(const SavedObjectIDs& inserted, NSManagedObjectContext& context) {
    const std::shared_ptr<const StoreVersion> before = context.snapshot();
    // The main save tells of the same records again that a child's save told of.
    if (std::exchange(lastCleanUp_, {}).covers(*inserted, *before)) {
        return;
    }
    // What is folded here passes its identifiers on, but nobody gets one that is new to all.
    const LoneRecords lone(*before, *inserted);
    foldTwinsAmong(*inserted, lone, context);
    // Before an event can go that such a record's count has counted.
    foldings_.reunite(context);
    deleteDoubles(*inserted, lone, context);
    if (!context.hasChanges()) {
        lastCleanUp_ = {inserted, before};
    } else if (context.save().ok()) {
        saveMainContext();
    }
}

}  // namespace tavrion
