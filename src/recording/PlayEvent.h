// Dated events of songs; a play is the only kind that there is.
//
// Queue: that of the context. An event without a parent belongs to no song any more.
#pragma once

#include "recording/PlaybackHistory.h"

namespace tavrion {

class PlaybackHistoryEvent : public NSManagedObject {
  public:
    explicit PlaybackHistoryEvent(const NSManagedObject& object) : NSManagedObject(object) {}
    /// Gives events of every kind.
    static NSFetchRequest fetchRequest() {
        return NSFetchRequest::fetchRequestWithEntityName("PlaybackHistoryEvent");
    }

    /// When it took place.
    std::optional<NSDate> eventDate() const { return date(PlayEventKey::eventDate); }
    void setEventDate(std::optional<NSDate> value) { setDate(PlayEventKey::eventDate, value); }
    /// Whether the date is an estimate.
    bool isInterpolated() const { return boolean(PlayEventKey::isInterpolated); }
    void setIsInterpolated(bool value) { setBoolean(PlayEventKey::isInterpolated, value); }
};

class PlayEvent : public PlaybackHistoryEvent {
  public:
    explicit PlayEvent(const NSManagedObject& object) : PlaybackHistoryEvent(object) {}
    static PlayEvent insert(NSManagedObjectContext& context);
    /// A play of the song, in the song's context.
    static PlayEvent insert(PlaybackHistory& song, NSDate date, bool isInterpolated);
    static NSFetchRequest fetchRequest() {
        return NSFetchRequest::fetchRequestWithEntityName("PlayEvent");
    }

    /// The song that was played.
    std::optional<PlaybackHistory> parentHistory() const;
    /// Whether it is of a song whose record is gone. A play that was never given a song is not.
    bool lacksItsSong() const;

  private:
    friend class PlaybackHistory;
    /// Set through the parent's plays only.
    void setParentHistory(const PlaybackHistory& parent) {
        setReference(PlayEventKey::parentHistory, parent.objectID());
    }
};

}  // namespace tavrion
