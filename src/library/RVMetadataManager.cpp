#include "library/RVMetadataManager.h"

#include "library/CollectionValues.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSNumber.h"
#include "recording/MPMediaItem+Nerinda.h"

namespace tavrion {

namespace {

using Text = std::optional<std::string_view>;

// Between a title and the mark of explicit songs: a third of an em.
constexpr std::string_view threePerEmSpace = "\u2004";
constexpr double markSize = 0.75;
constexpr std::uint64_t likedStateOfFavorites = 2;

std::string untitledUnless(const Text& title) {
    const std::string_view given = title.value_or("");
    return given.empty() ? NSLocalizedString("Untitled") : std::string(given);
}

std::string unknownUnless(const Text& name) {
    const std::string_view given = name.value_or("");
    return given.empty() ? NSLocalizedString("Unknown") : std::string(given);
}

/// A text of the song that stands for a collection; an empty collection has none.
Text textOf(const std::optional<MPMediaItem>& song, Text (MPMediaItem::*text)() const) {
    return song ? ((*song).*text)() : std::nullopt;
}

NSAttributedString titleOfSong(const MPMediaItem& song, const std::optional<UIFont>& font) {
    NSAttributedString title(RVMetadataManager::titleForMediaItem(song));
    if (font && song.isExplicitItem()) {
        UIImageSymbolConfiguration configuration;
        configuration.font = UIFont{markSize * font->pointSize};
        title.appendString(threePerEmSpace);
        title.appendAttachment(UIImage::systemImageNamed("e.square.fill", configuration)
                                   .imageWithTintColor(UIColor::systemGray2Color()));
    }
    return title;
}

std::optional<NSAttributedString> titleOfCollection(const MPMediaItemCollection& collection) {
    const std::optional<MPMediaItem> song = collection.representativeItem();
    switch (collection.groupingType()) {
        case MPMediaGrouping::album:
            return NSAttributedString(untitledUnless(textOf(song, &MPMediaItem::albumTitle)));
        case MPMediaGrouping::artist:
            return NSAttributedString(unknownUnless(textOf(song, &MPMediaItem::artist)));
        case MPMediaGrouping::albumArtist:
            return NSAttributedString(unknownUnless(textOf(song, &MPMediaItem::albumArtist)));
        case MPMediaGrouping::genre:
            return NSAttributedString(unknownUnless(textOf(song, &MPMediaItem::genre)));
        default:
            return std::nullopt;
    }
}

std::string subtitleOfCollection(const MPMediaItemCollection& collection) {
    switch (collection.groupingType()) {
        case MPMediaGrouping::album:
            return unknownUnless(
                textOf(collection.representativeItem(), &MPMediaItem::albumArtist));
        case MPMediaGrouping::artist:
            // Artists are shown as such only where compilations are split.
            return localizedCount("From 1 compilation", "From %lu compilations",
                                  CollectionValues::distinctCount(collection.items(),
                                                                  &MPMediaItem::albumPersistentID));
        case MPMediaGrouping::albumArtist:
        case MPMediaGrouping::genre:
            return RVMetadataManager::songCountForCollection(collection);
        default:
            return RVMetadataManager::placeholder;
    }
}

void appendMark(NSAttributedString& marks, const char* name, bool isLast) {
    marks.appendAttachment(UIImage::systemImageNamed(name));
    marks.appendString(isLast ? "" : " ");
}

std::optional<UIImage> image(std::optional<NSData> data) {
    return data && !data->bytes.empty() ? std::optional(UIImage::imageWithData(std::move(*data)))
                                        : std::nullopt;
}

}  // namespace

std::string RVMetadataManager::titleForMediaItem(const MPMediaItem& item) {
    return untitledUnless(item.title());
}

std::string RVMetadataManager::albumTitleForMediaItem(const MPMediaItem& item) {
    return untitledUnless(item.albumTitle());
}

std::string RVMetadataManager::artistForMediaItem(const MPMediaItem& item) {
    return unknownUnless(item.artist());
}

std::string RVMetadataManager::albumArtistForMediaItem(const MPMediaItem& item) {
    return unknownUnless(item.albumArtist());
}

std::string RVMetadataManager::genreForMediaItem(const MPMediaItem& item) {
    return unknownUnless(item.genre());
}

std::optional<NSAttributedString> RVMetadataManager::titleForMediaEntity(
    const MPMediaEntity& entity, const std::optional<UIFont>& withFont) {
    if (const MPMediaItem* song = entity.item()) {
        return titleOfSong(*song, withFont);
    }
    if (const auto playlist = entity.playlist()) {
        return NSAttributedString(playlist->name());
    }
    return entity.isEmpty() ? std::nullopt : titleOfCollection(*entity.collection());
}

std::optional<std::string> RVMetadataManager::subtitleForMediaEntity(const MPMediaEntity& entity) {
    if (const MPMediaItem* song = entity.item()) {
        return artistForMediaItem(*song);
    }
    if (entity.isEmpty()) {
        return std::nullopt;
    }
    const MPMediaItemCollection& collection = *entity.collection();
    return collection.isPlaylist() ? songCountForCollection(collection)
                                   : subtitleOfCollection(collection);
}

std::string RVMetadataManager::songCountForCollection(const MPMediaItemCollection& collection) {
    return localizedCount("1 song", "%lu songs", collection.count());
}

UIImage RVMetadataManager::artworkForEntity(const MPMediaEntity& entity) {
    if (auto ready = image(entity.bestImageFromDisk())) {
        return *ready;
    }
    if (auto artwork = image(entity.artwork())) {
        return *artwork;
    }
    return UIImage::imageNamed(entity.collection() != nullptr ? "list" : "item");
}

NSAttributedString RVMetadataManager::iconsForMediaItem(const MPMediaItem& item) {
    NSAttributedString marks;
    if (Nerinda::likedState(item) == likedStateOfFavorites) {
        appendMark(marks, "star.fill", false);
    }
    if (item.isExplicitItem()) {
        appendMark(marks, "e.square.fill", false);
    }
    if (!item.isCloudItem()) {
        appendMark(marks, "arrow.down.circle", true);
    }
    return marks;
}

std::string RVMetadataManager::lastPlayedDateForMediaEntity(const MPMediaEntity& entity) {
    if (const MPMediaItem* song = entity.item()) {
        return formattedEventDate(song->lastPlayedDate());
    }
    return entity.isEmpty() ? placeholder
                            : formattedEventDate(CollectionValues::latest(
                                  entity.collection()->items(), &MPMediaItem::lastPlayedDate));
}

bool RVMetadataManager::sortTypeIsRanked(RVSortType sortType) {
    return sortType == RVSortTypePlayCount || sortType == RVSortTypeTimeListened;
}

NSAttributedString RVMetadataManager::attributedString(const std::string& string,
                                                       const UIImage& withIcon) {
    NSAttributedString text = NSAttributedString::attributedStringWithAttachment(withIcon);
    text.appendString(" " + string);
    return text;
}

UIImage RVMetadataManager::imageWithImage(const UIImage& image, CGSize scaledToSize) {
    return image.imageOfSize(scaledToSize);
}

}  // namespace tavrion
