// One scan, from the songs that match to the save and the question at its end.
//
// Queue: run() and everything it calls on the queue of the scan's context. Who owns: the scan keeps
// itself alive until its answer has come.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/dispatch/NSOperationQueue.h"
#include "platform/mediaplayer/MPMediaItem.h"
#include "recording/PlaybackHistory.h"
#include "recording/RVPlaybackHistoryManager.h"

namespace tavrion {

class PlaybackScan : public std::enable_shared_from_this<PlaybackScan> {
  public:
    PlaybackScan(std::shared_ptr<NSManagedObjectContext> context,
                 std::weak_ptr<NSBlockOperation> operation, NSDate sinceDate, bool showPopup,
                 RVPlaybackHistoryManager::Completion completion);

    void run();

  private:
    std::vector<MPMediaItem> matchingSongs() const;
    void scanSong(const MPMediaItem& song);
    PlaybackHistory historyForSong(const MPMediaItem& song);
    void recordNewPlays(const MPMediaItem& song, PlaybackHistory& history,
                        const PlaybackHistory::Counters& known);
    void earnSongAwards(const MPMediaItem& song);
    void earn(const std::string& identifier);
    void finish();
    void noteScanDate();
    void askAboutSuspects();
    void keepMostRecent();
    void end();

    const std::shared_ptr<NSManagedObjectContext> context_;
    const std::weak_ptr<NSBlockOperation> operation_;
    const NSDate sinceDate_;
    const bool showPopup_;
    const RVPlaybackHistoryManager::Completion completion_;
    NSDate previousScanDate_;
    std::set<std::string> suspectTitles_;
    std::vector<NSManagedObjectID> suspectEvents_;
};

}  // namespace tavrion
