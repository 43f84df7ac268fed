#include <algorithm>

#include "library/CollectionValues.h"
#include "library/RVMetadataManager.h"
#include "library/RVQueryManager+Statistics.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSLocalizedString.h"
#include "platform/mediaplayer/MPMediaQuery.h"
#include "recording/RVPlaybackHistoryManager.h"

namespace tavrion::RVQueryManager {

namespace {

using Songs = std::vector<MPMediaItem>;
using Tile = RVStatisticReference;

constexpr std::int64_t favoritedState = 2;
constexpr int recentDays = 30;

/// Single precision is what the shares are shown in.
float fraction(float part, float whole) {
    return part / whole;
}

float plays(const Songs& songs) {
    float sum = 0;
    for (const MPMediaItem& song : songs) {
        sum += static_cast<float>(song.playCount());
    }
    return sum;
}

Tile playsTile(const Songs& songs) {
    return RVStatistic::make("play.fill",
                             RVMetadataManager::formattedCount(static_cast<double>(plays(songs))),
                             NSLocalizedString("Plays"));
}

Tile allPlaysShareTile(const Songs& songs) {
    const auto all =
        static_cast<float>(CollectionValues::playCount(MPMediaQuery::songsQuery().items()));
    return RVStatistic::make("play.fill",
                             RVMetadataManager::formattedPercentage(fraction(plays(songs), all)),
                             NSLocalizedString("% of All Plays"));
}

Tile skipsTile(const Songs& songs) {
    return RVStatistic::make("forward.fill",
                             RVMetadataManager::formattedCount(CollectionValues::skipCount(songs)),
                             NSLocalizedString("Skips"));
}

Tile releaseTile(const Songs& songs) {
    if (const auto released = CollectionValues::latest(songs, &MPMediaItem::releaseDate)) {
        return RVStatistic::make("calendar", RVMetadataManager::formattedDate(released, false),
                                 NSLocalizedString("Release Date"));
    }
    const auto year = CollectionValues::latestYear(songs);
    return RVStatistic::make("calendar",
                             year ? std::to_string(*year) : RVMetadataManager::placeholder,
                             NSLocalizedString("Year"));
}

/// The first of the dates, while lists are sorted by the last.
Tile dateAddedTile(const Songs& songs) {
    const auto added = CollectionValues::earliest(songs, &MPMediaItem::dateAdded);
    const bool isKnown = added && added->timeIntervalSinceReferenceDate() != 0.0;
    return RVStatistic::make(
        "calendar",
        isKnown ? RVMetadataManager::formattedDate(added, false) : RVMetadataManager::placeholder,
        NSLocalizedString("Date Added"));
}

Tile favoritedTile(const MPMediaItemCollection& collection) {
    MPMediaQuery query = collection.itemsQuery();
    query.addFilterPredicate(
        MPMediaPropertyPredicate::predicateWithValue(favoritedState, "likedState"));
    return RVStatistic::make("star.fill", RVMetadataManager::formattedCount(query.items().size()),
                             NSLocalizedString("Favorited"));
}

Tile minutesTile(const Songs& songs) {
    return RVStatistic::make(
        "stopwatch",
        RVMetadataManager::formattedMinutesForDuration(CollectionValues::secondsListened(songs)),
        NSLocalizedString("Minutes Played"));
}

Tile explicitTile(const MPMediaItemCollection& collection) {
    const Songs songs = collection.itemsQuery().items();
    const std::size_t count = CollectionValues::explicitCount(songs);
    return RVStatistic::make("e.square.fill",
                             RVMetadataManager::formattedPercentage(fraction(
                                 static_cast<float>(count), static_cast<float>(songs.size()))),
                             NSLocalizedString("Explicit"));
}

/// Before the installation nothing was watched, so a younger one measures from there.
Tile playedRecentlyTile(const Songs& songs) {
    const NSDate daysAgo = Extended::startOfDay(
        NSCalendar::currentCalendar().dateByAddingComponents({.day = -recentDays}, NSDate::date()));
    const NSDate cutOff = std::max(daysAgo, RVPlaybackHistoryManager::installationDate());
    const auto count = CollectionValues::playedSince(songs, cutOff);
    return RVStatistic::make("timer",
                             RVMetadataManager::formattedPercentage(fraction(
                                 static_cast<float>(count), static_cast<float>(songs.size()))),
                             NSLocalizedString("Played Recently"));
}

/// Null for an album whose songs do not say how many there are.
Tile inLibraryTile(const Songs& songs) {
    unsigned trackCount = 0;
    for (const MPMediaItem& song : songs) {
        trackCount = std::max(trackCount, song.albumTrackCount());
    }
    if (trackCount == 0) {
        return nullptr;
    }
    const float share = fraction(static_cast<float>(songs.size()), static_cast<float>(trackCount));
    return RVStatistic::make("stopwatch",
                             RVMetadataManager::formattedPercentage(std::min(share, 1.0F)),
                             NSLocalizedString("In Library"));
}

std::vector<Tile> playlistTiles(const MPMediaItemCollection& playlist) {
    const Songs& songs = playlist.items();
    return {playsTile(songs),          minutesTile(songs), allPlaysShareTile(songs),
            playedRecentlyTile(songs), skipsTile(songs),   explicitTile(playlist)};
}

std::vector<Tile> songTiles(const Songs& songs) {
    return {playsTile(songs), minutesTile(songs), skipsTile(songs), releaseTile(songs),
            dateAddedTile(songs)};
}

std::vector<Tile> albumTiles(const Songs& songs) {
    std::vector<Tile> tiles{playsTile(songs), minutesTile(songs), allPlaysShareTile(songs),
                            skipsTile(songs), releaseTile(songs), dateAddedTile(songs)};
    if (Tile inLibrary = inLibraryTile(songs)) {
        tiles.push_back(std::move(inLibrary));
    }
    return tiles;
}

std::vector<Tile> groupTiles(const MPMediaItemCollection& group) {
    const Songs& songs = group.items();
    return {favoritedTile(group),     playsTile(songs),          minutesTile(songs),
            allPlaysShareTile(songs), playedRecentlyTile(songs), skipsTile(songs),
            explicitTile(group),      dateAddedTile(songs)};
}

}  // namespace

std::optional<std::vector<RVStatisticReference>> statsForMediaEntity(const MPMediaEntity& entity) {
    if (entity.isEmpty()) {
        return std::nullopt;
    }
    const MPMediaItemCollection collection =
        entity.item() != nullptr ? MPMediaItemCollection({*entity.item()}) : *entity.collection();
    if (entity.playlist()) {
        return playlistTiles(collection);
    }
    switch (collection.groupingType()) {
        case MPMediaGrouping::title:
            return songTiles(collection.items());
        case MPMediaGrouping::album:
            return albumTiles(collection.items());
        case MPMediaGrouping::artist:
        case MPMediaGrouping::albumArtist:
        case MPMediaGrouping::genre:
            return groupTiles(collection);
        case MPMediaGrouping::composer:
        case MPMediaGrouping::playlist:
            break;
    }
    return std::nullopt;
}

}  // namespace tavrion::RVQueryManager
