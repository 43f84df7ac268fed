// The value at the right of a row.
#include "library/CollectionValues.h"
#include "library/RVMetadataManager.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/foundation/NSNumber.h"

namespace tavrion {

namespace {

/// What a sort shows of a song, or of the songs of a collection together.
class SortedValues {
  public:
    explicit SortedValues(const MPMediaEntity& entity)
        : song_(entity.item()), collection_(entity.collection()) {}

    bool isAbsent() const { return song_ == nullptr && collection_ == nullptr; }
    std::uint64_t playCount() const {
        return song_ != nullptr ? song_->playCount()
                                : CollectionValues::playCount(collection_->items());
    }
    double secondsListened() const {
        return song_ != nullptr
                   ? static_cast<double>(song_->playCount()) * song_->playbackDuration()
                   : CollectionValues::secondsListened(collection_->items());
    }
    std::optional<NSDate> latest(std::optional<NSDate> (MPMediaItem::*date)() const) const {
        return song_ != nullptr ? (song_->*date)()
                                : CollectionValues::latest(collection_->items(), date);
    }
    std::optional<unsigned> year() const {
        return song_ != nullptr ? song_->year()
                                : CollectionValues::latestYear(collection_->items());
    }

  private:
    const MPMediaItem* song_;
    const MPMediaItemCollection* collection_;
};

std::string yearText(const std::optional<unsigned>& year) {
    return year ? NSNumber::stringValue(*year) : RVMetadataManager::placeholder;
}

std::string alphabeticalText(const MPMediaEntity& entity) {
    if (const MPMediaItem* song = entity.item()) {
        return RVMetadataManager::albumTitleForMediaItem(*song);
    }
    if (entity.isEmpty()) {
        return RVMetadataManager::placeholder;
    }
    const MPMediaItemCollection& collection = *entity.collection();
    const auto& songs = collection.items();
    switch (collection.groupingType()) {
        case MPMediaGrouping::album:
            return yearText(CollectionValues::latestYear(songs));
        case MPMediaGrouping::artist:
            return RVMetadataManager::songCountForCollection(collection);
        case MPMediaGrouping::albumArtist:
            return localizedCount(
                "1 album", "%lu albums",
                CollectionValues::distinctCount(songs, &MPMediaItem::albumPersistentID));
        case MPMediaGrouping::genre:
            return localizedCount(
                "1 artist", "%lu artists",
                CollectionValues::distinctCount(songs, &MPMediaItem::albumArtistPersistentID));
        default:
            return RVMetadataManager::placeholder;
    }
}

std::string addedText(const std::optional<NSDate>& date) {
    // The reference date itself is how a player tells that it does not know.
    const bool isKnown = date && date->timeIntervalSinceReferenceDate() != 0;
    return isKnown ? RVMetadataManager::formattedDate(date, false) : RVMetadataManager::placeholder;
}

std::string releaseText(const SortedValues& values) {
    const std::optional<NSDate> date = values.latest(&MPMediaItem::releaseDate);
    return date ? RVMetadataManager::formattedDate(date, false) : yearText(values.year());
}

const char* symbolOf(RVSortType sortType) {
    switch (sortType) {
        case RVSortTypePlayCount:
        case RVSortTypeLastPlayed:
            return "play.fill";
        case RVSortTypeTimeListened:
            return "stopwatch";
        case RVSortTypeDateAdded:
            return "calendar.badge.plus";
        case RVSortTypeReleaseDate:
            return "calendar";
        default:
            return nullptr;
    }
}

std::string textOf(const SortedValues& values, RVSortType sortType) {
    if (values.isAbsent()) {
        return RVMetadataManager::placeholder;
    }
    switch (sortType) {
        case RVSortTypePlayCount:
            return RVMetadataManager::formattedPlays(values.playCount());
        case RVSortTypeLastPlayed:
            return RVMetadataManager::formattedDate(values.latest(&MPMediaItem::lastPlayedDate),
                                                    false);
        case RVSortTypeTimeListened:
            return RVMetadataManager::formattedDuration(values.secondsListened());
        case RVSortTypeDateAdded:
            return addedText(values.latest(&MPMediaItem::dateAdded));
        case RVSortTypeReleaseDate:
            return releaseText(values);
        default:
            return RVMetadataManager::placeholder;
    }
}

}  // namespace

NSAttributedString RVMetadataManager::sortPropertyForMediaEntity(const MPMediaEntity& entity,
                                                                 RVSortType forType) {
    if (forType == RVSortTypeAlphabetical) {
        return NSAttributedString(alphabeticalText(entity));
    }
    const std::string text = textOf(SortedValues(entity), forType);
    const char* symbol = symbolOf(forType);
    if (symbol == nullptr) {
        return NSAttributedString(text);
    }
    UIImageSymbolConfiguration configuration;
    configuration.scale = UIImageSymbolScale::small;
    return attributedString(text, UIImage::systemImageNamed(symbol, configuration));
}

}  // namespace tavrion
