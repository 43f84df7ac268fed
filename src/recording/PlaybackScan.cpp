#include "recording/PlaybackScan.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/dispatch/MainQueue.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSString+Entended.h"
#include "platform/foundation/NSUserDefaults.h"
#include "recording/AwardSink.h"
#include "recording/DataProcess.h"
#include "recording/MPMediaItem+Nerinda.h"
#include "recording/PlayEvent.h"
#include "recording/RVQueryManager.h"
#include "recording/RecordStore.h"
#include "recording/ScanPresenter.h"

namespace tavrion {
namespace {

/// Up to here a scan is too short for a popup.
constexpr std::size_t songsWithoutPopup = 100;
/// From here on so many new plays of one song are suspect.
constexpr std::uint64_t suspectPlays = 5;
/// Seconds.
constexpr double twoDays = 2 * 86400.0;
/// Bytes per second of 44.1 kHz, 16-bit stereo sound.
constexpr double compactDiscRate = 176400.0;

std::string titleForLog(const MPMediaItem& song) {
    return std::string(song.title().value_or("(null)"));
}

}  // namespace

PlaybackScan::PlaybackScan(std::shared_ptr<NSManagedObjectContext> context,
                           std::weak_ptr<NSBlockOperation> operation, NSDate sinceDate,
                           bool showPopup, RVPlaybackHistoryManager::Completion completion)
    : context_(std::move(context)),
      operation_(std::move(operation)),
      sinceDate_(sinceDate),
      showPopup_(showPopup),
      completion_(std::move(completion)) {}

void PlaybackScan::run() {
    context_->queue().assertCurrent();
    const std::vector<MPMediaItem> songs = matchingSongs();
    if (showPopup_ && songs.size() > songsWithoutPopup) {
        Port<MainQueue>::current().async([] { Port<ScanPresenter>::current().presentProgress(); });
    }
    previousScanDate_ = RVPlaybackHistoryManager::previousScanDate();
    {
        const GatheredDefaultsWrites gathered(NSUserDefaults::standardUserDefaults());
        for (std::size_t i = 0; i < songs.size(); ++i) {
            scanSong(songs[i]);
            DataProcess::postUpdate(static_cast<float>(i) / static_cast<float>(songs.size() - 1));
        }
    }
    const std::shared_ptr<NSBlockOperation> operation = operation_.lock();
    if (operation && operation->isCancelled()) {
        return;
    }
    if (const Result<void> saved = context_->save(); !saved) {
        Port<RecordStore>::current().tellOfFailedSave(saved.error());
        return;
    }
    finish();
}

std::vector<MPMediaItem> PlaybackScan::matchingSongs() const {
    MPMediaQuery query = RVQueryManager::defaultQuery();
    query.setValueForKey(true, "shouldIncludeNonLibraryEntities");
    std::vector<MPMediaItem> songs = query.items();
    std::erase_if(songs, [&](const MPMediaItem& song) {
        const std::optional<NSDate> lastPlayed = song.lastPlayedDate();
        return !lastPlayed || *lastPlayed <= sinceDate_;
    });
    return songs;
}

void PlaybackScan::scanSong(const MPMediaItem& song) {
    PlaybackHistory history = historyForSong(song);
    const PlaybackHistory::Counters known = history.counters();
    if (song.playCount() != static_cast<std::uint64_t>(known.playCount)) {
        recordNewPlays(song, history, known);
        history.setPlayCount(static_cast<std::int64_t>(song.playCount()));
        history.setSkipCount(static_cast<std::int64_t>(song.skipCount()));
    }
    // A scan that finds nothing new must leave nothing to save.
    if (const std::optional<NSDate> lastEvent = Nerinda::lastEventDate(song);
        lastEvent != known.lastEventDate) {
        history.setLastEventDate(lastEvent);
    }
    earnSongAwards(song);
}

PlaybackHistory PlaybackScan::historyForSong(const MPMediaItem& song) {
    if (auto found = Nerinda::playbackHistoryInContext(song, *context_)) {
        return *found;
    }
    NSLog("Creating playback history for: {}", titleForLog(song));
    const std::string storeID = Nerinda::storeID(song);
    const std::string libraryID = Nerinda::libraryID(song);
    const std::string albumID = Nerinda::albumKey(song);
    const auto text = [](const std::optional<std::string_view>& value) {
        return value ? FieldView(*value) : FieldView();
    };
    using namespace PlaybackHistoryKey;
    // Counts one less than the library says, so that a song seen for the first time yields its last
    // play and no other.
    return PlaybackHistory::insert(*context_,
                                   {{PlaybackHistoryKey::storeID, storeID},
                                    {PlaybackHistoryKey::libraryID, libraryID},
                                    {PlaybackHistoryKey::albumID, albumID},
                                    {title, text(song.title())},
                                    {artist, text(song.albumArtist())},
                                    {genre, text(song.genre())},
                                    {duration, song.playbackDuration()},
                                    {playCount, static_cast<std::int64_t>(song.playCount() - 1)},
                                    {skipCount, static_cast<std::int64_t>(song.skipCount() - 1)}});
}

void PlaybackScan::recordNewPlays(const MPMediaItem& song, PlaybackHistory& history,
                                  const PlaybackHistory::Counters& known) {
    const auto recordedCount = static_cast<std::uint64_t>(known.playCount);
    if (song.playCount() <= recordedCount) {
        return;
    }
    const NSDate lastPlayed = *song.lastPlayedDate();
    const NSDate start = *laterDate(previousScanDate_, known.lastEventDate);
    const NSTimeInterval span = lastPlayed.timeIntervalSinceDate(start);
    const std::uint64_t delta = song.playCount() - recordedCount;
    const NSDate base = lastPlayed.dateByAddingTimeInterval(-span);
    const NSTimeInterval step = span / static_cast<double>(delta);
    for (std::uint64_t n = 1; n <= delta; ++n) {
        const bool isLast = n == delta;
        NSLog("Creating play event for: {}", titleForLog(song));
        const PlayEvent event = PlayEvent::insert(
            history,
            isLast ? lastPlayed : base.dateByAddingTimeInterval(step * static_cast<double>(n)),
            !isLast);
        if (delta >= suspectPlays && !isLast) {
            suspectEvents_.push_back(event.objectID());
            suspectTitles_.emplace(song.title().value_or(""));
        }
    }
}

void PlaybackScan::earnSongAwards(const MPMediaItem& song) {
    const std::optional<NSDate> released = song.releaseDate();
    // Two instants of one day are never this far apart, and most songs are older: the calendar
    // needs to be asked about few.
    if (released && std::abs(released->timeIntervalSinceDate(*song.lastPlayedDate())) < twoDays &&
        Extended::startOfDay(*released) == Extended::startOfDay(*song.lastPlayedDate())) {
        earn("rv_award.wildcard.releaseDay");
    }
    if (song.fileSize() > song.playbackDuration() * compactDiscRate) {
        earn("rv_award.wildcard.audiophile");
    }
}

void PlaybackScan::earn(const std::string& identifier) {
    if (!Port<AwardSink>::current().earnAchievementWithIdentifier(identifier, 1, std::nullopt,
                                                                  *context_)) {
        return;
    }
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    Value::Array pending =
        defaults.arrayForKey(ScanDefaults::pendingAchievementIdentifiers).value_or(Value::Array());
    if (std::find(pending.begin(), pending.end(), Value(identifier)) == pending.end()) {
        pending.emplace_back(identifier);
    }
    defaults.setObject(ScanDefaults::pendingAchievementIdentifiers, std::move(pending));
}

void PlaybackScan::finish() {
    // The date moves when the plays are on the disk: a process that ends before leaves the next
    // scan the same span to look at.
    Port<RecordStore>::current().saveMainContext([scan = shared_from_this()] {
        scan->context_->performBlock([scan] { scan->noteScanDate(); });
    });
}

void PlaybackScan::noteScanDate() {
    NSUserDefaults::standardUserDefaults().setObject(ScanDefaults::playbackHistoryScanDate,
                                                     NSDate::date());
    Port<AwardSink>::current().updateAchievements();
    if (suspectEvents_.empty()) {
        end();
        return;
    }
    Port<MainQueue>::current().async([scan = shared_from_this()] { scan->askAboutSuspects(); });
}

void PlaybackScan::end() {
    DataProcess::postFinish();
    if (completion_) {
        completion_();
    }
}

void PlaybackScan::askAboutSuspects() {
    SuspectQuestion question{
        "Alert",
        "Tavrion detected an unusually high number of unrecorded plays for the following songs:\n",
        "Keep All",
        "Keep Most Recent",
        {suspectTitles_.begin(), suspectTitles_.end()}};
    std::stable_sort(question.songTitles.begin(), question.songTitles.end(),
                     [](const std::string& a, const std::string& b) {
                         return Entended::smartAlphabeticalCompare(a, b) ==
                                NSComparisonResult::ascending;
                     });
    for (const std::string& title : question.songTitles) {
        question.message += "\n" + title;
    }
    question.message += "\n\nThis could be the result of an error.";
    Port<ScanPresenter>::current().ask(question, [scan = shared_from_this()](SuspectAnswer answer) {
        if (answer == SuspectAnswer::keepAll) {
            scan->end();
        } else {
            scan->context_->performBlock([scan] { scan->keepMostRecent(); });
        }
    });
}

void PlaybackScan::keepMostRecent() {
    for (const NSManagedObjectID id : suspectEvents_) {
        if (const std::optional<NSManagedObject> event = context_->existingObjectWithID(id)) {
            context_->deleteObject(*event);
        }
    }
    if (context_->hasChanges()) {
        if (const Result<void> saved = context_->save(); !saved) {
            Port<RecordStore>::current().tellOfFailedSave(saved.error());
            return;
        }
    }
    end();
}

}  // namespace tavrion
