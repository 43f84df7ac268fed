#include "timeviews/HistoryRows.h"

#include <utility>

#include "library/RVMetadataManager.h"
#include "platform/mediaplayer/MPMediaLibrary.h"
#include "recording/NerindaModel.h"
#include "recording/PlayEvent.h"

namespace tavrion {
namespace {

template <class T>
std::optional<T> fieldOf(const RowPosition& row, PropertyIndex property) {
    const FieldView field = row.at(property);
    const auto* value = std::get_if<T>(&field);
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

std::optional<std::string> textOf(const RowPosition& row, PropertyIndex property) {
    const auto text = fieldOf<std::string_view>(row, property);
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

Nerinda::SongIdentity identityOf(const RowPosition& song) {
    return {textOf(song, PlaybackHistoryKey::title).value_or(""),
            fieldOf<double>(song, PlaybackHistoryKey::duration).value_or(0),
            textOf(song, PlaybackHistoryKey::storeID), textOf(song, PlaybackHistoryKey::libraryID)};
}

/// The record of a play's song; absent for a play without one.
struct SongOfPlay {
    RecordCounter counter;
    RowPosition row;
};
std::optional<SongOfPlay> songOf(const StoreVersion& records, const RowPosition& play) {
    const auto link = fieldOf<Link>(play, PlayEventKey::parentHistory);
    const auto song =
        link ? records.table(NerindaEntity::PlaybackHistory).find(link->counter) : std::nullopt;
    return song ? std::optional(SongOfPlay{link->counter, *song}) : std::nullopt;
}

NSAttributedString propertyOf(const HistoryRow& row) {
    NSAttributedString property = RVMetadataManager::attributedString(
        RVMetadataManager::formattedEventDate(row.eventDate),
        UIImage::systemImageNamed("play.fill", {.scale = UIImageSymbolScale::small}));
    if (row.isInterpolated) {
        property.appendString("*");
    }
    return property;
}

}  // namespace

std::optional<HistoryRow> HistoryRows::rowOf(const StoreVersion& records, NSManagedObjectID play,
                                             const std::optional<UIFont>& font) {
    const auto event = records.find(play);
    if (!event) {
        return std::nullopt;
    }
    HistoryRow row;
    if (const auto song = songOf(records, *event)) {
        row = songRow(song->row, song->counter, font);
    }
    row.eventDate = fieldOf<NSDate>(*event, PlayEventKey::eventDate);
    row.isInterpolated = fieldOf<bool>(*event, PlayEventKey::isInterpolated).value_or(false);
    if (row.item) {
        row.property = propertyOf(row);
    }
    return row;
}

std::optional<MPMediaItem> HistoryRows::itemOf(const StoreVersion& records,
                                               NSManagedObjectID play) {
    const auto row = rowOf(records, play, std::nullopt);
    return row ? row->item : std::nullopt;
}

HistoryRow HistoryRows::songRow(const RowPosition& record, RecordCounter counter,
                                const std::optional<UIFont>& font) {
    const auto library = MPMediaLibrary::defaultMediaLibrary().snapshot();
    Song song{identityOf(record), textOf(record, PlaybackHistoryKey::artist), font, {}};
    if (auto row = kept(counter, song, library)) {
        return *std::move(row);
    }
    HistoryRow& row = song.row;
    row.title = NSAttributedString(song.identity.title);
    row.subtitle = song.artist;
    row.item = Nerinda::mediaItemForIdentity(song.identity);
    if (row.item) {
        if (auto title = RVMetadataManager::titleForMediaEntity(*row.item, font)) {
            row.title = *std::move(title);
        }
        if (auto subtitle = RVMetadataManager::subtitleForMediaEntity(*row.item)) {
            row.subtitle = std::move(subtitle);
        }
    }
    HistoryRow found = row;
    keep(counter, std::move(song), library);
    return found;
}

std::optional<HistoryRow> HistoryRows::kept(RecordCounter counter, const Song& asked,
                                            const Library& library) {
    MutexLock lock(mutex_);
    if (library_ != library || songs_.size() > mostKept) {
        songs_.clear();
        library_ = library;
    }
    const auto found = songs_.find(counter);
    const bool isSame = found != songs_.end() && found->second.identity == asked.identity &&
                        found->second.artist == asked.artist && found->second.font == asked.font;
    return isSame ? std::optional(found->second.row) : std::nullopt;
}

void HistoryRows::keep(RecordCounter counter, Song song, const Library& library) {
    MutexLock lock(mutex_);
    // Not what was found in another library than the one that is kept for.
    if (library == library_ && (!song.row.item || song.row.item->snapshot() == library)) {
        songs_.insert_or_assign(counter, std::move(song));
    }
}

void HistoryRows::takeOver(const MPMediaItem& item, NSManagedObjectID play,
                           NSManagedObjectContext& context) {
    const auto object = context.existingObjectWithID(play);
    auto song = object ? PlayEvent(*object).parentHistory() : std::nullopt;
    if (song) {
        Nerinda::takeTitleOver(item, *song);
    }
}

}  // namespace tavrion
