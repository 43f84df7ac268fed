// The rows of the list and the titles of its days.
#include <utility>

#include "library/RVMetadataManager.h"
#include "platform/dispatch/MainQueue.h"
#include "recording/MPMediaItem+Nerinda.h"
#include "recording/RecordStore.h"
#include "timeviews/RVHistoryTableViewViewController.h"

namespace tavrion {
namespace {

std::optional<PlayEvent> eventOf(NSManagedObjectContext& context, NSManagedObjectID id) {
    const auto object = context.existingObjectWithID(id);
    return object ? std::optional<PlayEvent>(*object) : std::nullopt;
}

/// The play in that row of the list.
std::optional<NSManagedObjectID> playAt(const NSDiffableDataSourceSnapshot& snapshot,
                                        NSIndexPath indexPath) {
    const auto identifier =
        indexPath.section > 0 ? snapshot.itemIdentifierForIndexPath(indexPath) : std::nullopt;
    const auto* play = identifier ? identifier->get<ObjectReference>() : nullptr;
    return play != nullptr ? std::optional(NSManagedObjectID::of(*play)) : std::nullopt;
}

NSAttributedString propertyOf(const PlayEvent& event) {
    NSAttributedString property = RVMetadataManager::attributedString(
        RVMetadataManager::formattedEventDate(event.eventDate()),
        UIImage::systemImageNamed("play.fill", {.scale = UIImageSymbolScale::small}));
    if (event.isInterpolated()) {
        property.appendString("*");
    }
    return property;
}

}  // namespace

std::optional<std::string> RVHistoryTableViewViewController::titleForHeaderInSection(
    std::size_t section) const {
    if (section == 0 || snapshot().numberOfItemsInSection(section) == 0) {
        return std::nullopt;
    }
    const auto* date = snapshot().sectionIdentifier(section).get<NSDate>();
    if (date == nullptr) {
        return std::nullopt;
    }
    return shouldDisplayMonthTitles_ ? RVMetadataManager::formattedMonth(*date)
                                     : RVMetadataManager::formattedDate(*date, false);
}

HistoryRow RVHistoryTableViewViewController::rowOfEvent(const PlayEvent& event,
                                                        std::optional<MPMediaItem> item,
                                                        const std::optional<UIFont>& font) {
    HistoryRow row;
    if (const auto history = event.parentHistory()) {
        row.title = NSAttributedString(history->title().value_or(""));
        row.subtitle = history->artist();
    }
    row.item = std::move(item);
    if (!row.item) {
        return row;
    }
    if (auto title = RVMetadataManager::titleForMediaEntity(*row.item, font)) {
        row.title = *std::move(title);
    }
    if (auto subtitle = RVMetadataManager::subtitleForMediaEntity(*row.item)) {
        row.subtitle = std::move(subtitle);
    }
    row.property = propertyOf(event);
    return row;
}

std::optional<HistoryRow> RVHistoryTableViewViewController::rowAtIndexPath(
    NSIndexPath indexPath, const std::optional<UIFont>& font) const {
    const auto play = playAt(snapshot(), indexPath);
    const auto event =
        play ? eventOf(*Port<RecordStore>::current().mainContext(), *play) : std::nullopt;
    return event ? std::optional(rowOfEvent(*event, Nerinda::mediaItemForEvent(*event), font))
                 : std::nullopt;
}

void RVHistoryTableViewViewController::loadArtwork(const MPMediaItem& item,
                                                   std::function<void(UIImage)> loaded) {
    imageHandlingQueue_->async([item, loaded = std::move(loaded)] {
        Port<MainQueue>::current().async(
            [loaded, artwork = RVMetadataManager::artworkForEntity(item)] { loaded(artwork); });
    });
}

void RVHistoryTableViewViewController::didSelectRowAtIndexPath(NSIndexPath indexPath) {
    const auto play = playAt(snapshot(), indexPath);
    if (!play || screen_ == nullptr) {
        return;
    }
    const auto event = eventOf(*Port<RecordStore>::current().mainContext(), *play);
    const auto item = event ? Nerinda::mediaItemForEvent(*event) : std::nullopt;
    if (item) {
        screen_->pushEntity(*item);
    }
}

}  // namespace tavrion
