// The model of everything that is recorded: four entities, their attributes and the indexes that
// identity look-ups need.
//
// Queue: any; made once and immutable. Positions of attributes are given here in the order of the
// model, so that the record classes and the model cannot drift apart.
#pragma once

#include <memory>

#include "platform/coredata/NSManagedObjectModel.h"
#include "platform/coredata/NSPersistentStore.h"

namespace tavrion {

/// Positions of the entities.
namespace NerindaEntity {
enum : EntityIndex { PlaybackHistory, PlaybackHistoryEvent, PlayEvent, Achievement };
}

/// Positions of the attributes of each entity.
namespace PlaybackHistoryKey {
enum : PropertyIndex {
    albumID,
    artist,
    duration,
    excludeFromTrends,
    genre,
    lastEventDate,
    libraryID,
    playCount,
    skipCount,
    storeID,
    title
};
}
namespace PlayEventKey {
enum : PropertyIndex { eventDate, isInterpolated, parentHistory };
}
namespace AchievementKey {
enum : PropertyIndex { dates, identifier, tier };
}

/// The model named "Nerinda".
std::shared_ptr<const NSManagedObjectModel> nerindaModel();

/// What marks the store's file as Tavrion's.
StoreFormat nerindaStoreFormat();

}  // namespace tavrion
