#include "persistence/Foldings.h"

#include <algorithm>

#include "platform/foundation/NSLog.h"
#include "recording/PlayEvent.h"
#include "recording/PlaybackHistory.h"

namespace tavrion {
namespace {

const SortedIndex& playsOfSongs(const StoreVersion& records) {
    static const std::size_t index =
        *nerindaModel()->entity(NerindaEntity::PlayEvent).indexOver({PlayEventKey::parentHistory});
    return *records.table(NerindaEntity::PlayEvent).indexes()[index];
}

}  // namespace

void Foldings::note(NSManagedObjectID folded, NSManagedObjectID survivor, std::int64_t playCount) {
    MutexLock lock(mutex_);
    foldings_[folded] = {survivor, playCount};
}

void Foldings::noteDeletions(const NSNotification& didSave) {
    const auto* deleted = didSave.info<SavedObjectIDs>(NSDeletedObjectIDsKey);
    const auto* before = didSave.info<std::shared_ptr<const StoreVersion>>(NSStateBeforeSaveKey);
    if (deleted == nullptr || before == nullptr) {
        return;
    }
    MutexLock lock(mutex_);
    for (const NSManagedObjectID id : **deleted) {
        const auto folding = foldings_.find(id);
        const auto record = (*before)->find(id);
        if (folding == foldings_.end() || !record) {
            continue;
        }
        folding->second.playCount =
            std::get<std::int64_t>(record->at(PlaybackHistoryKey::playCount));
        folding->second.countedPlays.clear();
        playsOfSongs(**before).forEachEqual(id.counter, [&](RecordCounter play) {
            folding->second.countedPlays.push_back({NerindaEntity::PlayEvent, play});
        });
    }
}

bool Foldings::empty() const {
    MutexLock lock(mutex_);
    return foldings_.empty();
}

std::optional<NSManagedObject> Foldings::survivorOf(
    NSManagedObjectID folded, const std::map<NSManagedObjectID, Folding>& foldings,
    NSManagedObjectContext& context) {
    // Two records can each have been folded into the other by folds of which one was never saved.
    for (std::size_t steps = 0; steps < foldings.size(); ++steps) {
        const auto next = foldings.find(folded);
        if (next == foldings.end()) {
            break;
        }
        folded = next->second.survivor;
        if (auto survivor = context.existingObjectWithID(folded)) {
            return survivor;
        }
    }
    return std::nullopt;
}

void Foldings::reunite(NSManagedObjectContext& context) {
    std::map<NSManagedObjectID, Folding> foldings;
    {
        MutexLock lock(mutex_);
        foldings = foldings_;
    }
    for (const auto& [id, folding] : foldings) {
        const std::vector<PlayEvent> plays = PlaybackHistory(NSManagedObject(context, id)).plays();
        if (plays.empty() || context.existingObjectWithID(id)) {
            continue;
        }
        const auto found = survivorOf(id, foldings, context);
        if (!found) {
            continue;
        }
        PlaybackHistory survivor(*found);
        NSLog("{} plays follow their song's folded record", plays.size());
        survivor.addPlays(plays);
        const auto isNew = [&counted = folding.countedPlays](const PlayEvent& play) {
            return !std::binary_search(counted.begin(), counted.end(), play.objectID());
        };
        const std::int64_t count =
            folding.playCount + std::count_if(plays.begin(), plays.end(), isNew);
        survivor.setPlayCount(std::max(survivor.playCount(), count));
        for (const PlayEvent& play : plays) {
            survivor.setLastEventDate(laterDate(survivor.lastEventDate(), play.eventDate()));
        }
        note(id, folding.survivor, count);
    }
}

}  // namespace tavrion
