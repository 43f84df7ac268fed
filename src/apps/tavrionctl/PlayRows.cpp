#include "apps/tavrionctl/PlayRows.h"

#include "recording/NerindaModel.h"

namespace tavrion::ctl {

std::optional<std::string_view> PlayRow::songText(PropertyIndex property) const {
    const FieldView field = songField(property);
    const auto* text = std::get_if<std::string_view>(&field);
    return text != nullptr ? std::optional(*text) : std::nullopt;
}

std::optional<NSDate> PlayRow::date() const {
    const FieldView field = event.at(PlayEventKey::eventDate);
    const auto* date = std::get_if<NSDate>(&field);
    return date != nullptr ? std::optional(*date) : std::nullopt;
}

bool PlayRow::isInterpolated() const {
    return std::get<bool>(event.at(PlayEventKey::isInterpolated));
}

PlayRow playRowOf(const StoreVersion& records, RecordCounter record) {
    PlayRow play{record, *records.table(NerindaEntity::PlayEvent).find(record), 0, std::nullopt};
    const FieldView parent = play.event.at(PlayEventKey::parentHistory);
    if (const auto* link = std::get_if<Link>(&parent)) {
        play.history = link->counter;
        play.song = records.table(NerindaEntity::PlaybackHistory).find(link->counter);
    }
    return play;
}

void writeKeysOfPlay(JsonWriter& json, const PlayRow& play) {
    const NSManagedObjectModel& model = *nerindaModel();
    json.key("id").text(NSManagedObjectID{NerindaEntity::PlayEvent, play.record}.text(model));
    json.key("eventDate").optionalInstant(play.date());
    json.key("isInterpolated").boolean(play.isInterpolated());
    json.key("historyID");
    if (play.song) {
        json.text(NSManagedObjectID{NerindaEntity::PlaybackHistory, play.history}.text(model));
    } else {
        json.null();
    }
    json.key("title").optionalText(play.songText(PlaybackHistoryKey::title));
    json.key("artist").optionalText(play.songText(PlaybackHistoryKey::artist));
    json.key("albumID").optionalText(play.songText(PlaybackHistoryKey::albumID));
    json.key("genre").optionalText(play.songText(PlaybackHistoryKey::genre));
    json.key("duration");
    if (play.song) {
        json.number(std::get<double>(play.songField(PlaybackHistoryKey::duration)));
    } else {
        json.null();
    }
}

}  // namespace tavrion::ctl
