// Which records were folded into which in this process, for plays that somebody else adds to a
// record at the moment when it is folded away.
//
// A private context works on the records that it saw. A scan that recorded plays of a song saves
// them though another scan's clean-up has folded the song's record into its twin meanwhile; and a
// fold that is saved later takes only the plays that it saw with it. Either way plays stay behind
// that point to a record that is gone. The survivor is known here alone.
//
// Queue: any; reunite() on that of its context. Kept for the life of the process: identifiers are
// never used again.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/foundation/Mutex.h"
#include "platform/foundation/NSNotificationCenter.h"

namespace tavrion {

class Foldings {
  public:
    /// `folded` was folded into `survivor`, at that play count of its own. Whether the fold is ever
    /// saved does not matter: a record that is still there keeps its plays.
    void note(NSManagedObjectID folded, NSManagedObjectID survivor, std::int64_t playCount);
    bool empty() const;
    /// A save deleted records. Of those that were folded it is kept what they were like directly
    /// before: a scan can have saved plays of such a record after the fold had read it.
    void noteDeletions(const NSNotification& didSave);
    /// Gives the plays of records that are gone to those that survived them; the caller saves. The
    /// survivor's count and its latest date rise with them, since what the other scan knew of both
    /// went with its record.
    void reunite(NSManagedObjectContext& context);

  private:
    struct Folding {
        NSManagedObjectID survivor;
        std::int64_t playCount = 0;
        /// In identifier order: the plays that this count has counted.
        std::vector<NSManagedObjectID> countedPlays = {};
    };
    /// The record that the plays belong to now, at the end of all foldings; absent when it was
    /// deleted.
    static std::optional<NSManagedObject> survivorOf(
        NSManagedObjectID folded, const std::map<NSManagedObjectID, Folding>& foldings,
        NSManagedObjectContext& context);

    mutable Mutex mutex_;
    std::map<NSManagedObjectID, Folding> foldings_ TAVRION_GUARDED_BY(mutex_);
};

}  // namespace tavrion
