// What the parts of the History screen's controller share with the work that they start.
//
// Queue: any. Who owns: the controller, and work under way.
#pragma once

#include <atomic>
#include <memory>

#include "platform/coredata/NSManagedObjectContext.h"
#include "timeviews/RVHistoryTableViewViewController.h"

namespace tavrion {

struct RVHistoryTableViewViewController::Updates {
    std::weak_ptr<RVHistoryTableViewViewController> controller;
    std::shared_ptr<NSManagedObjectContext> context;
    /// Once a month was chosen, until the next update.
    std::atomic<bool> shouldDisplayMonthTitles{false};
};

}  // namespace tavrion
