// The log: plain lines with no level.
//
// Queue: any. Lines go to the plugged sink; with none plugged they are dropped before they are put
// together, so that a scan of a whole library pays nothing for a log that nobody reads.
#pragma once

#include <fmt/core.h>

#include <string>
#include <string_view>
#include <utility>

#include "platform/foundation/Port.h"

namespace tavrion {

class LogSink {
  public:
    static constexpr const char* portName = "a log sink is plugged in";
    virtual ~LogSink() = default;
    /// Takes one line without a line end. Called from any queue, also from several at once.
    virtual void line(std::string_view text) = 0;
};

/// Writes each line to standard error.
class StandardErrorLogSink final : public LogSink {
  public:
    void line(std::string_view text) override;
};

/// Logs `format` with its arguments ({fmt} syntax).
template <class... Arguments>
void NSLog(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    if (Port<LogSink>::isPlugged()) {
        Port<LogSink>::current().line(fmt::format(format, std::forward<Arguments>(arguments)...));
    }
}

}  // namespace tavrion
