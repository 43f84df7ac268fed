// One record per song ever seen playing.
//
// Queue: that of its context. Durations are seconds; an absent text or date is std::nullopt.
#pragma once

#include <initializer_list>
#include <vector>

#include "platform/coredata/NSFetchRequest.h"
#include "platform/coredata/NSManagedObject.h"
#include "recording/NerindaModel.h"

namespace tavrion {

class NSManagedObjectContext;
class PlayEvent;

class PlaybackHistory : public NSManagedObject {
  public:
    explicit PlaybackHistory(const NSManagedObject& object) : NSManagedObject(object) {}
    static PlaybackHistory insert(NSManagedObjectContext& context,
                                  std::initializer_list<PropertyValue> values = {});
    static NSFetchRequest fetchRequest() {
        return NSFetchRequest::fetchRequestWithEntityName("PlaybackHistory");
    }

    /// The key that stands for the album across records.
    std::optional<std::string> albumID() const { return text(PlaybackHistoryKey::albumID); }
    void setAlbumID(const std::optional<std::string_view>& value) {
        setText(PlaybackHistoryKey::albumID, value);
    }
    /// The song's album artist.
    std::optional<std::string> artist() const { return text(PlaybackHistoryKey::artist); }
    void setArtist(const std::optional<std::string_view>& value) {
        setText(PlaybackHistoryKey::artist, value);
    }
    /// Takes part in identity by exact equality.
    double duration() const { return real(PlaybackHistoryKey::duration); }
    void setDuration(double value) { setReal(PlaybackHistoryKey::duration, value); }
    bool excludeFromTrends() const { return boolean(PlaybackHistoryKey::excludeFromTrends); }
    void setExcludeFromTrends(bool value) {
        setBoolean(PlaybackHistoryKey::excludeFromTrends, value);
    }
    std::optional<std::string> genre() const { return text(PlaybackHistoryKey::genre); }
    void setGenre(const std::optional<std::string_view>& value) {
        setText(PlaybackHistoryKey::genre, value);
    }
    /// The song's latest sign of life in the library, not the date of the latest play.
    std::optional<NSDate> lastEventDate() const { return date(PlaybackHistoryKey::lastEventDate); }
    void setLastEventDate(std::optional<NSDate> value) {
        setDate(PlaybackHistoryKey::lastEventDate, value);
    }
    std::optional<std::string> libraryID() const { return text(PlaybackHistoryKey::libraryID); }
    void setLibraryID(const std::optional<std::string_view>& value) {
        setText(PlaybackHistoryKey::libraryID, value);
    }
    /// The library's count when it was last found changed; not the number of plays.
    std::int64_t playCount() const { return integer(PlaybackHistoryKey::playCount); }
    void setPlayCount(std::int64_t value) { setInteger(PlaybackHistoryKey::playCount, value); }
    std::int64_t skipCount() const { return integer(PlaybackHistoryKey::skipCount); }
    void setSkipCount(std::int64_t value) { setInteger(PlaybackHistoryKey::skipCount, value); }
    std::optional<std::string> storeID() const { return text(PlaybackHistoryKey::storeID); }
    void setStoreID(const std::optional<std::string_view>& value) {
        setText(PlaybackHistoryKey::storeID, value);
    }
    std::optional<std::string> title() const { return text(PlaybackHistoryKey::title); }
    void setTitle(const std::optional<std::string_view>& value) {
        setText(PlaybackHistoryKey::title, value);
    }

    /// What a scan compares with the library, read in one go.
    struct Counters {
        std::int64_t playCount = 0;
        std::optional<NSDate> lastEventDate;
    };
    Counters counters() const;

    /// Brings the three texts that the library may change up to date, each only if it differs.
    void refreshMetadata(const std::optional<std::string_view>& artist,
                         const std::optional<std::string_view>& albumID,
                         const std::optional<std::string_view>& genre);

    /// All dated plays of the song, in identifier order.
    std::vector<PlayEvent> plays() const;
    void addPlaysObject(PlayEvent& event);
    void addPlays(const std::vector<PlayEvent>& events);
};

}  // namespace tavrion
