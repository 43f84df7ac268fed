// How much work is queued or running in the whole process, so that a program without a screen knows
// when it is done.
//
// Queue: any. Work counts from the moment it is handed to a queue until it has run. Work of the
// main queue and timers that are not due are not counted here; the run loop knows of them itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace tavrion::DispatchActivity {

void begin();
void end();
std::size_t count();
/// How many pieces have begun since the process started. Unchanged between two moments and with a
/// count of 0 at the first, no queue was busy in between.
std::uint64_t begun();

/// Calls `ended` on any thread each time a piece of work has ended, with the count that was left.
/// One listener; an empty function takes it out, and when this returns the old one is not running.
/// The listener may not begin or end work itself.
void setEndListener(std::function<void(std::size_t left)> ended);

}  // namespace tavrion::DispatchActivity
