#include "platform/foundation/Clock.h"

#include <chrono>

namespace tavrion {

NSDate SystemClock::now() const {
    using std::chrono::microseconds;
    const auto unixTime =
        std::chrono::floor<microseconds>(std::chrono::system_clock::now().time_since_epoch());
    // Subtracted as whole microseconds: the difference is smaller than the Unix time and so keeps
    // more of its digits.
    const auto sinceReference =
        unixTime - std::chrono::seconds(static_cast<std::int64_t>(NSDate::secondsFrom1970To2001));
    return NSDate::dateWithTimeIntervalSinceReferenceDate(
        static_cast<double>(sinceReference.count()) / 1e6);
}

}  // namespace tavrion
