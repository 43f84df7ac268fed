#include "timeviews/RVHistoryTableViewDiffableDataSource.h"

#include <utility>

#include "platform/foundation/NSLocalizedString.h"
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

UITableViewCellEditingStyle RVHistoryTableViewDiffableDataSource::editingStyleForRowAtIndexPath(
    NSIndexPath indexPath) const {
    return canEditRowAtIndexPath(indexPath) ? UITableViewCellEditingStyle::deletion
                                            : UITableViewCellEditingStyle::none;
}

void RVHistoryTableViewDiffableDataSource::commitEditingStyle(UITableViewCellEditingStyle style,
                                                              NSIndexPath forRowAtIndexPath) {
    const auto identifier = shown_().itemIdentifierForIndexPath(forRowAtIndexPath);
    if (style != UITableViewCellEditingStyle::deletion ||
        !canEditRowAtIndexPath(forRowAtIndexPath) || !identifier) {
        return;
    }
    const auto confirmed = [weak = weak_from_this(), identifier = *identifier] {
        if (const auto self = weak.lock()) {
            self->deletePlay(identifier);
        }
    };
    present_({NSLocalizedString("Are you sure?"),
              NSLocalizedString("Deleted playback events can not be recovered."),
              {{NSLocalizedString("Delete"), UIAlertActionStyle::destructive, confirmed},
               {NSLocalizedString("Cancel"), UIAlertActionStyle::cancel}}});
}

void RVHistoryTableViewDiffableDataSource::deletePlay(const Value& identifier) {
    if (const auto* play = identifier.get<ObjectReference>()) {
        privateContext_->performBlock(
            [context = privateContext_, id = NSManagedObjectID::of(*play)] {
                deleteRecord(*context, id);
            });
    }
    NSDiffableDataSourceSnapshot rest = shown_();
    rest.deleteItem(identifier);
    apply_(rest, true);
    if (didDelete) {
        didDelete(identifier);
    }
}

}  // namespace tavrion
