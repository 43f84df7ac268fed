#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSUUID.h"
#include "platform/foundation/NSUserDefaults.h"
#include "recording/MPMediaItem+Nerinda.h"
#include "recording/RVQueryManager.h"
#include "recording/RecordStore.h"

namespace tavrion::Nerinda {
namespace {

bool isReal(std::string_view identifier) {
    return !NSUUID::stringIsValidUUID(identifier);
}

/// The store identifier that a song really has; absent otherwise.
std::optional<std::string_view> presentStoreID(const MPMediaItem& item) {
    const std::string_view identifier = item.playbackStoreID();
    return identifier.size() > 1 ? std::optional(identifier) : std::nullopt;
}

std::string_view textOr(const std::optional<std::string_view>& text, std::string_view otherwise) {
    return text ? *text : otherwise;
}

/// The key of a song's album, joined without a detour over the heap. An absent text reads "(null)"
/// here: stored keys must stay what they always were.
class AlbumKey {
  public:
    explicit AlbumKey(const MPMediaItem& item) {
        for (const std::string_view part :
             {textOr(item.albumArtist(), "(null)"), std::string_view("\u2014\u2014"),
              textOr(item.albumTitle(), "(null)")}) {
            joined_.append(part.data(), part.data() + part.size());
        }
    }
    std::string_view text() const { return {joined_.data(), joined_.size()}; }

  private:
    fmt::memory_buffer joined_;
};

/// The lenient conditions by which a record knows its song: any one of them is enough.
class LenientConditions {
  public:
    explicit LenientConditions(const SongIdentity& song)
        : song_(song),
          storeID_(song.storeID && isReal(*song.storeID)),
          libraryID_(song.libraryID && isReal(*song.libraryID)) {}

    bool holdFor(const MPMediaItem& item) const {
        return (!song_.title.empty() && item.title() == song_.title &&
                item.playbackDuration() == song_.duration) ||
               (storeID_ && presentStoreID(item) == *song_.storeID) ||
               (libraryID_ && item.cloudUniversalLibraryId() == *song_.libraryID);
    }

