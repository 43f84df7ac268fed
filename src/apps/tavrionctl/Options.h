// What stands before the command on the command line.
#pragma once

#include <optional>
#include <string>

#include "platform/foundation/NSDate.h"

namespace tavrion::ctl {

struct Options {
    std::optional<std::string> dataDirectory;
    /// The instant at which the clock stands; absent means the computer's clock.
    std::optional<NSDate> now;
    bool json = false;
    bool quiet = false;
};

/// How a command ended.
struct Outcome {
    static constexpr int done = 0;
    static constexpr int failed = 1;
    static constexpr int wrongUsage = 2;
    static constexpr int inUse = 3;

    int status = done;
    /// For people; empty when done.
    std::string message = {};

    static Outcome failure(std::string message) { return {failed, std::move(message)}; }
    static Outcome usage(std::string message) { return {wrongUsage, std::move(message)}; }
    bool isDone() const { return status == done; }
};

}  // namespace tavrion::ctl
