#include <fmt/format.h>

#include "apps/tavrionctl/JsonWriter.h"
#include "apps/tavrionctl/RecordCommands.h"
#include "apps/tavrionctl/Session.h"
#include "apps/tavrionctl/TextTable.h"
#include "recording/MPMediaItem+Nerinda.h"
#include "recording/PlaybackHistory.h"
#include "recording/Plays.h"

namespace tavrion::ctl {
namespace {

void writeHistory(JsonWriter& json, PlaybackHistory history, std::size_t plays, bool hasLibrary) {
    json.beginObject().key("id").text(history.objectID().text(*nerindaModel()));
    json.key("title").optionalText(history.title());
    json.key("artist").optionalText(history.artist());
    json.key("albumID").optionalText(history.albumID());
    json.key("genre").optionalText(history.genre());
    json.key("duration").number(history.duration());
    json.key("storeID").optionalText(history.storeID());
    json.key("libraryID").optionalText(history.libraryID());
    json.key("playCount").integer(history.playCount());
    json.key("skipCount").integer(history.skipCount());
    json.key("lastEventDate").optionalInstant(history.lastEventDate());
    json.key("excludeFromTrends").boolean(history.excludeFromTrends());
    json.key("plays").unsignedInteger(plays);
    json.key("songPersistentID");
    const std::optional<MPMediaItem> song =
        hasLibrary ? Nerinda::mediaItemForHistory(history) : std::nullopt;
    if (song) {
        json.unsignedInteger(song->persistentID());
    } else {
        json.null();
    }
    json.endObject();
}

}  // namespace

void HistoriesCommand::describe(const CommandSyntax& parent) {
    described_ = parent.command("histories", "List every song record");
}

Outcome HistoriesCommand::execute(Session& session) {
    if (Outcome opened = session.openStore(); !opened.isDone()) {
        return opened;
    }
    const auto choice = session.libraryChoice();
    if (choice && choice.value() && session.options().json) {
        // Without a readable library the records are listed all the same; only the live songs are
        // missing.
        if (const Outcome opened = session.openLibrary(); !opened.isDone()) {
            session.say("tavrionctl: " + opened.message);
        }
    }
    const bool hasLibrary = MPMediaLibrary::defaultMediaLibrary().source() != nullptr;
    const std::shared_ptr<const StoreVersion> records = session.records();
    const auto histories =
        session.data().mainContext()->executeFetchRequest(PlaybackHistory::fetchRequest());
    if (!histories) {
        return Outcome::failure(histories.error().localizedDescription);
    }
    std::optional<JsonWriter> json;
    if (session.options().json) {
        json.emplace(stdout).beginArray();
    }
    for (const NSManagedObject& object : histories.value()) {
        const PlaybackHistory history(object);
        const std::size_t plays = Plays::countOfSong(*records, history.objectID().counter);
        if (json) {
            writeHistory(*json, history, plays, hasLibrary);
        } else {
            fmt::print("{}  {}  {:>7} plays\n", fitted(history.title().value_or("—"), 40),
                       fitted(history.artist().value_or("—"), 28), plays);
        }
    }
    if (json) {
        json->endArray().finish();
    }
    return {};
}

}  // namespace tavrion::ctl
