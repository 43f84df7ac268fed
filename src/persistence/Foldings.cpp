#include "persistence/Foldings.h"

#include <algorithm>

#include "platform/foundation/NSLog.h"
#include "recording/PlayEvent.h"
#include "recording/PlaybackHistory.h"

namespace tavrion {

void Foldings::note(NSManagedObjectID folded, NSManagedObjectID survivor, std::int64_t playCount) {
    MutexLock lock(mutex_);
    foldings_[folded] = {survivor, playCount};
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
        const std::int64_t count = folding.playCount + static_cast<std::int64_t>(plays.size());
        survivor.setPlayCount(std::max(survivor.playCount(), count));
        for (const PlayEvent& play : plays) {
            survivor.setLastEventDate(laterDate(survivor.lastEventDate(), play.eventDate()));
        }
        note(id, folding.survivor, count);
    }
}

}  // namespace tavrion
