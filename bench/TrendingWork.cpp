#include "bench/TrendingWork.h"

#include "platform/foundation/NSKeyedArchiver.h"

namespace tavrion::bench {

TrendingWork::TrendingWork(double start, double end) {
    environment_.publish(fixtures().snapshot);
    NSUserDefaults::standardUserDefaults().setObject(
        DateRangeKey::trending, NSKeyedArchiver::archivedDataWithRootObject(NSDateInterval(
                                    NSDate::dateWithTimeIntervalSinceReferenceDate(start),
                                    NSDate::dateWithTimeIntervalSinceReferenceDate(end))));
    demand(!environment_.main().hasChanges(), "the store is open before the time counts");
    openScreen();
}

const TrendingSnapshot& TrendingWork::update() {
    screen_->updateDataSource();
    environment_.mainQueue->runUntilIdle();
    return screen_->snapshot();
}

}  // namespace tavrion::bench
