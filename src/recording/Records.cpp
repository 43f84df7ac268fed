#include <array>

#include "platform/coredata/NSManagedObjectContext.h"
#include "recording/Achievement.h"
#include "recording/PlayEvent.h"
#include "recording/PlaybackHistory.h"

namespace tavrion {

PlaybackHistory PlaybackHistory::insert(NSManagedObjectContext& context,
                                        std::initializer_list<PropertyValue> values) {
    return PlaybackHistory(context.insertObject(NerindaEntity::PlaybackHistory,
                                                std::span(values.begin(), values.size())));
}

void PlaybackHistory::refreshMetadata(const std::optional<std::string_view>& artist,
                                      const std::optional<std::string_view>& albumID,
                                      const std::optional<std::string_view>& genre) {
    bool newArtist = false;
    bool newAlbumID = false;
    bool newGenre = false;
    readRecord([&](const ChangedRecord& record) {
        const auto differs = [&](PropertyIndex property,
                                 const std::optional<std::string_view>& value) {
            const FieldView field = record.at(property);
            const auto* text = std::get_if<std::string_view>(&field);
            return text != nullptr ? value != *text : value.has_value();
        };
        newArtist = differs(PlaybackHistoryKey::artist, artist);
        newAlbumID = differs(PlaybackHistoryKey::albumID, albumID);
        newGenre = differs(PlaybackHistoryKey::genre, genre);
    });
    if (newArtist) {
        setArtist(artist);
    }
    if (newAlbumID) {
        setAlbumID(albumID);
    }
    if (newGenre) {
        setGenre(genre);
    }
}

PlaybackHistory::Counters PlaybackHistory::counters() const {
    Counters counters;
    readRecord([&](const ChangedRecord& record) {
        counters.playCount = std::get<std::int64_t>(record.at(PlaybackHistoryKey::playCount));
        const FieldView date = record.at(PlaybackHistoryKey::lastEventDate);
        if (const auto* lastEvent = std::get_if<NSDate>(&date)) {
            counters.lastEventDate = *lastEvent;
        }
    });
    return counters;
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

PlayEvent PlayEvent::insert(PlaybackHistory& song, NSDate date, bool isInterpolated) {
    const std::array<PropertyValue, 3> values{
        {{PlayEventKey::eventDate, date},
         {PlayEventKey::isInterpolated, isInterpolated},
         {PlayEventKey::parentHistory, Link{song.objectID().counter}}}};
    return PlayEvent(song.managedObjectContext().insertObject(NerindaEntity::PlayEvent, values));
}

std::optional<PlaybackHistory> PlayEvent::parentHistory() const {
    const std::optional<NSManagedObject> parent = reference(PlayEventKey::parentHistory);
    return parent ? std::optional<PlaybackHistory>(*parent) : std::nullopt;
}

bool PlayEvent::lacksItsSong() const {
    bool hasReference = false;
    readRecord([&](const ChangedRecord& record) {
        hasReference =
            !std::holds_alternative<std::monostate>(record.at(PlayEventKey::parentHistory));
    });
    return hasReference && !parentHistory();
}

Achievement Achievement::insert(NSManagedObjectContext& context) {
    return Achievement(context.insertObject(NerindaEntity::Achievement));
}

}  // namespace tavrion
