// The region of the process, plugged, and noticed when it changes: the computer's zone is another
// one, or the environment names another locale.
//
// Queue: refresh() on any queue, one caller after the other; the region is read from any queue
// meanwhile. Who owns: the composition root, for the life of the process. A region that was once
// current stays where it was, so that who just read from it need not care. The language of the
// program's own texts is that of the start.
#pragma once

#include <deque>
#include <functional>
#include <string>

#include "platform/foundation/Mutex.h"
#include "platform/foundation/NSCalendar.h"
#include "platform/foundation/Port.h"

namespace tavrion {

/// Posted after the current calendar has another zone.
inline const std::string NSSystemTimeZoneDidChangeNotification =
    "NSSystemTimeZoneDidChangeNotification";
/// Posted after the current region has other locales.
inline const std::string NSCurrentLocaleDidChangeNotification =
    "NSCurrentLocaleDidChangeNotification";

class CurrentRegion {
  public:
    using Read = std::function<Regional()>;

    /// `read` says what the region is now.
    explicit CurrentRegion(Read read = &Regional::fromEnvironment);

    /// Asks again what the region is, and posts on the caller's queue what became different.
    /// Whether anything did.
    bool refresh() TAVRION_EXCLUDES(mutex_);

  private:
    Regional& kept(const Regional& region) TAVRION_REQUIRES(mutex_);

    const Read read_;
    Mutex mutex_;
    /// Every region that ever was current, each once.
    std::deque<Regional> known_ TAVRION_GUARDED_BY(mutex_);
    Port<Regional>::Plug plug_;
};

}  // namespace tavrion
