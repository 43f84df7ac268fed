#include "library/CollectionValues.h"
#include "library/RVBrowseCollectionViewController.h"
#include "library/RVMetadataManager.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSLocalizedString.h"
#include "recording/RVQueryManager.h"

namespace tavrion {

namespace {

using Songs = std::vector<MPMediaItem>;

constexpr std::int64_t favoritedState = 2;
constexpr int recentDays = 30;

/// Whatever the media type; some tiles count these and others the music alone.
Songs allSongs() {
    return MPMediaQuery::songsQuery().items();
}

Songs music() {
    return RVQueryManager::defaultQuery().items();
}

/// Single precision is what the shares are shown in.
std::string share(std::size_t part, std::size_t whole) {
    return RVMetadataManager::formattedPercentage(
        static_cast<double>(static_cast<float>(part) / static_cast<float>(whole)));
}

std::size_t favoritedCount() {
    MPMediaQuery query = RVQueryManager::defaultQuery();
    query.addFilterPredicate(
        MPMediaPropertyPredicate::predicateWithValue(favoritedState, "likedState"));
    return query.items().size();
}

std::string timeListenedCaption() {
    return NSUserDefaults::standardUserDefaults().boolForKey(RVMetadataManager::expandedTimeKey)
               ? NSLocalizedString("Time Listened")
               : NSLocalizedString("Minutes Listened");
}

std::string recentlyPlayedShare() {
    const NSDate daysAgo =
        NSCalendar::currentCalendar().dateByAddingComponents({.day = -recentDays}, NSDate::date());
    return share(CollectionValues::playedSince(music(), Extended::startOfDay(daysAgo)),
                 allSongs().size());
}

std::string downloadedShare() {
    const Songs songs = music();
    return share(songs.size() - CollectionValues::cloudCount(songs), songs.size());
}

std::string explicitShare() {
    const Songs songs = music();
    return share(CollectionValues::explicitCount(songs), songs.size());
}

}  // namespace

RVStatisticReference RVBrowseCollectionViewController::statForIndex(std::uint64_t index) {
    using Metadata = RVMetadataManager;
    switch (index) {
        case 0:
            return RVStatistic::make("music.note.list", Metadata::formattedCount(allSongs().size()),
                                     NSLocalizedString("Songs"));
        case 1:
            return RVStatistic::make("star.fill", Metadata::formattedCount(favoritedCount()),
                                     NSLocalizedString("Favorited"));
        case 2:
            return RVStatistic::make(
                "play.fill", Metadata::formattedCount(CollectionValues::playCount(allSongs())),
                NSLocalizedString("Plays"));
        case 3:
            return RVStatistic::make(
                "stopwatch",
                Metadata::formattedMinutesForDuration(CollectionValues::secondsListened(music())),
                timeListenedCaption());
        case 4:
            return RVStatistic::make("timer", recentlyPlayedShare(),
                                     NSLocalizedString("Recently Played"));
        case 5:
            return RVStatistic::make(
                "forward.fill", Metadata::formattedCount(CollectionValues::skipCount(allSongs())),
                NSLocalizedString("Skips"));
        case 6:
            return RVStatistic::make("arrow.down.circle", downloadedShare(),
                                     NSLocalizedString("Downloaded"));
        case 7:
            return RVStatistic::make("e.square.fill", explicitShare(),
                                     NSLocalizedString("Explicit"));
        default:
            return nullptr;
    }
}

}  // namespace tavrion
