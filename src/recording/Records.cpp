#include "platform/coredata/NSManagedObjectContext.h"
#include "recording/Achievement.h"
#include "recording/PlayEvent.h"
#include "recording/PlaybackHistory.h"

namespace tavrion {

PlaybackHistory PlaybackHistory::insert(NSManagedObjectContext& context) {
    return PlaybackHistory(context.insertObject(NerindaEntity::PlaybackHistory));
}

void PlaybackHistory::refreshMetadata(const std::optional<std::string_view>& artist,
                                      const std::optional<std::string_view>& albumID,
                                      const std::optional<std::string_view>& genre) {
    setTextIfDifferent(PlaybackHistoryKey::artist, artist);
    setTextIfDifferent(PlaybackHistoryKey::albumID, albumID);
    setTextIfDifferent(PlaybackHistoryKey::genre, genre);
}

std::vector<PlayEvent> PlaybackHistory::plays() const {
    std::vector<PlayEvent> events;
    for (const NSManagedObject& object :
         referringObjects(NerindaEntity::PlayEvent, PlayEventKey::parentHistory)) {
        events.emplace_back(object);
    }
    return events;
}

void PlaybackHistory::addPlaysObject(PlayEvent& event) {
    event.setParentHistory(*this);
}

void PlaybackHistory::addPlays(const std::vector<PlayEvent>& events) {
    for (PlayEvent event : events) {
        event.setParentHistory(*this);
    }
}

PlayEvent PlayEvent::insert(NSManagedObjectContext& context) {
    return PlayEvent(context.insertObject(NerindaEntity::PlayEvent));
}

std::optional<PlaybackHistory> PlayEvent::parentHistory() const {
    const std::optional<NSManagedObject> parent = reference(PlayEventKey::parentHistory);
    return parent ? std::optional<PlaybackHistory>(*parent) : std::nullopt;
}

Achievement Achievement::insert(NSManagedObjectContext& context) {
    return Achievement(context.insertObject(NerindaEntity::Achievement));
}

}  // namespace tavrion
