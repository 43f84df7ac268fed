// What recording needs of the store of records; plugged in from persistence.
//
// Queue: every operation from any queue, but mainContext() is used on the main queue only and
// foldTwins() runs on the queue of the record's context.
#pragma once

#include <functional>
#include <memory>

#include "platform/coredata/NSManagedObjectContext.h"
#include "platform/dispatch/NSOperationQueue.h"
#include "platform/foundation/Port.h"

namespace tavrion {

class PlaybackHistory;

class RecordStore {
  public:
    static constexpr const char* portName = "a record store is plugged in";
    virtual ~RecordStore() = default;

    virtual std::shared_ptr<NSManagedObjectContext> mainContext() = 0;
    /// A new context below the main one at each call.
    virtual std::shared_ptr<NSManagedObjectContext> privateContext() = 0;
    /// Writes the main context to disk, soon and on other queues. What was handed to it so far is
    /// cleaned up before, so that both reach the disk together. Then calls `whenSaved`, if any, on
    /// the main queue; not after a failure, which ends the process.
    virtual void saveMainContext(std::function<void()> whenSaved = nullptr) = 0;
    /// Serial; guards the start of a scan.
    virtual NSOperationQueue& operationQueue() = 0;
    /// Tells the user of a failed save.
    virtual void tellOfFailedSave(const NSError& error) = 0;
    /// Folds all records of the survivor's song into the survivor; the caller saves.
    virtual void foldTwins(PlaybackHistory& survivor, NSManagedObjectContext& context) = 0;
};

}  // namespace tavrion