  private:
    const SongIdentity& song_;
    bool storeID_;
    bool libraryID_;
};

/// The first of several songs, in library order, for which a condition holds; a lone song is taken
/// without a test.
std::optional<MPMediaItem> firstMatch(const std::vector<MPMediaItem>& items,
                                      const LenientConditions& conditions) {
    if (items.size() == 1) {
        return items.front();
    }
    const auto found = std::find_if(items.begin(), items.end(), [&](const MPMediaItem& item) {
        return conditions.holdFor(item);
    });
    return found == items.end() ? std::nullopt : std::optional<MPMediaItem>(*found);
}

/// The records that a song strictly has: equal title and duration, and each real identifier equal.
std::vector<RecordCounter> strictMatches(const MPMediaItem& item, NSManagedObjectContext& context) {
    std::array<PropertyValue, 4> conditions;
    std::size_t count = 0;
    const auto require = [&](PropertyIndex property, const FieldView& value) {
        conditions[count++] = {property, value};
    };
    const std::optional<std::string_view> title = item.title();
    require(PlaybackHistoryKey::title, title ? FieldView(*title) : FieldView());
    require(PlaybackHistoryKey::duration, item.playbackDuration());
    if (const auto identifier = presentStoreID(item); identifier && isReal(*identifier)) {
        require(PlaybackHistoryKey::storeID, *identifier);
    }
    if (const auto identifier = item.cloudUniversalLibraryId(); identifier && isReal(*identifier)) {
        require(PlaybackHistoryKey::libraryID, *identifier);
    }
    return context.recordsWhere(NerindaEntity::PlaybackHistory, std::span(conditions).first(count));
}

}  // namespace

std::string libraryID(const MPMediaItem& item) {
    const auto identifier = item.cloudUniversalLibraryId();
    return identifier ? std::string(*identifier) : NSUUID::UUIDString();
}

std::string storeID(const MPMediaItem& item) {
    const auto identifier = presentStoreID(item);
    return identifier ? std::string(*identifier) : NSUUID::UUIDString();
}

std::optional<NSDate> lastSkippedDate(const MPMediaItem& item) {
    return item.lastSkippedDate();
}

std::optional<NSDate> lastEventDate(const MPMediaItem& item) {
    return laterDate(laterDate(item.dateAdded(), item.lastPlayedDate()), item.lastSkippedDate());
}

std::string albumKey(const MPMediaItem& item) {
    return std::string(AlbumKey(item).text());
}

std::optional<PlaybackHistory> playbackHistoryInContext(const MPMediaItem& item,
                                                        NSManagedObjectContext& context) {
    const std::vector<RecordCounter> found = strictMatches(item, context);
    if (found.empty()) {
        return std::nullopt;
    }
    PlaybackHistory history(
        NSManagedObject(context, {NerindaEntity::PlaybackHistory, found.front()}));
    history.refreshMetadata(item.albumArtist(), AlbumKey(item).text(), item.genre());
    if (found.size() > 1) {
        Port<RecordStore>::current().foldTwins(history, context);
    }
    return history;
}

std::optional<PlaybackHistory> playbackHistory(const MPMediaItem& item) {
    return playbackHistoryInContext(item, *Port<RecordStore>::current().mainContext());
}

std::optional<MPMediaItem> mediaItemForEvent(const PlayEvent& event) {
    std::optional<PlaybackHistory> history = event.parentHistory();
    return history ? mediaItemForHistory(*history) : std::nullopt;
}

std::optional<MPMediaItem> mediaItemForHistory(PlaybackHistory& history) {
    auto found = mediaItemForIdentity(SongIdentity::of(history));
    if (found) {
        takeTitleOver(*found, history);
    }
    return found;
}

SongIdentity SongIdentity::of(const PlaybackHistory& history) {
    return {history.title().value_or(""), history.duration(), history.storeID(),
            history.libraryID()};
}

std::optional<MPMediaItem> mediaItemForIdentity(const SongIdentity& song) {
    const LenientConditions conditions(song);
    MPMediaQuery query = RVQueryManager::defaultQuery();
    query.setValueForKey(true, "shouldIncludeNonLibraryEntities");
    if (!song.title.empty()) {
        MPMediaQuery ofTitle = query;
        ofTitle.addFilterPredicate(MPMediaPropertyPredicate::predicateWithValue(
            Value(song.title), MPMediaItemPropertyTitle));
        if (auto found = firstMatch(ofTitle.items(), conditions)) {
            return found;
        }
    }
    return firstMatch(query.items(), conditions);
}

void takeTitleOver(const MPMediaItem& item, PlaybackHistory& history) {
    if (item.title() && *item.title() != history.title().value_or("")) {
        history.setTitle(item.title());
    }
}

bool existsInLibrary(const MPMediaItem& item) {
    return item.existsInLibrary();
}

std::uint64_t likedState(const MPMediaItem& item) {
    return item.likedState();
}

void setLikedState(const MPMediaItem& item, std::uint64_t state) {
    if (item.respondsToSetValueForProperty()) {
        item.setValueForProperty(Value(state), "likedState");
    }
}

std::optional<std::string> sortKey(const MPMediaItem& item) {
    const std::string_view sortTitle = textOr(item.sortTitle(), "");
    const std::optional<std::string_view> title = item.title();
    if (!sortTitle.empty()) {
        return std::string(sortTitle);
    }
    return title ? std::optional<std::string>(*title) : std::nullopt;
}

std::optional<NSDate> sortReleaseKey(const MPMediaItem& item) {
    if (item.releaseDate()) {
        return item.releaseDate();
    }
    const auto year = item.year();
    return year == 0 ? std::nullopt
                     : std::optional<NSDate>(NSCalendar::currentCalendar().dateFromYear(year));
}

std::optional<std::string> artistSearchKey(const MPMediaItem& item) {
    const bool byTrack = item.isCompilation() && NSUserDefaults::standardUserDefaults().boolForKey(
                                                     RVQueryManager::splitCompilationsKey);
    const std::optional<std::string_view> artist = byTrack ? item.artist() : item.albumArtist();
    return artist ? std::optional<std::string>(*artist) : std::nullopt;
}

bool isEqualToMediaItem(const MPMediaItem& item, const MPMediaItem& other) {
    return storeID(item) == storeID(other) || libraryID(item) == libraryID(other) ||
           item.persistentID() == other.persistentID();
}

void registerComputedKeys() {
    MPMediaItem::registerComputedKey("storeID",
                                     [](const MPMediaItem& item) { return Value(storeID(item)); });
    MPMediaItem::registerComputedKey(
        "libraryID", [](const MPMediaItem& item) { return Value(libraryID(item)); });
    MPMediaItem::registerComputedKey(
        "lastEventDate", [](const MPMediaItem& item) { return Value(lastEventDate(item)); });
    MPMediaItem::registerComputedKey("sortKey",
                                     [](const MPMediaItem& item) { return Value(sortKey(item)); });
    MPMediaItem::registerComputedKey(
        "sortReleaseKey", [](const MPMediaItem& item) { return Value(sortReleaseKey(item)); });
    MPMediaItem::registerComputedKey(
        "artistSearchKey", [](const MPMediaItem& item) { return Value(artistSearchKey(item)); });
}

}  // namespace tavrion::Nerinda
