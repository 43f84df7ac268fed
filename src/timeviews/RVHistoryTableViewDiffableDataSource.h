// The list of the History screen, whose rows the user may delete.
//
// Queue: main; what is deleted is deleted on the queue of the context. Who owns: the controller. A
// question under way keeps it alive no longer than that.
#pragma once

#include <functional>
#include <memory>

#include "kit/NSDiffableDataSourceSnapshot.h"
#include "platform/coredata/NSManagedObjectContext.h"

namespace tavrion {

/// The numbers are the platform's own.
enum class UITableViewCellEditingStyle { none = 0, deletion = 1 };

class RVHistoryTableViewDiffableDataSource
    : public std::enable_shared_from_this<RVHistoryTableViewDiffableDataSource> {
  public:
    /// Asks the user, and calls `confirmed` when the play is to be deleted.
    using Question = std::function<void(std::function<void()> confirmed)>;
    /// Shows the list.
    using Applied = std::function<void(const NSDiffableDataSourceSnapshot&, bool animated)>;

    RVHistoryTableViewDiffableDataSource(std::shared_ptr<NSManagedObjectContext> privateContext,
                                         Applied applied, Question question)
        : privateContext_(std::move(privateContext)),
          applied_(std::move(applied)),
          question_(std::move(question)) {}

    const NSDiffableDataSourceSnapshot& snapshot() const { return snapshot_; }
    void applySnapshot(NSDiffableDataSourceSnapshot snapshot, bool animatingDifferences);

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
    const Applied applied_;
    const Question question_;
    NSDiffableDataSourceSnapshot snapshot_;
};

}  // namespace tavrion
