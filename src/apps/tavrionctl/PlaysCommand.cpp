#include <fmt/format.h>

#include <algorithm>

#include "apps/tavrionctl/JsonWriter.h"
#include "apps/tavrionctl/PlayRows.h"
#include "apps/tavrionctl/RangeArgument.h"
#include "apps/tavrionctl/RecordCommands.h"
#include "apps/tavrionctl/Session.h"
#include "apps/tavrionctl/TextTable.h"
#include "recording/Plays.h"

namespace tavrion::ctl {
namespace {

/// Identifiers of the plays to list, newest first; plays without a date come last.
std::vector<RecordCounter> playsNewestFirst(const StoreVersion& records,
                                            const std::optional<NSDateInterval>& range) {
    std::vector<RecordCounter> listed;
    if (!range) {
        listed = Plays::withoutDate(records);
    }
    const Plays plays =
        range ? Plays(records, range->startDate(), range->endDate()) : Plays(records);
    listed.reserve(listed.size() + plays.count());
    plays.forEachByDate([&](PlayDate, RecordCounter play) { listed.push_back(play); });
    std::reverse(listed.begin(), listed.end());
    return listed;
}

void printPlay(const PlayRow& play) {
    const std::optional<NSDate> date = play.date();
    fmt::print("{}{} {}  {}\n", date ? localText(*date) : fitted("—", 19),
               play.isInterpolated() ? "*" : " ",
               fitted(play.songText(PlaybackHistoryKey::title).value_or("—"), 40),
               play.songText(PlaybackHistoryKey::artist).value_or("—"));
}

}  // namespace

void PlaysCommand::describe(const CommandSyntax& parent) {
    described_ =
        parent.command("plays", "List every dated play, newest first; * marks an estimate");
    described_.text("--range", range_, rangeHelp);
    described_.text("--song", song_, "Only plays of this song record (an id of histories)");
}

Outcome PlaysCommand::execute(Session& session) {
    std::optional<NSDateInterval> range;
    if (!range_.empty()) {
        const auto parsed = dateRange(range_);
        if (!parsed) {
            return Outcome::usage(parsed.error().localizedDescription);
        }
        range = parsed.value().interval();
    }
    if (Outcome opened = session.openStore(); !opened.isDone()) {
        return opened;
    }
    const std::shared_ptr<const StoreVersion> records = session.records();
    std::optional<NSManagedObjectID> song;
    if (!song_.empty()) {
        song = NSManagedObjectID::fromText(*nerindaModel(), song_);
        if (!song || song->entity != NerindaEntity::PlaybackHistory || !records->find(*song)) {
            return Outcome::failure(
                fmt::format("there is no song record {}; tavrionctl histories lists them", song_));
        }
    }
    const std::vector<RecordCounter> plays = playsNewestFirst(*records, range);
    std::optional<JsonWriter> json;
    if (session.options().json) {
        json.emplace(stdout).beginArray();
    }
    for (const RecordCounter record : plays) {
        const PlayRow play = playRowOf(*records, record);
        if (song && play.history != song->counter) {
            continue;
        }
        if (json) {
            json->beginObject();
            writeKeysOfPlay(*json, play);
            json->endObject();
        } else {
            printPlay(play);
        }
    }
    if (json) {
        json->endArray().finish();
    }
    return {};
}

}  // namespace tavrion::ctl
