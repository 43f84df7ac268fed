#include "platform/foundation/NSLog.h"

#include <unistd.h>

#include <cerrno>

namespace tavrion {

void StandardErrorLogSink::line(std::string_view text) {
    // One write for the whole line, so that lines of several threads and processes do not mix.
    std::string bytes(text);
    bytes += '\n';
    std::string_view rest = bytes;
    while (!rest.empty()) {
        const ssize_t written = ::write(STDERR_FILENO, rest.data(), rest.size());
        if (written < 0 && errno != EINTR) {
            return;  // nowhere left to tell it
        }
        rest.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
}

}  // namespace tavrion
