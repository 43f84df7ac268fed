// What a save tells: which records it inserted, changed and deleted.
//
// Queue: made on any queue, posted on the saved context's. A record that was inserted and changed
// counts as inserted; one that was inserted and deleted in the same save is not told.
#pragma once

#include "platform/coredata/NSPersistentStore.h"
#include "platform/foundation/NSNotificationCenter.h"

namespace tavrion {

class DidSaveNotification {
  public:
    /// About a save of `context`; see NSManagedObjectContextDidSaveObjectIDsNotification.
    DidSaveNotification(const NSPersistentStore::Commits& commits, const void* context);
    /// Nothing is posted when nothing was saved.
    void post() const;

  private:
    NSNotification notification_;
};

}  // namespace tavrion
