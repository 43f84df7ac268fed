// The scan: compares the library's running counts with the records and turns every rise into dated
// plays.
//
// Queue: the entry points run on any queue and return at once; the work runs on a private context.
// The completion is called once at the end of a scan that succeeded, on the scan's queue (after the
// question about suspect plays: on the main queue or the scan's), and not at all when the scan was
// refused, dropped or failed to save. Dates are instants; the days of the rules are days of the
// current calendar.
#pragma once

#include <functional>

#include "platform/foundation/NSDate.h"

namespace tavrion {

class RVPlaybackHistoryManager {
  public:
    using Completion = std::function<void()>;
    RVPlaybackHistoryManager() = delete;

    /// A scan of the songs played since the date that the rule chooses. `popup` allows the progress
    /// popup.
    static void updatePlaybackHistoryWithPopup(bool popup, Completion completion);
    /// A scan of the songs played after `sinceDate`.
    static void recordPlaybackHistorySinceDate(NSDate sinceDate, bool showPopup,
                                               Completion completion);

    /// The two days before now, or back to the installation when the last scan is older than that.
    static NSDate sinceDateByRule();
    /// Start of the day on which Tavrion first ran; set at the first reading.
    static NSDate installationDate();
    /// When the last scan that saved had ended; set to the present at the first reading.
    static NSDate previousScanDate();
};

/// Keys of the user defaults that the scan keeps.
namespace ScanDefaults {
inline const char* const installationDate = "com.oskelvane.Nerinda.installationDate";
inline const char* const playbackHistoryScanDate = "com.oskelvane.Nerinda.playbackHistoryScanDate";
inline const char* const pendingAchievementIdentifiers = "pendingAchievementIdentifiers";
inline const char* const lastBackgroundUpdateDate = "LastBackgroundUpdateDate";
}  // namespace ScanDefaults

}  // namespace tavrion
