// What a save tells: which records it inserted, changed and deleted.
//
// Queue: made on any queue, posted on the saved context's. A record that was inserted and changed
// counts as inserted; one that was inserted and deleted in the same save is not reported.
#pragma once

#include "platform/coredata/NSPersistentStore.h"
#include "platform/foundation/NSNotificationCenter.h"

namespace tavrion {

class DidSaveNotification {
  public:
    /// About a save of `context`; see NSManagedObjectContextDidSaveObjectIDsNotification.
    /// `before` is what the parent of a private context saw directly before; null for the main one.
    DidSaveNotification(const NSPersistentStore::Commits& commits, const void* context,
                        std::shared_ptr<const StoreVersion> before = nullptr);
    /// Nothing is posted when nothing was saved.
    void post() const;

  private:
    NSNotification notification_;
};

}  // namespace tavrion
