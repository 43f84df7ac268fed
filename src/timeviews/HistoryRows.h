// The rows of the History list: what each play shows.
//
// Queue: any. Rows are read from an immutable version of the records, so that no context has to be
// asked. What a song shows is kept: it is looked up once, however often it was played, until its
// record or the library is another one. A row takes nothing over into the record; see takeOver().
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "kit/NSAttributedString.h"
#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/foundation/Mutex.h"
#include "platform/mediaplayer/MediaSnapshot.h"
#include "recording/MPMediaItem+Nerinda.h"

namespace tavrion {

/// A play as a row shows it.
struct HistoryRow {
    NSAttributedString title;
    std::optional<std::string> subtitle;
    /// When it was played; absent for a song that left the library.
    std::optional<NSAttributedString> property;
    /// The song; absent likewise.
    std::optional<MPMediaItem> item;
    /// Absent for a play that has no date.
    std::optional<NSDate> eventDate;
    bool isInterpolated = false;
};

class HistoryRows {
  public:
    /// How many songs are kept; with one more all of them are looked up again.
    static constexpr std::size_t mostKept = 20000;

    /// Absent for a play that is no longer there.
    std::optional<HistoryRow> rowOf(const StoreVersion& records, NSManagedObjectID play,
                                    const std::optional<UIFont>& font);
    /// The song of a play; absent when the library does not have it.
    std::optional<MPMediaItem> itemOf(const StoreVersion& records, NSManagedObjectID play);
    /// The title that the library has for the song becomes its record's. On the context's queue.
    static void takeOver(const MPMediaItem& item, NSManagedObjectID play,
                         NSManagedObjectContext& context);

  private:
    /// What all plays of a song show.
    struct Song {
        Nerinda::SongIdentity identity;
        std::optional<std::string> artist;
        std::optional<UIFont> font;
        HistoryRow row;
    };
    HistoryRow songRow(const RowPosition& song, RecordCounter counter,
                       const std::optional<UIFont>& font);
    using Library = std::shared_ptr<const MediaSnapshot>;
    std::optional<HistoryRow> kept(RecordCounter counter, const Song& asked,
                                   const Library& library);
    void keep(RecordCounter counter, Song song, const Library& library);

    Mutex mutex_;
    Library library_ TAVRION_GUARDED_BY(mutex_);
    std::unordered_map<RecordCounter, Song> songs_ TAVRION_GUARDED_BY(mutex_);
};

}  // namespace tavrion
