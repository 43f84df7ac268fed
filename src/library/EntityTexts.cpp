#include "library/EntityTexts.h"

#include "library/RVMetadataManager.h"
#include "platform/mediaplayer/MPMediaQuery.h"

namespace tavrion::EntityTexts {

namespace {

double durationOf(const MPMediaEntity& entity) {
    if (const MPMediaItem* song = entity.item()) {
        return song->playbackDuration();
    }
    double seconds = 0;
    if (const MPMediaItemCollection* collection = entity.collection()) {
        for (const MPMediaItem& song : collection->items()) {
            seconds += song.playbackDuration();
        }
    }
    return seconds;
}

}  // namespace

std::optional<MPMediaItemCollection> artistForEntity(const MPMediaEntity& entity) {
    const std::optional<MPMediaItem> song = entity.representativeItem();
    if (!song) {
        return std::nullopt;
    }
    MPMediaQuery query = MPMediaQuery::songsQuery();
    query.setGroupingType(MPMediaGrouping::albumArtist);
    query.addFilterPredicate(MPMediaPropertyPredicate::predicateWithValue(
        Value(song->albumArtistPersistentID()), MPMediaItemPropertyAlbumArtistPersistentID));
    const std::vector<MPMediaItemCollection> artists = query.collections();
    return artists.empty() ? std::nullopt : std::optional(artists.front());
}

EntityHeader header(const MPMediaEntity& entity) {
    EntityHeader header;
    if (const auto title = RVMetadataManager::titleForMediaEntity(entity, std::nullopt)) {
        header.title = title->textWithoutAttachments();
    }
    header.subtitle = RVMetadataManager::subtitleForMediaEntity(entity);
    header.duration = RVMetadataManager::formattedPlaybackDuration(durationOf(entity));
    const MPMediaItem* song = entity.item();
    const bool mayLink = song != nullptr || entity.groupingType() == MPMediaGrouping::album;
    header.linksToArtist = mayLink && artistForEntity(entity).has_value();
    if (song != nullptr) {
        header.icons = RVMetadataManager::iconsForMediaItem(*song);
        if (header.linksToArtist) {
            header.subtitle = RVMetadataManager::albumArtistForMediaItem(*song);
        }
    }
    return header;
}

}  // namespace tavrion::EntityTexts
