#include "platform/foundation/CurrentRegion.h"

#include <algorithm>
#include <utility>

#include "platform/foundation/NSNotificationCenter.h"

namespace tavrion {
namespace {

bool isSameZone(const Regional& a, const Regional& b) {
    return a.timeZone().name() == b.timeZone().name();
}

}  // namespace

CurrentRegion::CurrentRegion(Read read)
    : read_(std::move(read)), known_{read_()}, plug_(known_.front()) {}

Regional& CurrentRegion::kept(const Regional& region) {
    const auto found = std::find_if(known_.begin(), known_.end(), [&](const Regional& each) {
        return isSameZone(each, region) && each.locales() == region.locales();
    });
    return found == known_.end() ? known_.emplace_back(region) : *found;
}

bool CurrentRegion::refresh() {
    bool isOtherZone = false;
    bool isOtherLocale = false;
    {
        const MutexLock lock(mutex_);
        const Regional& before = Port<Regional>::current();
        Regional& now = kept(read_());
        isOtherZone = !isSameZone(before, now);
        isOtherLocale = before.locales() != now.locales();
        plug_.replace(now);
    }
    NSNotificationCenter& centre = NSNotificationCenter::defaultCenter();
    if (isOtherZone) {
        centre.postNotificationName(NSSystemTimeZoneDidChangeNotification);
    }
    if (isOtherLocale) {
        centre.postNotificationName(NSCurrentLocaleDidChangeNotification);
    }
    return isOtherZone || isOtherLocale;
}

}  // namespace tavrion
