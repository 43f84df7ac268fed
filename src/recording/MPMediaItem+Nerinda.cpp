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
    explicit LenientConditions(const PlaybackHistory& history)
        : title_(history.title().value_or("")), duration_(history.duration()) {
        if (auto identifier = history.storeID(); identifier && isReal(*identifier)) {
            storeID_ = std::move(identifier);
        }
        if (auto identifier = history.libraryID(); identifier && isReal(*identifier)) {
            libraryID_ = std::move(identifier);
        }
    }

    const std::string& title() const { return title_; }
    bool holdFor(const MPMediaItem& item) const {
        return (!title_.empty() && item.title() == title_ &&
                item.playbackDuration() == duration_) ||
               (storeID_ && presentStoreID(item) == *storeID_) ||
               (libraryID_ && item.cloudUniversalLibraryId() == *libraryID_);
    }

  private:
    std::string title_;
    double duration_;
    std::optional<std::string> storeID_;
    std::optional<std::string> libraryID_;
};

/// A lone song is taken without a test.
std::optional<MPMediaItem> firstMatch(const MPMediaQuery& query,
                                      const LenientConditions& conditions) {
    const std::vector<MPMediaItem> items = query.items();
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
    const LenientConditions conditions(history);
    MPMediaQuery query = RVQueryManager::defaultQuery();
    query.setValueForKey(true, "shouldIncludeNonLibraryEntities");
    std::optional<MPMediaItem> found;
    if (conditions.title().empty()) {
        found = firstMatch(query, conditions);
    } else {
        const auto sameTitle = MPMediaPropertyPredicate::predicateWithValue(
            Value(conditions.title()), MPMediaItemPropertyTitle);
        query.addFilterPredicate(sameTitle);
        found = firstMatch(query, conditions);
        if (!found) {
            query.removeFilterPredicate(sameTitle);
            found = firstMatch(query, conditions);
        }
    }
    if (found && found->title() && *found->title() != history.title().value_or("")) {
        history.setTitle(found->title());
    }
    return found;
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
