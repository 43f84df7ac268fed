#include "recording/RVPlaybackHistoryManager.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/NSDate+Extended.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/NSUserDefaults.h"
#include "recording/PlaybackScan.h"
#include "recording/RecordStore.h"

namespace tavrion {
namespace {

/// The stored date, or `otherwise`, which is then stored.
NSDate dateForKeyOrStore(const char* key, NSDate otherwise) {
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    if (const std::optional<NSDate> stored = defaults.dateForKey(key)) {
        return *stored;
    }
    defaults.setObject(key, otherwise);
    return otherwise;
}

}  // namespace

NSDate RVPlaybackHistoryManager::installationDate() {
    return dateForKeyOrStore(ScanDefaults::installationDate, Extended::startOfDay(NSDate::date()));
}

NSDate RVPlaybackHistoryManager::previousScanDate() {
    return dateForKeyOrStore(ScanDefaults::playbackHistoryScanDate, NSDate::date());
}

NSDate RVPlaybackHistoryManager::sinceDateByRule() {
    const NSDate installation = installationDate();
    const NSDate previousScan = previousScanDate();
    const NSDate twoDaysAgo =
        NSCalendar::currentCalendar().dateByAddingComponents({.day = -2}, NSDate::date());
    // After a gap nothing that was played since the installation may be missed.
    return previousScan < twoDaysAgo ? installation : std::max(installation, twoDaysAgo);
}

void RVPlaybackHistoryManager::updatePlaybackHistoryWithPopup(bool popup, Completion completion) {
    recordPlaybackHistorySinceDate(sinceDateByRule(), popup, std::move(completion));
    const auto lastUpdate =
        NSUserDefaults::standardUserDefaults().dateForKey(ScanDefaults::lastBackgroundUpdateDate);
    NSLog("Last Background Sync Date: {}", lastUpdate ? isoTextOfDate(*lastUpdate) : "(null)");
}

void RVPlaybackHistoryManager::recordPlaybackHistorySinceDate(NSDate sinceDate, bool showPopup,
                                                              Completion completion) {
    RecordStore& store = Port<RecordStore>::current();
    if (store.operationQueue().operationCount() != 0) {
        return;
    }
    auto operation = std::make_shared<NSBlockOperation>();
    operation->addExecutionBlock([weakOperation = std::weak_ptr<NSBlockOperation>(operation),
                                  sinceDate, showPopup, completion = std::move(completion),
                                  &store]() mutable {
        auto context = store.privateContext();
        auto scan = std::make_shared<PlaybackScan>(context, weakOperation, sinceDate, showPopup,
                                                   std::move(completion));
        context->performBlock([scan] { scan->run(); });
    });
    store.operationQueue().addOperation(std::move(operation));
}

}  // namespace tavrion
