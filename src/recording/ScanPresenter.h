// What the scan shows: its progress, and the question what to do with unusually many plays.
//
// Queue: both operations are called on the main queue. The scan does not wait for the progress; of
// the question it waits for the answer, which the presenter gives once, on the main queue.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/foundation/Port.h"

namespace tavrion {

enum class SuspectAnswer { keepAll, keepMostRecent };

/// The question about songs with five or more new plays in one scan.
struct SuspectQuestion {
    std::string title;
    std::string message;
    std::string keepAll;
    std::string keepMostRecent;
    /// The titles named in the message, in its order.
    std::vector<std::string> songTitles;
};

class ScanPresenter {
  public:
    static constexpr const char* portName = "a scan presenter is plugged in";
    virtual ~ScanPresenter() = default;

    /// Shows how far the scan is, by the notifications "DataProcessDidUpdate" and
    /// "DataProcessDidFinish".
    virtual void presentProgress() = 0;
    virtual void ask(const SuspectQuestion& question,
                     std::function<void(SuspectAnswer)> answer) = 0;
};

}  // namespace tavrion
