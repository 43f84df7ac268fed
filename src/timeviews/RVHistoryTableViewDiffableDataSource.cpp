#include "timeviews/RVHistoryTableViewDiffableDataSource.h"

#include <utility>

#include "platform/dispatch/MainQueue.h"
#include "recording/RecordStore.h"

namespace tavrion {
namespace {

void deleteRecord(NSManagedObjectContext& context, NSManagedObjectID id) {
    if (const auto play = context.existingObjectWithID(id)) {
        context.deleteObject(*play);
    }
    if (!context.hasChanges()) {
        return;
    }
    if (const Result<void> saved = context.save(); !saved) {
        Port<RecordStore>::current().tellOfFailedSave(saved.error());
    }
}

}  // namespace

void RVHistoryTableViewDiffableDataSource::applySnapshot(NSDiffableDataSourceSnapshot snapshot,
                                                         bool animatingDifferences) {
    Port<MainQueue>::current().assertCurrent();
    snapshot_ = std::move(snapshot);
    applied_(snapshot_, animatingDifferences);
}

UITableViewCellEditingStyle RVHistoryTableViewDiffableDataSource::editingStyleForRowAtIndexPath(
    NSIndexPath indexPath) const {
    return canEditRowAtIndexPath(indexPath) ? UITableViewCellEditingStyle::deletion
                                            : UITableViewCellEditingStyle::none;
}

void RVHistoryTableViewDiffableDataSource::commitEditingStyle(UITableViewCellEditingStyle style,
                                                              NSIndexPath forRowAtIndexPath) {
    const auto identifier = snapshot_.itemIdentifierForIndexPath(forRowAtIndexPath);
    if (style != UITableViewCellEditingStyle::deletion ||
        !canEditRowAtIndexPath(forRowAtIndexPath) || !identifier) {
        return;
    }
    question_([weak = weak_from_this(), identifier = *identifier] {
        if (const auto self = weak.lock()) {
            self->deletePlay(identifier);
        }
    });
}

void RVHistoryTableViewDiffableDataSource::deletePlay(const Value& identifier) {
    if (const auto* play = identifier.get<ObjectReference>()) {
        privateContext_->performBlock(
            [context = privateContext_, id = NSManagedObjectID::of(*play)] {
                deleteRecord(*context, id);
            });
    }
    NSDiffableDataSourceSnapshot rest = snapshot_;
    rest.deleteItem(identifier);
    applySnapshot(std::move(rest), true);
    if (didDelete) {
        didDelete(identifier);
    }
}

}  // namespace tavrion
