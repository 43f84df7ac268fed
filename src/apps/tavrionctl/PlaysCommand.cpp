#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <limits>

#include "apps/tavrionctl/JsonWriter.h"
#include "apps/tavrionctl/RangeArgument.h"
#include "apps/tavrionctl/RecordCommands.h"
#include "apps/tavrionctl/Session.h"
#include "apps/tavrionctl/TextTable.h"
#include "platform/coredata/IndexKeys.h"
#include "recording/PlayEvent.h"

namespace tavrion::ctl {
namespace {

std::optional<std::string_view> textOf(const FieldView& field) {
    const auto* text = std::get_if<std::string_view>(&field);
    return text != nullptr ? std::optional(*text) : std::nullopt;
}

/// Identifiers of the plays to list, newest first; plays without a date come last.
std::vector<RecordCounter> playsNewestFirst(const TableVersion& table,
                                            const std::optional<DateRange>& range) {
    std::vector<RecordCounter> plays;
    const std::uint64_t low = range ? IndexKeys::ofDate(range->start) : 0;
    const std::uint64_t high =
        range ? IndexKeys::ofDate(range->end) : std::numeric_limits<std::uint64_t>::max();
    table.indexes()[0]->forEachBetween(low, high, [&](std::uint64_t key, RecordCounter record) {
        // Both ends of a range lie outside of it, as on every screen.
        if (!range || (key != low && key != high)) {
            plays.push_back(record);
        }
    });
    if (!range && plays.size() < table.size()) {
        std::vector<RecordCounter> undated;
        for (const auto& leaf : table.leaves()) {
            for (std::size_t row = 0; row < leaf->size(); ++row) {
                if (std::holds_alternative<std::monostate>(
                        leaf->columns[PlayEventKey::eventDate]->at(row))) {
                    undated.push_back((*leaf->records)[row]);
                }
            }
        }
        plays.insert(plays.begin(), undated.begin(), undated.end());
    }
    std::reverse(plays.begin(), plays.end());
    return plays;
}

/// One play with what its song adds.
struct Play {
    RecordCounter record = 0;
    RowPosition event;
    RecordCounter history = 0;
    std::optional<RowPosition> song;

    FieldView songField(PropertyIndex property) const {
        return song ? song->at(property) : FieldView();
    }
    std::optional<NSDate> date() const {
        const FieldView field = event.at(PlayEventKey::eventDate);
        const auto* date = std::get_if<NSDate>(&field);
        return date != nullptr ? std::optional(*date) : std::nullopt;
    }
    bool isInterpolated() const { return std::get<bool>(event.at(PlayEventKey::isInterpolated)); }
};

Play playOf(const StoreVersion& records, RecordCounter record) {
    Play play{record, *records.table(NerindaEntity::PlayEvent).find(record), 0, std::nullopt};
    const FieldView parent = play.event.at(PlayEventKey::parentHistory);
    if (const auto* link = std::get_if<Link>(&parent)) {
        play.history = link->counter;
        play.song = records.table(NerindaEntity::PlaybackHistory).find(link->counter);
    }
    return play;
}

void writePlay(JsonWriter& json, const Play& play) {
    const NSManagedObjectModel& model = *nerindaModel();
    json.beginObject().key("id").text(
        NSManagedObjectID{NerindaEntity::PlayEvent, play.record}.text(model));
    json.key("eventDate").optionalInstant(play.date());
    json.key("isInterpolated").boolean(play.isInterpolated());
    json.key("historyID");
    if (play.song) {
        json.text(NSManagedObjectID{NerindaEntity::PlaybackHistory, play.history}.text(model));
    } else {
        json.null();
    }
    json.key("title").optionalText(textOf(play.songField(PlaybackHistoryKey::title)));
    json.key("artist").optionalText(textOf(play.songField(PlaybackHistoryKey::artist)));
    json.key("albumID").optionalText(textOf(play.songField(PlaybackHistoryKey::albumID)));
    json.key("genre").optionalText(textOf(play.songField(PlaybackHistoryKey::genre)));
    json.key("duration");
    if (play.song) {
        json.number(std::get<double>(play.songField(PlaybackHistoryKey::duration)));
    } else {
        json.null();
    }
    json.endObject();
}

void printPlay(const Play& play) {
    const std::optional<NSDate> date = play.date();
    fmt::print("{}{} {}  {}\n", date ? localText(*date) : fitted("—", 19),
               play.isInterpolated() ? "*" : " ",
               fitted(textOf(play.songField(PlaybackHistoryKey::title)).value_or("—"), 40),
               textOf(play.songField(PlaybackHistoryKey::artist)).value_or("—"));
}

}  // namespace

void PlaysCommand::describe(CLI::App& parent) {
    described_ =
        parent.add_subcommand("plays", "List every dated play, newest first; * marks an estimate");
    described_->add_option("--range", range_, rangeHelp);
    described_->add_option("--song", song_, "Only plays of this song record (an id of histories)");
}

Outcome PlaysCommand::execute(Session& session) {
    std::optional<DateRange> range;
    if (!range_.empty()) {
        const auto parsed = dateRange(range_);
        if (!parsed) {
            return Outcome::usage(parsed.error().localizedDescription);
        }
        range = parsed.value();
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
    const std::vector<RecordCounter> plays =
        playsNewestFirst(records->table(NerindaEntity::PlayEvent), range);
    std::optional<JsonWriter> json;
    if (session.options().json) {
        json.emplace(stdout).beginArray();
    }
    for (const RecordCounter record : plays) {
        const Play play = playOf(*records, record);
        if (song && play.history != song->counter) {
            continue;
        }
        if (json) {
            writePlay(*json, play);
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
