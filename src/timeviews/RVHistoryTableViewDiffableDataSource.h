// The list of the History screen, whose rows the user may delete.
//
// Queue: main; what is deleted is deleted on the queue of the context. Who owns: the controller,
// which outlives it and holds what is listed; a question under way does not keep it alive.
#pragma once

#include <functional>
#include <memory>

#include "kit/Alert.h"
#include "kit/NSDiffableDataSourceSnapshot.h"
#include "platform/coredata/NSManagedObjectContext.h"

namespace tavrion {

/// The numbers are the platform's own.
enum class UITableViewCellEditingStyle { none = 0, deletion = 1 };

class RVHistoryTableViewDiffableDataSource
    : public std::enable_shared_from_this<RVHistoryTableViewDiffableDataSource> {
  public:
    using Snapshot = NSDiffableDataSourceSnapshot;
    /// What is listed now.
    using Shown = std::function<const Snapshot&()>;
    /// Shows the list.
    using Apply = std::function<void(const Snapshot&, bool animated)>;
    using Present = std::function<void(Alert)>;

    RVHistoryTableViewDiffableDataSource(std::shared_ptr<NSManagedObjectContext> privateContext,
                                         Shown shown, Apply apply, Present present)
        : privateContext_(std::move(privateContext)),
          shown_(std::move(shown)),
          apply_(std::move(apply)),
          present_(std::move(present)) {}

    /// Every row below the totals.
    bool canEditRowAtIndexPath(NSIndexPath indexPath) const { return indexPath.section > 0; }
    UITableViewCellEditingStyle editingStyleForRowAtIndexPath(NSIndexPath indexPath) const;
    /// Asks about the play that stands there now, whatever the list looks like when the answer
    /// comes. Totals and chart stay as they are.
    void commitEditingStyle(UITableViewCellEditingStyle style, NSIndexPath forRowAtIndexPath);

    /// Called when a row was deleted.
    std::function<void(const Value& identifier)> didDelete;

  private:
    void deletePlay(const Value& identifier);

    const std::shared_ptr<NSManagedObjectContext> privateContext_;
    const Shown shown_;
    const Apply apply_;
    const Present present_;
};

}  // namespace tavrion
