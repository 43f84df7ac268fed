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

/// While it lives, calls `ended` on any thread each time a piece of work has ended, with the count
/// that was left. After its end the function is not running any more. The function may not begin
/// or end work, and may not make or end a listener.
class EndListener {
  public:
    explicit EndListener(std::function<void(std::size_t left)> ended);
    ~EndListener();
    EndListener(const EndListener&) = delete;
    EndListener& operator=(const EndListener&) = delete;

  private:
    friend void end();
    const std::function<void(std::size_t left)> ended_;
};

}  // namespace tavrion::DispatchActivity
