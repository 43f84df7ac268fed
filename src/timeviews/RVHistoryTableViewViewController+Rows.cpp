// The rows of the list, and where they lead.
#include <utility>

#include "library/RVMetadataManager.h"
#include "platform/dispatch/MainQueue.h"
#include "recording/RecordStore.h"
#include "timeviews/RVHistoryTableViewViewController.h"

namespace tavrion {
namespace {

/// The play in that row of the list.
std::optional<NSManagedObjectID> playAt(const NSDiffableDataSourceSnapshot& snapshot,
                                        NSIndexPath indexPath) {
    const auto identifier =
        indexPath.section > 0 ? snapshot.itemIdentifierForIndexPath(indexPath) : std::nullopt;
    const auto* play = identifier ? identifier->get<ObjectReference>() : nullptr;
    return play != nullptr ? std::optional(NSManagedObjectID::of(*play)) : std::nullopt;
}

NSManagedObjectContext& mainContext() {
    return *Port<RecordStore>::current().mainContext();
}

void takeOver(const std::optional<HistoryRow>& row, NSManagedObjectID play) {
    if (row && row->item) {
        HistoryRows::takeOver(*row->item, play, mainContext());
    }
}

}  // namespace

std::optional<HistoryRow> RVHistoryTableViewViewController::rowAtIndexPath(
    NSIndexPath indexPath, const std::optional<UIFont>& font) {
    const auto play = playAt(snapshot(), indexPath);
    if (!play) {
        return std::nullopt;
    }
    auto row = rows_->rowOf(*mainContext().snapshot(), *play, font);
    takeOver(row, *play);
    return row;
}

ScreenRequest RVHistoryTableViewViewController::loadRow(NSIndexPath indexPath,
                                                        const std::optional<UIFont>& font,
                                                        std::function<void(HistoryRow)> loaded) {
    const auto play = playAt(snapshot(), indexPath);
    if (!play) {
        return {};
    }
    return load(
        *rowHandlingQueue_,
        [rows = rows_, context = Port<RecordStore>::current().mainContext(), play = *play, font] {
            return rows->rowOf(*context->snapshot(), play, font);
        },
        [play = *play, loaded = std::move(loaded)](std::optional<HistoryRow> row) {
            takeOver(row, play);
            if (row) {
                loaded(*std::move(row));
            }
        });
}

ScreenRequest RVHistoryTableViewViewController::loadArtwork(const MPMediaItem& item,
                                                            std::function<void(UIImage)> loaded) {
    return load(
        *imageHandlingQueue_, [item] { return RVMetadataManager::artworkForEntity(item); },
        std::move(loaded));
}

std::optional<MPMediaItem> RVHistoryTableViewViewController::itemForContextMenu(
    NSIndexPath indexPath) {
    const auto row = rowAtIndexPath(indexPath, std::nullopt);
    return row ? row->item : std::nullopt;
}

void RVHistoryTableViewViewController::didSelectRowAtIndexPath(NSIndexPath indexPath) {
    if (const auto item = itemForContextMenu(indexPath)) {
        emit(EntityRoute{*item});
    }
}

void RVHistoryTableViewViewController::createPlaylist() {
    PlaylistRequest request{dateRangeTitle().textWithoutAttachments(), {}};
    request.songs.reserve(snapshot().numberOfItems());
    for (const Value& identifier : snapshot().itemIdentifiers()) {
        // The row of the totals stands for no song.
        if (const auto* play = identifier.get<ObjectReference>()) {
            request.songs.emplace_back(NSManagedObjectID::of(*play));
        }
    }
    emit(std::move(request));
}

}  // namespace tavrion
